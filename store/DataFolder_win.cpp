#include "store/DataFolder_win.h"

#include "base/LFile.h"
#include "base/LProfile.h"
#include "base/LRegistry_win.h"

namespace {

constexpr char kDataValue[] = "DataFiles";
constexpr char kWindowsKey[] = "Software\\Microsoft\\Windows\\CurrentVersion";
constexpr char kProgramsValue[] = "ProgramFilesDir";

// An access control list with one entry: everyone, all access, inherited by folders and files. The object
// owns all its parts, since the platform's security descriptor only points to them.
class EveryoneAccess {
public:
    EveryoneAccess() {
        SID_IDENTIFIER_AUTHORITY world = {SECURITY_WORLD_SID_AUTHORITY};
        m_ok = InitializeSid(Everyone(), &world, 1);
        if (!m_ok) return;
        *GetSidSubAuthority(Everyone(), 0) = SECURITY_WORLD_RID;
        m_ok = InitializeAcl(List(), sizeof m_list, ACL_REVISION) &&
               AddAccessAllowedAce(List(), ACL_REVISION, GENERIC_ALL, Everyone()) && MakeInherited() &&
               InitializeSecurityDescriptor(&m_descriptor, SECURITY_DESCRIPTOR_REVISION) &&
               SetSecurityDescriptorDacl(&m_descriptor, TRUE, List(), FALSE);
    }
    EveryoneAccess(const EveryoneAccess&) = delete;
    EveryoneAccess& operator=(const EveryoneAccess&) = delete;

    // Null on Windows 95 and 98, where these functions exist but fail.
    SECURITY_ATTRIBUTES* Attributes() {
        m_attributes = {sizeof m_attributes, &m_descriptor, FALSE};
        return m_ok ? &m_attributes : nullptr;
    }

private:
    PSID Everyone() { return m_everyone; }
    ACL* List() { return reinterpret_cast<ACL*>(m_list); }
    // Sets the inheritance flags of the entry in place: AddAccessAllowedAceEx is missing from the oldest
    // platforms.
    bool MakeInherited() {
        void* entry = nullptr;
        if (!GetAce(List(), 0, &entry)) return false;
        static_cast<ACE_HEADER*>(entry)->AceFlags = OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE;
        return true;
    }

    alignas(DWORD) BYTE m_everyone[16] = {};
    alignas(DWORD) BYTE m_list[64] = {};
    SECURITY_DESCRIPTOR m_descriptor{};
    SECURITY_ATTRIBUTES m_attributes{};
    bool m_ok = false;
};

}  // namespace

bool MakeFolderForEveryone(const LPath& folder) {
    if (folder.Empty()) return false;
    EveryoneAccess access;
    return CreateDirectoryA(folder.WithoutSeparator().c_str(), access.Attributes());
}

std::vector<LPath> MakeFolders(const LPath& wanted, FolderAccess access) {
    const LPath folder = wanted.WithoutSeparator();
    if (folder.Empty() || LFile::IsFolder(folder)) return {};
    std::vector<LPath> made;
    const LPath above = LFolderAbove(folder);
    if (above.View().size() < folder.View().size()) made = MakeFolders(above, access);
    const bool isMade =
        access == FolderAccess::Everyone ? MakeFolderForEveryone(folder) : LFile::MakeFolder(folder);
    if (isMade) made.push_back(folder);
    return made;
}

LPath DefaultDataFolder() {
    LPath folder(LReadRegistryText(HKEY_LOCAL_MACHINE, kWindowsKey, kProgramsValue));
    if (folder.Empty()) return LPath("C:\\Corvane");
    folder.Append("\\Mervald\\Corvane");
    return folder;
}

DataFolder FindDataFolder() {
    LPath folder(LReadRegistryText(HKEY_LOCAL_MACHINE, kFoldersKey, kDataValue));
    if (folder.Empty() || LFile::IsGone(folder.WithoutSeparator())) {
        const LPath own(LReadRegistryText(HKEY_CURRENT_USER, kFoldersKey, kDataValue));
        if (!own.Empty()) folder = own;
    }
    if (folder.Empty()) {
        folder = DefaultDataFolder();
        MakeFolders(folder, FolderAccess::Everyone);
    }
    const DataFolder data = DataFolder::FromText(folder.View());
    // Only where the file is missing: otherwise the copy may belong to another instance that is writing it.
    if (!LFile::Exists(data.settingsFile)) LProfile::Recover(data.settingsFile);
    return data;
}
