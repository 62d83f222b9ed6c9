#include "base/LProcessApart.h"

#include <optional>
#include <string>
#include <utility>

#include "base/LRunApart.h"
#include "base/LThread.h"
#include "base/LTime.h"
#include "base/LTrace.h"

namespace {

constexpr uint32_t kLookMs = 20;
constexpr uint32_t kPatienceMs = 1000;  // after a cancel

// What the work tells, and what it is told. Both threads own it.
class Shared final : public ProcessContext {
public:
    bool CancelRequested() override { return cancel.IsSignalled(); }
    void SetProgress(double fraction) override { Note(m_news.progress, fraction); }
    void SetTitle(std::string_view text) override { Note(m_news.title, std::string(text)); }
    void SetStatus(std::string_view text) override { Note(m_news.status, std::string(text)); }
    void SetError(std::string_view text) override { Note(m_news.error, std::string(text)); }

    // Tells the other context what is new.
    void PassOn(ProcessContext& context) {
        News news;
        {
            const LLock lock(m_guard);
            news = std::exchange(m_news, {});
        }
        if (news.title) context.SetTitle(*news.title);
        if (news.status) context.SetStatus(*news.status);
        if (news.error) context.SetError(*news.error);
        if (news.progress) context.SetProgress(*news.progress);
    }

    LSignalObject cancel;
    LSignalObject ended;
    ProcessResult result = ProcessResult::Failed;  // written before ended is signalled

private:
    struct News {
        std::optional<double> progress;
        std::optional<std::string> title, status, error;
    };
    template <class T>
    void Note(std::optional<T>& place, T value) {
        const LLock lock(m_guard);
        place = std::move(value);
    }

    LCriticalSection m_guard;
    News m_news;
};

}  // namespace

ProcessResult LProcessApart::Process(ProcessContext& context) {
    const auto shared = std::make_shared<Shared>();
    const bool isStarted = LRunApart([shared, work = m_work]() mutable {
        shared->result = work->Process(*shared);
        work.reset();  // before the caller goes on, who then is its only owner
        shared->ended.Signal();
    });
    if (!isStarted) return ProcessResult::Failed;
    uint32_t cancelledMs = 0;
    while (!shared->ended.Wait(kLookMs)) {
        shared->PassOn(context);
        const bool isFirst = !shared->cancel.IsSignalled();
        if (!context.CancelRequested() && isFirst) continue;
        if (isFirst) {
            shared->cancel.Signal();
            cancelledMs = LTickMs();
        } else if (LTickMs() - cancelledMs >= kPatienceMs) {
            LTrace("LProcessApart::Process work left behind");
            m_work.reset();
            return ProcessResult::Stopped;
        }
    }
    shared->PassOn(context);
    // The work may not have asked any more: what was cancelled is not done.
    const bool isCancelled = shared->cancel.IsSignalled() && shared->result == ProcessResult::Done;
    return isCancelled ? ProcessResult::Stopped : shared->result;
}
