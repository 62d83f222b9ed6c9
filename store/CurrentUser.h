#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/LFile.h"
#include "base/LPath.h"

// Name and addresses of a user, as entered in his settings; they travel with every dictation that is sent.
struct UserDetails {
    std::string name;
    std::string email;
    std::string company;
    std::string phone;
    std::string cell;
    std::string fax;
    std::array<std::string, 4> address;

    // Unreadable: the file could not be read for a second. The texts are then empty and must not be sent.
    LReadResult result = LReadResult::Absent;

    // Reads the section "user" of a user file, opening it once. Missing keys give empty texts.
    static UserDetails Read(const LPath& userFile);
};

// The dictating user with his paths, rebuilt whenever the user changes.
struct CurrentUser {
    LPath userFile;       // "<data folder>00000007\user.dat"
    LPath currentFolder;  // "<data folder>00000007\Current\"
    LPath sentFolder;     // "<data folder>00000007\Sent\"
    uint32_t number = 0;
    UserDetails details;
};

// The registry key with the folders of an installation, in the values "DataFiles" and "ProgramFiles": in the
// machine's part, or in the user's.
inline constexpr char kFoldersKey[] = "Software\\Mervald\\Corvane\\CurrentVersion\\Folders";

// The folder in which the program keeps its state, found once at start-up.
struct DataFolder {
    LPath folder;        // ends in a separator unless it is 259 characters long, which leaves no room for one
    LPath settingsFile;  // "<data folder>settings.ini"

    // Forms both paths from the text of a registry value.
    static DataFolder FromText(std::string_view folder);

    // Whether the paths of all files in it fit into 259 characters. One that does not fit becomes empty, and
    // a file name joined to it would lie in whichever folder is current.
    bool HasRoom() const;
};

// "<data folder>00000007\" and "<data folder>00000007\user.dat" of any user.
LPath UserFolderPath(const LPath& dataFolder, uint32_t user);
LPath UserFilePath(const LPath& dataFolder, uint32_t user);

// The number of the last dictating user: from the registry of the Windows user, else from the settings file,
// else 0.
uint32_t GetCurrentUser(const LPath& settingsFile);
// Stores the number in both places.
void SetCurrentUser(const LPath& settingsFile, uint32_t user);

// The paths alone of any user; nothing is created or read.
CurrentUser UserPaths(const DataFolder& data, uint32_t user);

// Forms the user's paths and loads his details. Missing folders are created, so that a dictation can be made
// in a data folder that no installer prepared.
CurrentUser SelectUser(const DataFolder& data, uint32_t user);

// Creates the user's folders unless they exist, writes name and e-mail address and makes him the current
// user. MakeUser (store/UserList.h) also offers him for log-on.
CurrentUser AddUser(const DataFolder& data, uint32_t user, std::string_view name, std::string_view email);

// The user's name for display: "User 7" where the user file has none.
std::string UserName(const LPath& dataFolder, uint32_t user);
std::string ShownUserName(const UserDetails& details, uint32_t user);
