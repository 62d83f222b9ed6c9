#include "install/InstallPlan.h"

#include <algorithm>

#include "base/LText.h"

InstallPlan::InstallPlan(const MachineFacts& facts) : m_facts(facts) {
    const bool isForEveryone = facts.mayInstallForEveryone && !IsBoundToUser();
    SetScope(isForEveryone ? InstallScope::Everyone : InstallScope::ThisUser);
    const bool isEveryones = !facts.everyonesProgram.Empty() && facts.mayInstallForEveryone;
    if (!isEveryones && facts.ownProgram.Empty()) return;
    m_isUpdate = true;
    m_scope = isEveryones ? InstallScope::Everyone : InstallScope::ThisUser;
    m_folder = isEveryones ? facts.everyonesProgram : facts.ownProgram;
}

bool InstallPlan::LeavesEveryonesCopy() const {
    return !m_facts.everyonesProgram.Empty() && m_scope == InstallScope::ThisUser;
}

bool InstallPlan::IsBoundToUser() const {
    return m_facts.tellsUsersApart && m_facts.ownData.isKept && !m_facts.everyonesData.isKept &&
           !m_facts.ownFolder.Empty();
}

bool InstallPlan::MayChooseScope() const {
    return !m_isUpdate && !IsBoundToUser() && m_facts.tellsUsersApart && m_facts.mayInstallForEveryone &&
           !m_facts.ownFolder.Empty();
}

void InstallPlan::SetScope(InstallScope scope) {
    m_scope = scope;
    m_folder = scope == InstallScope::Everyone ? m_facts.defaultFolder : m_facts.ownFolder;
}

void InstallPlan::SetFolder(std::string_view folder) {
    m_folder = LPath(folder).WithoutSeparator();
}

LPath InstallPlan::DataFolder() const {
    const MachineFacts::Data& everyones = m_facts.everyonesData;
    const MachineFacts::Data& own = m_facts.ownData;
    // For this user alone everyone's is never registered: what is removed with this copy would be theirs.
    // For everyone a user's own is not, which the others could not open.
    if (m_scope == InstallScope::Everyone) return everyones.isKept ? everyones.folder : m_folder;
    return own.isKept ? own.folder : m_folder;
}

Installation InstallPlan::Chosen() const {
    Installation chosen;
    chosen.folder = m_folder;
    chosen.dataFolder = DataFolder();
    chosen.isDataKept = !(chosen.dataFolder == m_folder);
    chosen.scope = m_scope;
    chosen.hasServices = !m_facts.tellsUsersApart;
    return chosen;
}

const char* WhyNotInFolder(std::string_view folder) {
    constexpr size_t kLongest = 200;  // leaves room for the names of users' folders and their files
    if (folder.size() > kLongest) return "The name of this folder is too long.";
    const bool isOfDrive = folder.size() > 2 && folder[1] == ':' && LIsSeparator(folder[2]);
    const bool isOfShare = folder.starts_with("\\\\");
    if (!isOfDrive && !isOfShare)
        return "Please name the whole folder, beginning with its drive, such as C:\\Corvane.";
    const std::string_view names = folder.substr(2);
    if (LPath(folder).WithoutSeparator().View().size() <= LRootOf(folder).View().size())
        return "Please name a folder of its own for Corvane, not a whole drive.";
    constexpr std::string_view kNever = "<>:\"|?*";
    const bool isWrong = std::ranges::any_of(names, [&](char c) {
        return static_cast<unsigned char>(c) < ' ' || kNever.find(c) != std::string_view::npos;
    });
    return isWrong ? "The name of a folder cannot hold any of the characters < > : \" | ? *" : nullptr;
}
