#pragma once

#include <cstdint>

#include "app/window/WindowFit.h"

// What decides which commands can be given.
struct CommandSituation {
    // What stands before the window: a box or a dialog, or a long process. As LModalRunner::Standing, which this
    // portable half does not know.
    enum class Standing { Nothing, Question, Process };

    ViewMode view = ViewMode::Normal;
    int selectedRows = 0;
    bool hasAudio = false;  // in the current dictation
    bool isRecording = false;
    bool isRunning = false;  // recording, preparing to record, playing or winding
    Standing standing = Standing::Nothing;
};

// The menu command that a button of the main window stands for; every other number stands for itself.
int MenuCommandOf(int control);

// Whether a menu command or a button (by its number) can be given now. The menu, the buttons, the keys, the devices
// and other programs all ask here.
bool IsCommandEnabled(int command, const CommandSituation& situation);
