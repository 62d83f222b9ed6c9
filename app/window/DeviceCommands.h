#pragma once

#include <cstdint>
#include <optional>

#include "app/transport/HoldRule.h"
#include "app/transport/PlayPlan.h"
#include "app/window/CommandTarget.h"
#include "base/LTime.h"

// Turns the input of pedals, hot keys and dictation microphones into commands. Pedals and hot keys press and
// release command indexes (CI_... of res/Ids.h), a dictation microphone sends codes of its buttons.
// Units:  milliseconds of a tick count.
// Thread: the window thread. A press may run messages, and among them the release that belongs to it.
class DeviceCommands {
public:
    // The states and actions that are not menu commands.
    class Target : public CommandTarget {
    public:
        virtual bool IsRecording() const = 0;
        virtual bool IsPlaying() const = 0;
        // A long process runs, which refuses all commands.
        virtual bool IsProcessRunning() const = 0;
        // Presses or releases the winding button in the window; false when it cannot be pressed.
        virtual bool HoldWinding(WindDirection direction, bool isDown) = 0;
        virtual void OpenWindow() = 0;
        virtual void MinimizeWindow() = 0;
    };

    explicit DeviceCommands(Target& target, uint32_t (*clock)() = LTickMs)
        : m_target(target), m_clock(clock) {}

    // True when the press was accepted, so its release must be reported as well. An index above 14 is refused
    // (traced).
    bool CommandPress(int index);
    void CommandRelease(int index, uint32_t holdLimitMs);
    // A process has ended: a control of recording or playing that was pressed meanwhile and is still held
    // counts as pressed now, so that what is said is not lost.
    void PressAgain();
    // A button code of the dictation microphone; unknown codes are ignored.
    void MicButton(int code);

private:
    // A press whose command is still running. That may take long: compressed audio is decoded before it is
    // recorded onto.
    struct Pressing {
        int index;
        uint32_t sinceMs;
        std::optional<uint32_t> releasedMs;
        uint32_t holdLimitMs = 0;
    };
    struct Index;
    static const Index kIndexes[];
    static const Index* Find(int index);
    bool Press(const Index& entry);
    bool PressHeld(const Index& entry);

    Target& m_target;
    uint32_t (*m_clock)();
    HoldRule m_hold;
    Pressing* m_pressing = nullptr;
    std::optional<int> m_refused;  // the index that is held since a process refused it
    bool m_micRecordHeld = false;
};
