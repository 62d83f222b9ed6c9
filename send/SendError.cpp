#include "send/SendError.h"

#include <algorithm>

static constexpr size_t kLongestName = 80;  // characters of a name that the box shows

// Makes a name fit for a box: names come from files, so they may hold control characters and be of any
// length.
static std::string Shown(std::string_view name) {
    std::string shown(name.substr(0, kLongestName));
    std::ranges::replace_if(
        shown, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return name.size() > kLongestName ? shown + "..." : shown;
}

std::string UnableToSend(std::string_view reason) {
    return "Unable to send the dictation.\n\n" + std::string(reason);
}

std::string SendErrorBoxText(const SendError& error) {
    std::string text = error.text;
    if (!error.dictation.empty()) {
        text += "\n\nDictation: " + Shown(error.dictation);
        if (!error.typist.empty()) text += "\nTypist: " + Shown(error.typist);
        text += "\nThe dictation is kept among the sent dictations.";
    }
    if (error.text.find("Click OK") == std::string::npos)
        text += "\n\nClick OK to go on sending. Click Cancel to clear all pending send files.";
    return text;
}
