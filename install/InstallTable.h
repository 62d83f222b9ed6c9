#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "base/LPath.h"

// What an installation leaves outside of its folders: one table, by which it is made and removed.

// Whom Corvane is installed for. Somebody without the right to write the machine's part of the registry
// installs it for himself.
enum class InstallScope { Everyone, ThisUser };

enum class RegistryHive { Machine, User };

struct Installation {
    LPath folder;      // of the program, ends in no separator
    LPath dataFolder;  // of the recordings; may be the same
    InstallScope scope = InstallScope::Everyone;
    bool hasServices = false;  // Windows 95 and 98 start the programs of a key of their own
    uint32_t sizeKb = 0;       // of the installed files

    LPath Program() const { return LPath::Join(folder.View(), "corvane.exe"); }
};

struct InstalledValue {
    RegistryHive hive;
    std::string key;
    std::string name;
    std::variant<std::string, uint32_t> data;
    // Stays after the removal: the dictations do, and the next installation is to find them.
    bool isKept = false;
};
std::vector<InstalledValue> InstalledValues(const Installation& installation);

struct InstalledKey {
    RegistryHive hive;
    std::string key;
};
// The keys that are ours. Each is removed once nothing is left in it, the innermost first.
std::vector<InstalledKey> InstalledKeys(const Installation& installation);

// Shortcuts to the program.
enum class ShortcutPlace { Desktop, StartMenu };
struct InstalledShortcut {
    ShortcutPlace place;
    std::string name;      // with ".lnk"
    std::string document;  // the file in the program's folder that it opens
};
std::vector<InstalledShortcut> InstalledShortcuts();
