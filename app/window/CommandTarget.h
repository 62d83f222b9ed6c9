#pragma once

// Who carries out commands, wherever they come from: keys, devices and other programs give them to the main window.
// Thread: the window thread.
class CommandTarget {
public:
    virtual ~CommandTarget() = default;
    // A menu command or a button by its number. False when it cannot be given now or did nothing: a recording that
    // did not start, a dictation with nothing to play.
    virtual bool Give(int command) = 0;
};
