#pragma once

#include <windows.h>

#include <string_view>

#include "app/window/CommandTarget.h"

// The small interface for other programs: message 32767 with a command and its argument. What another program asks
// for is checked like what a user does, and it works on the current dictation alone, which number 8 names.
// Thread: the window thread.
class ApiCommands {
public:
    // Besides giving commands.
    class Target : public CommandTarget {
    public:
        virtual void OpenWindow() = 0;
        virtual void MinimizeWindow() = 0;
        virtual void CloseLater() = 0;
        // False while other programs' changes must wait: a process runs, or a question stands.
        virtual bool MayChange() = 0;
        virtual void RenameCurrent(std::string_view name) = 0;
        virtual void AppendNotes(std::string_view text) = 0;
        virtual void SendCurrent() = 0;
        virtual void DeleteCurrent() = 0;
        // 0 stopped, 1 recording, 2 waiting for the speaker's voice, 3 playing, 4 winding.
        virtual int Status() const = 0;
        // 0 when there is none.
        virtual int32_t CurrentNumber() = 0;
    };

    explicit ApiCommands(Target& target) : m_target(target) {}
    LRESULT Answer(WPARAM command, LPARAM argument);

private:
    struct Entry;
    static const Entry kCommands[];

    Target& m_target;
};
