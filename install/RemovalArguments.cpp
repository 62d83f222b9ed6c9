#include "install/RemovalArguments.h"

#include "base/LText.h"
#include "base/LTrace.h"
#include "install/InstallTable.h"

LPath InstalledProgramOf(const LPath& own, std::string_view argument) {
    // Where the name of the drive ends a colon is allowed; elsewhere it names a stream beside a file's bytes.
    const bool isFull = LIsFullPath(argument) && argument.find(':', 2) == std::string_view::npos;
    const bool hasDetour =
        argument.find("\\.\\") != std::string_view::npos || argument.find("\\..\\") != std::string_view::npos;
    const bool isName = !LHoldsAny(argument, "\"*?<>|/");
    const bool isProgram = LEqualNoCase(LFileNameOf(argument), kProgramFile);
    if (isFull && !hasDetour && isName && isProgram && !LEqualNoCase(argument, own.View()))
        return LPath(argument);
    LTrace("InstalledProgramOf refused", argument);
    return {};
}
