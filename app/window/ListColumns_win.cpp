#include "app/window/ListColumns_win.h"

#include <commctrl.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "app/window/DateText_win.h"
#include "app/window/DictationRow.h"
#include "ui/LWin.h"

namespace {

constexpr int kTextMargins = 12;     // pixels beside a text in its column
constexpr int kUsableNotes = 60;     // pixels
constexpr LONG kHeaderFlat = 0x200;  // the style HDS_FLAT, where the platform knows it

// Texts among which are the widest of a column; nullptr: its texts have any length.
using Samples = std::vector<std::string> (*)();
std::vector<std::string> SampleDurations() {
    return {"000:00"};
}
std::vector<std::string> SamplePriorities() {
    return {std::begin(kPriorities), std::end(kPriorities)};
}

struct Column {
    const char* heading;
    int width;  // pixels
    Samples samples;
};
constexpr Column kColumns[] = {
    {"Dictation", 120, nullptr},  {"Date", 70, SampleDates},          {"Time", 70, SampleTimesOfDay},
    {"Dur", 60, SampleDurations}, {"Priority", 70, SamplePriorities}, {"Notes", 200, nullptr},
};
static_assert(std::size(kColumns) == ListColumns::Count);

}  // namespace

void ListColumns::Attach(HWND list) {
    m_list = list;
    for (int column = 0; column < Count; ++column) {
        LVCOLUMNA item = {};
        item.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        item.pszText = const_cast<char*>(kColumns[column].heading);
        item.cx = WidthOf(column);
        item.iSubItem = column;
        SendMessageA(m_list, LVM_INSERTCOLUMNA, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item));
    }
    m_nameWidth = WidthOf(Name);
    if (const HWND header = GetDlgItem(m_list, 0))
        SetWindowLongA(header, GWL_STYLE, GetWindowLongA(header, GWL_STYLE) | kHeaderFlat);
    Fit();  // a window that starts maximized has its size already
}

// A width that comes from texts is not scaled with the font: at large fonts the notes need the room.
int ListColumns::WidthOf(int column) const {
    const Column& design = kColumns[column];
    if (design.samples == nullptr) return LScaled(design.width);
    int widest = ListView_GetStringWidth(m_list, design.heading);
    for (const std::string& text : design.samples())
        widest = std::max(widest, static_cast<int>(ListView_GetStringWidth(m_list, text.c_str())));
    return std::max(design.width, widest + kTextMargins);
}

void ListColumns::Fit() {
    if (m_list == nullptr || std::exchange(m_isFitting, true)) return;
    RECT box = {};
    GetClientRect(m_list, &box);
    // The room for the scroll bar is kept free when there is none: columns do not jump when it comes.
    const bool hasBar = (GetWindowLongA(m_list, GWL_STYLE) & WS_VSCROLL) != 0;
    const int room = static_cast<int>(box.right) - (hasBar ? 0 : GetSystemMetrics(SM_CXVSCROLL));
    int facts = 0;
    for (int column = Date; column < Notes; ++column) facts += ListView_GetColumnWidth(m_list, column);
    if (ListView_GetColumnWidth(m_list, Name) == m_nameWidth) {
        const int least = kColumns[Name].width;
        m_nameWidth = NameColumnWidth(room - facts, least, LScaled(least), LScaled(kUsableNotes));
        ListView_SetColumnWidth(m_list, Name, m_nameWidth);
    }
    const int others = facts + ListView_GetColumnWidth(m_list, Name);
    ListView_SetColumnWidth(m_list, Notes, LastColumnWidth(room, others));
    m_isFitting = false;
}
