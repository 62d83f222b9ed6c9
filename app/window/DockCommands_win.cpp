#include "app/window/DockCommands_win.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "app/dialogs/DockTransferDlg_win.h"
#include "base/LFile.h"
#include "base/LRunApart.h"
#include "base/LText.h"
#include "base/LThread.h"
#include "hardware/DockTransfer.h"
#include "res/Ids.h"
#include "store/DictationRecord.h"
#include "store/DictationStore.h"
#include "store/SettingsKeys.h"

namespace {

constexpr char kKeepsInput[] =
    "Corvane is recording your portable recorder.\n\nPlease click Done in its window before you record with "
    "the microphone.";
constexpr char kTitle[] = "Transfer from Portable Recorder";
constexpr uint32_t kLookMs = 50;

// The transfer as a process: the window answers while the folder is looked at, and Cancel works. Each file is
// loaded by a process of its own inside.
class TransferProcess final : public LProcess, private DockTransfer::Host {
public:
    TransferProcess(const AppState& state, const DockCommands::LoadFile& load, const LModalRunner& runner)
        : m_load(load), m_runner(runner), m_transfer(state.data.settingsFile, state.data.folder, *this) {}

    ProcessResult Process(ProcessContext& context) override {
        m_context = &context;
        context.SetStatus("Looking for files...");
        m_outcome = m_transfer.Run();
        using End = DockTransfer::End;
        const bool isStopped = m_outcome.end == End::Stopped || m_outcome.end == End::NotLoaded;
        return isStopped ? ProcessResult::Stopped : ProcessResult::Done;
    }
    const DockTransfer::Outcome& Outcome() const { return m_outcome; }

private:
    bool RunApart(const std::function<void()>& look) override {
        const auto ended = std::make_shared<LSignalObject>();
        const auto run = [look, ended] {
            look();
            ended->Signal();
        };
        if (!LRunApart(run)) run();
        while (!ended->Wait(kLookMs))
            if (m_context->CancelRequested()) return false;
        return true;
    }
    bool Next(const LPath& file, size_t done, size_t count) override {
        m_context->SetStatus(LFormat("File %lu of %lu: %.80s", static_cast<unsigned long>(done) + 1,
                                     static_cast<unsigned long>(count),
                                     LShownText(LFileNameOf(file.View())).c_str()));
        m_context->SetProgress(static_cast<double>(done) / static_cast<double>(count));
        return m_runner.MayGoOn() && !m_context->CancelRequested();
    }
    LoadedFile Load(const LPath& file, bool sends) override {
        bool canSend = sends && m_canSend;
        const LoadedFile loaded = m_load(file, canSend);
        if (sends) m_canSend = canSend;
        return loaded;
    }

    const DockCommands::LoadFile& m_load;
    const LModalRunner& m_runner;
    DockTransfer m_transfer;
    DockTransfer::Outcome m_outcome;
    ProcessContext* m_context = nullptr;
    bool m_canSend = true;  // nobody is to be told twice that there is no typist
};

}  // namespace

// ---- Transfer of files -----------------------------------------------------------------------------------

bool DockCommands::Transfer() {
    const LPath& settings = m_state.data.settingsFile;
    if (!AskForDockTransfer(settings, m_runner) || !m_runner.MayGoOn()) return false;
    Settings::Write(settings, SettingsKeys::kDockMethod, 1);
    TransferProcess transfer(m_state, m_load, m_runner);
    const bool isDone = m_runner.RunProcess(transfer, kTitle) == ProcessResult::Done;
    const LPath folder(Settings::Read(settings, SettingsKeys::kDockTransferFolder));
    const std::string text = DockTransferText(transfer.Outcome(), folder);
    if (!text.empty()) m_runner.Box(text, kTitle, MB_OK | MB_ICONINFORMATION);
    return isDone;
}

// ---- Recording -------------------------------------------------------------------------------------------

bool DockCommands::Cable() {
    bool isOpen = m_dialog.IsOpen();
    if (isOpen) {
        SetForegroundWindow(m_dialog.Window());
    } else if (m_transport.Stop()) {
        const std::optional<NewDictation> tape = m_dictations.Make(TapeName);
        isOpen = tape && m_dialog.Open(m_window, tape->files);
        if (tape && !isOpen) DeleteDictationFiles(tape->files);
    }
    Settings::Write(m_state.data.settingsFile, SettingsKeys::kDockMethod, 0);
    ShowButton();
    return isOpen;
}

void DockCommands::ShowButton() const {
    SendMessageA(GetDlgItem(m_window, IDC_DOCK), BM_SETSTATE, m_dialog.IsOpen(), 0);
}

bool DockCommands::KeepsInput() {
    if (!m_dialog.HoldsInput()) return m_dialog.YieldInput(), false;
    if (m_runner.OpenModal() == LModalRunner::Modal::Nothing)
        m_runner.TellLater(kKeepsInput, "Portable Recorder");
    return true;
}

void DockCommands::TakeInput() {
    if (m_transport.TakesInput()) m_transport.Stop();
    m_listening.Stop();
}

// Notes may have been typed in another session, which lists the dictation.
bool DockCommands::KeepRecorded(const DictationFiles& files) {
    if (SendCommands::HasRecording(files) || !LFile::IsAbsent(files.notes)) return true;
    if (!DeleteDictationFiles(files)) return true;
    m_list.RemoveFiles({files});
    return false;
}

void DockCommands::Finish() {
    m_dialog.Close();
    m_transport.Stop();
    if (!m_requests.empty() && m_list.IsRenaming()) SetFocus(GetDlgItem(m_window, IDC_LIST));  // ends it
    CarryOut(Sends::Now);
}

void DockCommands::EvRequest(int request, LPARAM text) {
    if (!m_dialog.IsMaking(request, text)) return;
    if (request == DOCK_SHOWBUTTON) {
        ShowButton();
        return SelectAdded();
    }
    const LPath named(reinterpret_cast<const char*>(text));
    if (request == DOCK_ADD)
        m_requests.push_back(
            {LPath::Join(m_state.user.currentFolder.View(), named.View()).WithExtension(".dat")});
    if (request == DOCK_SEND) m_requests.push_back({named, true});
    Settle();
}

void DockCommands::Settle() {
    if (m_runner.OpenModal() == LModalRunner::Modal::Nothing && !m_list.IsRenaming()) CarryOut(Sends::AtRest);
}

// One after the other, since sending may ask, and the window be closed meanwhile: that carries out the rest.
// A row that is listed already, because the list was filled anew while it waited, gets its length now.
void DockCommands::CarryOut(Sends sends) {
    while (m_runner.MayGoOn()) {
        const bool maySend = sends == Sends::Now || !m_transport.IsBusy();
        const auto next = std::ranges::find_if(
            m_requests, [&](const Request& request) { return !request.sends || maySend; });
        if (next == m_requests.end()) return;
        const Request request = *next;
        m_requests.erase(next);
        if (request.sends) {
            m_dictations.SendLoaded(DictationFiles::OfPath(request.record));
            continue;
        }
        if (m_list.NumberOf(request.record))
            m_list.UpdateFile(request.record);
        else
            m_list.AddFile(request.record);
        m_added = request.record;
    }
}

// What was recorded becomes the current dictation when its window is closed, unless it was sent, or something
// runs that works on another one.
void DockCommands::SelectAdded() {
    if (m_dialog.IsOpen() || m_runner.OpenModal() != LModalRunner::Modal::Nothing || m_list.IsRenaming())
        return;
    const LPath added = std::exchange(m_added, {});
    if (m_list.NumberOf(added) && !m_transport.IsBusy()) m_list.SelectFile(added);
}
