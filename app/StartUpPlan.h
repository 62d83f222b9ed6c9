#pragma once

#include <cstdint>
#include <string_view>

#include "base/LStream.h"

// The last four bytes of the executable tell a set-up package from the program.
constexpr uint32_t kMarkerSetup = 0x0F0FF0F0;
constexpr uint32_t kMarkerPackage = 0xF0F00F0F;

// What this run is, decided before anything is touched.
enum class StartUpAction { RefuseCorruptInstaller, Install, ActivateFirst, Run };

// The little-endian number in a file's last four bytes; 0 when it has none.
uint32_t ReadInstallMarker(LReadStream& executable);

// exeName is without folder and extension; firstIsRunning tells whether another instance's window was found.
StartUpAction DecideStartUp(std::string_view exeName, uint32_t marker, bool firstIsRunning);

// How long the installer waits for a running instance that was asked to close. The two kinds of package
// differ on purpose.
constexpr uint32_t CloseWaitMs(uint32_t marker) {
    return marker == kMarkerPackage ? 1500 : 2000;
}

// The first argument "/install", byte for byte, and nothing else shows the introduction.
bool WantsIntroduction(int argumentCount, const char* const* arguments);
