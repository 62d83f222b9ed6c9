#include "store/UserList.h"

#include <algorithm>

#include "base/LFile.h"
#include "base/LFileLock.h"
#include "base/LLeftOver.h"
#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "store/SettingsKeys.h"

// The list is a numbered list of settings (Settings::ListItemKey), changed one key at a time. Each order of
// writes is chosen so that an end of the program between two of them, or a write that is refused and ends the
// change, leaves a user twice, which reading corrects, and never loses one. One session at a time changes it
// (users.lck): two that write their own positions would drop each other's users.
// A number belongs to whoever creates its folder, which succeeds for one session only.

// How long the window may wait for another session's change.
static constexpr uint32_t kTurnWaitMs = 300;

static bool Contains(const std::vector<uint32_t>& users, uint32_t user) {
    return std::find(users.begin(), users.end(), user) != users.end();
}

// A change that was cut off by the end of the program can leave an item missing or an item twice, so both are
// tolerated; item 0 has a default. False when the file cannot be read.
static bool ReadUserItems(const LPath& settingsFile, uint32_t current, std::vector<uint32_t>& users) {
    const LProfileSection section(settingsFile, SettingsKeys::kUsersSection, kReadWaitMs);
    const std::string countText = section.Read(SettingsKeys::kUserCount.key, {});
    const int32_t count = countText.empty() ? SettingsKeys::kUserCount.defaultValue : LParseInt(countText);
    for (int32_t i = 0, missing = 0; i < count && missing < Settings::kLargestGap; ++i) {
        const std::string text = section.Read(Settings::ListItemKey(SettingsKeys::kUserPrefix, i), {});
        const uint32_t user = static_cast<uint32_t>(LParseInt64(text));
        missing = text.empty() ? missing + 1 : 0;
        if (text.empty() && (i > 0 || countText.empty())) continue;
        if (!Contains(users, user)) users.push_back(user);
    }
    if (users.empty()) users.push_back(current);
    return section.Result() != LReadResult::Unreadable;
}

static bool WriteUserCount(const LPath& settingsFile, int32_t count) {
    return Settings::WriteText(settingsFile, SettingsKeys::kUsersSection, SettingsKeys::kUserCount.key,
                               std::to_string(count));
}

// Writes the items from index 0 without gaps. Reading has only removed gaps, so an item moves at most
// downwards, onto a place whose item was read already: a write that is cut off loses no user.
// False at the first write that fails.
static bool WriteUserItems(const LPath& settingsFile, const std::vector<uint32_t>& users) {
    const int32_t count = static_cast<int32_t>(users.size());
    for (int32_t i = 0; i < count; ++i) {
        const std::string key = Settings::ListItemKey(SettingsKeys::kUserPrefix, i);
        const std::string number = std::to_string(users[static_cast<size_t>(i)]);
        if (!Settings::WriteText(settingsFile, SettingsKeys::kUsersSection, key, number)) return false;
    }
    return WriteUserCount(settingsFile, count);
}

std::vector<uint32_t> ReadUserList(const LPath& settingsFile, uint32_t current) {
    std::vector<uint32_t> users;
    ReadUserItems(settingsFile, current, users);
    return users;
}

static bool AppendToList(const LPath& settingsFile, uint32_t user, uint32_t current) {
    std::vector<uint32_t> users;
    if (!ReadUserItems(settingsFile, current, users)) return false;
    // Without a list in the file the current user is implied; he is written too, since the new count would
    // hide him.
    users.push_back(user);
    WriteUserItems(settingsFile, users);
    return ReadUserItems(settingsFile, current, users) && Contains(users, user);
}

// Ends at the first write that fails.
static void RemoveFromList(const LPath& settingsFile, const std::vector<uint32_t>& users, size_t position) {
    if (!WriteUserItems(settingsFile, users)) return;
    const char* const section = SettingsKeys::kUsersSection;
    const int32_t last = static_cast<int32_t>(users.size()) - 1;
    for (int32_t i = static_cast<int32_t>(position); i < last; ++i)
        if (!Settings::MoveListItem(settingsFile, section, SettingsKeys::kUserPrefix, i, i + 1)) return;
    if (Settings::DeleteListItem(settingsFile, section, SettingsKeys::kUserPrefix, last))
        WriteUserCount(settingsFile, last);
}

// False while another session changes the list. A folder in which no lock can be made is left to the writes,
// which will fail.
static bool TakeTurn(const DataFolder& data, LFileLock& turn) {
    return turn.Take(LPath::Join(data.folder.View(), LLeftOver::kUsersLock), kTurnWaitMs) !=
           LFileLock::Result::Held;
}

std::vector<OfferedUser> OfferedUsers(const DataFolder& data, uint32_t current) {
    std::vector<uint32_t> numbers = ReadUserList(data.settingsFile, current);
    if (!Contains(numbers, current)) numbers.push_back(current);
    std::vector<OfferedUser> users;
    for (const uint32_t number : numbers) {
        const LProfileSection section(UserFilePath(data.folder, number), UserKeys::kUserSection);
        UserDetails details;
        details.name = section.Read(UserKeys::kName.key, {});
        users.push_back({number, ShownUserName(details, number)});
    }
    std::vector<OfferedUser> shown = users;
    for (OfferedUser& user : shown)
        if (std::ranges::count(users, user.name, &OfferedUser::name) > 1)
            user.name += " (" + std::to_string(user.number) + ")";
    return shown;
}

// Creates the folder of the lowest free number; nothing when no folder can be created.
static std::optional<uint32_t> ClaimNumber(const DataFolder& data, uint32_t current) {
    const std::vector<uint32_t> users = ReadUserList(data.settingsFile, current);
    for (uint32_t number = 0; number < UINT32_MAX; ++number) {
        if (number == current || Contains(users, number)) continue;
        const LPath folder = UserFolderPath(data.folder, number);
        if (!LFile::IsAbsent(folder.WithoutSeparator())) continue;
        if (LFile::MakeFolder(folder)) return number;
        if (LFile::IsAbsent(folder.WithoutSeparator())) break;
    }
    LTrace("MakeUser unable to create a user folder");
    return std::nullopt;
}

std::optional<uint32_t> MakeUser(const DataFolder& data, std::string_view name, std::string_view email,
                                 uint32_t current) {
    LFileLock turn;
    if (!TakeTurn(data, turn)) return std::nullopt;
    const std::optional<uint32_t> number = ClaimNumber(data, current);
    if (!number) return std::nullopt;
    const CurrentUser added = AddUser(data, *number, name, email);
    if (!added.details.name.empty() && AppendToList(data.settingsFile, *number, current)) return number;
    LTrace("MakeUser unable to store the user");
    SetCurrentUser(data.settingsFile, current);
    LFile::Delete(added.userFile);
    // None of them is deleted unless it is empty.
    for (const LPath& folder : {added.currentFolder, added.sentFolder, UserFolderPath(data.folder, *number)})
        LFile::DeleteFolder(folder);
    return std::nullopt;
}

UserRemoval RemoveUser(const DataFolder& data, uint32_t user, uint32_t current, uint32_t& next) {
    next = current;
    LFileLock turn;
    std::vector<uint32_t> users;
    if (!TakeTurn(data, turn) || !ReadUserItems(data.settingsFile, current, users))
        return UserRemoval::NotStored;
    const auto found = std::find(users.begin(), users.end(), user);
    if (found != users.end() && users.size() == 1) return UserRemoval::IsLast;
    if (found != users.end())
        RemoveFromList(data.settingsFile, users, static_cast<size_t>(found - users.begin()));
    // The list decides what was stored: in a change that was cut off, the user may be out of it already.
    std::vector<uint32_t> left;
    if (!ReadUserItems(data.settingsFile, current, left) || Contains(left, user))
        return UserRemoval::NotStored;
    if (user == current) next = left.front();
    return UserRemoval::Removed;
}
