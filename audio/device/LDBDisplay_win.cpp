#include "audio/device/LDBDisplay_win.h"

#include <algorithm>
#include <memory>

#include "audio/device/LMeter.h"
#include "base/LOwned.h"
#include "base/LTrace.h"

namespace {

constexpr char kClassName[] = "LDBDisplay";
constexpr UINT_PTR kTimer = 1;
constexpr COLORREF kDark = RGB(0x30, 0x30, 0x30);  // the colour between the segments of the bitmaps
constexpr COLORREF kGreen = RGB(0x00, 0xC0, 0x00);
constexpr COLORREF kRed = RGB(0xE0, 0x00, 0x00);

template <class H>
struct GdiTraits {
    using Type = H;
    static Type None() { return nullptr; }
    static void Close(Type h) { DeleteObject(h); }
};
using Brush = LOwned<GdiTraits<HBRUSH>>;

// A brush with the pattern of a bitmap in the resources; without one, of a plain colour.
class PatternBrush {
public:
    PatternBrush(HINSTANCE instance, const char* bitmap, COLORREF colour)
        : m_bitmap(LoadBitmapA(instance, bitmap)) {
        if (m_bitmap) m_brush.Reset(CreatePatternBrush(m_bitmap.Get()));
        if (m_brush) return;
        LTrace("LDBDisplay::PatternBrush CreatePatternBrush FAILED", bitmap);
        m_brush.Reset(CreateSolidBrush(colour));
    }
    HBRUSH Get() const { return m_brush.Get(); }

private:
    LOwned<GdiTraits<HBITMAP>> m_bitmap;
    Brush m_brush;
};

// One meter window, from its creation to its destruction.
class Display {
public:
    explicit Display(HWND window)
        : m_window(window),
          m_green(Instance(window), "LDBDisplayGreen", kGreen),
          m_red(Instance(window), "LDBDisplayRed", kRed),
          m_dark(CreateSolidBrush(kDark)) {}

    void SetLevel(int8_t levelDb) {
        const DWORD now = GetTickCount();
        m_meter.SetLevel(levelDb, now);
        // A timer that fires soon enough is left alone: it sets itself anew when it fires.
        const uint32_t waitMs = ShowChanges(now);
        if (waitMs < m_waitMs || waitMs == LMeter::kNever) SetWait(waitMs);
    }

    void Tick() {
        const DWORD now = GetTickCount();
        m_meter.Advance(now);
        SetWait(ShowChanges(now));
    }

    void EnabledChanged() {
        InvalidateRect(m_window, nullptr, FALSE);
        Tick();
    }

    void Paint() {
        PAINTSTRUCT paint;
        const HDC dc = BeginPaint(m_window, &paint);
        RECT box;
        GetClientRect(m_window, &box);
        if (IsWindowEnabled(m_window))
            PaintMeter(dc, box, paint.rcPaint);
        else
            FillRect(dc, &box, reinterpret_cast<HBRUSH>(COLOR_BTNSHADOW + 1));
        EndPaint(m_window, &paint);
    }

private:
    static HINSTANCE Instance(HWND window) {
        return reinterpret_cast<HINSTANCE>(GetWindowLongA(window, GWL_HINSTANCE));
    }

    HBRUSH BrushOf(LMeterColour colour) const {
        if (colour == LMeterColour::Dark) return m_dark.Get();
        return colour == LMeterColour::Green ? m_green.Get() : m_red.Get();
    }

    // Paints each pixel once, and only those of the damaged range, so nothing flickers.
    void PaintMeter(HDC dc, const RECT& box, const RECT& damaged) {
        m_shown = m_meter.Draw(box.right);
        for (const LMeterPicture::Stretch& stretch : m_shown.stretches) {
            const RECT part = {std::max<LONG>(stretch.from, damaged.left), box.top,
                               std::min<LONG>(stretch.to, damaged.right), box.bottom};
            if (part.left < part.right) FillRect(dc, &part, BrushOf(stretch.colour));
        }
    }

    // Invalidates the pixels that change. Returns for how long the picture then stays as it is, in ms.
    uint32_t ShowChanges(DWORD now) {
        if (!IsWindowEnabled(m_window)) return LMeter::kNever;
        RECT box;
        GetClientRect(m_window, &box);
        const LMeterPicture picture = m_meter.Draw(box.right);
        LMeterPicture::ForEachChange(m_shown, picture, [&](int32_t from, int32_t to) {
            const RECT part = {from, box.top, to, box.bottom};
            InvalidateRect(m_window, &part, FALSE);
        });
        m_shown = picture;
        return m_meter.WaitMs(now);
    }

    void SetWait(uint32_t waitMs) {
        if (waitMs == m_waitMs) return;
        if (waitMs == LMeter::kNever)
            KillTimer(m_window, kTimer);
        else
            SetTimer(m_window, kTimer, waitMs, nullptr);
        m_waitMs = waitMs;
    }

    HWND m_window;
    PatternBrush m_green;
    PatternBrush m_red;
    Brush m_dark;
    LMeter m_meter;
    LMeterPicture m_shown;
    uint32_t m_waitMs = LMeter::kNever;
};

Display* DisplayOf(HWND window) {
    return reinterpret_cast<Display*>(GetWindowLongA(window, GWL_USERDATA));
}

void Create(HWND window) {
    SetWindowLongA(window, GWL_USERDATA, reinterpret_cast<LONG>(std::make_unique<Display>(window).release()));
}

void Destroy(HWND window) {
    const std::unique_ptr<Display> display(DisplayOf(window));
    SetWindowLongA(window, GWL_USERDATA, 0);
}

// The window's data is its Display, from WM_CREATE to WM_DESTROY.
LRESULT CALLBACK DisplayProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CREATE) {
        Create(window);
        return 0;
    }
    Display* display = DisplayOf(window);
    if (display == nullptr) return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
        case WM_DESTROY:
            Destroy(window);
            return 0;
        case WM_PAINT:
            display->Paint();
            return 0;
        case WM_ERASEBKGND:
            return TRUE;
        case WM_ENABLE:
            display->EnabledChanged();
            return 0;
        case WM_TIMER:
            display->Tick();
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
    info.lpfnWndProc = DisplayProc;
    info.hInstance = instance;
    info.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    info.lpszClassName = kClassName;
    return RegisterClassA(&info) != 0;
}

void LDBDisplaySetLevel(HWND meter, int8_t levelDb) {
    if (Display* display = DisplayOf(meter)) display->SetLevel(levelDb);
}
