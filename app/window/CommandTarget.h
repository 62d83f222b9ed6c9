#pragma once

// The receiver of commands; keys, devices and other programs give them to the main window.
// Thread: the window thread.
class CommandTarget {
public:
    virtual ~CommandTarget() = default;
    // Carries out a menu command, or that of a button, by its number. False when it is not permitted or had
    // no effect: a recording that did not start, a dictation with nothing to play.
    virtual bool Give(int command) = 0;
};
