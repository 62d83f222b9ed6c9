#include "app/SendCommands_win.h"

#include <algorithm>

#include "audio/LWaveFile.h"
#include "base/LFile.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "res/Ids.h"
#include "store/DictationRecord.h"
#include "store/MoveToSent.h"
#include "store/SendToSettings.h"
#include "store/SettingsKeys.h"
#include "ui/LDialog.h"

namespace {

constexpr char kNoRecipients[] =
    "No Typist Recipients have been set up.\n\nPlease open the Recipient Settings Dialog Box using the "
    "Recipient "
    "Settings item on the Settings menu and add a New Recipient.";
constexpr char kNoRecipientsCaption[] = "No Send To Recipients";

constexpr int kMostRecipients = 1000;  // whatever number a damaged user file may hold

// What the list of recipients and a sent dictation say of one; a record that cannot be loaded is told by its
// number.
std::string RecipientDescription(const AppState& state, int32_t index) {
    SendToSettings recipient;
    if (!recipient.Load(RecipientPath(state.data.folder, state.user.number, index)))
        return LFormat("Recipient %d", static_cast<int>(index) + 1);
    return DescribeRecipient(recipient, ::DefaultRecipient(state.user.userFile) == index);
}

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
            const std::string text = RecipientDescription(m_state, i);
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

// False for a dictation whose recording was begun but never heard a word, too.
bool HasRecording(const LPath& audio) {
    LFile file(audio, LFile::Open::Read);
    if (!file.IsOpen()) return LFile::Exists(audio);
    LWaveInfo info;
    return file.Size() > 0 && (!LWaveFile::ReadInfo(file, info) || info.dataBytes > 0);
}

void TellNoRecipients(HWND owner) {
    LMessageBox(owner, kNoRecipients, kNoRecipientsCaption, MB_OK | MB_ICONEXCLAMATION);
}

void TellNotSent(const DictationFiles& files, const char* reason, HWND owner) {
    const std::string name = DictationRecord::Read(files.record).name;
    LMessageBox(owner, LFormat("Unable to send the dictation \"%s\".\n\n%s", name.c_str(), reason), "Error",
                MB_OK | MB_ICONEXCLAMATION);
}

}  // namespace

int SendCommands::DefaultRecipient(HWND owner) const {
    const std::optional<int32_t> index = ::DefaultRecipient(m_state.user.userFile);
    if (!index) TellNoRecipients(owner);
    return index.value_or(-1);
}

int SendCommands::ChooseRecipient(HWND owner) const {
    // Without a usable default the settings want attention, whichever way is chosen.
    if (DefaultRecipient(owner) < 0) return -1;
    ChooseRecipientDialog dialog(m_state);
    dialog.RunModal(IDD_CHOOSE, owner);
    return dialog.Chosen();
}

SendCommands::Outcome SendCommands::Send(const DictationFiles& files, int recipient, HWND owner) {
    if (!HasRecording(files.audio)) {
        TellNotSent(files, "It has no recording yet. Please record it first.", owner);
        return Outcome::NothingToSend;
    }
    const std::string description = RecipientDescription(m_state, recipient);
    const LPath recipientPath = RecipientPath(m_state.data.folder, m_state.user.number, recipient);
    MoveToSent move(m_state.user, files.record);
    if (!move.Run(description, LNowSeconds())) {
        TellNotSent(
            files,
            "One of its files may be open in another program, or the disk may be full. It stays in the list.",
            owner);
        return Outcome::Failed;
    }
    if (!m_queue.Add(move.Sent().audio, recipientPath, m_state.user.number))
        return Outcome::Failed;  // the queue says why
    move.Commit();
    return Outcome::Queued;
}
