#include "app/window/HotKeys_win.h"

#include <utility>

#include "hardware/CommandTable.h"
#include "hardware/HotKeyList.h"
#include "res/Ids.h"

static_assert(kModifierAlt == MOD_ALT && kModifierCtrl == MOD_CONTROL && kModifierShift == MOD_SHIFT);

void HotKeys::RegisterHotKeys(HWND window) {
    UnregisterHotKeys();
    m_window = window;
    m_registered = HotKeyList(m_state.data.settingsFile).Read().value_or(std::vector<HotKey>());
    for (int number = 0; const HotKey& hotKey : m_registered) {
        // One without a key or a command must not take any from the other programs.
        if (hotKey.key && IsRealCommand(hotKey.command))
            RegisterHotKey(m_window, number, static_cast<UINT>(hotKey.modifiers),
                           static_cast<UINT>(*hotKey.key));
        ++number;
    }
}

// Those that were registered, also when another program has changed the list since.
void HotKeys::UnregisterHotKeys() {
    const size_t count = std::exchange(m_registered, {}).size();
    for (size_t number = 0; number < count; ++number) UnregisterHotKey(m_window, static_cast<int>(number));
}

int32_t HotKeys::CommandOf(int32_t hotKey) {
    const HotKeyList list(m_state.data.settingsFile);
    const auto number = static_cast<size_t>(hotKey);
    return number < m_registered.size() ? list.CommandOf(hotKey, m_registered[number])
                                        : list.CommandOf(hotKey);
}

void HotKeys::SetTimer(uint32_t ms) {
    ::SetTimer(m_window, TIMER_HOTKEY, ms, nullptr);
}
