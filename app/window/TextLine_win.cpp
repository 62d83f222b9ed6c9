#include "app/window/TextLine_win.h"

#include <algorithm>

#include "app/window/ControlLayout.h"
#include "ui/LWin.h"

static void DrawPart(HDC dc, RECT box, std::string_view text) {
    DrawTextA(dc, text.data(), static_cast<int>(text.size()), &box,
              DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
}

void DrawTextLine(const DRAWITEMSTRUCT& item, const LineColours& colours, int right, size_t keptBytes) {
    RECT box = item.rcItem;
    const LBrush brush(CreateSolidBrush(colours.background));
    FillRect(item.hDC, &box, brush.Get());
    box.right = right;
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, colours.text);
    const std::string text = LWindowText(item.hwndItem);
    const std::string_view all = text;
    const std::string_view kept = all.substr(all.size() - std::min(keptBytes, all.size()));
    const std::string_view begin = all.substr(0, all.size() - kept.size());
    const int room = static_cast<int>(box.right - box.left);
    RECT first = box;
    first.right = first.left + BeginWidth(room, LTextWidth(item.hDC, begin), LTextWidth(item.hDC, kept));
    box.left = first.right;
    DrawPart(item.hDC, first, begin);
    DrawPart(item.hDC, box, kept);
}

std::string TextThatIsCut(HWND control, int right) {
    const std::string text = LWindowText(control);
    return LTextMeasure(control).WidthOf(text) > right ? text : std::string();
}
