#pragma once

#include <windows.h>

#include <string_view>

#include "app/window/CommandTarget.h"

// The interface for other programs: window message 32767 (WM_APICOMMAND), with a command number in wParam and
// its argument in lParam; texts are passed as global atoms. A request is checked like a command of the user,
// and concerns the current dictation, whose number command 8 returns.
// Errors: an unknown command is traced, a refused one ignored; both return 0.
// Thread: the window thread.
class ApiCommands {
public:
    // The actions that are not menu commands.
    class Target : public CommandTarget {
    public:
        virtual void OpenWindow() = 0;
        virtual void MinimizeWindow() = 0;
        virtual void CloseLater() = 0;
        // False while a process runs or a box is open: changes are refused then.
        virtual bool MayChange() = 0;
        virtual void RenameCurrent(std::string_view name) = 0;
        virtual void AppendNotes(std::string_view text) = 0;
        virtual void SendCurrent() = 0;
        virtual void DeleteCurrent() = 0;
        // Command 7: 0 stopped, 1 recording, 2 recording but waiting for the speaker's voice, 3 playing, 4
        // winding.
        virtual int Status() const = 0;
        // Command 8: the number of the current dictation, 0 when there is none.
        virtual int32_t CurrentNumber() = 0;
    };

    explicit ApiCommands(Target& target) : m_target(target) {}
    // The result of the window message.
    LRESULT Answer(WPARAM command, LPARAM argument);

private:
    struct Entry;
    static const Entry kCommands[];

    Target& m_target;
};
