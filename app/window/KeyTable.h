#pragma once

#include <cstdint>

#include "app/transport/PlayPlan.h"

// Where the keyboard is when a key goes down.
enum class KeyFocus { Elsewhere, Button, Notes, NameEditor };

struct KeyPress {
    int key = 0;  // virtual-key code
    bool alt = false;
    bool ctrl = false;
    bool shift = false;
    bool repeats = false;  // it is still held
    KeyFocus focus = KeyFocus::Elsewhere;
};

struct KeyAction {
    enum class Kind {
        PassOn,   // not ours: the control or the dialog gets it
        Swallow,  // ours, and nothing happens
        Command,
        Wind,  // as long as the key is held
    };
    Kind kind = Kind::PassOn;
    int command = 0;
    WindDirection direction = WindDirection::Back;
};

// What a key does. A key that is held gives its command once: held for a second, Ctrl+S would send every dictation.
KeyAction ActionOf(const KeyPress& press);
