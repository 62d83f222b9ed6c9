#include "send/SendError.h"

#include <algorithm>

#include "base/LText.h"

static constexpr size_t kLongestName = 80;  // characters of a name that the box shows
// Names and texts of others in a box, which must not outgrow the screen.
static constexpr size_t kMostNames = 12;
static constexpr size_t kMostOthers = 6;
static constexpr char kUnable[] = "Unable to send the dictation.\n\n";

// Makes a name fit for a box: names come from files, so they may hold control characters and be of any
// length.
static std::string Shown(std::string_view name) {
    const std::string shown = LShownText(name.substr(0, kLongestName));
    return name.size() > kLongestName ? shown + "..." : shown;
}

std::string UnableToSend(std::string_view reason) {
    return kUnable + std::string(reason);
}

std::string ShownNames(std::span<const std::string> names) {
    std::string shown;
    for (const std::string& name : names.first(std::min(names.size(), kMostNames)))
        shown += (shown.empty() ? "" : ", ") + Shown(name);
    return names.size() > kMostNames ? shown + " and " + std::to_string(names.size() - kMostNames) + " more"
                                     : shown;
}

// Those with the same text in one line of names, each of the rest with its own text in one line.
static std::string OthersText(const SendError& error) {
    std::vector<std::string> same;
    std::string lines;
    size_t listed = 0;
    for (const SendError& other : error.others) {
        if (other.text == error.text) {
            same.push_back(other.dictation);
        } else if (listed < kMostOthers) {
            const size_t skipped = other.text.starts_with(kUnable) ? sizeof kUnable - 1 : 0;
            std::string line = other.text.substr(skipped);
            std::ranges::replace(line, '\n', ' ');
            lines += "\n" + (other.dictation.empty() ? "" : Shown(other.dictation) + ": ") + line;
            ++listed;
        }
    }
    const size_t more = error.others.size() - same.size() - listed + static_cast<size_t>(error.more);
    std::string text = same.empty() ? "" : "\nThe same happened to: " + ShownNames(same);
    text += lines;
    if (more > 0) text += "\nErrors of others: " + std::to_string(more);
    const bool areNamed =
        std::ranges::any_of(error.others, [](const SendError& e) { return !e.dictation.empty(); });
    return "\n" + text + (areNamed ? "\nThese are kept among the sent dictations, too." : "");
}

std::string SendErrorBoxText(const SendError& error) {
    std::string text = error.text;
    if (!error.dictation.empty()) {
        text += "\n\nDictation: " + Shown(error.dictation);
        if (!error.typist.empty()) text += "\nTypist: " + Shown(error.typist);
        text += "\nThe dictation is kept among the sent dictations.";
    }
    if (!error.others.empty()) text += OthersText(error);
    if (error.text.find("Click OK") == std::string::npos)
        text += "\n\nClick OK to go on sending. Click Cancel to clear all pending send files.";
    return text;
}
