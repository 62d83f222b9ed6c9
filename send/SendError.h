#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// An error of sending, for the user.
struct SendError {
    std::string text;       // at most 259 characters; empty: no error
    std::string dictation;  // its name; empty when the error concerns no single one
    std::string typist;     // name of the recipient; empty when unknown
    // The errors that came after it before it was told, without others of their own, and the number of those
    // beyond them.
    std::vector<SendError> others{};
    int32_t more = 0;

    explicit operator bool() const { return !text.empty(); }
};

// Text of a failure; reason is a sentence about the dictation.
std::string UnableToSend(std::string_view reason);

// Names for a box, "A, B and 3 more": fit to be shown, and no more of them than fit.
std::string ShownNames(std::span<const std::string> names);

// Text of the box with the buttons OK and Cancel: the error, the dictation and typist it concerns, the place
// where the dictation is kept, the other errors, and the meaning of the buttons unless the error text
// explains them itself.
std::string SendErrorBoxText(const SendError& error);
