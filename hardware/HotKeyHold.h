#pragma once

#include <cstdint>
#include <optional>

// Turns the messages of hot keys into a press and a later release. The platform tells when a hot key goes
// down and again while it repeats, but not when it is let go; that is concluded when no repeat has come for
// a while. One command is held at a time; any hot key that is pressed meanwhile only prolongs it.
// Units:  milliseconds.
// Thread: the window thread. A press may run messages, and among them further ones of the same key.
class HotKeyHold {
public:
    class Target {
    public:
        virtual ~Target() = default;
        // The command that is stored for a hot key: any number, 0 for none.
        virtual int32_t CommandOf(int32_t hotKey) = 0;
        virtual void CommandPress(int32_t command) = 0;
        virtual void CommandRelease(int32_t command) = 0;
        // Calls EvTimer once after this time, counted anew when it is called again.
        virtual void SetTimer(uint32_t ms) = 0;
    };

    // The first message lasts until the repeats begin, which the user's keyboard settings delay.
    static constexpr uint32_t kFirstMs = 600;
    static constexpr uint32_t kRepeatMs = 250;

    explicit HotKeyHold(Target& target) : m_target(target) {}

    void EvHotKey(int32_t hotKey);
    void EvTimer();

private:
    Target& m_target;
    std::optional<int32_t> m_held;
};
