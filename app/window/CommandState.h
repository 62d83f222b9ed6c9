#pragma once

#include <cstdint>

// What decides which commands can be given.
struct CommandSituation {
    int selectedRows = 0;
    bool hasAudio = false;  // in the current dictation
    bool isRecording = false;
    bool isPlaying = false;  // or winding
};

// Whether a menu command or a button (by its number) can be given now. The menu, the buttons and the
// shortcuts all ask here.
bool IsCommandEnabled(int command, const CommandSituation& situation);
