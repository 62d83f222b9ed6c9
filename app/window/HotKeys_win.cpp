#include "app/window/HotKeys_win.h"

#include <utility>

#include "hardware/CommandTable.h"
#include "hardware/HotKeyList.h"
#include "res/Ids.h"

static_assert(kModifierAlt == MOD_ALT && kModifierCtrl == MOD_CONTROL && kModifierShift == MOD_SHIFT);

void HotKeys::RegisterHotKeys(HWND window) {
    UnregisterHotKeys();
    m_window = window;
    const auto list = HotKeyList(m_state.data.settingsFile).Read();
    if (!list) return;
    for (const HotKey& hotKey : *list) {
        const int number = m_count++;
        // One without a key or a command must not take any from the other programs.
        if (hotKey.key && IsRealCommand(hotKey.command))
            RegisterHotKey(m_window, number, static_cast<UINT>(hotKey.modifiers),
                           static_cast<UINT>(*hotKey.key));
    }
}

// Those that were registered, also when another program has changed the list since.
void HotKeys::UnregisterHotKeys() {
    const int count = std::exchange(m_count, 0);
    for (int number = 0; number < count; ++number) UnregisterHotKey(m_window, number);
}

int32_t HotKeys::CommandOf(int32_t hotKey) {
    return HotKeyList(m_state.data.settingsFile).CommandOf(hotKey);
}

void HotKeys::SetTimer(uint32_t ms) {
    ::SetTimer(m_window, TIMER_HOTKEY, ms, nullptr);
}
