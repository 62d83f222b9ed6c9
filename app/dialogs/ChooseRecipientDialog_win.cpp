#include "app/dialogs/ChooseRecipientDialog_win.h"

#include "res/Ids.h"
#include "store/SendToSettings.h"
#include "ui/LDialog.h"

namespace {

// The list of the user's recipients by description.
class ChooseRecipientDialog final : public LDialog {
public:
    explicit ChooseRecipientDialog(const AppState& state) : m_state(state) {}
    const std::optional<ShownRecipient>& Chosen() const { return m_chosen; }

private:
    // Recipients that cannot be read are left out.
    bool InitDialog() override {
        const int count = RecipientCount(m_state.user.userFile);
        const std::optional<int32_t> defaultIndex = DefaultRecipientIndex(m_state.user.userFile);
        LRESULT selected = 0;
        for (int i = 0; i < count; ++i) {
            SendToSettings recipient;
            if (!recipient.Load(RecipientPath(m_state.data.folder, m_state.user.number, i))) continue;
            m_shown.push_back({i, recipient.ToBytes()});
            const bool isDefault = defaultIndex == i;
            const std::string text = DescribeRecipient(recipient, isDefault);
            const LRESULT item = ListMessage(LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
            if (isDefault) selected = item;
        }
        ListMessage(LB_SETCURSEL, selected);
        EnableWindow(Item(IDOK), ListMessage(LB_GETCOUNT) > 0);
        SetFocus(Item(IDC_CHOOSE_LIST));
        return false;
    }

    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override {
        const bool isDoubleClick = LOWORD(wParam) == IDC_CHOOSE_LIST && HIWORD(wParam) == LBN_DBLCLK;
        if (message != WM_COMMAND || (LOWORD(wParam) != IDOK && !isDoubleClick))
            return LDialog::HandleMessage(message, wParam, lParam, result);
        const LRESULT item = ListMessage(LB_GETCURSEL);
        if (item >= 0) m_chosen = m_shown[static_cast<size_t>(item)];
        if (item >= 0) EndModal(IDOK);
        return true;
    }

    LRESULT ListMessage(UINT message, LRESULT item = 0, LPARAM parameter = 0) const {
        return SendMessageA(Item(IDC_CHOOSE_LIST), message, static_cast<WPARAM>(item), parameter);
    }

    const AppState& m_state;
    std::vector<ShownRecipient> m_shown;  // mirrors the items of the list
    std::optional<ShownRecipient> m_chosen;
};

}  // namespace

std::optional<ShownRecipient> AskForRecipient(const AppState& state, LModalRunner& runner) {
    ChooseRecipientDialog dialog(state);
    runner.RunModal(dialog, IDD_CHOOSE, LModalRunner::Activity::Stops);
    return dialog.Chosen();
}
