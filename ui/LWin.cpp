#include "ui/LWin.h"

#include "base/LScreen.h"
#include "base/LSystemFunction_win.h"
#include "base/LText.h"
#include "res/Ids.h"
#include "ui/LCentre.h"

static HINSTANCE s_instance = nullptr;

HINSTANCE LInstance() {
    return s_instance;
}
void LSetInstance(HINSTANCE instance) {
    s_instance = instance;
}

std::string LWindowText(HWND window) {
    const int length = GetWindowTextLengthA(window);
    if (length <= 0) return {};
    std::string text(static_cast<size_t>(length) + 1, '\0');
    const int copied = GetWindowTextA(window, text.data(), length + 1);
    text.resize(copied > 0 ? static_cast<size_t>(copied) : 0);
    return text;
}

int LTextWidth(HDC context, std::string_view text) {
    SIZE size = {};
    GetTextExtentPoint32A(context, text.data(), static_cast<int>(text.size()), &size);
    return static_cast<int>(size.cx);
}

LTextMeasure::LTextMeasure(HWND control)
    : m_control(control),
      m_context(GetDC(control)),
      m_before(SelectObject(m_context, reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0)))) {}

LTextMeasure::~LTextMeasure() {
    SelectObject(m_context, m_before);
    ReleaseDC(m_control, m_context);
}

std::string LTextMeasure::Fit(std::string_view text, int width) const {
    constexpr size_t kDots = 4;  // that the platform may put in place of the middle
    std::string fitting(text);
    fitting.resize(text.size() + kDots + 1);
    RECT box = {0, 0, width, 0};
    DrawTextA(m_context, fitting.data(), static_cast<int>(text.size()), &box,
              DT_PATH_ELLIPSIS | DT_MODIFYSTRING | DT_CALCRECT | DT_SINGLELINE | DT_NOPREFIX);
    return std::string(LBeforeZero(fitting));
}

void LSetWindowText(HWND window, std::string_view text) {
    if (LWindowText(window) != text) SetWindowTextA(window, std::string(text).c_str());
}

int LScaled(int pixels) {
    const HDC screen = GetDC(nullptr);
    const int dots = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return MulDiv(pixels, dots, 96);
}

void LShowAsProgram(HWND dialog) {
    const HICON icon = LoadIconA(LInstance(), MAKEINTRESOURCEA(IDI_CORVANE));
    for (const WPARAM size : {ICON_SMALL, ICON_BIG})
        SendMessageA(dialog, WM_SETICON, size, reinterpret_cast<LPARAM>(icon));
    SetForegroundWindow(dialog);
}

int LMessageBox(HWND owner, std::string_view text, std::string_view caption, UINT flags) {
    const LCentreNext centre;
    return MessageBoxA(owner, std::string(text).c_str(), std::string(caption).c_str(), flags);
}

// The desktop without the task bar, on the monitor that shows the window. Windows 95 knows one monitor.
static RECT WorkAreaAt(HWND window) {
    using FromWindow = HMONITOR(WINAPI*)(HWND, DWORD);
    using GetInfo = BOOL(WINAPI*)(HMONITOR, LPMONITORINFO);
    const auto fromWindow = LSystemFunction<FromWindow>("MonitorFromWindow", "user32.dll");
    const auto getInfo = LSystemFunction<GetInfo>("GetMonitorInfoA", "user32.dll");
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    if (fromWindow != nullptr && getInfo != nullptr &&
        getInfo(fromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor))
        return monitor.rcWork;
    RECT desktop = {};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &desktop, 0);
    return desktop;
}

void LCentreOnOwner(HWND window) {
    const HWND owner = GetWindow(window, GW_OWNER);
    const bool isOwnerSeen = owner != nullptr && IsWindowVisible(owner) && !IsIconic(owner);
    const RECT desktop = WorkAreaAt(isOwnerSeen ? owner : window);
    RECT box, under = desktop;
    GetWindowRect(window, &box);
    if (isOwnerSeen) GetWindowRect(owner, &under);
    const auto area = [](const RECT& r) {
        return ScreenArea{static_cast<int>(r.left), static_cast<int>(r.top), static_cast<int>(r.right),
                          static_cast<int>(r.bottom)};
    };
    const ScreenSize size = {static_cast<int>(box.right - box.left), static_cast<int>(box.bottom - box.top)};
    const ScreenPoint at = CentreOver(area(under), size, area(desktop));
    SetWindowPos(window, nullptr, at.x, at.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

namespace {
struct GlobalMemoryTraits {
    using Type = HGLOBAL;
    static Type None() { return nullptr; }
    static void Close(Type h) { GlobalFree(h); }
};
}  // namespace

bool LCopyToClipboard(std::string_view text) {
    LOwned<GlobalMemoryTraits> memory(GlobalAlloc(GMEM_MOVEABLE, text.size() + 1));
    char* const bytes = memory ? static_cast<char*>(GlobalLock(memory.Get())) : nullptr;
    if (bytes == nullptr) return false;
    bytes[text.copy(bytes, text.size())] = '\0';
    GlobalUnlock(memory.Get());
    if (!OpenClipboard(nullptr)) return false;
    EmptyClipboard();
    const bool isTaken = SetClipboardData(CF_TEXT, memory.Get()) != nullptr;
    if (isTaken) memory.Release();  // the clipboard's own now
    CloseClipboard();
    return isTaken;
}
