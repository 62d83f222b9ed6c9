#include "app/window/PromptedField.h"

static void EraseAll(std::string& text, std::string_view what) {
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at))
        text.erase(at, what.size());
}

std::string WithField(std::string_view notes, std::string_view tag, std::string_view answer) {
    std::string text(notes);
    std::string value(answer);
    if (tag.empty()) return text + value + "\r\n";
    const std::string open = "<" + std::string(tag) + ">";
    const std::string close = "</" + std::string(tag) + ">";
    for (size_t at = text.find(open); at != std::string::npos; at = text.find(open, at)) {
        const size_t closeAt = text.find(close, at + open.size());
        if (closeAt == std::string::npos) break;
        const size_t end = text.find_first_not_of(" \t\r\n", closeAt + close.size());
        text.erase(at, end == std::string::npos ? end : end - at);
    }
    // Removing one mark can make another of its neighbours.
    while (value.find(open) != std::string::npos || value.find(close) != std::string::npos) {
        EraseAll(value, open);
        EraseAll(value, close);
    }
    return text + open + value + close + "\r\n";
}
