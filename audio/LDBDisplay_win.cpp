#include "audio/LDBDisplay_win.h"

#include <algorithm>
#include <memory>

#include "audio/LDecibel.h"
#include "base/LOwned.h"
#include "base/LTrace.h"

namespace {

constexpr char kClassName[] = "LDBDisplay";
constexpr int kScaleLowDb = -48;
constexpr int kRedFromDb = -6;

template <class H>
struct GdiTraits {
    using Type = H;
    static Type None() { return nullptr; }
    static void Close(Type h) { DeleteObject(h); }
};

// What one meter owns, from the window's creation to its destruction.
struct Meter {
    LOwned<GdiTraits<HBITMAP>> greenBitmap;
    LOwned<GdiTraits<HBITMAP>> redBitmap;
    LOwned<GdiTraits<HBRUSH>> green;
    LOwned<GdiTraits<HBRUSH>> red;
    int8_t levelDb = kSilenceDb;
};

Meter* MeterOf(HWND window) {
    return reinterpret_cast<Meter*>(GetWindowLongA(window, GWL_USERDATA));
}

// Pixels from the left for a level.
int ScaleX(int levelDb, int width) {
    return (std::clamp(levelDb, kScaleLowDb, 0) - kScaleLowDb) * width / -kScaleLowDb;
}

void Create(HWND window) {
    const HINSTANCE instance = reinterpret_cast<HINSTANCE>(GetWindowLongA(window, GWL_HINSTANCE));
    auto meter = std::make_unique<Meter>();
    meter->greenBitmap.Reset(LoadBitmapA(instance, "LDBDisplayGreen"));
    meter->redBitmap.Reset(LoadBitmapA(instance, "LDBDisplayRed"));
    meter->green.Reset(CreatePatternBrush(meter->greenBitmap.Get()));
    meter->red.Reset(CreatePatternBrush(meter->redBitmap.Get()));
    if (!meter->green || !meter->red) LTrace("LDBDisplay::Create CreatePatternBrush FAILED");
    SetWindowLongA(window, GWL_USERDATA, reinterpret_cast<LONG>(meter.release()));
}

void Destroy(HWND window) {
    const std::unique_ptr<Meter> meter(MeterOf(window));
    SetWindowLongA(window, GWL_USERDATA, 0);
}

void Paint(HWND window) {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window, &paint);
    RECT box;
    GetClientRect(window, &box);
    const Meter* meter = MeterOf(window);
    int lit = 0;
    if (meter != nullptr && IsWindowEnabled(window)) {
        lit = ScaleX(meter->levelDb, box.right);
        const int redFrom = ScaleX(kRedFromDb, box.right);
        const RECT green = {0, 0, std::min(lit, redFrom), box.bottom};
        const RECT red = {redFrom, 0, lit, box.bottom};
        FillRect(dc, &green, meter->green.Get());
        if (lit > redFrom) FillRect(dc, &red, meter->red.Get());
    }
    const RECT dark = {lit, 0, box.right, box.bottom};
    FillRect(dc, &dark, reinterpret_cast<HBRUSH>(COLOR_BTNSHADOW + 1));
    EndPaint(window, &paint);
}

LRESULT CALLBACK MeterProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CREATE:
            Create(window);
            return 0;
        case WM_DESTROY:
            Destroy(window);
            return 0;
        case WM_PAINT:
            Paint(window);
            return 0;
        case WM_ERASEBKGND:
            return TRUE;
        case WM_ENABLE:
            InvalidateRect(window, nullptr, FALSE);
            return 0;
        default:
            return DefWindowProcA(window, message, wParam, lParam);
    }
}

}  // namespace

bool LDBDisplayRegister(HINSTANCE instance) {
    WNDCLASSA known;
    if (GetClassInfoA(instance, kClassName, &known)) return true;
    WNDCLASSA info = {};
    info.style = CS_HREDRAW | CS_VREDRAW;
    info.lpfnWndProc = MeterProc;
    info.hInstance = instance;
    info.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    info.lpszClassName = kClassName;
    return RegisterClassA(&info) != 0;
}

void LDBDisplaySetLevel(HWND window, int8_t levelDb) {
    Meter* meter = MeterOf(window);
    if (meter == nullptr || meter->levelDb == levelDb) return;
    RECT box;
    GetClientRect(window, &box);
    const int before = ScaleX(meter->levelDb, box.right);
    const int now = ScaleX(levelDb, box.right);
    meter->levelDb = levelDb;
    // Ten times a second while recording: only what changes is drawn.
    const RECT changed = {std::min(before, now), 0, std::max(before, now), box.bottom};
    if (before != now) InvalidateRect(window, &changed, FALSE);
}
