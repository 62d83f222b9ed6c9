#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/LPath.h"
#include "send/SendError.h"

// The errors of sending that the user has not answered yet, in their order, and the file that keeps them:
// neither closing the window nor a kill may cost him the news of a dictation that did not arrive. Its record
// can say "Sent" all the same.
// The file is not trusted: it yields a bounded number of bounded texts. While it cannot be
// read it is not written either, and the errors live in memory alone.
// Errors: of the file, traced; the errors are then told by this run or not at all.
// Thread: one at a time; BGSend guards it.
class UntoldErrors {
public:
    // Takes up the errors that an earlier run left in the file; from then on it follows every change.
    void KeepIn(const LPath& file);
    bool IsKept() const { return !m_file.Empty(); }
    // False when there are too many: the error is counted and its text dropped.
    bool Add(SendError error);
    // The first error with the others behind it; empty when there is none.
    SendError All() const;
    // Removes the errors that All returned; errors that were added since stay.
    void Forget(const SendError& told);

private:
    bool Take(SendError error);
    void Parse(std::string_view text);
    void Save() const;

    std::vector<SendError> m_errors;
    int32_t m_more = 0;  // errors that are only counted
    LPath m_file;        // empty: none
};
