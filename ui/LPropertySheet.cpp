#include "ui/LPropertySheet.h"

#include <commctrl.h>
#include <prsht.h>

#include <algorithm>

#include "base/LTrace.h"

// A page validates when it loses activation (PSN_KILLACTIVE) and writes when the sheet applies (PSN_APPLY).
// The platform sends the first to the visible page before the second goes to all, and validates every other
// page when the user leaves it, so no page is applied that was not validated.

// The first version of the structure: the oldest common controls refuse a larger one.
static_assert(sizeof(PROPSHEETPAGEA_V1) == 40);

bool LPropertyPage::InitDialog() {
    m_isLoading = true;
    m_isAccepted = false;
    InitPage();
    m_table.Load(Window());
    m_isLoading = false;
    UpdateControls();
    return true;
}

bool LPropertyPage::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    if (message == WM_COMMAND && !m_isLoading && m_table.IsChange(LOWORD(wParam), HIWORD(wParam))) {
        PropSheet_Changed(GetParent(Window()), Window());
        UpdateControls();
        result = 0;
        return true;
    }
    if (message != WM_NOTIFY) return false;
    switch (reinterpret_cast<const NMHDR*>(lParam)->code) {
        case PSN_KILLACTIVE:
            result = IsValid() ? FALSE : TRUE;
            return true;
        case PSN_APPLY:
            // Every page was validated when it was left.
            m_table.Store();
            m_isAccepted = true;
            Accepted();
            result = PSNRET_NOERROR;
            return true;
        case PSN_SETACTIVE:
            if (!IsWindowVisible(GetParent(Window()))) LCentreOnOwner(GetParent(Window()));
            return false;
        case UDN_DELTAPOS: {
            const auto& arrows = *reinterpret_cast<const NMUPDOWN*>(lParam);
            const auto level = reinterpret_cast<HWND>(SendMessageA(arrows.hdr.hwndFrom, UDM_GETBUDDY, 0, 0));
            SendMessageA(level, WM_KEYDOWN, arrows.iDelta > 0 ? VK_UP : VK_DOWN, 0);
            result = TRUE;  // the control's own position never moves
            return true;
        }
        default:
            return false;
    }
}

void LPropertyPage::AttachArrows(int upDown) const {
    SendMessageA(Item(upDown), UDM_SETRANGE, 0, MAKELPARAM(kMaxDb, kSilenceDb));
}

bool LPropertyPage::IsValid() {
    if (const auto problem = m_table.FindProblem()) return Refuse(problem->control, problem->text);
    return Validate();
}

bool LPropertyPage::Refuse(int control, std::string_view text) {
    LMessageBox(GetParent(Window()), text, "Error", MB_OK | MB_ICONEXCLAMATION);
    if (IsOpen()) SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(control)), TRUE);
    return false;
}

// For a page, WM_INITDIALOG carries the platform's page description, which in turn carries the object.
INT_PTR CALLBACK LPropertyPage::PageProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) lParam = reinterpret_cast<const PROPSHEETPAGEA_V1*>(lParam)->lParam;
    return DialogProc(window, message, wParam, lParam);
}

bool LPropertySheet::RunModal(HWND owner) {
    std::vector<PROPSHEETPAGEA_V1> pages;
    for (LPropertyPage* page : m_pages) {
        PROPSHEETPAGEA_V1 description = {};
        description.dwSize = sizeof description;
        description.hInstance = LInstance();
        description.pszTemplate = MAKEINTRESOURCEA(page->Resource());
        description.pfnDlgProc = LPropertyPage::PageProc;
        description.lParam = reinterpret_cast<LPARAM>(static_cast<LDialog*>(page));
        pages.push_back(description);
    }
    PROPSHEETHEADERA header = {};
    header.dwSize = PROPSHEETHEADERA_V1_SIZE;
    header.dwFlags = PSH_PROPSHEETPAGE;
    header.hwndParent = owner;
    header.hInstance = LInstance();
    header.pszCaption = m_title.c_str();
    header.nPages = static_cast<UINT>(pages.size());
    header.ppsp = reinterpret_cast<LPCPROPSHEETPAGEA>(pages.data());
    if (PropertySheetA(&header) == -1) LTrace("LPropertySheet::RunModal PropertySheet FAILED");
    return std::ranges::any_of(m_pages, &LPropertyPage::IsAccepted);
}
