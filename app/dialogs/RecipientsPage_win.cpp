#include "app/dialogs/RecipientsPage_win.h"

#include <prsht.h>

#include <algorithm>

#include "app/dialogs/RecipientEditor_win.h"
#include "app/dialogs/RecipientSettings_win.h"
#include "base/LText.h"
#include "store/SettingsKeys.h"

namespace {

constexpr uint32_t kPauseMs = 1000;  // of sending, for a deletion
constexpr char kNotStored[] =
    "The recipient could not be stored. The disk might be full, or your folder write-protected.";
constexpr char kNotRead[] =
    "The settings of this recipient cannot be read. "
    "Their file may be open in another program, or belong to a newer version of Corvane.";
constexpr char kTooMany[] = "There cannot be more recipients. Please delete one first.";
constexpr char kBusy[] =
    "A dictation is being sent at the moment. Please delete the recipient when it has been sent.";
constexpr char kNotDeleted[] =
    "The recipient could not be deleted. Nothing was changed.\n\n"
    "Your folder, or a file of one of your recipients, may be write-protected.";
constexpr char kChanged[] = "The recipients have changed meanwhile. The list now shows them as they are.";
constexpr char kHeld[] = "The file of this recipient is open in another program. Please try again.";
constexpr char kUnsettledRow[] = "(a recipient is being deleted)";
constexpr char kHeldRow[] = "(your user file is open in another program)";
constexpr char kChangedMeanwhile[] =
    "This recipient was changed or deleted in another window meanwhile. "
    "Please choose Cancel, and look at the list again.";
constexpr char kDefaultNotStored[] =
    "The default could not be stored. Your user file may be open in another program or write-protected.";
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
    const auto add = [list](const std::string& text) {
        SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    };
    const bool isSettled = m_queue.SettleDeletion(m_state.user.number);
    const auto numbers = RecipientNumbers::Read(m_state.user.userFile);
    const int count = isSettled && numbers ? numbers->count : 0;
    m_shown.clear();
    for (int i = 0; i < count; ++i) {
        m_shown.push_back(ShownRecipient::Read(m_state.data, m_state.user, i));
        add(LShownText(DescribeRecipient(m_state.data, m_state.user, i)));
    }
    if (!isSettled || !numbers) add(isSettled ? kHeldRow : kUnsettledRow);
    SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(std::min(selected, count - 1)), 0);
    SendMessageA(list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list, nullptr, TRUE);
    UpdateControls();
}

int RecipientsPage::Selected() const {
    const int row = static_cast<int>(SendMessageA(Item(IDC_RECIPIENTS_LIST), LB_GETCURSEL, 0, 0));
    return row < static_cast<int>(m_shown.size()) ? row : LB_ERR;
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
        if (notification == LBN_SELCHANGE && m_shown.empty()) ShowList(0);  // the row says why: a new look
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

// Finishes what another deletion has left, and looks whether the row still shows who its number means. False
// after the user was told, with the list as it is.
bool RecipientsPage::IsStill(int index) {
    if (!m_queue.SettleDeletion(m_state.user.number)) return Tell(kRecipientUnsettled), false;
    if (static_cast<size_t>(index) >= m_shown.size()) return false;
    const auto now = ShownRecipient::Read(m_state.data, m_state.user, index);
    if (now == m_shown[static_cast<size_t>(index)]) return true;
    if (now.record.empty() && !LFile::IsAbsent(RecordOf(index))) return Tell(kNotRead), false;
    ShowList(index);
    Tell(kChanged);
    return false;
}

void RecipientsPage::CmAdd() {
    const LPath& userFile = m_state.user.userFile;
    if (!m_queue.SettleDeletion(m_state.user.number)) return Tell(kRecipientUnsettled);
    const auto numbers = RecipientNumbers::Read(userFile);
    if (!numbers) return Tell(kUserFileHeld);
    if (numbers->count >= kMostRecipients) return Tell(kTooMany);
    std::optional<int32_t> index;
    const auto store = [&](const SendToSettings& added, bool makesDefault) -> std::string {
        if (!m_queue.SettleDeletion(m_state.user.number)) return kRecipientUnsettled;
        index = AddRecipient(m_state.data, m_state.user, added);
        if (!index) return kNotStored;
        if (makesDefault) Settings::Write(userFile, UserKeys::kSendDefault, *index);
        StoreRateOfDefault(userFile, *index, added);
        return {};
    };
    if (EditRecipient(GetParent(Window()), m_state, std::nullopt, SendToSettings(), {store, {}}))
        Changed(*index);
}

// Why the editor's recipient must not be stored under its number; empty when it may.
std::string RecipientsPage::ChangeOf(int index) {
    // First, as it may give the number to somebody else.
    if (!m_queue.SettleDeletion(m_state.user.number)) return kRecipientUnsettled;
    const auto now = ShownRecipient::Read(m_state.data, m_state.user, index);
    if (now == m_shown[static_cast<size_t>(index)]) return {};
    return now.record.empty() && !LFile::IsAbsent(RecordOf(index)) ? kHeld : kChangedMeanwhile;
}

bool RecipientsPage::StoreDefault(int index) {
    Settings::Write(m_state.user.userFile, UserKeys::kSendDefault, index);
    return DefaultRecipientIndex(m_state.user.userFile) == index;
}

void RecipientsPage::CmEdit() {
    const int index = Selected();
    if (index < 0 || !IsStill(index)) return;
    SendToSettings recipient;
    if (!recipient.Load(RecordOf(index)) && !LFile::IsAbsent(RecordOf(index))) return Tell(kNotRead);
    const auto store = [&](const SendToSettings& edited, bool) -> std::string {
        if (std::string change = ChangeOf(index); !change.empty()) return change;
        if (!SaveRecipient(m_state.data, m_state.user, index, edited)) return kNotStored;
        StoreRateOfDefault(m_state.user.userFile, index, edited);
        return {};
    };
    const auto makeDefault = [&]() -> std::string {
        if (std::string change = ChangeOf(index); !change.empty()) return change;
        return StoreDefault(index) ? "" : kDefaultNotStored;
    };
    EditRecipient(GetParent(Window()), m_state, index, recipient, {store, makeDefault});
    Changed(index);  // also after Cancel: the default may be another one
}

// The default is a number, which means another recipient once one before it is deleted. Who that is, is said
// before; empty when it stays the same one.
std::string RecipientsPage::DefaultAfter(int index) const {
    const auto numbers = RecipientNumbers::Read(m_state.user.userFile);
    if (!numbers || !numbers->defaultIndex || *numbers->defaultIndex < index) return {};
    const int next = *numbers->defaultIndex + 1;  // takes the number
    if (next >= numbers->count) return "\n\nYou will then have no default recipient until you choose one.";
    return "\n\nYour default recipient will then be " +
           LShownText(DescribeRecipient(m_state.data, m_state.user, next)) + ".";
}

bool RecipientsPage::IsSureToDelete(int index) {
    const std::optional<int32_t> waiting = m_queue.WaitingFor(RecordOf(index));
    if (!waiting) return Tell(kUnknownWaiting), false;
    const std::string before = *waiting > 0 ? LFormat(kWaiting, int{*waiting}) : std::string();
    const std::string after = DefaultAfter(index);
    const bool isGrave = *waiting > 0 || !after.empty();
    const UINT icon = isGrave ? MB_ICONEXCLAMATION | MB_DEFBUTTON2 : MB_ICONQUESTION;
    return LMessageBox(GetParent(Window()), before + kDelete + after, "Confirm Delete", MB_YESNO | icon) ==
           IDYES;
}

void RecipientsPage::CmDelete() {
    const int index = Selected();
    if (index < 0 || !IsStill(index) || !IsSureToDelete(index) || !IsStill(index)) return;
    const auto isStill = [&] {
        return ShownRecipient::Read(m_state.data, m_state.user, index) == m_shown[static_cast<size_t>(index)];
    };
    const BGSend::Outcome outcome = m_queue.DeleteRecipient(m_state.user.number, index, kPauseMs, isStill);
    if (outcome == BGSend::Outcome::Busy) return Tell(kBusy);
    if (outcome == BGSend::Outcome::Failed) return Tell(kNotDeleted);
    if (outcome == BGSend::Outcome::Unfinished) Tell(kRecipientUnsettled);
    if (outcome == BGSend::Outcome::Changed) Tell(kChanged);
    Changed(index);
}

void RecipientsPage::CmMakeDefault() {
    const int index = Selected();
    if (index < 0 || !IsStill(index)) return;
    if (!StoreDefault(index)) return Tell(kDefaultNotStored);
    Changed(index);
}

void RecipientsPage::Changed(int selected) {
    ShowList(selected);
    PropSheet_CancelToClose(GetParent(Window()));
}
