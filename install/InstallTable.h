#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "base/LPath.h"
#include "store/CurrentUser.h"

// What an installation leaves outside of its folders: one table, by which it is made and removed.

// The entry of the platform's list of programs, in the hive of the machine or in the user's.
inline constexpr char kUninstallKey[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Corvane";

// The program, in its folder.
inline constexpr char kProgramFile[] = "corvane.exe";

// Whom Corvane is installed for. Somebody without the right to write the machine's part of the registry
// installs it for himself.
enum class InstallScope { Everyone, ThisUser };

enum class RegistryHive { Machine, User };

struct Installation {
    LPath folder;             // of the program, ends in no separator
    LPath dataFolder;         // of the recordings; may be the same
    bool isDataKept = false;  // it was there before, and its drive or server may be away
    InstallScope scope = InstallScope::Everyone;
    bool hasServices = false;  // Windows 95 and 98 start the programs of a key of their own
    uint32_t sizeKb = 0;       // of the installed files

    LPath Program() const { return LPath::Join(folder.View(), kProgramFile); }
    RegistryHive Hive() const {
        return scope == InstallScope::Everyone ? RegistryHive::Machine : RegistryHive::User;
    }
};

struct InstalledValue {
    RegistryHive hive;
    std::string key;
    std::string name;
    std::variant<std::string, uint32_t> data;
    // Stays after the removal: the dictations do, and the next installation is to find them.
    bool isKept = false;
    // Another copy may have stored its own: removed only as long as it is ours.
    bool isShared = false;
};
std::vector<InstalledValue> InstalledValues(const Installation& installation);

struct InstalledKey {
    RegistryHive hive;
    std::string key;
};
// The keys that are ours. Each is removed once nothing is left in it, the innermost first.
std::vector<InstalledKey> InstalledKeys(const Installation& installation);

// Where shortcuts lie; everyone's where Corvane is installed for everyone and the platform has such a place.
enum class ShortcutPlace { Desktop, StartMenu };
struct InstalledShortcut {
    ShortcutPlace place;
    const char* name;         // with ".lnk"
    const char* file;         // in the program's folder, which it opens
    const char* description;  // shown by the shell under the mouse
};
std::vector<InstalledShortcut> InstalledShortcuts();
