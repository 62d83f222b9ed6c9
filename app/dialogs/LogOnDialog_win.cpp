#include "app/dialogs/LogOnDialog_win.h"

#include <string>
#include <vector>

#include "base/LText.h"
#include "res/Ids.h"
#include "store/UserList.h"
#include "ui/LControlTable.h"
#include "ui/LDialog.h"

// Adding a user and removing the current one decide who is logged on, so both close the dialog: a Cancel
// afterwards could not take them back.

namespace {

constexpr char kRemove[] = "Are you sure you want to remove this user?";
constexpr char kLastUser[] = "The last user cannot be removed.\n\nPlease add another user first.";
constexpr char kNotStored[] =
    "The list of users could not be changed.\n\n"
    "The settings file may be open in another program or be write-protected, or the disk may be full. "
    "Please try again.";
constexpr char kNoName[] = "Please enter the name of the user.";

void Tell(HWND owner, const char* text) {
    LMessageBox(owner, text, "Error", MB_OK | MB_ICONEXCLAMATION);
}

class AddUserDialog final : public LDialog {
public:
    std::string name, email;

private:
    bool InitDialog() override {
        for (const int control : {IDC_ADDUSER_NAME, IDC_ADDUSER_EMAIL})
            SendMessageA(Item(control), EM_SETLIMITTEXT, kMostSettingBytes, 0);
        return true;
    }

    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override {
        if (message == WM_COMMAND && LOWORD(wParam) == IDOK) {
            name = LWindowText(Item(IDC_ADDUSER_NAME));
            email = LWindowText(Item(IDC_ADDUSER_EMAIL));
            if (name.find_first_not_of(" \t") == std::string::npos) return RefuseName();
        }
        return LDialog::HandleMessage(message, wParam, lParam, result);
    }

    bool RefuseName() {
        Tell(Window(), kNoName);
        if (IsOpen()) SetFocus(Item(IDC_ADDUSER_NAME));
        return true;
    }
};

class LogOnDialog final : public LDialog {
public:
    explicit LogOnDialog(const AppState& state) : m_data(state.data), m_current(state.user.number) {}
    uint32_t Next() const { return m_next; }

private:
    bool InitDialog() override {
        Fill(m_current);
        SetFocus(Item(IDC_LOGON_LIST));
        return false;
    }

    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override {
        if (message != WM_COMMAND) return LDialog::HandleMessage(message, wParam, lParam, result);
        switch (LOWORD(wParam)) {
            case IDC_LOGON_ADD:
                Add();
                return true;
            case IDC_LOGON_REMOVE:
                Remove();
                return true;
            case IDC_LOGON_LIST:
                if (HIWORD(wParam) == LBN_DBLCLK) LogOn(Selected());
                return true;
            case IDOK:
                LogOn(Selected());
                return true;
            default:
                return LDialog::HandleMessage(message, wParam, lParam, result);
        }
    }

    LRESULT ListMessage(UINT message, LRESULT item = 0, LPARAM parameter = 0) const {
        return SendMessageA(Item(IDC_LOGON_LIST), message, static_cast<WPARAM>(item), parameter);
    }

    // Selects a user, or the first one when he is not in the list.
    void Fill(uint32_t selected) {
        ListMessage(LB_RESETCONTENT);
        LRESULT row = 0;
        for (const OfferedUser& user : OfferedUsers(m_data, m_current)) {
            const LRESULT item = ListMessage(LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(user.name.c_str()));
            ListMessage(LB_SETITEMDATA, item, static_cast<LPARAM>(user.number));
            if (user.number == selected) row = item;
        }
        ListMessage(LB_SETCURSEL, row);
        EnableWindow(Item(IDC_LOGON_REMOVE), ListMessage(LB_GETCOUNT) > 1);
    }

    std::optional<uint32_t> Selected() const {
        const LRESULT item = ListMessage(LB_GETCURSEL);
        if (item < 0) return std::nullopt;
        return static_cast<uint32_t>(ListMessage(LB_GETITEMDATA, item));
    }

    void LogOn(std::optional<uint32_t> user) {
        if (!user) return;
        m_next = *user;
        EndModal(IDOK);
    }

    void Add() {
        AddUserDialog dialog;
        if (dialog.RunModal(IDD_ADDUSER, Window()) != IDOK || !IsOpen()) return;
        const std::optional<uint32_t> added = MakeUser(m_data, dialog.name, dialog.email, m_current);
        if (!added) Tell(Window(), kNotStored);
        if (IsOpen()) LogOn(added);
    }

    void Remove() {
        const std::optional<uint32_t> user = Selected();
        if (!user || LMessageBox(Window(), kRemove, "Confirm Remove User",
                                 MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) != IDYES)
            return;
        if (!IsOpen()) return;
        uint32_t next = m_current;
        const UserRemoval removal = RemoveUser(m_data, *user, m_current, next);
        if (removal != UserRemoval::Removed)
            Tell(Window(), removal == UserRemoval::IsLast ? kLastUser : kNotStored);
        if (!IsOpen()) return;
        if (next != m_current)
            LogOn(next);
        else
            Fill(m_current);
    }

    const DataFolder& m_data;
    const uint32_t m_current;
    uint32_t m_next = 0;
};

}  // namespace

std::optional<uint32_t> AskForUser(const AppState& state, LModalRunner& runner) {
    LogOnDialog dialog(state);
    if (runner.RunModal(dialog, IDD_LOGON, LModalRunner::Activity::Stops) != IDOK) return std::nullopt;
    return dialog.Next() == state.user.number ? std::nullopt : std::optional(dialog.Next());
}
