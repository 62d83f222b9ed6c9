#include "base/LFileLock.h"
#include "base/LLeftOver.h"
#include "base/LProfile.h"
#include "hardware/HotKeyFault.h"
#include "hardware/HotKeyList.h"
#include "hardware/KeyText.h"
#include "tests/unit/TestKit.h"

// The items of the list as the file holds them: count: key/modifiers/command for each of the first three.
static std::string Stored(const LPath& file) {
    const auto read = [&](const std::string& key) { return LProfile::Read(file, "keys", key, "-"); };
    std::string text = read("keycount") + ":";
    for (const std::string i : {"0", "1", "2"})
        text += " " + read("key" + i) + "/" + read("key" + i + "mod") + "/" + read("command" + i);
    return text;
}

TEST(HotKeyList, KeepsItsItemsTogetherAndLeavesNothingBehindItsEnd) {
    // A change: "+" a hot key, "-" the number and what it stands for, "=" both and the new one; -1: no key.
    static const char* const kCases[][4] = {
        {"first of two", "keycount=2\nkey0=65\nkey0mod=1\ncommand0=3\nkey1=66\nkey1mod=2\ncommand1=4",
         "-0 65/1/3", "1: 66/2/4 -/-/- -/-/-"},
        {"before one without a key", "keycount=2\nkey0=65\nkey0mod=1\ncommand0=3\ncommand1=4", "-0 65/1/3",
         "1: -/-/4 -/-/- -/-/-"},
        {"the last", "keycount=2\ncommand0=3\nkey1=66\nkey1mod=2\ncommand1=4", "-1 66/2/4",
         "1: -/-/3 -/-/- -/-/-"},
        {"an added one", "", "+0 116/6/12", "1: 116/6/12 -/-/- -/-/-"},
        {"added without a key, over a leftover", "keycount=1\ncommand0=3\nkey1=66\nkey1mod=2", "+0 -1/0/4",
         "2: -/-/3 -/-/4 -/-/-"},
        {"added behind a count that is not true", "keycount=2147483647\ncommand0=3", "+0 65/1/4",
         "2: -/-/3 65/1/4 -/-/-"},
        {"an edited one", "keycount=1\nkey0=65\nkey0mod=1\ncommand0=3", "=0 65/1/3 112/0/14",
         "1: 112/0/14 -/-/- -/-/-"},
        {"one that another session's deletion has moved", "keycount=1\nkey0=66\nkey0mod=2\ncommand0=4",
         "=1 66/2/4 112/0/14", "1: 112/0/14 -/-/- -/-/-"},
        {"of two equal ones that which was meant",
         "keycount=2\nkey0=65\nkey0mod=1\ncommand0=3\nkey1=65\nkey1mod=1\ncommand1=3", "=1 65/1/3 112/0/14",
         "2: 65/1/3 112/0/14 -/-/-"},
    };
    const TempFolder folder;
    for (const auto& [what, before, change, after] : kCases) {
        const LPath file = folder.File(what);
        WriteFileText(file, std::string("[keys]\n") + before + "\n");
        HotKeyList list(file);
        int n[7] = {};
        std::sscanf(change + 1, "%d %d/%d/%d %d/%d/%d", &n[0], &n[1], &n[2], &n[3], &n[4], &n[5], &n[6]);
        const auto hotKey = [&n](int at) {
            return HotKey{n[at] < 0 ? std::nullopt : std::optional(n[at]), n[at + 1], n[at + 2]};
        };
        const HotKeyList::Change result = *change == '+'   ? list.Add(hotKey(1))
                                          : *change == '-' ? list.Delete(n[0], hotKey(1))
                                                           : list.Set(n[0], hotKey(1), hotKey(4));
        EXPECT_EQ(result, HotKeyList::Change::Done) << what;
        EXPECT_EQ(Stored(file), after) << what;
    }
    EXPECT_EQ(HotKeyList(folder.File("an edited one")).Read(), (std::vector<HotKey>{{112, 0, 14}}));
    LFile::MakeFolder(folder.File("folder"));
    EXPECT_EQ(HotKeyList(folder.File("folder")).Add({65, 1, 4}), HotKeyList::Change::Busy)
        << "cannot be read";
}

TEST(HotKeyList, ChangesNothingThatItDoesNotStandForAnyMore) {
    using enum HotKeyList::Change;
    const TempFolder folder;
    const LPath file = folder.File("settings.ini");
    WriteFileText(file, "[keys]\nkeycount=2\nkey0=65\nkey0mod=1\ncommand0=3\nkey1=66\ncommand1=4\n");
    const std::string before = Stored(file);
    HotKeyList list(file);
    EXPECT_EQ(list.Set(0, {65, 1, 12}, {112, 0, 14}), Gone) << "its command has changed";
    EXPECT_EQ(list.Delete(2, {67, 0, 4}), Gone) << "deleted";
    LFileLock other;  // another session changes the list
    ASSERT_EQ(other.TryTake(folder.File(LLeftOver::kKeysLock)), LFileLock::Result::Taken);
    EXPECT_EQ(list.Add({112, 0, 14}), Busy);
    EXPECT_EQ(list.Delete(0, {65, 1, 3}), Busy);
    EXPECT_EQ(Stored(file), before);

    EXPECT_EQ(list.CommandOf(0, {66, 0, 12}), 4) << "its key has another number now";
    EXPECT_EQ(list.CommandOf(0, {67, 0, 12}), 0) << "its key is in the list no more";
    EXPECT_EQ(list.CommandOf(1, {66, 0, 12}), 4);
}

TEST(HotKeyFault, IsToldOfWhatDoesNothing) {
    using enum HotKeyFault;
    static const std::tuple<const char*, HotKey, HotKeyFault> kCases[] = {
        {"works", {65, 2, 3}, None},
        {"no key", {std::nullopt, 0, 3}, NoKey},
        {"neither", {std::nullopt, 0, 0}, NoKey},
        {"no command", {65, 2, 0}, NoCommand},
        {"a number that is no command", {65, 2, 15}, NoCommand},
        {"the key of another", {66, 0, 3}, Repeated},
        {"the key of another, with Ctrl", {66, 2, 3}, None},
        {"the key of one that does nothing", {67, 0, 3}, None},
        {"another program's", {90, 0, 3}, Used},
    };
    const HotKey others[] = {{66, 0, 4}, {67, 0, 0}};
    const auto isFree = [](const HotKey& hotKey) { return hotKey.key != 90; };
    for (const auto& [what, hotKey, fault] : kCases)
        EXPECT_EQ(FaultOf(hotKey, others, isFree), fault) << what;
}

TEST(KeyText, NamesEveryKey) {
    const auto platform = [](int32_t key, bool isExtended) -> std::string {
        if (key == 0x24) return isExtended ? "Home" : "Num 7";
        return key == 0x74 ? "F5" : key == 0xDE ? std::string(300, 'x') : "";
    };
    static const std::pair<HotKey, const char*> kCases[] = {
        {{0x74, 7}, "Ctrl+Alt+Shift+F5"},
        {{0x74, 6}, "Ctrl+Shift+F5"},
        {{0x24, 1}, "Alt+Home"},
        {{0x63, 0}, "Num 3"},
        {{0x87, 0}, "F24"},
        {{0xB3, 0}, "Play/Pause"},
        {{0xFF, 2}, "Ctrl+Key 255"},
        {{std::nullopt, 2}, "No key"},
    };
    for (const auto& [hotKey, text] : kCases) EXPECT_EQ(KeyText(hotKey, platform), text);
    EXPECT_EQ(KeyText({0xDE, 7}, platform).size(), 260u);
}
