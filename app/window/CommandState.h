#pragma once

#include <cstdint>

#include "app/window/WindowFit.h"

// The state of the window on which the permission of commands depends.
struct CommandSituation {
    // The kind of modal window that is open: a box or dialog (Question), or a long process. The same as
    // LModalRunner::Modal, which portable code cannot include.
    enum class Modal { Nothing, Question, Process };

    ViewMode view = ViewMode::Normal;
    int selectedRows = 0;
    bool hasAudio = false;  // the current dictation has audio
    bool isRecording = false;
    bool isRunning = false;  // recording, preparing to record, playing or winding
    Modal modal = Modal::Nothing;
};

// The menu command of a button of the main window; any other number is returned unchanged.
int MenuCommandOf(int control);

// Whether a menu command or a button (by its number) is permitted now. Menu, buttons, keys, devices and other
// programs all ask here, so no way to a command has rules of its own.
bool IsCommandEnabled(int command, const CommandSituation& situation);
