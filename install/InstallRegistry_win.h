#pragma once

#include <windows.h>

#include <optional>
#include <vector>

#include "base/LRegistry_win.h"
#include "install/InstallTable.h"

HKEY HiveKey(RegistryHive hive);

// Stores what an installation leaves in the registry (InstalledValues), so that all of it can be taken back.
// Errors: false (traced) when a value cannot be stored; the caller takes back what was.
// Thread: one at a time.
class InstallRegistry {
public:
    explicit InstallRegistry(const Installation& installation) : m_installation(installation) {}
    bool Write();
    // As it was before.
    void TakeBack();

private:
    struct Before {
        InstalledValue value;
        std::optional<LRegistryValue> data;
    };
    const Installation& m_installation;
    std::vector<Before> m_before;
};

// Removes what starts the program, so that nothing leads to one that is being removed.
void RemoveStartEntries(const Installation& installation);
// Removes it. What an installation keeps goes only when nothing is kept. False when a value stays that should
// not.
bool RemoveFromRegistry(const Installation& installation, bool isAnythingKept);

// Whether this user may store and remove it.
bool MayChangeRegistry(InstallScope scope);

// Windows 95 to Me know one user, who may do everything, and start services by a key of their own.
bool PlatformTellsUsersApart();

// The installation of this scope as the registry tells it; nothing when it tells of none.
std::optional<Installation> RegisteredInstallation(InstallScope scope);
