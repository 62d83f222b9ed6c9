#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "app/transport/PlayPlan.h"
#include "app/window/CommandTarget.h"
#include "base/LTime.h"

// A press that lasts longer is a hold: for buttons, pedals and dictation microphones.
constexpr uint32_t kHoldLimitMs = 500;
// The same for global hot keys. Longer, because the platform does not report their release; it is only
// guessed.
constexpr uint32_t kHotKeyHoldLimitMs = 820;

// What a press comes from. Each has its own press and release, which have nothing to do with another's.
enum class InputControl {
    RecordButton,
    HotKey,
    MicRecord,
    MicPlay,
    MicInsert,
    MicRewind,
    MicForward,
    MicSend,
    Pedal1,
    Pedal2,
    Pedal3,
    Pedal4,
    Count
};

// Turns the input of pedals, hot keys and dictation microphones into commands. Pedals and hot keys press and
// release command indexes (CI_... of res/Ids.h), a dictation microphone sends codes of its buttons.
// Recording and playing follow the hold rule: a press that was a tap starts and goes on, and the next tap
// stops; one that was a hold ends with its release. A hold belongs to the control that began it: another one
// that is let go meanwhile ends nothing, nor does its own release when another has begun something since.
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
        // A press has to wait for the process: who does not look at the window must hear it.
        virtual void TellWaiting() = 0;
        virtual void OpenWindow() = 0;
        virtual void MinimizeWindow() = 0;
    };

    explicit DeviceCommands(Target& target, uint32_t (*clock)() = LTickMs)
        : m_target(target), m_clock(clock) {}

    // True when the press was accepted. An index above 14 is refused (traced).
    bool CommandPress(InputControl control, int index);
    void CommandRelease(InputControl control, int index, uint32_t holdLimitMs);
    // A process has ended: controls of recording or playing that were pressed meanwhile and are still held
    // count as pressed now, so that what is said is not lost.
    void PressAgain();
    // A button code of the dictation microphone; unknown codes are ignored.
    void MicButton(int code);
    // The dictation microphone is gone: its buttons are released.
    void ReleaseMic();
    // A button of the dictation microphone is held.
    bool IsMicHeld() const;

private:
    // Starting: the command of the press still runs. That may take long: compressed audio is decoded before
    // it is recorded onto. Began: the press began what runs. Joined: it was refused, as something ran
    // already. Waits: a process refused it. Winds: it holds a winding button.
    enum class Press { Up, Starting, Began, Joined, Waits, Winds };
    struct Held {
        Press press = Press::Up;
        int index = 0;
        uint32_t sinceMs = 0;
        std::optional<uint32_t> releasedMs;  // while it was starting
        uint32_t holdLimitMs = 0;
    };
    struct Index;
    static const Index kIndexes[];
    static const Index* Find(int index);
    Held& Of(InputControl control) { return m_held[static_cast<size_t>(control)]; }
    bool Carry(const Index& entry);
    bool PressHeld(InputControl control, const Index& entry);
    bool PressWinding(InputControl control, const Index& entry);
    void ReleaseHeld(InputControl control, uint32_t holdLimitMs);
    void ReleaseWinding(InputControl control, const Index& entry);
    bool IsBeginnerHeld();

    Target& m_target;
    uint32_t (*m_clock)();
    std::array<Held, static_cast<size_t>(InputControl::Count)> m_held;
    std::optional<InputControl> m_beginner;  // whose press was the last to begin something
    bool m_micRecordHeld = false;
};
