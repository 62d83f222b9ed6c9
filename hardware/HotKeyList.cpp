#include "hardware/HotKeyList.h"

#include <algorithm>
#include <string>

#include "base/LFileLock.h"
#include "base/LLeftOver.h"
#include "base/LProfile.h"
#include "base/LText.h"
#include "store/SettingsKeys.h"

// Each change is a series of writes of single keys, in an order by which an end of the program between two of
// them, or a write that is refused and ends the change, leaves a hot key twice, or one behind the end of the
// list, and never loses one. What lies behind the end is overwritten as a whole when a hot key is added
// there.

namespace {

using namespace SettingsKeys;
using Settings::ListItemKey;

struct ItemKey {
    const char* prefix;
    const char* suffix;
};

constexpr ItemKey kKey = {kKeyPrefix, ""};
constexpr ItemKey kModifiers = {kKeyPrefix, kKeyModSuffix};
constexpr ItemKey kCommand = {kKeyCommandPrefix, ""};

constexpr int32_t kAllModifiers = kModifierAlt | kModifierCtrl | kModifierShift;

// How long the window may wait for another session's change.
constexpr uint32_t kTurnWaitMs = 300;

// The number under a key of an item; nothing when the key is missing or empty.
std::optional<int32_t> Number(const LProfileSection& section, int32_t index, const ItemKey& key) {
    const std::string text = section.Read(ListItemKey(key.prefix, index, key.suffix), {});
    if (text.empty()) return std::nullopt;
    return LParseInt(text);
}

// A scanner that opens the file between two writes lets go of it at once; one refusal is none.
template <class Change>
bool InTwoTries(Change change) {
    bool isDone = false;
    for (int tries = 0; tries < 2 && !isDone; ++tries) isDone = change();
    return isDone;
}

bool Drop(const LPath& file, int32_t index, const ItemKey& key) {
    return InTwoTries(
        [&] { return Settings::DeleteListItem(file, kKeysSection, key.prefix, index, key.suffix); });
}

}  // namespace

std::optional<std::vector<HotKey>> HotKeyList::Read() const {
    return Read(kReadWaitMs);
}

std::optional<std::vector<HotKey>> HotKeyList::Read(uint32_t waitMs) const {
    const LProfileSection section(m_file, kKeysSection, waitMs);
    if (section.Result() == LReadResult::Unreadable) return std::nullopt;
    const int32_t count = LParseInt(section.Read(kKeyCount.key, {}));
    std::vector<HotKey> list;
    size_t used = 0;  // up to the last item that has any of its keys
    for (int32_t i = 0; i < count && list.size() < used + Settings::kLargestGap; ++i) {
        const std::optional<int32_t> key = Number(section, i, kKey),
                                     modifiers = Number(section, i, kModifiers),
                                     command = Number(section, i, kCommand);
        list.push_back({key, modifiers.value_or(0) & kAllModifiers, command.value_or(0)});
        if (key || modifiers || command) used = list.size();
    }
    // The count is not trusted.
    if (static_cast<int32_t>(list.size()) < count) list.resize(used);
    return list;
}

int32_t HotKeyList::CommandOf(int32_t index) const {
    return Settings::ReadInt(m_file, kKeysSection, ListItemKey(kKeyCommandPrefix, index), 0);
}

int32_t HotKeyList::CommandOf(int32_t index, const HotKey& registered) const {
    const auto list = Read(0);
    if (!list) return registered.command;
    const auto hasKey = [&](const HotKey& hotKey) { return hotKey.HasKeyOf(registered); };
    const auto place = static_cast<size_t>(index);
    if (place < list->size() && hasKey((*list)[place])) return (*list)[place].command;
    const auto found = std::ranges::find_if(*list, hasKey);
    return found != list->end() ? found->command : 0;
}

bool HotKeyList::WriteItem(int32_t index, const HotKey& hotKey) {
    const auto write = [&](const ItemKey& key, int32_t number) {
        return InTwoTries([&] {
            return LProfile::Write(m_file, kKeysSection, ListItemKey(key.prefix, index, key.suffix),
                                   std::to_string(number));
        });
    };
    const bool isKeyWritten = hotKey.key ? write(kKey, *hotKey.key) && write(kModifiers, hotKey.modifiers)
                                         : Drop(m_file, index, kKey) && Drop(m_file, index, kModifiers);
    return isKeyWritten && write(kCommand, hotKey.command);
}

bool HotKeyList::WriteCount(int32_t count) {
    return InTwoTries(
        [&] { return LProfile::Write(m_file, kKeysSection, kKeyCount.key, std::to_string(count)); });
}

// Those behind move up as they were read: what a held file answers in between is not believed. Ends at the
// first write that fails.
bool HotKeyList::DeleteItem(const std::vector<HotKey>& list, int32_t index) {
    const auto last = static_cast<int32_t>(list.size()) - 1;
    for (int32_t i = index; i < last; ++i)
        if (!WriteItem(i, list[static_cast<size_t>(i) + 1])) return false;
    return Drop(m_file, last, kKey) && Drop(m_file, last, kModifiers) && Drop(m_file, last, kCommand) &&
           WriteCount(last);
}

std::optional<int32_t> HotKeyList::Find(const std::vector<HotKey>& list, int32_t index,
                                        const HotKey& hotKey) {
    const auto count = static_cast<int32_t>(list.size());
    if (index >= 0 && index < count && list[static_cast<size_t>(index)] == hotKey) return index;
    const auto found = static_cast<int32_t>(std::ranges::find(list, hotKey) - list.begin());
    return found < count ? std::optional(found) : std::nullopt;
}

// In a folder in which no lock can be made the writes will fail.
HotKeyList::Change HotKeyList::ChangeList(const std::function<Change(const std::vector<HotKey>&)>& change) {
    LFileLock turn;
    const LPath lock = LPath::Join(LFolderOf(m_file.View()), LLeftOver::kKeysLock);
    if (turn.Take(lock, kTurnWaitMs) == LFileLock::Result::Held) return Change::Busy;
    const auto list = Read();
    return list ? change(*list) : Change::Busy;
}

HotKeyList::Change HotKeyList::Add(const HotKey& hotKey) {
    return ChangeList([&](const std::vector<HotKey>& list) {
        const auto index = static_cast<int32_t>(list.size());
        return WriteItem(index, hotKey) && WriteCount(index + 1) ? Change::Done : Change::NotStored;
    });
}

HotKeyList::Change HotKeyList::Set(int32_t index, const HotKey& shown, const HotKey& hotKey) {
    return ChangeList([&](const std::vector<HotKey>& list) {
        const auto found = Find(list, index, shown);
        if (!found) return Change::Gone;
        return WriteItem(*found, hotKey) ? Change::Done : Change::NotStored;
    });
}

HotKeyList::Change HotKeyList::Delete(int32_t index, const HotKey& shown) {
    return ChangeList([&](const std::vector<HotKey>& list) {
        const auto found = Find(list, index, shown);
        if (!found) return Change::Gone;
        return DeleteItem(list, *found) ? Change::Done : Change::NotStored;
    });
}
