#pragma once

#include <cstdint>

// A command that pedals, hot keys and dictation microphones can give: its number (CI_... of res/Ids.h) and
// its name in lists.
struct CommandName {
    int32_t command;
    const char* name;
};

// In the order in which lists show them; an entry without a name ends the table.
extern const CommandName kCommandNames[];

// The name of a command; nullptr for a number that no command has.
const char* NameOfCommand(int32_t command);

// Whether the number is that of a command, and of another than "No Action".
bool IsRealCommand(int32_t command);
