#include "app/window/NotSentText.h"

#include <map>
#include <vector>

#include "base/LText.h"
#include "send/SendError.h"

std::string NotSentText(std::span<const NotSent> left, size_t notTried) {
    std::vector<std::string> reasons;  // in the order in which they came up
    std::map<std::string, std::vector<std::string>> names;
    for (const NotSent& dictation : left) {
        std::vector<std::string>& ofReason = names[dictation.reason];
        if (ofReason.empty()) reasons.push_back(dictation.reason);
        ofReason.push_back(dictation.name);
    }
    if (left.size() + notTried == 1) {
        return LFormat("Unable to send the dictation \"%s\".\n\n%s", ShownNames(names[reasons[0]]).c_str(),
                       reasons[0].c_str());
    }
    std::string text =
        LFormat("Dictations that were not sent: %lu", static_cast<unsigned long>(left.size() + notTried));
    for (const std::string& reason : reasons) text += "\n\n" + ShownNames(names[reason]) + ":\n" + reason;
    if (notTried > 0) text += "\n\nThe others were not tried after that. They stay in the list.";
    return text;
}
