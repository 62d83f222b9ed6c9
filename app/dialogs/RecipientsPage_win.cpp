#include "app/dialogs/RecipientsPage_win.h"

#include <prsht.h>

#include <algorithm>

#include "app/dialogs/RecipientEditor_win.h"
#include "base/LText.h"
#include "store/SettingsKeys.h"

namespace {

constexpr uint32_t kPauseMs = 1000;  // of sending, for a deletion
constexpr char kNotStored[] =
    "The recipient could not be stored. The disk might be full, or your folder write-protected.";
constexpr char kNotRead[] =
    "The settings of this recipient cannot be read. Their file may be open in another program, or belong to "
    "a "
    "newer version of Corvane.";
constexpr char kTooMany[] = "There cannot be more recipients. Please delete one first.";
constexpr char kBusy[] =
    "A dictation is being sent at the moment. Please delete the recipient when it has been sent.";
constexpr char kNotDeleted[] =
    "The recipient could not be deleted completely. Your folder may be write-protected. The rest is done "
    "when "
    "the next dictation is sent.";
constexpr char kDelete[] = "Are you sure you want to delete this recipient?";
constexpr char kWaiting[] =
    "%d dictation(s) still wait to be sent to this recipient.\n\n"
    "If you delete it now they cannot be sent, and stay among the sent dictations with the status \"Send "
    "Failed\", from where you can recover them.\n\n";
constexpr char kUnknownWaiting[] =
    "It cannot be told at the moment whether dictations wait to be sent to this recipient. Please try again.";

}  // namespace

RecipientsPage::RecipientsPage(const AppState& state, BGSend& queue)
    : LPropertyPage(IDD_RECIPIENTS, LNoControls()), m_state(state), m_queue(queue) {}

void RecipientsPage::ShowList(int selected) {
    const HWND list = Item(IDC_RECIPIENTS_LIST);
    SendMessageA(list, WM_SETREDRAW, FALSE, 0);
    SendMessageA(list, LB_RESETCONTENT, 0, 0);
    const int count = RecipientCount(m_state.user.userFile);
    for (int i = 0; i < count; ++i) {
        const std::string text = LShownText(DescribeRecipient(m_state.data, m_state.user, i));
        SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(std::min(selected, count - 1)), 0);
    SendMessageA(list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list, nullptr, TRUE);
    UpdateControls();
}

int RecipientsPage::Selected() const {
    return static_cast<int>(SendMessageA(Item(IDC_RECIPIENTS_LIST), LB_GETCURSEL, 0, 0));
}

void RecipientsPage::UpdateControls() {
    const int selected = Selected();
    const HWND focus = GetFocus();
    Enable(IDC_RECIPIENTS_EDIT, selected >= 0);
    Enable(IDC_RECIPIENTS_DELETE, selected >= 0);
    Enable(IDC_RECIPIENTS_DEFAULT, selected >= 0 && DefaultRecipientIndex(m_state.user.userFile) != selected);
    if (focus != nullptr && IsChild(Window(), focus) && !IsWindowEnabled(focus))
        SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(IDC_RECIPIENTS_LIST)), TRUE);
}

bool RecipientsPage::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    const bool isOurs = message == WM_COMMAND && EvCommand(LOWORD(wParam), HIWORD(wParam));
    return isOurs || LPropertyPage::HandleMessage(message, wParam, lParam, result);
}

bool RecipientsPage::EvCommand(int control, int notification) {
    if (control == IDC_RECIPIENTS_LIST) {
        if (notification == LBN_SELCHANGE) UpdateControls();
        if (notification == LBN_DBLCLK) CmEdit();
        return true;
    }
    if (notification != BN_CLICKED) return false;
    switch (control) {
        case IDC_RECIPIENTS_ADD:
            return CmAdd(), true;
        case IDC_RECIPIENTS_EDIT:
            return CmEdit(), true;
        case IDC_RECIPIENTS_DELETE:
            return CmDelete(), true;
        case IDC_RECIPIENTS_DEFAULT:
            return CmMakeDefault(), true;
        default:
            return false;
    }
}

void RecipientsPage::CmAdd() {
    const LPath& userFile = m_state.user.userFile;
    const int32_t index = RecipientCount(userFile);
    if (index >= kMostRecipients) return Tell(kTooMany);
    const int32_t defaultBefore = Settings::Read(userFile, UserKeys::kSendDefault);
    const auto added = EditRecipient(GetParent(Window()), m_state, index, SendToSettings());
    if (!added) {
        // The editor may have made a recipient the default that there will not be.
        if (Settings::Read(userFile, UserKeys::kSendDefault) != defaultBefore)
            Settings::Write(userFile, UserKeys::kSendDefault, defaultBefore);
        return;
    }
    if (!AddRecipient(m_state.data, m_state.user, *added)) return Tell(kNotStored);
    StoreRateOfDefault(m_state.user.userFile, index, *added);
    Changed(index);
}

void RecipientsPage::CmEdit() {
    const int index = Selected();
    if (index < 0) return;
    SendToSettings recipient;
    if (!recipient.Load(RecordOf(index)) && !LFile::IsAbsent(RecordOf(index))) return Tell(kNotRead);
    const auto edited = EditRecipient(GetParent(Window()), m_state, index, recipient);
    if (edited && !SaveRecipient(m_state.data, m_state.user, index, *edited)) return Tell(kNotStored);
    if (edited) StoreRateOfDefault(m_state.user.userFile, index, *edited);
    Changed(index);  // also after Cancel: the default may be another one
}

bool RecipientsPage::IsSureToDelete(int index) {
    const std::optional<int32_t> waiting = m_queue.WaitingFor(RecordOf(index));
    if (!waiting) return Tell(kUnknownWaiting), false;
    const std::string before = *waiting > 0 ? LFormat(kWaiting, int{*waiting}) : std::string();
    const UINT icon = *waiting > 0 ? MB_ICONEXCLAMATION | MB_DEFBUTTON2 : MB_ICONQUESTION;
    return LMessageBox(GetParent(Window()), before + kDelete, "Confirm Delete", MB_YESNO | icon) == IDYES;
}

void RecipientsPage::CmDelete() {
    const int index = Selected();
    if (index < 0 || !IsSureToDelete(index)) return;
    switch (m_queue.DeleteRecipient(m_state.user.number, index, kPauseMs)) {
        case BGSend::Deletion::Busy:
            return Tell(kBusy);
        case BGSend::Deletion::Failed:
            Tell(kNotDeleted);
            break;
        case BGSend::Deletion::Done:
            break;
    }
    Changed(index);
}

void RecipientsPage::CmMakeDefault() {
    const int index = Selected();
    if (index < 0) return;
    Settings::Write(m_state.user.userFile, UserKeys::kSendDefault, index);
    if (Settings::Read(m_state.user.userFile, UserKeys::kSendDefault) != index) return Tell(kNotStored);
    Changed(index);
}

void RecipientsPage::Changed(int selected) {
    ShowList(selected);
    PropSheet_CancelToClose(GetParent(Window()));
}
