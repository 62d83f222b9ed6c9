#include "app/window/HelpPlan.h"

#include "base/LText.h"
#include "base/LTrace.h"

namespace {

constexpr char kHelpFile[] = "corvane.hlp";
constexpr char kManual[] = "corvane.htm";
constexpr char kMissing[] =
    "The manual is not where Corvane looks for it:\n\n%s\n\n"
    "Please copy \"corvane.htm\" and the folder \"images\" beside the program.";
constexpr char kNoBrowser[] =
    "The manual could not be shown. This computer seems to have no Internet browser.\n\n"
    "The manual is the file\n%s";

}  // namespace

HelpResult ShowHelp(const LPath& programFolder, HelpViewer& viewer) {
    const LPath help = LPath::Join(programFolder.View(), kHelpFile);
    if (viewer.IsThere(help) && viewer.ShowHelpFile(help)) return HelpResult::Shown;
    const LPath manual = LPath::Join(programFolder.View(), kManual);
    const bool isThere = viewer.IsThere(manual);
    if (isThere && viewer.ShowPage(manual)) return HelpResult::Shown;
    LTrace("ShowHelp unable to show", manual.View());
    return isThere ? HelpResult::NoViewer : HelpResult::Missing;
}

std::string HelpText(HelpResult result, const LPath& programFolder) {
    const LPath manual = LPath::Join(programFolder.View(), kManual);
    return LFormat(result == HelpResult::Missing ? kMissing : kNoBrowser,
                   manual.Empty() ? kManual : manual.c_str());
}
