#pragma once

#include <windows.h>

#include <vector>

#include "app/AppState.h"
#include "app/window/DeviceCommands.h"
#include "hardware/HotKey.h"
#include "hardware/HotKeyHold.h"

// The hot keys of the main window: keys that give it commands while any program has the keyboard.
// Errors: a key that the platform refuses, because another program has it, is without effect; the page of hot
//         keys says so.
// Thread: the window thread.
class HotKeys final : private HotKeyHold::Target {
public:
    HotKeys(const AppState& state, DeviceCommands& devices) : m_state(state), m_devices(devices) {}

    // Registers the stored hot keys, each under its number in the list.
    void RegisterHotKeys(HWND window);
    void UnregisterHotKeys();

    void EvHotKey(int hotKey) { m_hold.EvHotKey(hotKey); }
    void EvTimer() { m_hold.EvTimer(); }  // TIMER_HOTKEY, which has been stopped

private:
    // HotKeyHold::Target
    int32_t CommandOf(int32_t hotKey) override;
    void CommandPress(int32_t command) override { m_devices.CommandPress(InputControl::HotKey, command); }
    void CommandRelease(int32_t command) override {
        m_devices.CommandRelease(InputControl::HotKey, command, kHotKeyHoldLimitMs);
    }
    void SetTimer(uint32_t ms) override;

    const AppState& m_state;
    DeviceCommands& m_devices;
    HotKeyHold m_hold{*this};
    HWND m_window = nullptr;           // null until the first registration
    std::vector<HotKey> m_registered;  // the list as it was then, each by its number
};
