#pragma once

#include <string>
#include <string_view>

// The notes with the answer to a prompted field: an element "<tag>answer</tag>" on a line of its own at the
// end. Elements of that tag that the notes hold already go, with the blanks and line breaks behind them;
// every other byte stays. An opening tag without its closing tag is ordinary text.
// An answer that holds the tag's own marks loses them, so that there is exactly one element afterwards; with
// an empty tag the answer stands alone in its line.
std::string WithField(std::string_view notes, std::string_view tag, std::string_view answer);
