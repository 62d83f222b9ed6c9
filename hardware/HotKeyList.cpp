#include "hardware/HotKeyList.h"

#include <string>

#include "base/LProfile.h"
#include "base/LText.h"
#include "store/SettingsKeys.h"

// Each change is a series of writes of single keys, in an order by which an end of the program between two of
// them leaves a hot key twice, or one behind the end of the list, and never loses one. What lies behind the
// end is overwritten as a whole when a hot key is added there.

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
constexpr ItemKey kItemKeys[] = {kKey, kModifiers, kCommand};

constexpr int32_t kAllModifiers = kModifierAlt | kModifierCtrl | kModifierShift;

// The number under a key of an item; nothing when the key is missing or empty.
std::optional<int32_t> Number(const LProfileSection& section, int32_t index, const ItemKey& key) {
    const std::string text = section.Read(ListItemKey(key.prefix, index, key.suffix), {});
    if (text.empty()) return std::nullopt;
    return LParseInt(text);
}

}  // namespace

std::optional<std::vector<HotKey>> HotKeyList::Read() const {
    const LProfileSection section(m_file, kKeysSection, kReadWaitMs);
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

bool HotKeyList::WriteItem(int32_t index, const HotKey& hotKey) {
    const auto write = [&](const ItemKey& key, int32_t number) {
        return LProfile::Write(m_file, kKeysSection, ListItemKey(key.prefix, index, key.suffix),
                               std::to_string(number));
    };
    if (!hotKey.key)
        for (const ItemKey& key : {kKey, kModifiers})
            Settings::DeleteListItem(m_file, kKeysSection, key.prefix, index, key.suffix);
    else if (!write(kKey, *hotKey.key) || !write(kModifiers, hotKey.modifiers))
        return false;
    return write(kCommand, hotKey.command);
}

bool HotKeyList::WriteCount(int32_t count) {
    return LProfile::Write(m_file, kKeysSection, kKeyCount.key, std::to_string(count));
}

bool HotKeyList::Add(const HotKey& hotKey) {
    const auto list = Read();
    if (!list) return false;
    const auto index = static_cast<int32_t>(list->size());
    return WriteItem(index, hotKey) && WriteCount(index + 1);
}

bool HotKeyList::Set(int32_t index, const HotKey& hotKey) {
    return Read() && WriteItem(index, hotKey);
}

bool HotKeyList::Delete(int32_t index) {
    const auto list = Read();
    if (!list) return false;
    const auto last = static_cast<int32_t>(list->size()) - 1;
    if (index < 0 || index > last) return false;
    for (int32_t i = index; i < last; ++i)
        for (const ItemKey& key : kItemKeys)
            Settings::MoveListItem(m_file, kKeysSection, key.prefix, i, i + 1, key.suffix);
    for (const ItemKey& key : kItemKeys)
        Settings::DeleteListItem(m_file, kKeysSection, key.prefix, last, key.suffix);
    return WriteCount(last);
}
