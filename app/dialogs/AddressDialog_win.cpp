#include "app/dialogs/AddressDialog_win.h"

#include <set>

#include "base/LProfile.h"
#include "res/Ids.h"
#include "store/SendToSettings.h"
#include "ui/LDialog.h"

namespace {

class AddressDialog final : public LDialog {
public:
    explicit AddressDialog(const std::set<std::string>& addresses) : m_addresses(addresses) {}
    const std::string& Chosen() const { return m_chosen; }

private:
    bool InitDialog() override {
        for (const std::string& address : m_addresses)
            SendMessageA(List(), LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(address.c_str()));
        SendMessageA(List(), LB_SETCURSEL, 0, 0);
        SetFocus(List());
        return false;
    }

    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override {
        const bool isDoubleClick = LOWORD(wParam) == IDC_ADDRESSES_LIST && HIWORD(wParam) == LBN_DBLCLK;
        if (message != WM_COMMAND || (LOWORD(wParam) != IDOK && !isDoubleClick))
            return LDialog::HandleMessage(message, wParam, lParam, result);
        const LRESULT row = SendMessageA(List(), LB_GETCURSEL, 0, 0);
        char text[LProfile::kMaxText + 1] = {};  // longer than an address in a record can be
        if (row < 0 ||
            SendMessageA(List(), LB_GETTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text)) < 0)
            return true;
        m_chosen = text;
        EndModal(IDOK);
        return true;
    }

    HWND List() const { return Item(IDC_ADDRESSES_LIST); }

    const std::set<std::string>& m_addresses;
    std::string m_chosen;
};

}  // namespace

std::optional<std::string> AskForAddress(HWND owner, const AppState& state) {
    std::set<std::string> addresses;
    for (int32_t i = 0; i < RecipientCount(state.user.userFile); ++i) {
        SendToSettings recipient;
        if (recipient.Load(RecipientPath(state.data.folder, state.user.number, i)) &&
            !recipient.emailAddress.empty())
            addresses.insert(recipient.emailAddress);
    }
    if (addresses.empty()) {
        LMessageBox(owner,
                    "There are no addresses yet. Those that you enter for your recipients are listed here.",
                    "E-mail Addresses", MB_OK | MB_ICONINFORMATION);
        return std::nullopt;
    }
    AddressDialog dialog(addresses);
    if (dialog.RunModal(IDD_ADDRESSES, owner) != IDOK) return std::nullopt;
    return dialog.Chosen();
}
