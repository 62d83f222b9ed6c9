#pragma once

#include "base/LPath.h"
#include "base/LProcess.h"

// What start-up knows of an installation when the executable carries an install marker.
struct InstallRequest {
    LPath package;        // the executable that runs
    LPath folder;         // where the program and its data go
    LPath desktop;        // the user's desktop folder, empty when unknown
    LPath commonDesktop;  // the desktop folder of all users, empty when unknown
};

// Installs the program; run under the progress dialog on the window thread.
class InstallProcess final : public LProcess {
public:
    explicit InstallProcess(const InstallRequest& request) : m_request(request) {}
    ProcessResult Process(ProcessContext& context) override;

private:
    InstallRequest m_request;
};
