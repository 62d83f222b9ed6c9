#pragma once

#include "base/LPath.h"
#include "res/Version.h"

// The title of everything that an installation shows.
inline constexpr char kSetUpTitle[] = "Installing Corvane v " CORVANE_VERSION;

// What is told of a package that is damaged, and its caption.
inline constexpr char kCorruptPackage[] =
    "Installation file corrupt.\n\nA checksum error was detected in your install file, please redownload "
    "file and install again.";
inline constexpr char kInstallError[] = "Install Error";

// A whole run of a set-up or update package: checks it, asks where and for whom (an update package asks
// nothing), closes a running copy, installs, and starts what was installed. A copy that was closed for an
// installation which then fails, or is cancelled, is started again. A second run shows the first one's window
// and ends.
// package: the running executable. closeWaitMs: the time for a running copy to close before the installation
// begins.
// Thread: the window thread, with nothing else running.
void RunSetUp(const LPath& package, uint32_t closeWaitMs);
