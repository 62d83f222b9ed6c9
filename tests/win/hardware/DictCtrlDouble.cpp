#include "hardware/DictCtrl.h"

#include <windows.h>

#include <mmsystem.h>

#include <mmddk.h>

#include <cstdio>
#include <string>

// The driver appends what it is told to "log.txt" in the folder that the environment names. Without the
// folder its microphone is unplugged: it then cannot be opened. A button is pressed by posting WM_APP with
// its code to the driver's window, which the driver makes on the thread that opens it, as drivers do.

namespace {

DictCtrl::Parameters g_notify = {};
HWND g_window = nullptr;

LRESULT Log(const char* what, unsigned number = 0) {
    char folder[MAX_PATH] = {};
    GetEnvironmentVariableA("CORVANE_TEST_MICROPHONE", folder, sizeof folder);
    std::FILE* const log = std::fopen((std::string(folder) + "\\log.txt").c_str(), "ab");
    if (log == nullptr) return MCIERR_DEVICE_NOT_READY;
    std::fprintf(log, "%s %u\n", what, number);
    std::fclose(log);
    return 0;
}

LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_APP && g_notify.callback != 0)
        PostMessageA(reinterpret_cast<HWND>(g_notify.callback), g_notify.message, wParam, 0);
    return DefWindowProcA(window, message, wParam, lParam);
}

LRESULT Open() {
    if (const LRESULT error = Log("open")) return error;
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = WindowProc;
    windowClass.lpszClassName = "DictCtrlDouble";
    RegisterClassA(&windowClass);
    g_window =
        CreateWindowA("DictCtrlDouble", "Microphone", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    return 0;
}

}  // namespace

extern "C" __declspec(dllexport) LRESULT WINAPI
    DriverProc(DWORD_PTR, HDRVR, UINT message, LPARAM, LPARAM second) {
    const auto* parameters = reinterpret_cast<const DictCtrl::Parameters*>(second);
    auto* const open = reinterpret_cast<MCI_OPEN_DRIVER_PARMS*>(second);
    switch (message) {
        case DRV_OPEN:
            if (open == nullptr) return 1;  // the platform only looks whether it can be loaded
            open->wCustomCommandTable = static_cast<UINT>(-1);
            return static_cast<LRESULT>(open->wDeviceID);
        case MCI_OPEN_DRIVER:
            return Open();
        case MCI_CLOSE_DRIVER:
            DestroyWindow(g_window);
            return Log("close");
        case DictCtrl::MCICTRL_ACTIVATE:
        case DictCtrl::MCICTRL_DEACTIVATE:
            g_notify = message == DictCtrl::MCICTRL_ACTIVATE ? *parameters : DictCtrl::Parameters{};
            return Log(g_notify.callback != 0 ? "activate" : "deactivate", g_notify.message);
        case DictCtrl::MCICTRL_SETDISPLAYSTATE:
            return Log("display", parameters->state);
        default:
            return 1;
    }
}
