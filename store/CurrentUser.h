#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/LFile.h"
#include "base/LPath.h"

// What a user told about himself; it travels with every dictation that is sent.
struct UserDetails {
    std::string name;
    std::string email;
    std::string company;
    std::string phone;
    std::string cell;
    std::string fax;
    std::array<std::string, 4> address;

    // Unreadable: the texts are empty because the file could not be read for a second, and must not be sent.
    LReadResult result = LReadResult::Absent;

    // Empty texts where the file has none. Opens the file once.
    static UserDetails Read(const LPath& userFile);
};

// The dictating user at work, rebuilt whenever the user changes.
// Thread: the window thread; the send thread works from user numbers and forms its own paths.
struct CurrentUser {
    LPath userFile;       // "<data folder>00000007\user.dat"
    LPath currentFolder;  // "<data folder>00000007\Current\"
    LPath sentFolder;     // "<data folder>00000007\Sent\"
    uint32_t number = 0;
    UserDetails details;
};

// Where the program keeps its state, found once at start-up.
struct DataFolder {
    LPath folder;        // ends in a separator unless it is 259 characters long
    LPath settingsFile;  // "<data folder>settings.ini"

    // Forms both paths from a folder as it stands in the registry.
    static DataFolder FromText(std::string_view folder);

    // Whether the paths of all files in it fit; without that they would come out as names in whatever folder
    // is current.
    bool HasRoom() const;
};

// "<data folder>00000007\" and "<data folder>00000007\user.dat" of any user.
LPath UserFolderPath(const LPath& dataFolder, uint32_t user);
LPath UserFilePath(const LPath& dataFolder, uint32_t user);

// The number that the registry of the Windows user holds; without one, that of the settings file; without
// both, 0.
uint32_t GetCurrentUser(const LPath& settingsFile);
// Stores the number in both.
void SetCurrentUser(const LPath& settingsFile, uint32_t user);

// Forms the user's paths and loads his details. Folders that are missing are created, so that a dictation can
// be made in a data folder that nobody prepared.
CurrentUser SelectUser(const DataFolder& data, uint32_t user);

// Creates the user's folders (what exists is kept), writes name and e-mail address and makes him the current
// user. AddUserToList belongs to it where the user is to be offered for log-on.
CurrentUser AddUser(const DataFolder& data, uint32_t user, std::string_view name, std::string_view email);

// The users offered for log-on, in the order of the list; user 0 when there is no list. Positions count from
// 0.
std::vector<uint32_t> ReadUserList(const LPath& settingsFile);
// Does nothing when the user is in the list already, or when the list cannot be read.
void AddUserToList(const LPath& settingsFile, uint32_t user);
// Whoever calls has asked the user whether he is sure. Folders and files stay.
void RemoveUserFromList(const LPath& settingsFile, uint32_t user);

// The user's name as it is shown: "User 7" where the user file has none.
std::string UserName(const LPath& dataFolder, uint32_t user);
std::string ShownUserName(const UserDetails& details, uint32_t user);
