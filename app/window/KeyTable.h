#pragma once

#include <cstdint>

#include "app/transport/PlayPlan.h"

// The control that has the focus when a key goes down.
enum class KeyFocus {
    Elsewhere,
    List,
    Button,
    Notes,
    NameEditor,
    OtherWindow,  // the introduction, which speaks of the function keys
};

// A key message with the state of the modifier keys.
struct KeyPress {
    int key = 0;  // virtual-key code
    bool alt = false;
    bool ctrl = false;
    bool shift = false;
    bool repeats = false;  // the key is still held
    KeyFocus focus = KeyFocus::Elsewhere;
};

// The effect of a key press.
struct KeyAction {
    enum class Kind {
        PassOn,   // not ours: the control or the dialog gets the key
        Swallow,  // ours, without effect
        Command,
        Wind,  // for as long as the key is held
        SelectAll,
        PlayRow,  // as a double click on it does
        PressButton,
    };
    Kind kind = Kind::PassOn;
    int command = 0;
    WindDirection direction = WindDirection::Back;
};

// The effect of a key. A held key gives its command once; with repeats, Ctrl+S held for a second would send
// every dictation of the list.
KeyAction ActionOf(const KeyPress& press);

// The command of a media key, by the platform's number, while winding or not; 0: not ours.
int MediaCommandOf(int key, bool windsBack, bool windsForward);

// Whether two presses, or clicks, in quick succession count as one: New and Send. The list moves on after the
// first, and the second would take the next dictation.
bool CountsOnce(int command);
