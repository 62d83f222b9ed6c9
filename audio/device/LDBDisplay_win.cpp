#include "audio/device/LDBDisplay_win.h"

#include <algorithm>
#include <memory>
#include <span>

#include "audio/device/LMeter.h"
#include "base/LOwned.h"
#include "base/LTrace.h"

namespace {

constexpr char kClassName[] = "LDBDisplay";
constexpr UINT_PTR kTimer = 1;
constexpr LONG kGapPixels = 1;                     // between two channels
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

    void SetLevels(std::span<const int8_t> levelsDb) {
        if (m_channels != levelsDb.size()) InvalidateRect(m_window, nullptr, FALSE);
        m_channels = levelsDb.size();
        const DWORD now = GetTickCount();
        for (size_t i = 0; i < m_channels; ++i) m_rows[i].meter.SetLevel(levelsDb[i], now);
        // A timer that fires soon enough is left alone: it sets itself anew when it fires.
        const uint32_t waitMs = ShowChanges(now);
        if (waitMs < m_waitMs || waitMs == LMeter::kNever) SetWait(waitMs);
    }

    void Tick() {
        const DWORD now = GetTickCount();
        for (Row& row : Rows()) row.meter.Advance(now);
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
        const bool isEnabled = IsWindowEnabled(m_window);
        for (size_t i = 0; i < m_channels; ++i) {
            const RECT rowBox = RowBox(box, i);
            if (isEnabled)
                PaintRow(dc, m_rows[i], rowBox, paint.rcPaint);
            else
                FillRect(dc, &rowBox, reinterpret_cast<HBRUSH>(COLOR_BTNSHADOW + 1));
        }
        if (m_channels == 2) {
            const RECT gap = {0, RowBox(box, 0).bottom, box.right, RowBox(box, 1).top};
            FillRect(dc, &gap, reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1));
        }
        EndPaint(m_window, &paint);
    }

private:
    struct Row {
        LMeter meter;
        LMeterPicture shown;
    };

    static HINSTANCE Instance(HWND window) {
        return reinterpret_cast<HINSTANCE>(GetWindowLongA(window, GWL_HINSTANCE));
    }

    std::span<Row> Rows() { return std::span(m_rows).first(m_channels); }

    RECT RowBox(const RECT& box, size_t row) const {
        if (m_channels == 1) return box;
        const LONG height = (box.bottom - kGapPixels) / 2;
        return row == 0 ? RECT{0, 0, box.right, height} : RECT{0, box.bottom - height, box.right, box.bottom};
    }

    HBRUSH BrushOf(LMeterColour colour) const {
        if (colour == LMeterColour::Dark) return m_dark.Get();
        return colour == LMeterColour::Green ? m_green.Get() : m_red.Get();
    }

    // Paints each pixel once, and only those of the damaged range, so nothing flickers.
    void PaintRow(HDC dc, Row& row, const RECT& box, const RECT& damaged) {
        row.shown = row.meter.Draw(box.right);
        for (const LMeterPicture::Stretch& stretch : row.shown.stretches) {
            const RECT part = {std::max<LONG>(stretch.from, damaged.left), box.top,
                               std::min<LONG>(stretch.to, damaged.right), box.bottom};
            if (part.left < part.right) FillRect(dc, &part, BrushOf(stretch.colour));
        }
    }

    // Invalidates the pixels that change. Returns for how long the picture then stays as it is, in ms.
    uint32_t ShowChanges(DWORD now) {
        const bool isEnabled = IsWindowEnabled(m_window);
        RECT box;
        GetClientRect(m_window, &box);
        uint32_t waitMs = LMeter::kNever;
        for (size_t i = 0; i < m_channels && isEnabled; ++i) {
            Row& row = m_rows[i];
            const RECT rowBox = RowBox(box, i);
            const LMeterPicture picture = row.meter.Draw(rowBox.right);
            LMeterPicture::ForEachChange(row.shown, picture, [&](int32_t from, int32_t to) {
                const RECT part = {from, rowBox.top, to, rowBox.bottom};
                InvalidateRect(m_window, &part, FALSE);
            });
            row.shown = picture;
            waitMs = std::min(waitMs, row.meter.WaitMs(now));
        }
        return waitMs;
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
    Row m_rows[2];
    size_t m_channels = 1;
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

void SetLevels(HWND window, std::span<const int8_t> levelsDb) {
    if (Display* display = DisplayOf(window)) display->SetLevels(levelsDb);
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
    SetLevels(meter, {&levelDb, 1});
}

void LDBDisplaySetLevels(HWND meter, int8_t leftDb, int8_t rightDb) {
    const int8_t levelsDb[] = {leftDb, rightDb};
    SetLevels(meter, levelsDb);
}
