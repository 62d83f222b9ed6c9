#pragma once

#include <cstdint>
#include <optional>

// The modifier keys of a hot key, as bits; the platform's own values.
constexpr int32_t kModifierAlt = 1;
constexpr int32_t kModifierCtrl = 2;
constexpr int32_t kModifierShift = 4;

// A key of the whole system with its command.
struct HotKey {
    std::optional<int32_t> key;  // virtual-key code; nothing while none has been chosen
    int32_t modifiers = 0;
    int32_t command = 0;  // CI_..., or whatever number the settings file holds

    bool operator==(const HotKey&) const = default;
    bool HasKeyOf(const HotKey& other) const { return key == other.key && modifiers == other.modifiers; }
};

// What becomes of a key that is pressed in the box in which a hot key is chosen. Enter alone would take the
// key that every program uses from the whole system; a modifier becomes a hot key only with another key;
// Escape closes the dialog; Shift+Tab is the way out of the box by the keyboard.
enum class KeyCapture { PassOn, Swallow, Store };

constexpr KeyCapture CaptureOf(uint32_t virtualKey, int32_t modifiers) {
    constexpr uint32_t kTab = 0x09, kReturn = 0x0D, kShift = 0x10, kCtrl = 0x11, kAlt = 0x12, kEscape = 0x1B;
    switch (virtualKey) {
        case kReturn:
            return KeyCapture::Swallow;
        case kShift:
        case kCtrl:
        case kAlt:
        case kEscape:
            return KeyCapture::PassOn;
        case kTab:
            return modifiers == kModifierShift ? KeyCapture::PassOn : KeyCapture::Store;
        default:
            return KeyCapture::Store;
    }
}
