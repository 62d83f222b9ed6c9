// menuprobe.dll: tells what stands in the menu of a window. A menu can only be read inside the process
// that made it, so winctl.exe hooks the window's thread, which loads this library, and sends the question.

#include <windows.h>

#include <cstring>
#include <string>

#include "tests/system/Json.h"
#include "tests/system/menuprobe.h"

namespace {

void DescribeMenu(HWND window, HMENU menu, Json& json) {
    json.Open('[');
    const int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i) {
        char text[256] = "";
        MENUITEMINFOA item = {};
        item.cbSize = sizeof item;
        item.fMask = MIIM_ID | MIIM_STATE | MIIM_TYPE | MIIM_SUBMENU;
        item.dwTypeData = text;
        item.cch = sizeof text;
        if (!GetMenuItemInfoA(menu, static_cast<UINT>(i), TRUE, &item) || (item.fType & MFT_SEPARATOR) != 0)
            continue;
        json.Open('{').Member("number", item.wID).Member("text", text);
        json.Member("enabled", (item.fState & (MFS_GRAYED | MFS_DISABLED)) == 0);
        json.Member("checked", (item.fState & MFS_CHECKED) != 0);
        if (item.hSubMenu) {
            // A program may enable and tick its items only when the menu is about to drop down.
            SendMessageA(window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(item.hSubMenu), i);
            DescribeMenu(window, item.hSubMenu, json.Key("items"));
        }
        json.Close('}');
    }
    json.Close(']');
}

void Answer(HWND window) {
    HANDLE mapping = OpenFileMappingA(FILE_MAP_WRITE, FALSE, kMenuProbeName);
    if (!mapping) return;
    if (auto* answer = static_cast<char*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0))) {
        Json json;
        DescribeMenu(window, GetMenu(window), json);
        if (json.Text().size() < kMenuProbeBytes)
            std::memcpy(answer, json.Text().c_str(), json.Text().size() + 1);
        UnmapViewOfFile(answer);
    }
    CloseHandle(mapping);
}

}  // namespace

// Sees each message before the window does.
extern "C" __declspec(dllexport) LRESULT CALLBACK MenuProbe(int code, WPARAM wParam, LPARAM lParam) {
    const auto& message = *reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (code == HC_ACTION && message.message == RegisterWindowMessageA(kMenuProbeName)) Answer(message.hwnd);
    return CallNextHookEx(nullptr, code, wParam, lParam);
}
