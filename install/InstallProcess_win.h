#pragma once

#include <string>

#include "base/LProcess.h"
#include "install/InstallTable.h"
#include "install/SetupPackage.h"

// Installs the files of a checked package: everything is written beside first, then the running copy is
// waited for, and the files take their places, the program last. Then the registry, and the shortcuts.
// Returns Failed, with a text, and Stopped with everything as it was before. That a shortcut cannot be made
// is no failure (IsShortcutMissing): Corvane is there then.
// Thread: the window thread, under the progress dialog.
class InstallProcess final : public LProcess {
public:
    InstallProcess(const SetupPackage& package, const Installation& installation)
        : m_package(package), m_installation(installation) {}
    // What would fail, as a text for the user, to be told before a running copy is closed for it; else empty.
    std::string WhyNot() const;
    ProcessResult Process(ProcessContext& context) override;
    bool IsShortcutMissing() const { return m_isShortcutMissing; }

private:
    const SetupPackage& m_package;
    Installation m_installation;
    bool m_isShortcutMissing = false;
};
