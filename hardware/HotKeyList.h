#pragma once

#include <functional>
#include <vector>

#include "base/LPath.h"
#include "hardware/HotKey.h"

// The list of hot keys in the settings file, which all sessions of a data folder share. Nothing is cached.
// One session at a time changes it: it holds a lock file beside the settings from reading to writing. Others
// may have changed it since it was read, so who changes a hot key says what he takes it for.
// Errors: while the file exists and cannot be read, nothing is changed; see each method.
// Thread: the window thread.
class HotKeyList {
public:
    explicit HotKeyList(const LPath& settingsFile) : m_file(settingsFile) {}

    // All hot keys, each at its number in the list; nothing when the file cannot be read.
    std::optional<std::vector<HotKey>> Read() const;
    // The command of one hot key; 0 when there is none. Does not wait for a held file. registered: what its
    // number stood for when the platform was given it; its key decides when the list has changed since.
    int32_t CommandOf(int32_t index) const;
    int32_t CommandOf(int32_t index, const HotKey& registered) const;

    // Gone: no hot key of the list is the one that was to be changed. Busy: another session changes the list,
    // or the file cannot be read. NotStored: it could not wholly be written.
    enum class Change { Done, Gone, Busy, NotStored };
    Change Add(const HotKey& hotKey);
    // Changes of the hot key "shown", which had this number.
    Change Set(int32_t index, const HotKey& shown, const HotKey& hotKey);
    Change Delete(int32_t index, const HotKey& shown);

    // The number of a hot key in a list: the one it had, or the first that has an equal one.
    static std::optional<int32_t> Find(const std::vector<HotKey>& list, int32_t index, const HotKey& hotKey);

private:
    std::optional<std::vector<HotKey>> Read(uint32_t waitMs) const;
    Change ChangeList(const std::function<Change(const std::vector<HotKey>& list)>& change);
    bool DeleteItem(const std::vector<HotKey>& list, int32_t index);
    bool WriteItem(int32_t index, const HotKey& hotKey);
    bool WriteCount(int32_t count);

    LPath m_file;
};
