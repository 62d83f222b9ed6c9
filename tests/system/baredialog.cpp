// baredialog.exe: a dialog program that does nothing, the yardstick for what the window of a program
// costs at rest. It shows the usual controls and sets up the wave devices and common controls.

#include <windows.h>

#include <commctrl.h>
#include <mmsystem.h>

#include <cstring>

namespace {

INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM, LPARAM) {
    if (message == WM_INITDIALOG) {
        CreateWindowA(WC_LISTVIEWA, "", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0, 300, 150, dialog, nullptr,
                      nullptr, nullptr);
        CreateWindowA("EDIT", "", WS_CHILD | WS_VISIBLE | ES_MULTILINE, 0, 150, 300, 100, dialog, nullptr,
                      nullptr, nullptr);
        CreateWindowA("BUTTON", "OK", WS_CHILD | WS_VISIBLE, 0, 250, 80, 24, dialog, nullptr, nullptr,
                      nullptr);
        return TRUE;
    }
    if (message == WM_CLOSE) PostQuitMessage(0);
    return FALSE;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    InitCommonControls();
    struct {
        DLGTEMPLATE head;
        WORD menu, windowClass;
        WCHAR title[8];
    } dialog = {{WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 10, 10, 280, 140}, 0, 0, L"Bare"};
    HWND window = CreateDialogIndirectParamA(instance, &dialog.head, nullptr, DialogProc, 0);
    if (!window || waveInGetNumDevs() + waveOutGetNumDevs() == 0) return 1;
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        if (IsDialogMessageA(window, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return 0;
}
