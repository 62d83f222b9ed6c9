#include <windows.h>

#include "base/LPath.h"

bool LIsLeadByte(char c) {
    return IsDBCSLeadByte(static_cast<BYTE>(c));
}
