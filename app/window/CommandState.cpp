#include "app/window/CommandState.h"

#include "res/Ids.h"

namespace {

enum class Needs { Nothing, Selection, OneSelected, Audio, Running, NotBuilt };

struct CommandNeeds {
    int first;
    int last;
    Needs needs;
};

// In the order of the numbers; what is not listed can always be given.
constexpr CommandNeeds kNeeds[] = {
    {IDC_SEND, IDC_SEND, Needs::Selection},
    {IDC_PLAY, IDC_PLAY, Needs::Audio},
    {IDC_STOP, IDC_STOP, Needs::Running},
    {IDC_GOTOSTART, IDC_GOTOSTART, Needs::Selection},
    {IDC_REWIND, IDC_FASTFORWARD, Needs::Audio},
    {IDC_GOTOEND, IDC_GOTOEND, Needs::Selection},
    {IDC_DOCK, IDC_DOCK, Needs::NotBuilt},
    {CM_SENDFILE, CM_SENDFILE_TO, Needs::Selection},
    {CM_RENAMEFILE, CM_RENAMEFILE, Needs::OneSelected},
    {CM_DELETEFILE, CM_DELETEFILE, Needs::Selection},
    {CM_DOCK_CABLE, CM_DOCK_TRANSFER, Needs::NotBuilt},
    {CM_VIEWSENT, CM_RECOVER, Needs::NotBuilt},
    {CM_LOGON, CM_LOGON, Needs::NotBuilt},
    {CM_PRIORITY_HIGH, CM_PRIORITY_LOW, Needs::Selection},
    {CM_LOADFILE, CM_LOADSENDFILE, Needs::NotBuilt},
    {CM_PLAY, CM_PLAY, Needs::Audio},
    {CM_STOP, CM_STOP, Needs::Running},
    {CM_PLAY_SLOW, CM_PLAY_FAST, Needs::Audio},
    {CM_GOTOSTART, CM_GOTOSTART, Needs::Selection},
    {CM_REWIND, CM_FASTFORWARD, Needs::Audio},
    {CM_GOTOEND, CM_GOTOEND, Needs::Selection},
    {CM_RECORD_INSERT, CM_RECORD_INSERT, Needs::NotBuilt},
    {CM_RECORDMODE_INSERT, CM_RECORDMODE_INSERT, Needs::NotBuilt},
    {CM_SETTINGS_HARDWARE, CM_SETTINGS_USER, Needs::NotBuilt},
    {CM_HELP, CM_HELP, Needs::NotBuilt},
};

bool IsMet(Needs needs, const CommandSituation& situation) {
    switch (needs) {
        case Needs::Nothing:
            return true;
        case Needs::Selection:
            return situation.selectedRows > 0;
        case Needs::OneSelected:
            return situation.selectedRows == 1;
        case Needs::Audio:
            return situation.hasAudio || situation.isRecording;
        case Needs::Running:
            return situation.isRecording || situation.isPlaying;
        case Needs::NotBuilt:
            return false;
    }
    return false;
}

}  // namespace

bool IsCommandEnabled(int command, const CommandSituation& situation) {
    for (const CommandNeeds& row : kNeeds)
        if (command >= row.first && command <= row.last) return IsMet(row.needs, situation);
    return true;
}
