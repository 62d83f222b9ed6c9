#include "app/StartUpPlan.h"

#include <array>

#include "base/LBytes.h"
#include "base/LText.h"

uint32_t ReadInstallMarker(LReadStream& executable) {
    std::array<uint8_t, 4> tail{};
    const int64_t size = executable.Size();
    if (size < 4 || !executable.Seek(size - 4) || !executable.ReadExact(tail)) return 0;
    return LByteReader(tail).U32();
}

StartUpAction DecideStartUp(std::string_view exeName, uint32_t marker, bool wantsRemoval,
                            bool firstIsRunning) {
    const bool isNamedSetup = LUpper(exeName).find("SETUP") != std::string::npos;
    if (isNamedSetup && marker != kMarkerSetup) return StartUpAction::RefuseCorruptInstaller;
    if (marker == kMarkerSetup || marker == kMarkerUpdate) return StartUpAction::Install;
    if (wantsRemoval) return StartUpAction::Remove;
    return firstIsRunning ? StartUpAction::ActivateFirst : StartUpAction::Run;
}

static bool IsFirst(std::string_view wanted, int argumentCount, const char* const* arguments) {
    return argumentCount >= 2 && wanted == arguments[1];
}

bool WantsIntroduction(int argumentCount, const char* const* arguments) {
    return IsFirst("/install", argumentCount, arguments);
}

bool WantsRemoval(int argumentCount, const char* const* arguments) {
    return IsFirst("/uninstall", argumentCount, arguments);
}
