#include "install/InstallRegistry_win.h"

#include "base/LTrace.h"
#include "store/DataFolder_win.h"

static LRegistryValue Stored(const InstalledValue& value) {
    LRegistryValue stored;
    if (const auto* text = std::get_if<std::string>(&value.data)) {
        stored.type = REG_SZ;
        stored.bytes.assign(text->c_str(), text->c_str() + text->size() + 1);
        return stored;
    }
    const uint32_t number = std::get<uint32_t>(value.data);
    stored.type = REG_DWORD;
    for (int shift = 0; shift < 32; shift += 8) stored.bytes.push_back(static_cast<BYTE>(number >> shift));
    return stored;
}

static void RemoveEmptyKeys(const Installation& installation) {
    for (const InstalledKey& key : InstalledKeys(installation))
        LDeleteEmptyRegistryKey(HiveKey(key.hive), key.key.c_str());
}

HKEY HiveKey(RegistryHive hive) {
    return hive == RegistryHive::Machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

bool InstallRegistry::Write() {
    for (const InstalledValue& value : InstalledValues(m_installation)) {
        const HKEY hive = HiveKey(value.hive);
        m_before.push_back({value, LReadRegistryValue(hive, value.key.c_str(), value.name.c_str())});
        if (!LWriteRegistryValue(hive, value.key.c_str(), value.name.c_str(), Stored(value))) return false;
    }
    return true;
}

void InstallRegistry::TakeBack() {
    for (const Before& before : m_before) {
        const HKEY hive = HiveKey(before.value.hive);
        const char* key = before.value.key.c_str();
        const char* name = before.value.name.c_str();
        if (!(before.data ? LWriteRegistryValue(hive, key, name, *before.data)
                          : LDeleteRegistryValue(hive, key, name)))
            LTrace("InstallRegistry::TakeBack unable to put back", name);
    }
    RemoveEmptyKeys(m_installation);
    m_before.clear();
}

static bool IsStored(const InstalledValue& value) {
    const std::optional<LRegistryValue> found =
        LReadRegistryValue(HiveKey(value.hive), value.key.c_str(), value.name.c_str());
    return found && found->bytes == Stored(value).bytes;
}

void RemoveStartEntries(const Installation& installation) {
    for (const InstalledValue& value : InstalledValues(installation))
        if (value.isShared && IsStored(value))
            LDeleteRegistryValue(HiveKey(value.hive), value.key.c_str(), value.name.c_str());
}

bool RemoveFromRegistry(const Installation& installation, bool isAnythingKept) {
    RemoveStartEntries(installation);
    bool isDone = true;
    for (const InstalledValue& value : InstalledValues(installation)) {
        const HKEY hive = HiveKey(value.hive);
        const char* key = value.key.c_str();
        const char* name = value.name.c_str();
        if (value.isShared || (value.isKept && isAnythingKept)) continue;
        isDone = LDeleteRegistryValue(hive, key, name) && isDone;
    }
    RemoveEmptyKeys(installation);
    return isDone;
}

bool MayChangeRegistry(InstallScope scope) {
    return scope == InstallScope::ThisUser || (LMayWriteRegistry(HKEY_LOCAL_MACHINE, kFoldersKey) &&
                                               LMayWriteRegistry(HKEY_LOCAL_MACHINE, kUninstallKey));
}

std::optional<Installation> RegisteredInstallation(InstallScope scope) {
    Installation found;
    found.scope = scope;
    found.hasServices = !PlatformTellsUsersApart();
    const HKEY hive = HiveKey(found.Hive());
    found.folder = LPath(LReadRegistryText(hive, kFoldersKey, "ProgramFiles")).WithoutSeparator();
    found.dataFolder.Set(LReadRegistryText(hive, kFoldersKey, "DataFiles"));
    // Half an installation can be removed, too.
    if (found.folder.Empty())
        found.folder = LPath(LReadRegistryText(hive, kUninstallKey, "InstallLocation")).WithoutSeparator();
    if (found.dataFolder.Empty()) found.dataFolder = DefaultDataFolder();
    if (found.folder.Empty()) return std::nullopt;
    return found;
}

bool PlatformTellsUsersApart() {
    return (GetVersion() & 0x80000000U) == 0;
}
