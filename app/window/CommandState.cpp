#include "app/window/CommandState.h"

#include "res/Ids.h"

namespace {

// Each command has a mask of conditions that must all be met; a situation gives the mask of those that are.
// One table in place of conditions in each handler lets menu, buttons, keys and devices follow the same
// rules.
using Mask = uint32_t;
constexpr Mask kList = 1 << 0;  // the list is visible
constexpr Mask kRows = 1 << 1;  // at least one row is selected
constexpr Mask kOneRow = 1 << 2;
constexpr Mask kAudio = 1 << 3;  // there is audio, or there will be when the recording is stopped
constexpr Mask kRunning = 1 << 4;
constexpr Mask kNoProcess = 1 << 5;
constexpr Mask kNoQuestion = 1 << 6;
constexpr Mask kNotRecording = 1 << 7;

// The transport works while a box is open, since a user with a pedal may not look at the window: a box that
// opens meanwhile must not cost him his words. All other commands need that nothing is open.
constexpr Mask kTransport = kNoProcess;
constexpr Mask kIdle = kNoProcess | kNoQuestion;

struct Button {
    int control;
    int command;
};
// The winding buttons are not here: they act on press and release (HoldButton) alone.
constexpr Button kButtons[] = {
    {IDC_NEW, CM_NEWFILE}, {IDC_SEND, CM_SENDFILE},       {IDC_PLAY, CM_PLAY},       {IDC_RECORD, CM_RECORD},
    {IDC_STOP, CM_STOP},   {IDC_GOTOSTART, CM_GOTOSTART}, {IDC_GOTOEND, CM_GOTOEND},
};

struct CommandNeeds {
    int first;
    int last;
    Mask needs;
};

// In the order of the numbers. A button that is not listed needs what its menu command does, another command
// kIdle.
constexpr CommandNeeds kNeeds[] = {
    // The button tells that something runs already; key, menu and pedal still end the recording and play it.
    {IDC_PLAY, IDC_PLAY, kTransport | kAudio | kNotRecording},
    {IDC_REWIND, IDC_FASTFORWARD, kTransport | kAudio},
    {CM_SENDFILE, CM_SENDFILE_TO, kIdle | kRows},
    {CM_RENAMEFILE, CM_RENAMEFILE, kIdle | kOneRow | kList},
    {CM_DELETEFILE, CM_DELETEFILE, kIdle | kRows},
    {CM_PRIORITY_HIGH, CM_PRIORITY_LOW, kIdle | kRows},
    {CM_EXIT, CM_EXIT, 0},
    {CM_RECORD, CM_RECORD, kTransport},
    {CM_PLAY, CM_PLAY, kTransport | kAudio},
    {CM_STOP, CM_STOP, kRunning},
    {CM_PLAY_SLOW, CM_PLAY_FAST, kTransport},
    {CM_GOTOSTART, CM_GOTOSTART, kTransport | kAudio},
    {CM_REWIND, CM_FASTFORWARD, kTransport | kAudio},
    {CM_GOTOEND, CM_GOTOEND, kTransport | kAudio},
    {CM_RECORD_OVERWRITE, CM_RECORD_END, kTransport},
    {CM_HELP, CM_HELP, kNoProcess},
};

Mask Met(const CommandSituation& situation) {
    using Modal = CommandSituation::Modal;
    Mask met = 0;
    const auto meets = [&met](Mask condition, bool isMet) { met |= isMet ? condition : 0; };
    meets(kList, situation.view != ViewMode::Compact);
    meets(kRows, situation.selectedRows > 0);
    meets(kOneRow, situation.selectedRows == 1);
    meets(kAudio, situation.hasAudio || situation.isRecording);
    meets(kRunning, situation.isRunning);
    meets(kNotRecording, !situation.isRecording);
    meets(kNoProcess, situation.modal != Modal::Process);
    meets(kNoQuestion, situation.modal != Modal::Question);
    return met;
}

Mask NeedsOf(int command) {
    for (const int number : {command, MenuCommandOf(command)})
        for (const CommandNeeds& row : kNeeds)
            if (number >= row.first && number <= row.last) return row.needs;
    return kIdle;
}

}  // namespace

int MenuCommandOf(int control) {
    for (const Button& button : kButtons)
        if (button.control == control) return button.command;
    return control;
}

bool IsCommandEnabled(int command, const CommandSituation& situation) {
    return (NeedsOf(command) & ~Met(situation)) == 0;
}
