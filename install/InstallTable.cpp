#include "install/InstallTable.h"

#include "res/Version.h"

namespace {

constexpr char kRun[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr char kRunServices[] = "Software\\Microsoft\\Windows\\CurrentVersion\\RunServices";

// In quotation marks, since the folder for programs has a blank in its name.
std::string CommandLine(const Installation& installation, const char* argument) {
    return '"' + std::string(installation.Program().View()) + "\" " + argument;
}

}  // namespace

std::vector<InstalledValue> InstalledValues(const Installation& installation) {
    const RegistryHive hive = installation.Hive();
    const std::string program(installation.Program().View());
    std::vector<InstalledValue> values = {
        {hive, kFoldersKey, "DataFiles", std::string(installation.dataFolder.View()), true},
        {hive, kFoldersKey, "ProgramFiles", std::string(installation.folder.View())},
        {RegistryHive::User, kRun, "Corvane", CommandLine(installation, "/logon"), false, true},
        {hive, kUninstallKey, "DisplayName", std::string("Corvane")},
        {hive, kUninstallKey, "DisplayVersion", std::string(kVersion)},
        {hive, kUninstallKey, "Publisher", std::string("Mervald")},
        {hive, kUninstallKey, "DisplayIcon", program},
        {hive, kUninstallKey, "InstallLocation", std::string(installation.folder.View())},
        {hive, kUninstallKey, "EstimatedSize", installation.sizeKb},
        {hive, kUninstallKey, "NoModify", uint32_t{1}},
        {hive, kUninstallKey, "NoRepair", uint32_t{1}},
        {hive, kUninstallKey, "UninstallString", CommandLine(installation, "/uninstall")},
    };
    if (installation.hasServices)
        values.push_back({RegistryHive::Machine, kRunServices, "Corvane",
                          CommandLine(installation, "/service"), false, true});
    return values;
}

std::vector<InstalledKey> InstalledKeys(const Installation& installation) {
    std::vector<InstalledKey> keys = {{installation.Hive(), kUninstallKey}};
    // In the user's there may be the number of the dictating user, whoever it was installed for.
    for (const RegistryHive hive : {RegistryHive::Machine, RegistryHive::User})
        for (std::string key = kFoldersKey; key != "Software"; key.resize(key.rfind('\\')))
            keys.push_back({hive, key});
    return keys;
}

std::vector<InstalledShortcut> InstalledShortcuts() {
    constexpr char kDescription[] = "Records dictations and sends them to your typist.";
    return {{ShortcutPlace::Desktop, "Corvane.lnk", kProgramFile, kDescription},
            {ShortcutPlace::StartMenu, "Corvane.lnk", kProgramFile, kDescription},
            {ShortcutPlace::StartMenu, "Corvane Manual.lnk", "corvane.htm", "Explains Corvane."}};
}
