#include "install/OnlySetUp_win.h"

#include "install/Removal_win.h"
#include "install/SetUp_win.h"

bool OnlySetUp::IsFirst() {
    if (m_mutex.Take(0)) return true;
    for (const char* title : {kSetUpTitle, kRemovalTitle})
        if (const HWND window = FindWindowA(nullptr, title)) SetForegroundWindow(GetLastActivePopup(window));
    return false;
}
