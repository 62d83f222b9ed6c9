#include "hardware/KeyText.h"

#include <algorithm>

#include "base/LText.h"

namespace {

constexpr size_t kMostCharacters = 260;

// Virtual-key codes whose key is the extended one of its scan code, or which have no scan code. The names are
// for those that the platform does not name.
struct KeyRow {
    int32_t first;
    int32_t last;
    bool isExtended;
    const char* name;  // "%d": the number of the key within the range
    int32_t number = 0;
};
constexpr KeyRow kKeys[] = {
    {0x03, 0x03, true, "Break"},
    {0x13, 0x13, false, "Pause"},
    {0x21, 0x21, true, "Page Up"},
    {0x22, 0x22, true, "Page Down"},
    {0x23, 0x23, true, "End"},
    {0x24, 0x24, true, "Home"},
    {0x25, 0x25, true, "Left"},
    {0x26, 0x26, true, "Up"},
    {0x27, 0x27, true, "Right"},
    {0x28, 0x28, true, "Down"},
    {0x2C, 0x2C, true, "Print Screen"},
    {0x2D, 0x2D, true, "Insert"},
    {0x2E, 0x2E, true, "Delete"},
    {0x5B, 0x5B, true, "Left Windows"},
    {0x5C, 0x5C, true, "Right Windows"},
    {0x5D, 0x5D, true, "Application"},
    {0x5F, 0x5F, true, "Sleep"},
    {0x60, 0x69, false, "Num %d", 0},
    {0x6F, 0x6F, true, "Num /"},
    {0x7C, 0x87, false, "F%d", 13},
    {0x90, 0x90, true, "Num Lock"},
    {0xA6, 0xA6, true, "Browser Back"},
    {0xA7, 0xA7, true, "Browser Forward"},
    {0xA8, 0xA8, true, "Browser Refresh"},
    {0xA9, 0xA9, true, "Browser Stop"},
    {0xAA, 0xAA, true, "Browser Search"},
    {0xAB, 0xAB, true, "Browser Favorites"},
    {0xAC, 0xAC, true, "Browser Home"},
    {0xAD, 0xAD, true, "Volume Mute"},
    {0xAE, 0xAE, true, "Volume Down"},
    {0xAF, 0xAF, true, "Volume Up"},
    {0xB0, 0xB0, true, "Next Track"},
    {0xB1, 0xB1, true, "Previous Track"},
    {0xB2, 0xB2, true, "Media Stop"},
    {0xB3, 0xB3, true, "Play/Pause"},
    {0xB4, 0xB4, true, "Mail"},
    {0xB5, 0xB5, true, "Media"},
    {0xB6, 0xB7, true, "Program %d", 1},
};

std::string NameOf(int32_t key, KeyNamer platformName) {
    const auto* row =
        std::ranges::find_if(kKeys, [key](const KeyRow& r) { return key >= r.first && key <= r.last; });
    const bool isListed = row != std::end(kKeys);
    std::string name = platformName(key, isListed && row->isExtended);
    if (!name.empty()) return name;
    if (!isListed) return LFormat("Key %d", static_cast<int>(key));
    name = row->name;
    const size_t place = name.find("%d");
    return place == name.npos ? name : name.replace(place, 2, std::to_string(row->number + key - row->first));
}

}  // namespace

std::string KeyText(const HotKey& hotKey, KeyNamer platformName) {
    if (!hotKey.key) return "No key";
    std::string text;
    if (hotKey.modifiers & kModifierCtrl) text += "Ctrl+";
    if (hotKey.modifiers & kModifierAlt) text += "Alt+";
    if (hotKey.modifiers & kModifierShift) text += "Shift+";
    text += NameOf(*hotKey.key, platformName);
    return text.substr(0, kMostCharacters);
}
