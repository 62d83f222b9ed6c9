#pragma once

#include <string>
#include <string_view>

// An error of sending, for the user.
struct SendError {
    std::string text;       // at most 259 characters; empty: no error
    std::string dictation;  // its name; empty when the error concerns no single one
    std::string typist;     // name of the recipient; empty when unknown

    explicit operator bool() const { return !text.empty(); }
};

// Text of a failure; reason is a sentence about the dictation.
std::string UnableToSend(std::string_view reason);

// Text of the box with the buttons OK and Cancel: the error, the dictation and typist it concerns, the place
// where the dictation is kept, and the meaning of the buttons unless the error text explains them itself.
std::string SendErrorBoxText(const SendError& error);
