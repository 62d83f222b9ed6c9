#include "store/CurrentUser.h"

#include <algorithm>

#include "base/LFile.h"
#include "base/LProfile.h"
#include "base/LText.h"
#include "store/RegistryUser.h"
#include "store/SettingsKeys.h"

// The list of users is a numbered list of settings (Settings::ListItemKey), changed one key at a time. Each
// order of writes is chosen so that an end of the program between two of them leaves a user twice, which
// reading corrects, and never loses one.

static std::string ReadDetail(const LProfileSection& section, const Settings::TextKey& key) {
    return section.Read(key.key, key.defaultValue);
}

UserDetails UserDetails::Read(const LPath& userFile) {
    const LProfileSection section(userFile, UserKeys::kUserSection, kReadWaitMs);
    UserDetails details;
    details.result = section.Result();
    details.name = ReadDetail(section, UserKeys::kName);
    details.email = ReadDetail(section, UserKeys::kEmail);
    details.company = ReadDetail(section, UserKeys::kCompany);
    details.phone = ReadDetail(section, UserKeys::kPhone);
    details.cell = ReadDetail(section, UserKeys::kCell);
    details.fax = ReadDetail(section, UserKeys::kFax);
    for (size_t i = 0; i < details.address.size(); ++i) {
        details.address[i] = ReadDetail(section, UserKeys::kAddress[i]);
    }
    return details;
}

DataFolder DataFolder::FromText(std::string_view folder) {
    DataFolder data;
    data.folder.Set(folder);
    const std::string_view text = data.folder.View();
    if (!text.empty() && text.size() < kPathSize - 1 && !LEndsInSeparator(text)) data.folder.Append("\\");
    data.settingsFile = data.folder;
    data.settingsFile.Append("settings.ini");
    return data;
}

bool DataFolder::HasRoom() const {
    // The longest file: the one that the send thread makes in the Sent folder of the user with the largest
    // number.
    constexpr std::string_view kLongestName = "4294967295\\Sent\\dct-2147483648-99999999.dct";
    return !folder.Empty() && folder.View().size() + kLongestName.size() < kPathSize;
}

LPath UserFolderPath(const LPath& dataFolder, uint32_t user) {
    return LPath::Format("%s%.8lu\\", dataFolder.c_str(), static_cast<unsigned long>(user));
}

LPath UserFilePath(const LPath& dataFolder, uint32_t user) {
    return LPath::Format("%s%.8lu\\user.dat", dataFolder.c_str(), static_cast<unsigned long>(user));
}

uint32_t GetCurrentUser(const LPath& settingsFile) {
    uint32_t user = static_cast<uint32_t>(Settings::Read(settingsFile, SettingsKeys::kCurrentUser));
    ReadRegistryUser(user);
    return user;
}

void SetCurrentUser(const LPath& settingsFile, uint32_t user) {
    Settings::Write(settingsFile, SettingsKeys::kCurrentUser, static_cast<int32_t>(user));
    WriteRegistryUser(user);
}

CurrentUser SelectUser(const DataFolder& data, uint32_t user) {
    const unsigned long number = user;
    CurrentUser selected;
    selected.userFile = UserFilePath(data.folder, user);
    selected.currentFolder = LPath::Format("%s%.8lu\\Current\\", data.folder.c_str(), number);
    selected.sentFolder = LPath::Format("%s%.8lu\\Sent\\", data.folder.c_str(), number);
    selected.number = user;
    LFile::MakeFolder(UserFolderPath(data.folder, user));
    LFile::MakeFolder(selected.currentFolder);
    LFile::MakeFolder(selected.sentFolder);
    selected.details = UserDetails::Read(selected.userFile);
    return selected;
}

CurrentUser AddUser(const DataFolder& data, uint32_t user, std::string_view name, std::string_view email) {
    CurrentUser added = SelectUser(data, user);
    Settings::Write(added.userFile, UserKeys::kName, name);
    Settings::Write(added.userFile, UserKeys::kEmail, email);
    SetCurrentUser(data.settingsFile, user);
    added.details = UserDetails::Read(added.userFile);
    return added;
}

// Reads the list, each user once. A change that was cut off by the end of the program can leave an item
// missing or an item twice, so both are tolerated; item 0 has a default. False when the file cannot be read:
// the list must then not be written back.
static bool ReadUserItems(const LPath& settingsFile, std::vector<uint32_t>& users) {
    const LProfileSection section(settingsFile, SettingsKeys::kUsersSection, kReadWaitMs);
    const std::string countText = section.Read(SettingsKeys::kUserCount.key, {});
    const int32_t count = countText.empty() ? SettingsKeys::kUserCount.defaultValue : LParseInt(countText);
    for (int32_t i = 0, missing = 0; i < count && missing < Settings::kLargestGap; ++i) {
        const std::string text = section.Read(Settings::ListItemKey(SettingsKeys::kUserPrefix, i), {});
        const uint32_t user = static_cast<uint32_t>(LParseInt64(text));
        missing = text.empty() ? missing + 1 : 0;
        if (text.empty() && i > 0) continue;
        if (std::find(users.begin(), users.end(), user) == users.end()) users.push_back(user);
    }
    return section.Result() != LReadResult::Unreadable;
}

// Writes the items from index 0 without gaps. Reading has only removed gaps, so an item moves at most
// downwards, onto a place whose item was read already: a write that is cut off loses no user.
static void WriteUserItems(const LPath& settingsFile, const std::vector<uint32_t>& users) {
    const int32_t count = static_cast<int32_t>(users.size());
    for (int32_t i = 0; i < count; ++i) {
        Settings::WriteNumber(settingsFile, SettingsKeys::kUsersSection,
                              Settings::ListItemKey(SettingsKeys::kUserPrefix, i),
                              users[static_cast<size_t>(i)]);
    }
    Settings::Write(settingsFile, SettingsKeys::kUserCount, count);
}

std::vector<uint32_t> ReadUserList(const LPath& settingsFile) {
    std::vector<uint32_t> users;
    ReadUserItems(settingsFile, users);
    if (users.empty()) users.push_back(0);
    return users;
}

void AddUserToList(const LPath& settingsFile, uint32_t user) {
    std::vector<uint32_t> users;
    if (!ReadUserItems(settingsFile, users)) return;
    if (std::find(users.begin(), users.end(), user) != users.end()) return;
    // Without a list in the file, user 0 is implied; it is written as well, since the new count would hide
    // it.
    users.push_back(user);
    WriteUserItems(settingsFile, users);
}

void RemoveUserFromList(const LPath& settingsFile, uint32_t user) {
    std::vector<uint32_t> users;
    if (!ReadUserItems(settingsFile, users)) return;
    const auto found = std::find(users.begin(), users.end(), user);
    if (found == users.end()) return;
    WriteUserItems(settingsFile, users);
    const int32_t last = static_cast<int32_t>(users.size()) - 1;
    for (int32_t i = static_cast<int32_t>(found - users.begin()); i < last; ++i) {
        Settings::MoveListItem(settingsFile, SettingsKeys::kUsersSection, SettingsKeys::kUserPrefix, i,
                               i + 1);
    }
    Settings::DeleteListItem(settingsFile, SettingsKeys::kUsersSection, SettingsKeys::kUserPrefix, last);
    Settings::Write(settingsFile, SettingsKeys::kUserCount, last);
}

std::string UserName(const LPath& dataFolder, uint32_t user) {
    return ShownUserName(UserDetails::Read(UserFilePath(dataFolder, user)), user);
}

std::string ShownUserName(const UserDetails& details, uint32_t user) {
    return details.name.empty() ? "User " + std::to_string(user) : details.name;
}
