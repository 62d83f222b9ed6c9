#pragma once

#include <string>
#include <string_view>

// What went wrong with sending, for the user.
struct SendError {
    std::string text;       // at most 259 characters; empty: nothing
    std::string dictation;  // its name; empty when it is not about one
    std::string typist;     // whom it was for; empty when that is not known

    explicit operator bool() const { return !text.empty(); }
};

// The text of a failure for a reason that is a sentence about the dictation.
std::string UnableToSend(std::string_view reason);

// What the box with OK and Cancel says: the text, which dictation of whom it is about and where that is kept,
// and what the buttons do unless the text says so itself.
std::string SendErrorBoxText(const SendError& error);
