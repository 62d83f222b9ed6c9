// The commands of the main window: what a menu item, a button, a shortcut or a timer sets going.

#include "app/window/MainDialog_win.h"
#include "base/LFile.h"
#include "base/LTime.h"
#include "base/LTrace.h"
#include "res/Ids.h"
#include "store/DictationStore.h"
#include "store/SettingsKeys.h"

namespace {

constexpr char kDiskLow[] =
    "Your hard drive is low on space. Corvane might not function properly unless you remove some files.";
constexpr char kConfirmDelete[] = "Are you sure you want to delete this dictation?";
constexpr char kCannotDelete[] =
    "A dictation could not be deleted completely.\n\n"
    "One of its files may be open in another program or be write-protected. What is left of it stays in the "
    "list.";
constexpr char kCannotCreate[] =
    "Unable to create a new dictation.\n\nThe data folder cannot be written to. The disk might be full or "
    "write-protected.";

constexpr const char* kPriorities[] = {"High", "Normal", "Low"};  // in the order of the command numbers

class AboutDialog final : public LDialog {};

}  // namespace

// In the order of the command numbers: first, last, handler.
const MainDialog::CommandEntry MainDialog::kCommands[] = {
    {IDC_NEW, IDC_NEW, &MainDialog::CmNewFile},
    {IDC_SEND, IDC_SEND, &MainDialog::CmSendFile},
    {IDC_PLAY, IDC_PLAY, &MainDialog::CmPlay},
    {IDC_RECORD, IDC_RECORD, &MainDialog::CmRecord},
    {IDC_STOP, IDC_STOP, &MainDialog::CmStop},
    {IDC_GOTOSTART, IDC_GOTOSTART, &MainDialog::CmGoToStart},
    {IDC_GOTOEND, IDC_GOTOEND, &MainDialog::CmGoToEnd},
    {IDC_INFOLINE, IDC_INFOLINK, &MainDialog::CmInformation},
    {CM_NEWFILE, CM_NEWFILE, &MainDialog::CmNewFile},
    {CM_SENDFILE, CM_SENDFILE_TO, &MainDialog::CmSendFile},
    {CM_RENAMEFILE, CM_RENAMEFILE, &MainDialog::CmRenameFile},
    {CM_DELETEFILE, CM_DELETEFILE, &MainDialog::CmDeleteFile},
    {CM_PRIORITY_HIGH, CM_PRIORITY_LOW, &MainDialog::CmSetPriority},
    {CM_EXIT, CM_EXIT, &MainDialog::CmExit},
    {CM_RECORD, CM_RECORD, &MainDialog::CmRecord},
    {CM_PLAY, CM_PLAY, &MainDialog::CmPlay},
    {CM_STOP, CM_STOP, &MainDialog::CmStop},
    {CM_PLAY_SLOW, CM_PLAY_FAST, &MainDialog::CmPlaySpeed},
    {CM_GOTOSTART, CM_GOTOSTART, &MainDialog::CmGoToStart},
    {CM_REWIND, CM_FASTFORWARD, &MainDialog::CmWind},
    {CM_GOTOEND, CM_GOTOEND, &MainDialog::CmGoToEnd},
    {CM_RECORD_OVERWRITE, CM_RECORD_END, &MainDialog::CmFileRecordMode},
    {CM_RECORDMODE_OVERWRITE, CM_RECORDMODE_END, &MainDialog::CmRecordMode},
    {CM_VIEW_COMPACT, CM_VIEW_MAXIMIZED, &MainDialog::CmView},
    {CM_VIEW_FLOAT, CM_VIEW_FLOAT, &MainDialog::CmFloat},
    {CM_ABOUT, CM_ABOUT, &MainDialog::CmAbout},
};

void MainDialog::RunCommand(int command) {
    for (const CommandEntry& entry : kCommands)
        if (command >= entry.first && command <= entry.last) return (this->*entry.handle)(command);
}

// ---- Dictations ------------------------------------------------------------------------------------------

void MainDialog::CmNewFile(int) {
    FinishRunning();
    CreateDictation();
}

bool MainDialog::CreateDictation() {
    TestHardDrive();
    if (!IsOpen()) return false;
    SaveNotes();
    std::optional<NewDictation> created = ::CreateDictation(m_state.user, LNowSeconds());
    // A record under another file name may claim the number: the new dictation must have a row of its own.
    while (created && m_list.HoldsNumber(created->number)) {
        DeleteDictationFiles(created->files);
        created = ::CreateDictation(m_state.user, LNowSeconds());
    }
    if (!created) {
        LMessageBox(Window(), kCannotCreate, "Error", MB_OK | MB_ICONEXCLAMATION);
        return false;
    }
    m_list.AddFile(created->files.record);
    m_list.SelectFile(created->files.record);
    return m_list.Current().has_value();
}

void MainDialog::CmRenameFile(int) {
    FinishRunning();
    SaveNotes();
    ApplyRowChanges();  // the row must not move under the editor
    m_list.BeginRename();
}

void MainDialog::CmDeleteFile(int) {
    FinishRunning();
    SaveNotes();
    const std::vector<DictationFiles> selected = m_list.Selected();
    if (selected.empty()) return;
    if (LMessageBox(Window(), kConfirmDelete, "Confirm Delete",
                    MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) != IDYES)
        return;
    if (!IsOpen()) return;
    FinishRunning();  // another program may have started something while the question stood
    SaveNotes();
    bool all = true;
    for (const DictationFiles& files : selected) {
        if (!m_list.NumberOf(files.record)) continue;
        if (DeleteDictationFiles(files)) {
            m_list.RemoveFile(files.record);
        } else {
            all = false;
            m_list.UpdateFile(files.record);
        }
    }
    m_transport.SetDictation(m_list.Current());
    if (!all) LMessageBox(Window(), kCannotDelete, "Error", MB_OK | MB_ICONEXCLAMATION);
}

void MainDialog::CmSetPriority(int command) {
    SetPriority(kPriorities[command - CM_PRIORITY_HIGH]);
}

void MainDialog::SetPriority(std::string_view priority) {
    for (const DictationFiles& files : m_list.Selected()) {
        ::SetPriority(files.record, priority);
        m_list.UpdateFile(files.record);
    }
}

void MainDialog::CmSendFile(int command) {
    FinishRunning();
    const std::vector<DictationFiles> selected = m_list.Selected();
    const bool choose = command == CM_SENDFILE_TO;
    const int recipient = choose ? m_send.ChooseRecipient(Window()) : m_send.DefaultRecipient(Window());
    if (recipient >= 0 && IsOpen()) Send(selected, recipient);
}

void MainDialog::Send(const std::vector<DictationFiles>& selected, int recipient) {
    FinishRunning();
    SaveNotes();
    for (const DictationFiles& files : selected) {
        // While a recipient was chosen another program may have removed it.
        if (!IsOpen() || !m_list.NumberOf(files.record)) continue;
        const SendCommands::Outcome outcome = m_send.Send(files, recipient, Window());
        if (outcome == SendCommands::Outcome::Failed) break;
        if (outcome == SendCommands::Outcome::Queued) m_list.RemoveFile(files.record);
    }
}

void MainDialog::CmExit(int) {
    PostMessageA(Window(), WM_CLOSE, 0, 0);
}

void MainDialog::SaveNotes() {
    if (!m_notes.Save()) return;
    // The row moves, which a list in the middle of a click must not see: it is made anew afterwards.
    PostRowChanged(DictationFiles::OfPath(m_notes.File()));
}

void MainDialog::PostRowChanged(const DictationFiles& files) {
    const std::optional<int32_t> number = m_list.NumberOf(files.record);
    if (!number) return;
    m_changedRows.push_back(*number);
    PostMessageA(Window(), WM_ROWCHANGED, 0, 0);
}

// ---- Recording -------------------------------------------------------------------------------------------

void MainDialog::CmRecord(int) {
    m_transport.Record(DefaultRecordMode());
}

void MainDialog::CmFileRecordMode(int command) {
    m_transport.Record(static_cast<RecordMode>(command - CM_RECORD_OVERWRITE));
}

void MainDialog::CmRecordMode(int command) {
    Settings::Write(m_state.user.userFile, UserKeys::kRecordMode, command - CM_RECORDMODE_OVERWRITE);
    ApplyRecordMode();
}

RecordMode MainDialog::DefaultRecordMode() const {
    return ToRecordMode(Settings::Read(m_state.user.userFile, UserKeys::kRecordMode));
}

void MainDialog::ApplyRecordMode() {
    m_showsInsert = DefaultRecordMode() == RecordMode::Insert;
    InvalidateRect(Item(IDC_RECORD), nullptr, FALSE);
    CheckMenuRadioItem(GetMenu(Window()), CM_RECORDMODE_OVERWRITE, CM_RECORDMODE_END,
                       static_cast<UINT>(CM_RECORDMODE_OVERWRITE + static_cast<int>(DefaultRecordMode())),
                       MF_BYCOMMAND);
}

// ---- Playing and winding ---------------------------------------------------------------------------------

void MainDialog::CmPlay(int) {
    m_transport.Play();
}

void MainDialog::CmPlaySpeed(int command) {
    m_transport.PlayAt(static_cast<PlaySpeed>(command - CM_PLAY_SLOW));
    ShowPlaySpeed();
}

void MainDialog::ShowPlaySpeed() {
    const PlaySpeed speed = ToPlaySpeed(Settings::Read(m_state.data.settingsFile, SettingsKeys::kPlaySpeed));
    CheckMenuRadioItem(GetMenu(Window()), CM_PLAY_SLOW, CM_PLAY_FAST,
                       static_cast<UINT>(CM_PLAY_SLOW + static_cast<int>(speed)), MF_BYCOMMAND);
}

// From the menu, which cannot be held: the same command again, or Stop, ends it.
void MainDialog::CmWind(int command) {
    const WindDirection direction = command == CM_REWIND ? WindDirection::Back : WindDirection::Forward;
    if (m_transport.IsWinding(direction))
        m_transport.EndWinding(direction);
    else
        m_transport.BeginWinding(direction);
}

void MainDialog::CmStop(int) {
    FinishRunning();
}
void MainDialog::CmGoToStart(int) {
    m_transport.GoToStart();
}
void MainDialog::CmGoToEnd(int) {
    m_transport.GoToEnd();
}

void MainDialog::FinishRunning() {
    m_transport.Stop();
}

// ---- Window ----------------------------------------------------------------------------------------------

void MainDialog::CmView(int command) {
    m_layout.SetView(static_cast<ViewMode>(command - CM_VIEW_COMPACT));
}
void MainDialog::CmFloat(int) {
    m_layout.ToggleFloat();
}

void MainDialog::CmAbout(int) {
    AboutDialog about;
    about.RunModal(IDD_ABOUT, Window());
}

void MainDialog::CmInformation(int) {
    POINT at;
    GetCursorPos(&at);
    ShowPopup(IDM_INFO, at);
}

void MainDialog::OpenWindow() {
    if (IsIconic(Window())) ShowWindow(Window(), SW_RESTORE);
    SetForegroundWindow(Window());
}

// ---- Disk ------------------------------------------------------------------------------------------------

void MainDialog::DeleteOldFiles() {
    const int32_t days = Settings::Read(m_state.data.settingsFile, SettingsKeys::kAutoDeleteDays);
    ::DeleteOldFiles(m_state.user.sentFolder, days, LNowFileTime(),
                     [this](const LPath& audio) { return m_queue.IsQueued(audio); });
}

void MainDialog::TestHardDrive() {
    if (!IsDiskLow(m_state.data)) return;
    DeleteOldFiles();
    LMessageBox(Window(), kDiskLow, "Warning", MB_OK | MB_ICONEXCLAMATION);
}
