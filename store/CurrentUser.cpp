#include "store/CurrentUser.h"

#include "base/LFile.h"
#include "base/LProfile.h"
#include "store/RegistryUser.h"
#include "store/SettingsKeys.h"

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

CurrentUser UserPaths(const DataFolder& data, uint32_t user) {
    const unsigned long number = user;
    CurrentUser paths;
    paths.userFile = UserFilePath(data.folder, user);
    paths.currentFolder = LPath::Format("%s%.8lu\\Current\\", data.folder.c_str(), number);
    paths.sentFolder = LPath::Format("%s%.8lu\\Sent\\", data.folder.c_str(), number);
    paths.number = user;
    return paths;
}

CurrentUser SelectUser(const DataFolder& data, uint32_t user) {
    CurrentUser selected = UserPaths(data, user);
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

std::string UserName(const LPath& dataFolder, uint32_t user) {
    return ShownUserName(UserDetails::Read(UserFilePath(dataFolder, user)), user);
}

std::string ShownUserName(const UserDetails& details, uint32_t user) {
    return details.name.empty() ? "User " + std::to_string(user) : details.name;
}
