#pragma once

#include <cstdint>
#include <string_view>

#include "base/LStream.h"
#include "install/SetupPackage.h"

// The purpose of this run, decided before anything is touched.
enum class StartUpAction { RefuseCorruptInstaller, Install, Remove, ActivateFirst, Run };

// The little-endian number in a file's last four bytes; 0 for a shorter file.
uint32_t ReadInstallMarker(LReadStream& executable);

// exeName: the executable's name without folder and extension; "setup" in it demands the marker of a set-up
// package, so a download that was cut off is recognised. wantsRemoval: see WantsRemoval. firstIsRunning:
// another instance's window was found.
StartUpAction DecideStartUp(std::string_view exeName, uint32_t marker, bool wantsRemoval,
                            bool firstIsRunning);

// How long the installer waits for a running instance that it asked to close, in milliseconds. The two kinds
// of package differ on purpose.
constexpr uint32_t CloseWaitMs(uint32_t marker) {
    return marker == kMarkerUpdate ? 1500 : 2000;
}

// The introduction is shown exactly when the first argument is "/install", byte for byte.
bool WantsIntroduction(int argumentCount, const char* const* arguments);

// Corvane is to be removed exactly when the first argument is "/uninstall"; the platform's list of programs
// starts it so.
bool WantsRemoval(int argumentCount, const char* const* arguments);
