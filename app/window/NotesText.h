#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Joins two versions of one notes text that come from the same earlier one: additions of either
// are kept, and a passage that only one of them changed or deleted is as that one has it. Where both added at
// the same place ours comes first, so that a word that is being typed stays in one piece; an addition that
// only continues the other's replaces it. An empty text of theirs changes nothing.
std::string MergeNotes(std::string_view earlier, std::string_view theirs, std::string_view ours);

// Number of bytes with which both texts begin.
size_t SharedBytes(std::string_view one, std::string_view other);

// Whether an edit control shows the text at once. Some take time with the square of a paragraph's length:
// 65,000 bytes in one kept the window from answering for 7 to 17 s.
bool IsLaidOutQuickly(std::string_view text);

// The text for display alone, in lines that are laid out quickly: longer ones are broken, at a blank where
// there is one.
std::string BreakLongLines(std::string_view text);
