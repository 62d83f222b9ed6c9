// baredialog.exe: a dialog program that does nothing, the yardstick for what the window of a program
// costs at rest. It shows a list and sets up the wave devices and common controls.

#include <windows.h>

#include <commctrl.h>
#include <mmsystem.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    InitCommonControls();
    HWND window = CreateWindowA("#32770", "Bare", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 420, 300, nullptr,
                                nullptr, nullptr, nullptr);
    CreateWindowA(WC_LISTVIEWA, "", WS_CHILD | WS_VISIBLE, 0, 0, 300, 200, window, nullptr, nullptr, nullptr);
    if (!window || waveInGetNumDevs() + waveOutGetNumDevs() == 0) return 1;
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
    return 0;
}
