#pragma once

#include "base/LPath.h"
#include "base/LProcess.h"

// Parameters of an installation, from start-up, when the executable carries an install marker.
struct InstallRequest {
    LPath package;        // the running executable
    LPath folder;         // target folder of the program and its data
    LPath desktop;        // the user's desktop folder, empty when unknown
    LPath commonDesktop;  // the desktop folder of all users, empty when unknown
};

// Installs the program. So far it only reports the target folder; files are not yet unpacked.
// Thread: the window thread, under the progress dialog.
class InstallProcess final : public LProcess {
public:
    explicit InstallProcess(const InstallRequest& request) : m_request(request) {}
    ProcessResult Process(ProcessContext& context) override;

private:
    InstallRequest m_request;
};
