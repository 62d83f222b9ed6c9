#include "app/dialogs/LogOnDialog_win.h"
#include "app/dialogs/UserSettings_win.h"
#include "app/window/MainDialog_win.h"
#include "base/LLeftOver.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "send/MailedFiles.h"
#include "store/Recovery.h"
#include "store/SettingsKeys.h"

// The change of the dictating user. Everything of the user before is finished first: transport, notes, list,
// insertions, errors of sending, lock. Then the state is overwritten in one piece, without messages in
// between, so that no command, timer or other program meets one user's list beside another's folder. What
// follows is done as at the start; commands are refused while the list is filled. The queue is not touched:
// its entries name their users.

namespace {

// The lock of a user's folder may be held for a moment, while an error of sending is kept there.
constexpr uint32_t kLockWaitMs = 300;
constexpr char kUnsavedNotes[] =
    "The notes of \"%.80s\" could not be saved. The disk might be full or write-protected.\n\n"
    "Please log on as another user when they are saved.";

}  // namespace

// Repairs unfinished work of an earlier run, before anything is listed or sent, and takes up its errors.
void MainDialog::TakeUserFolder() {
    const LPath folder = UserFolderPath(m_state.data.folder, m_state.user.number);
    const LPath lock = LPath::Join(folder.View(), LLeftOver::kInUseLock);
    // Left to another Windows session on the same folder: its unfinished work would look left over.
    if (m_inUse.Take(lock, kLockWaitMs) == LFileLock::Result::Held) return;
    m_queue.SettleDeletion(m_state.user.number);
    RecoverDictations(
        m_state.user, [this](const LPath& audio) { return m_queue.IsQueued(audio); }, LNowSeconds());
    RemoveMailedFiles(m_state.user.sentFolder, LNowSeconds());
    m_queue.KeepErrorsIn(folder);
}

// What may ask something, once the list stands.
void MainDialog::LookAfterUser() {
    m_dictations.DeleteOldFiles();
    m_dictations.TestHardDrive();
    m_sent.CollectReports();
    if (m_inUse.IsTaken()) m_inserts.OfferAll();
}

bool MainDialog::LogOnAsOther() {
    if (!MayLeaveUser()) return false;
    const std::optional<uint32_t> user = AskForUser(m_state, m_runner);
    // Devices work while a dialog is open, and so do other programs.
    if (!user) return false;
    if (!MayLeaveUser()) {
        // Adding or removing has stored the other one already.
        SetCurrentUser(m_state.data.settingsFile, m_state.user.number);
        return false;
    }
    ChangeUser(*user);
    return true;
}

// False, after the user was told, while typed notes exist in memory alone; also when the window is to close.
bool MainDialog::MayLeaveUser() {
    const bool goesOn = m_transport.Stop();
    m_notes.Save();
    if (!goesOn || m_notes.Unsaved().Empty()) return goesOn;
    const std::string name = m_list.NameOf(DictationFiles::OfPath(m_notes.Unsaved().First()).record);
    m_runner.Box(LFormat(kUnsavedNotes, name.c_str()), "Notes Not Saved", MB_OK | MB_ICONEXCLAMATION);
    return false;
}

void MainDialog::ChangeUser(uint32_t user) {
    m_dock.Finish();
    m_list.Clear();
    FollowSelection();  // no dictation is the current one
    m_inserts.ForgetThoseLater();
    m_sent.ForgetReports(kLockWaitMs);
    m_queue.LeaveErrors();
    m_inUse.Release();
    SetCurrentUser(m_state.data.settingsFile, user);
    m_state.user = SelectUser(m_state.data, user);
    m_display.ShowUser(ShownUserName(m_state.user.details, user));
    m_display.ShowRecordMode(DefaultRecordMode());
    TakeUserFolder();
    if (!FillList()) return;
    m_display.FocusHome();
    LookAfterUser();
}

bool MainDialog::EditUserSettings() {
    ShowUserSettings(m_state, m_runner, m_listening,
                     [this] { return m_transport.IsBusy() || m_dock.IsListening(); });
    if (!IsOpen()) return true;
    RepeatStoppedTone();
    const UserDetails details = UserDetails::Read(m_state.user.userFile);
    if (details.result == LReadResult::Unreadable) return true;
    m_state.user.details = details;
    m_display.ShowUser(ShownUserName(details, m_state.user.number));
    return true;
}
