#include "app/window/TextLine_win.h"

#include "ui/LWin.h"

void DrawTextLine(const DRAWITEMSTRUCT& item, const LineColours& colours, int right) {
    RECT box = item.rcItem;
    const LBrush brush(CreateSolidBrush(colours.background));
    FillRect(item.hDC, &box, brush.Get());
    if (right > 0 && right < box.right) box.right = right;
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, colours.text);
    const std::string text = LWindowText(item.hwndItem);
    DrawTextA(item.hDC, text.c_str(), static_cast<int>(text.size()), &box,
              DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
}

int TextWidth(HWND control, const std::string& text) {
    const HDC dc = GetDC(control);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0)));
    SIZE size = {};
    GetTextExtentPoint32A(dc, text.c_str(), static_cast<int>(text.size()), &size);
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    return static_cast<int>(size.cx);
}

std::string TextThatIsCut(HWND control) {
    RECT box;
    GetClientRect(control, &box);
    const std::string text = LWindowText(control);
    return TextWidth(control, text) > box.right ? text : std::string();
}
