#pragma once

#include <vector>

#include "base/LPath.h"
#include "hardware/HotKey.h"

// The list of hot keys in the settings file. Nothing is cached.
// Errors: while the file exists and cannot be read, nothing is changed; see each method.
// Thread: the window thread.
class HotKeyList {
public:
    explicit HotKeyList(const LPath& settingsFile) : m_file(settingsFile) {}

    // All hot keys, each at its number in the list; nothing when the file cannot be read.
    std::optional<std::vector<HotKey>> Read() const;
    // The command of one hot key; 0 when there is none.
    int32_t CommandOf(int32_t index) const;

    // Changes of the list. False when it could not be read or not wholly be written.
    bool Add(const HotKey& hotKey);
    bool Set(int32_t index, const HotKey& hotKey);
    bool Delete(int32_t index);

private:
    bool WriteItem(int32_t index, const HotKey& hotKey);
    bool WriteCount(int32_t count);

    LPath m_file;
};
