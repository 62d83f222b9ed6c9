#include "hardware/HotKeyFault.h"

#include <algorithm>

#include "hardware/CommandTable.h"

HotKeyFault FaultOf(const HotKey& hotKey, std::span<const HotKey> others,
                    const std::function<bool(const HotKey&)>& isFree) {
    if (!hotKey.key) return HotKeyFault::NoKey;
    const auto takesIt = [&](const HotKey& other) {
        return other.HasKeyOf(hotKey) && IsRealCommand(other.command);
    };
    if (std::ranges::any_of(others, takesIt)) return HotKeyFault::Repeated;
    if (!isFree(hotKey)) return HotKeyFault::Used;
    return IsRealCommand(hotKey.command) ? HotKeyFault::None : HotKeyFault::NoCommand;
}

const char* RemarkOn(HotKeyFault fault) {
    switch (fault) {
        case HotKeyFault::NoKey:
        case HotKeyFault::NoCommand:
            return "Does nothing";
        case HotKeyFault::Repeated:
            return "Same key as above";
        case HotKeyFault::Used:
            return "Used by another program";
        default:
            return "";
    }
}
