#include "install/InstallTable.h"

namespace {

constexpr char kRun[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr char kRunServices[] = "Software\\Microsoft\\Windows\\CurrentVersion\\RunServices";
constexpr char kUninstall[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Corvane";
constexpr char kOurs[] = "Software\\Mervald\\Corvane\\CurrentVersion\\Folders";

// In quotation marks, since the folder for programs has a blank in its name.
std::string CommandLine(const Installation& installation, const char* argument) {
    return '"' + std::string(installation.Program().View()) + "\" " + argument;
}

RegistryHive HiveOf(const Installation& installation) {
    return installation.scope == InstallScope::Everyone ? RegistryHive::Machine : RegistryHive::User;
}

}  // namespace

std::vector<InstalledValue> InstalledValues(const Installation& installation) {
    const RegistryHive hive = HiveOf(installation);
    const std::string program(installation.Program().View());
    std::vector<InstalledValue> values = {
        {hive, kOurs, "DataFiles", std::string(installation.dataFolder.View()), true},
        {hive, kOurs, "ProgramFiles", std::string(installation.folder.View())},
        {RegistryHive::User, kRun, "Corvane", CommandLine(installation, "/logon")},
        {hive, kUninstall, "DisplayName", std::string("Corvane")},
        {hive, kUninstall, "DisplayVersion", std::string("3.06")},
        {hive, kUninstall, "Publisher", std::string("Mervald")},
        {hive, kUninstall, "DisplayIcon", program},
        {hive, kUninstall, "InstallLocation", std::string(installation.folder.View())},
        {hive, kUninstall, "EstimatedSize", installation.sizeKb},
        {hive, kUninstall, "NoModify", uint32_t{1}},
        {hive, kUninstall, "NoRepair", uint32_t{1}},
        {hive, kUninstall, "UninstallString", CommandLine(installation, "/uninstall")},
    };
    if (installation.hasServices)
        values.push_back(
            {RegistryHive::Machine, kRunServices, "Corvane", CommandLine(installation, "/service")});
    return values;
}

std::vector<InstalledKey> InstalledKeys(const Installation& installation) {
    const RegistryHive hive = HiveOf(installation);
    std::vector<InstalledKey> keys = {{hive, kUninstall}};
    for (std::string key = kOurs; key != "Software"; key.resize(key.rfind('\\'))) keys.push_back({hive, key});
    return keys;
}

std::vector<InstalledShortcut> InstalledShortcuts() {
    return {{ShortcutPlace::Desktop, "Corvane.lnk", "corvane.exe"},
            {ShortcutPlace::StartMenu, "Corvane.lnk", "corvane.exe"},
            {ShortcutPlace::StartMenu, "Corvane Manual.lnk", "corvane.htm"}};
}
