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
    const char* name;    // "%d": the number of the key
    int32_t number = 0;  // of the first
    bool isExtended = true;
};
constexpr KeyRow kKeys[] = {
    {0x03, 0x03, "Break"},
    {0x13, 0x13, "Pause", 0, false},
    {0x21, 0x21, "Page Up"},
    {0x22, 0x22, "Page Down"},
    {0x23, 0x23, "End"},
    {0x24, 0x24, "Home"},
    {0x25, 0x25, "Left"},
    {0x26, 0x26, "Up"},
    {0x27, 0x27, "Right"},
    {0x28, 0x28, "Down"},
    {0x2C, 0x2C, "Print Screen"},
    {0x2D, 0x2D, "Insert"},
    {0x2E, 0x2E, "Delete"},
    {0x5B, 0x5B, "Left Windows"},
    {0x5C, 0x5C, "Right Windows"},
    {0x5D, 0x5D, "Application"},
    {0x5F, 0x5F, "Sleep"},
    {0x60, 0x69, "Num %d", 0, false},
    {0x6F, 0x6F, "Num /"},
    {0x7C, 0x87, "F%d", 13, false},
    {0x90, 0x90, "Num Lock"},
    {0xA6, 0xA6, "Browser Back"},
    {0xA7, 0xA7, "Browser Forward"},
    {0xA8, 0xA8, "Browser Refresh"},
    {0xA9, 0xA9, "Browser Stop"},
    {0xAA, 0xAA, "Browser Search"},
    {0xAB, 0xAB, "Browser Favorites"},
    {0xAC, 0xAC, "Browser Home"},
    {0xAD, 0xAD, "Volume Mute"},
    {0xAE, 0xAE, "Volume Down"},
    {0xAF, 0xAF, "Volume Up"},
    {0xB0, 0xB0, "Next Track"},
    {0xB1, 0xB1, "Previous Track"},
    {0xB2, 0xB2, "Media Stop"},
    {0xB3, 0xB3, "Play/Pause"},
    {0xB4, 0xB4, "Mail"},
    {0xB5, 0xB5, "Media"},
    {0xB6, 0xB7, "Program %d", 1},
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
