#pragma once

#include <string>

#include "install/InstallTable.h"

// What an installation finds on the machine.
struct MachineFacts {
    bool tellsUsersApart = false;        // Windows 95 to Me know one user, who may do everything
    bool mayInstallForEveryone = false;  // registry of the machine and folder for programs can be written
    LPath defaultFolder;                 // for everyone
    LPath ownFolder;                     // for this user alone; empty where the platform has none
    LPath everyonesProgram;              // the folder of a copy that is there already, for everyone...
    LPath ownProgram;                    // ...and of one for this user alone; else empty

    // The data folders that are registered, for everyone and for this user. The program reads the first, and
    // the second where the first is missing.
    struct Data {
        LPath folder;  // empty: none, or it is gone
        // Holds dictations, or does not answer and may hold some: nobody's recordings are left behind.
        bool isKept = false;
    };
    Data everyonesData;
    Data ownData;
};

// Where and for whom Corvane is installed, as far as the machine leaves a choice. A copy that is there
// already is replaced in its place.
// Thread: one at a time.
class InstallPlan {
public:
    explicit InstallPlan(const MachineFacts& facts);

    // False: this user may install for nobody.
    bool IsPossible() const { return !m_folder.Empty(); }
    bool IsUpdate() const { return m_isUpdate; }
    // There is a copy for everyone, which this user may not touch.
    bool LeavesEveryonesCopy() const;
    // This user's recordings lie in a folder of his, which the others could not open.
    bool IsBoundToUser() const;
    // Whether the choice between everyone and this user is open. Without it, whether the machine knows one.
    bool MayChooseScope() const;
    bool TellsUsersApart() const { return m_facts.tellsUsersApart; }

    InstallScope Scope() const { return m_scope; }
    // Also sets the folder that this scope has by default.
    void SetScope(InstallScope scope);
    const LPath& Folder() const { return m_folder; }  // without a separator at its end
    void SetFolder(std::string_view folder);

    Installation Chosen() const;

private:
    LPath DataFolder() const;

    MachineFacts m_facts;
    InstallScope m_scope = InstallScope::Everyone;
    LPath m_folder;
    bool m_isUpdate = false;
};

// Why Corvane cannot be installed in a folder of this name, as a sentence for the user; nullptr when the name
// will do.
const char* WhyNotInFolder(std::string_view folder);
