#include "app/window/SentCommands_win.h"

#include "app/dialogs/SentWorkDialog_win.h"
#include "base/LTime.h"
#include "res/Ids.h"
#include "store/DictationFiles.h"
#include "store/MoveToSent.h"

namespace {

constexpr uint32_t kCollectEveryMs = 5 * 60 * 1000;  // folders of the network may be slow
constexpr uint32_t kPauseMs = 1000;                  // of sending, for the dictation that is in work
constexpr char kInWork[] = "It is being sent at the moment. It can be recovered when it has been sent.";
constexpr char kSameNumberUnsaved[] =
    "The notes of a dictation of the same number could not be saved yet. The disk may be full. Please try "
    "again later.";

}  // namespace

// Stops the transport first: it must not go on unseen behind a dialog.
bool SentCommands::ReadHistory(SentHistory& history) {
    const bool goesOn = m_transport.Stop();
    m_notes.Save();
    return goesOn && m_runner.RunProcess(history, "Reading Sent Dictations") == ProcessResult::Done;
}

bool SentCommands::ViewSent() {
    SentHistory history(m_state.user.sentFolder);
    if (!ReadHistory(history)) return false;
    SentWorkDialog dialog(m_state, history, m_queue, m_collect);
    m_runner.RunModal(dialog, IDD_SENTWORK, LModalRunner::Activity::Stops);
    return true;
}

void SentCommands::CollectReports() {
    const uint32_t nowMs = LTickMs();
    if (m_collectedMs && nowMs - *m_collectedMs < kCollectEveryMs) return;
    const auto isQueued = [this](const LPath& audio) { return m_queue.IsQueued(audio); };
    if (m_collect.Begin(m_state.data, m_state.user, isQueued, [] {})) m_collectedMs = nowMs;
}

void SentCommands::ForgetReports(uint32_t waitMs) {
    m_collect.Stop(waitMs);
    m_collectedMs.reset();
}

std::optional<std::vector<LPath>> SentCommands::Recover() {
    m_recovered.reset();
    SentHistory history(m_state.user.sentFolder);
    if (!ReadHistory(history)) return std::nullopt;
    RecoverDialog dialog(m_state.data.settingsFile, history, *this);
    m_recover = &dialog;
    m_runner.RunModal(dialog, IDD_RECOVER, LModalRunner::Activity::Stops);
    m_recover = nullptr;
    return m_recovered;
}

std::string SentCommands::BringBack(const LPath& sentRecord) {
    if (!m_recovered) m_recovered.emplace();
    const DictationFiles files = DictationFiles::OfPath(sentRecord).InFolder(m_state.user.currentFolder);
    // A dictation of the same number gets another one: nothing more may be said or typed under its old one.
    if (m_current.Is(files)) m_list.SelectFiles({});
    const bool goesOn = m_transport.Stop();
    m_notes.Save();
    if (!goesOn) return {};
    if (m_notes.Unsaved().Find(files.notes) != nullptr) return kSameNumberUnsaved;
    const LPath audio = DictationFiles::OfPath(sentRecord).audio;
    const bool isWaiting = m_queue.IsQueued(audio) == QueueAnswer::Yes;
    MoveToSent move(m_state.user, sentRecord, [&](const LPath& asked) {
        return isWaiting ? QueueAnswer::No : m_queue.IsQueued(asked);
    });
    const auto bringBack = [&move] { return move.BringBack(); };
    if (isWaiting && m_queue.TakeOut(audio, kPauseMs, bringBack) == BGSend::Outcome::Busy) return kInWork;
    if (!isWaiting) bringBack();
    if (*move.Reason() != 0) return move.Reason();
    m_recovered->push_back(files.record);
    return {};
}
