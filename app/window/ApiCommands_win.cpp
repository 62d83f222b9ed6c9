#include "app/window/ApiCommands_win.h"

#include <string>

#include "base/LPath.h"
#include "base/LTrace.h"
#include "res/Ids.h"

struct ApiCommands::Entry {
    WPARAM command;
    enum class Needs { Nothing, MayChange } needs;
    LRESULT (*answer)(Target& target, LPARAM argument);
};

namespace {

// The text of a global atom, at most 259 bytes; empty when there is no such atom. Text atoms are numbered
// from 0xC000.
std::string AtomText(LPARAM argument) {
    constexpr LPARAM kFirstTextAtom = 0xC000;
    constexpr LPARAM kLastTextAtom = 0xFFFF;
    char text[kPathSize] = {};
    if (argument < kFirstTextAtom || argument > kLastTextAtom) return {};
    if (GlobalGetAtomNameA(static_cast<ATOM>(argument), text, sizeof text) == 0) return {};
    return text;
}

LRESULT Done(void) {
    return 0;
}

}  // namespace

// In the order of the command numbers. Command 0 tells other programs that this window understands the
// interface.
const ApiCommands::Entry ApiCommands::kCommands[] = {
    {0, Entry::Needs::Nothing, [](Target&, LPARAM) -> LRESULT { return 1; }},
    {1, Entry::Needs::Nothing, [](Target& target, LPARAM) { return target.OpenWindow(), Done(); }},
    {2, Entry::Needs::Nothing, [](Target& target, LPARAM) { return target.MinimizeWindow(), Done(); }},
    {3, Entry::Needs::Nothing, [](Target& target, LPARAM) { return target.CloseLater(), Done(); }},
    {4, Entry::Needs::Nothing, [](Target& target, LPARAM) { return target.Give(CM_NEWFILE), Done(); }},
    {5, Entry::Needs::MayChange,
     [](Target& target, LPARAM atom) { return target.RenameCurrent(AtomText(atom)), Done(); }},
    {6, Entry::Needs::Nothing,
     [](Target& target, LPARAM atom) { return target.AppendNotes(AtomText(atom)), Done(); }},
    {7, Entry::Needs::Nothing, [](Target& target, LPARAM) -> LRESULT { return target.Status(); }},
    {8, Entry::Needs::Nothing, [](Target& target, LPARAM) -> LRESULT { return target.CurrentNumber(); }},
    {9, Entry::Needs::MayChange, [](Target& target, LPARAM) { return target.SendCurrent(), Done(); }},
    {10, Entry::Needs::MayChange, [](Target& target, LPARAM) { return target.DeleteCurrent(), Done(); }},
};

LRESULT ApiCommands::Answer(WPARAM command, LPARAM argument) {
    for (const Entry& entry : kCommands) {
        if (entry.command != command) continue;
        if (entry.needs == Entry::Needs::MayChange && !m_target.MayChange()) return 0;
        return entry.answer(m_target, argument);
    }
    LTrace("MainDialog::EvAPICommand Invalid Command");
    return 0;
}
