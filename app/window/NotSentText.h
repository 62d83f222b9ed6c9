#pragma once

#include <cstddef>
#include <span>
#include <string>

// A dictation that a Send command left in the list.
struct NotSent {
    std::string name;
    std::string reason;  // a sentence for the user
};

// Text of the box at the end of a Send command: which dictations were not sent, by their reasons, and the
// number of those that were not tried any more.
std::string NotSentText(std::span<const NotSent> left, size_t notTried);
