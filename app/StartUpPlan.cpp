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

StartUpAction DecideStartUp(std::string_view exeName, uint32_t marker, bool firstIsRunning) {
    const bool isNamedSetup = LUpper(exeName).find("SETUP") != std::string::npos;
    if (isNamedSetup && marker != kMarkerSetup) return StartUpAction::RefuseCorruptInstaller;
    if (marker == kMarkerSetup || marker == kMarkerUpdate) return StartUpAction::Install;
    return firstIsRunning ? StartUpAction::ActivateFirst : StartUpAction::Run;
}

bool WantsIntroduction(int argumentCount, const char* const* arguments) {
    return argumentCount >= 2 && std::string_view(arguments[1]) == "/install";
}
