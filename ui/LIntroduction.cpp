#include "ui/LIntroduction.h"

#include "base/LText.h"
#include "res/Ids.h"

void LIntroduction::Show(HWND owner) {
    if (Create(IDD_INTRO, owner)) ShowWindow(Window(), SW_SHOW);
}

bool LIntroduction::PreTranslateMessage(MSG& message) {
    return IsOpen() && IsDialogMessageA(Window(), &message);
}

bool LIntroduction::InitDialog() {
    ShowPage();
    return true;
}

bool LIntroduction::HandleMessage(UINT message, WPARAM wParam, LPARAM, LRESULT& result) {
    const bool isClose = message == WM_CLOSE || (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL);
    result = 0;
    if (isClose) {
        Close();
        return true;
    }
    if (message != WM_COMMAND) return false;
    if (LOWORD(wParam) == IDC_INTRO_BACK && m_page > 0) {
        --m_page;
        ShowPage();
    } else if (LOWORD(wParam) == IDC_INTRO_NEXT && m_page + 1 < m_pages.size()) {
        ++m_page;
        ShowPage();
    } else if (LOWORD(wParam) == IDC_INTRO_NEXT) {
        Close();
    }
    return true;
}

void LIntroduction::ShowPage() {
    const bool isLast = m_page + 1 == m_pages.size();
    LSetWindowText(Item(IDC_INTRO_TITLE), m_pages[m_page].title);
    LSetWindowText(Item(IDC_INTRO_TEXT), m_pages[m_page].text);
    LSetWindowText(Item(IDC_INTRO_PAGE), LFormat("Page %u of %u", static_cast<unsigned>(m_page + 1),
                                                 static_cast<unsigned>(m_pages.size())));
    LSetWindowText(Item(IDC_INTRO_NEXT), isLast ? "&Finish" : "&Next >");
    EnableWindow(Item(IDC_INTRO_BACK), m_page > 0);
}
