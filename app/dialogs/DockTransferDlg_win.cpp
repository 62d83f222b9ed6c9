#include "app/dialogs/DockTransferDlg_win.h"

#include "app/dialogs/SettingsRows_win.h"
#include "res/Ids.h"
#include "store/SettingsKeys.h"
#include "ui/LBrowseFolder.h"

namespace {

constexpr SettingsRow kRows[] = {
    {LControlRow::Text(IDC_DOCKTRANSFER_FOLDER), SettingsKeys::kDockTransferFolder},
    {LControlRow::Check(IDC_DOCKTRANSFER_DELETE), SettingsKeys::kDockTransferDelete},
    {LControlRow::Check(IDC_DOCKTRANSFER_NEW), SettingsKeys::kDockTransferNew},
    {LControlRow::Check(IDC_DOCK_AUTOSEND), SettingsKeys::kDockAutoSend},
};
constexpr char kNotStored[] =
    "The settings could not be stored. The settings file may be write-protected or the disk full.";

class DockTransferDlg final : public LDialog {
public:
    explicit DockTransferDlg(const LPath& settingsFile) : m_rows(settingsFile, kRows), m_table(m_rows) {}

private:
    bool InitDialog() override {
        m_table.Load(Window());
        SendMessageA(Item(IDC_DOCKTRANSFER_FOLDER), EM_SETSEL, 0, -1);
        return true;
    }
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override {
        const bool isClick = message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED;
        if (isClick && LOWORD(wParam) == IDC_DOCKTRANSFER_BROWSE) return CmBrowse(), true;
        if (isClick && LOWORD(wParam) == IDOK && !CmOk()) return true;
        return LDialog::HandleMessage(message, wParam, lParam, result);
    }
    void CmBrowse() const {
        const LPath folder = LBrowseFolder(Window(), "Locate the portable recorder's folder...");
        if (!folder.Empty()) LSetWindowText(Item(IDC_DOCKTRANSFER_FOLDER), folder.View());
    }
    // False when the answers could not be stored: the transfer would go by others.
    bool CmOk() {
        m_rows.Retry();
        m_table.Store(LControlTable::Which::All);
        if (m_rows.IsStored()) return true;
        LMessageBox(Window(), kNotStored, "Error", MB_OK | MB_ICONEXCLAMATION);
        return false;
    }

    SettingsRows m_rows;
    LControlTable m_table;
};

}  // namespace

bool AskForDockTransfer(const LPath& settingsFile, LModalRunner& runner) {
    DockTransferDlg dialog(settingsFile);
    return runner.RunModal(dialog, IDD_DOCKTRANSFER, LModalRunner::Activity::Stops) == IDOK;
}
