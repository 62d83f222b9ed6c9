#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "hardware/HotKey.h"

// Why a hot key does nothing.
enum class HotKeyFault { None, NoKey, Repeated, Used, NoCommand };

// The first that is found, in this order. others: further hot keys of the list; Repeated means that one of
// them has the same key, and a command. isFree: whether the platform would register a key now.
HotKeyFault FaultOf(const HotKey& hotKey, std::span<const HotKey> others,
                    const std::function<bool(const HotKey&)>& isFree);

// What a list says of it; empty for None.
const char* RemarkOn(HotKeyFault fault);
