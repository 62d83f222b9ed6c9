#pragma once

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
