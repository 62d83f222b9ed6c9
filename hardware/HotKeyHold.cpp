#include "hardware/HotKeyHold.h"

#include <utility>

#include "hardware/CommandTable.h"

// A command counts as held whatever the press does: a refused one, of a transport that runs already, has a
// release all the same, by which the second tap stops what the first one started. It is held before it is
// pressed, since starting it may run messages: the repeats that come meanwhile are no new press, and a key
// that is let go during a slow start is released in time.

void HotKeyHold::EvHotKey(int32_t hotKey) {
    if (m_held) {
        m_target.SetTimer(kRepeatMs);
        return;
    }
    const int32_t command = m_target.CommandOf(hotKey);
    if (IsRealCommand(command)) {
        m_held = command;
        m_target.SetTimer(kFirstMs);
    }
    m_target.CommandPress(command);
}

void HotKeyHold::EvTimer() {
    if (const auto released = std::exchange(m_held, std::nullopt)) m_target.CommandRelease(*released);
}
