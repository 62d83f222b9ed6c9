// menuprobe.dll: tells what stands in the menu of a window. A menu can only be read inside the process
// that made it, so winctl.exe has this library loaded there; it writes its answer and is unloaded again.

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
            SendMessageTimeoutA(window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(item.hSubMenu), i,
                                SMTO_NORMAL, 2000, nullptr);
            DescribeMenu(window, item.hSubMenu, json.Key("items"));
        }
        json.Close('}');
    }
    json.Close(']');
}

void Answer() {
    HANDLE mapping = OpenFileMappingA(FILE_MAP_WRITE, FALSE, kMenuProbeName);
    if (!mapping) return;
    if (auto* shared = static_cast<MenuProbeAnswer*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0))) {
        Json json;
        DescribeMenu(shared->window, GetMenu(shared->window), json);
        if (json.Text().size() < sizeof shared->text)
            std::memcpy(shared->text, json.Text().c_str(), json.Text().size() + 1);
        UnmapViewOfFile(shared);
    }
    CloseHandle(mapping);
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) Answer();
    return reason != DLL_PROCESS_ATTACH;  // refused: the library is unloaded at once
}
