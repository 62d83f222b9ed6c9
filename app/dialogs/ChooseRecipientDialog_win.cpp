#include "app/dialogs/ChooseRecipientDialog_win.h"

#include <algorithm>

#include "base/LFile.h"
#include "res/Ids.h"
#include "store/SendToSettings.h"
#include "ui/LDialog.h"

namespace {

constexpr int kMostRecipients = 1000;  // whatever number a damaged user file may hold

// The user's recipients by description; the default one is chosen at first.
class ChooseRecipientDialog final : public LDialog {
public:
    explicit ChooseRecipientDialog(const AppState& state) : m_state(state) {}
    int Chosen() const { return m_chosen; }

private:
    bool InitDialog() override {
        const HWND list = Item(IDC_CHOOSE_LIST);
        const int count = std::min<int>(RecipientCount(m_state.user.userFile), kMostRecipients);
        const int defaultIndex = ::DefaultRecipient(m_state.user.userFile).value_or(0);
        for (int i = 0; i < count; ++i) {
            if (!LFile::Exists(RecipientPath(m_state.data.folder, m_state.user.number, i))) break;
            const std::string text = DescribeRecipient(m_state.data, m_state.user, i);
            SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
        }
        SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(defaultIndex), 0);
        SetFocus(list);
        return false;
    }

    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override {
        if (message != WM_COMMAND) return LDialog::HandleMessage(message, wParam, lParam, result);
        const bool isDoubleClick = LOWORD(wParam) == IDC_CHOOSE_LIST && HIWORD(wParam) == LBN_DBLCLK;
        if (LOWORD(wParam) != IDOK && !isDoubleClick)
            return LDialog::HandleMessage(message, wParam, lParam, result);
        m_chosen = static_cast<int>(SendMessageA(Item(IDC_CHOOSE_LIST), LB_GETCURSEL, 0, 0));
        EndModal(IDOK);
        return true;
    }

    const AppState& m_state;
    int m_chosen = -1;
};

}  // namespace

int ChooseRecipient(const AppState& state, LModalRunner& runner) {
    ChooseRecipientDialog dialog(state);
    runner.RunModal(dialog, IDD_CHOOSE, LModalRunner::WhatRuns::Stops);
    return dialog.Chosen();
}
