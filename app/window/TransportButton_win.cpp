#include "app/window/TransportButton_win.h"

#include <algorithm>

#include "app/window/Contrast.h"
#include "base/LLibrary_win.h"
#include "res/Ids.h"
#include "ui/LWin.h"

namespace {

constexpr COLORREF kRed = RGB(208, 0, 0);
constexpr COLORREF kGreen = RGB(0, 128, 40);
constexpr COLORREF kLink = RGB(0, 0, 192);
constexpr COLORREF kSystemText = CLR_INVALID;  // the scheme's own

// A held button is filled with this where its symbol has no colour of its own.
constexpr COLORREF kHeldBlue = RGB(0, 84, 166);

struct Look {
    int control;
    TransportSign sign;
    COLORREF colour;
};
constexpr Look kLooks[] = {
    {IDC_RECORD, TransportSign::Record, kRed},
    {IDC_STOP, TransportSign::Stop, kSystemText},
    {IDC_PLAY, TransportSign::Play, kGreen},
    {IDC_GOTOSTART, TransportSign::GoToStart, kSystemText},
    {IDC_REWIND, TransportSign::Rewind, kSystemText},
    {IDC_FASTFORWARD, TransportSign::FastForward, kSystemText},
    {IDC_GOTOEND, TransportSign::GoToEnd, kSystemText},
};

// The platform's visual style, which push buttons follow where there is one. Its functions are newer than the
// oldest platform.
class VisualStyle {
public:
    // False when there is none: nothing was drawn.
    bool DrawButton(HWND window, HDC dc, const RECT& box, bool isPressed, bool isDisabled) const {
        if (m_draw == nullptr || !m_isActive()) return false;
        const HANDLE theme = m_open(window, L"BUTTON");
        if (theme == nullptr) return false;
        constexpr int kPushButton = 1, kNormal = 1, kPressed = 3, kDisabled = 4;
        m_draw(theme, dc, kPushButton,
               isDisabled  ? kDisabled
               : isPressed ? kPressed
                           : kNormal,
               &box, nullptr);
        m_close(theme);
        return true;
    }

private:
    template <class Function>
    Function Find(const char* name) const {
        return m_library ? LFunctionOf<Function>(m_library, name) : nullptr;
    }

    LLibrary m_library = LLoadSystemLibrary("uxtheme.dll");
    BOOL(WINAPI* m_isActive)() = Find<BOOL(WINAPI*)()>("IsAppThemed");
    HANDLE(WINAPI* m_open)(HWND, LPCWSTR) = Find<HANDLE(WINAPI*)(HWND, LPCWSTR)>("OpenThemeData");
    HRESULT(WINAPI* m_close)(HANDLE) = Find<HRESULT(WINAPI*)(HANDLE)>("CloseThemeData");
    HRESULT(WINAPI* m_draw)
    (HANDLE, HDC, int, int, const RECT*, const RECT*) =
        Find<HRESULT(WINAPI*)(HANDLE, HDC, int, int, const RECT*, const RECT*)>("DrawThemeBackground");
};

void DrawFace(const DRAWITEMSTRUCT& item, bool isPressed, bool isDisabled) {
    static const VisualStyle style;
    RECT box = item.rcItem;
    FillRect(item.hDC, &box, GetSysColorBrush(COLOR_BTNFACE));
    if (style.DrawButton(item.hwndItem, item.hDC, box, isPressed, isDisabled)) return;
    DrawFrameControl(item.hDC, &box, DFC_BUTTON,
                     static_cast<UINT>(DFCS_BUTTONPUSH | (isPressed ? DFCS_PUSHED : 0)));
}

// A picture in memory whose pixels can be read and written.
class Pixels {
public:
    Pixels(HDC dc, int side) : m_dc(CreateCompatibleDC(dc)) {
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof info.bmiHeader, side, -side, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        m_bitmap.Reset(CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        m_bits = static_cast<uint32_t*>(bits);
        if (m_bitmap) m_old = SelectObject(m_dc, m_bitmap.Get());
    }
    ~Pixels() {
        if (m_old != nullptr) SelectObject(m_dc, m_old);
        DeleteDC(m_dc);
    }
    Pixels(const Pixels&) = delete;
    Pixels& operator=(const Pixels&) = delete;

    HDC Dc() const { return m_dc; }
    uint32_t* Bits() const { return m_bits; }

private:
    HDC m_dc;
    LBitmap m_bitmap;
    HGDIOBJ m_old = nullptr;
    uint32_t* m_bits = nullptr;
};

constexpr uint32_t SwapRedAndBlue(uint32_t colour) {
    return (colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF);
}

// Lays a symbol over what is there.
void LaySign(HDC dc, POINT at, int side, TransportSign sign, COLORREF colour) {
    const Pixels pixels(dc, side);
    if (pixels.Bits() == nullptr) return;
    BitBlt(pixels.Dc(), 0, 0, side, side, dc, at.x, at.y, SRCCOPY);
    GdiFlush();
    uint32_t* pixel = pixels.Bits();
    for (const uint8_t cover : DrawSign(sign, side)) {
        *pixel = Mix(SwapRedAndBlue(colour), *pixel & 0xFFFFFF, cover * 100 / 255);
        ++pixel;
    }
    BitBlt(dc, at.x, at.y, side, side, pixels.Dc(), 0, 0, SRCCOPY);
}

COLORREF ColourOf(const Look& look) {
    const COLORREF text = GetSysColor(COLOR_BTNTEXT);
    return look.colour == kSystemText ? text : Readable(look.colour, GetSysColor(COLOR_BTNFACE), text);
}

void DrawFocus(const DRAWITEMSTRUCT& item, int inset) {
    if ((item.itemState & ODS_FOCUS) == 0) return;
    RECT box = item.rcItem;
    InflateRect(&box, -inset, -inset);
    SetTextColor(item.hDC, GetSysColor(COLOR_BTNTEXT));
    SetBkColor(item.hDC, GetSysColor(COLOR_BTNFACE));
    DrawFocusRect(item.hDC, &box);
}

}  // namespace

void DrawTransportButton(const DRAWITEMSTRUCT& item, bool isHeld, TransportSign recordSign) {
    const bool isDown = isHeld || (item.itemState & ODS_SELECTED) != 0;
    const bool isDisabled = (item.itemState & ODS_DISABLED) != 0;
    const auto* look = std::ranges::find(kLooks, static_cast<int>(item.CtlID), &Look::control);
    if (look == std::end(kLooks)) return;
    DrawFace(item, isDown, isDisabled);
    COLORREF colour = isDisabled ? GetSysColor(COLOR_GRAYTEXT) : ColourOf(*look);
    // A held button is filled with a colour, and only recording is red, so that one glance tells the state.
    if (isHeld) {
        RECT face = item.rcItem;
        InflateRect(&face, -3, -3);
        const LBrush fill(CreateSolidBrush(look->colour == kSystemText ? kHeldBlue : look->colour));
        FillRect(item.hDC, &face, fill.Get());
        colour = RGB(255, 255, 255);
    }
    const LONG width = item.rcItem.right - item.rcItem.left;
    const LONG height = item.rcItem.bottom - item.rcItem.top;
    const LONG side = std::min(width, height) * 11 / 20;
    const LONG shift = isDown ? 1 : 0;
    const POINT at = {item.rcItem.left + (width - side) / 2 + shift,
                      item.rcItem.top + (height - side) / 2 + shift};
    LaySign(item.hDC, at, static_cast<int>(side), item.CtlID == IDC_RECORD ? recordSign : look->sign, colour);
    DrawFocus(item, 4);
}

void DrawLinkButton(const DRAWITEMSTRUCT& item) {
    RECT box = item.rcItem;
    FillRect(item.hDC, &box, GetSysColorBrush(COLOR_BTNFACE));
    LOGFONTA font = {};
    GetObjectA(GetCurrentObject(item.hDC, OBJ_FONT), sizeof font, &font);
    font.lfUnderline = TRUE;
    const LFont underlined(CreateFontIndirectA(&font));
    const HGDIOBJ old = SelectObject(item.hDC, underlined.Get());
    const COLORREF text = GetSysColor(COLOR_BTNTEXT);
    SetTextColor(item.hDC, Readable(kLink, GetSysColor(COLOR_BTNFACE), text));
    SetBkMode(item.hDC, TRANSPARENT);
    const std::string words = LWindowText(item.hwndItem);
    DrawTextA(item.hDC, words.c_str(), -1, &box, DT_SINGLELINE | DT_VCENTER | DT_RIGHT);
    SelectObject(item.hDC, old);
    DrawFocus(item, 0);
}
