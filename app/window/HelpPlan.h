#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/LPath.h"

// The platform's ways to show help; each returns whether it is shown.
class HelpViewer {
public:
    virtual ~HelpViewer() = default;
    virtual bool IsThere(const LPath& file) = 0;
    virtual bool ShowHelpFile(const LPath& file) = 0;
    virtual bool ShowPage(const LPath& file) = 0;
};

enum class HelpResult { Shown, Missing, NoViewer };

// Shows the help in the program's folder: "corvane.hlp" where it is there and the platform can show it, which
// newer ones cannot, else the manual.
HelpResult ShowHelp(const LPath& programFolder, HelpViewer& viewer);

// The text for a user who was shown nothing.
std::string HelpText(HelpResult result, const LPath& programFolder);

// Tells a press of F1 from the repeats of a held one, which look alike: they follow one another within the
// longest delay that a keyboard can be set to.
class HelpKey {
public:
    static constexpr uint32_t kRepeatsWithinMs = 1500;

    // Called for each message of the key; tick count in ms. True for a new press.
    bool IsNewPress(uint32_t nowMs);

private:
    std::optional<uint32_t> m_lastMs;
};
