#include "hardware/CommandTable.h"

#include <iterator>

#include "res/Ids.h"

const CommandName kCommandNames[] = {
    {CI_NONE, "No Action"},
    {CI_OPEN, "Open Corvane"},
    {CI_MINIMIZE, "Minimize Corvane"},
    {CI_RECORD, "Record"},
    {CI_PLAY, "Play"},
    {CI_GOTOSTART, "Go to start"},
    {CI_GOTOEND, "Go to end"},
    {CI_REWIND, "Rewind"},
    {CI_FASTFORWARD, "Fast Forward"},
    {CI_NEW, "Create New Dictation"},
    {CI_SEND, "Send Dictation"},
    {CI_SENDHIGH, "Send High Priority"},
    {CI_RECORD_OVERWRITE, "Record Overwrite"},
    {CI_RECORD_INSERT, "Record Insert"},
    {CI_RECORD_END, "Record at End"},
    {0, nullptr},
};
static_assert(std::size(kCommandNames) == CI_COUNT + 1, "a name for each command, and the end");

const char* NameOfCommand(int32_t command) {
    for (const CommandName* entry = kCommandNames; entry->name != nullptr; ++entry)
        if (entry->command == command) return entry->name;
    return nullptr;
}

bool IsRealCommand(int32_t command) {
    return command != CI_NONE && NameOfCommand(command) != nullptr;
}
