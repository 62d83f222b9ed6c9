#include "app/dialogs/SentWorkRows.h"

#include <algorithm>
#include <map>
#include <set>

#include "base/LText.h"
#include "base/LTime.h"
#include "store/DictationFiles.h"

namespace {

std::string TimeText(int64_t seconds) {
    const LCalendar time = LToCalendar(seconds);
    return LFormat("%.4d-%.2d-%.2d %.2d:%.2d", time.year, time.month, time.day, time.hour, time.minute);
}

SentWorkRow RowOf(const SentDictation& dictation) {
    return {dictation.record,
            {dictation.name, TimeText(dictation.sendDate), dictation.recipient, dictation.status}};
}

std::string QueueStatus(const SendQueueView& queue, size_t index, bool isOther) {
    const SendQueueEntry& entry = queue.entries[index];
    if (entry.dictation == queue.inWork && !queue.inWork.Empty())
        return LFormat("Sending, %d %%", static_cast<int>(queue.fraction * 100 + 0.5));
    return LFormat(isOther ? "Waiting, place %lu (another user's)" : "Waiting, place %lu",
                   static_cast<unsigned long>(index + 1));
}

}  // namespace

std::vector<SentWorkRow> SentWorkRows(const std::vector<SentDictation>& history, const SendQueueView& queue,
                                      uint32_t user) {
    std::map<std::string, const SentDictation*> known;  // by the record in capitals
    for (const SentDictation& dictation : history) known.emplace(LUpper(dictation.record.View()), &dictation);
    std::set<const SentDictation*> waiting;
    std::vector<SentWorkRow> rows;
    for (size_t i = 0; i < queue.entries.size(); ++i) {
        const LPath record = DictationFiles::OfPath(queue.entries[i].dictation).record;
        const auto found = known.find(LUpper(record.View()));
        SentWorkRow row{record, {std::string(LSplitPath(record.View()).name), "", "", ""}};
        if (found != known.end()) {
            row = RowOf(*found->second);
            waiting.insert(found->second);
        }
        row.texts[3] = QueueStatus(queue, i, queue.entries[i].user != user);
        rows.push_back(std::move(row));
    }
    for (const SentDictation& dictation : history)
        if (!waiting.contains(&dictation)) rows.push_back(RowOf(dictation));
    return rows;
}

std::string SentWorkSummary(size_t waiting, bool isQueueRead) {
    if (!isQueueRead) return "What waits to be sent cannot be read at the moment.";
    if (waiting == 0) return "No dictation waits to be sent.";
    if (waiting == 1) return "1 dictation waits to be sent.";
    return LFormat("%lu dictations wait to be sent.", static_cast<unsigned long>(waiting));
}

RowChange FindRowChange(const std::vector<SentWorkRow>& before, const std::vector<SentWorkRow>& after) {
    const size_t shared = std::min(before.size(), after.size());
    RowChange change;
    while (change.first < shared && before[change.first].record == after[change.first].record) ++change.first;
    size_t last = 0;  // equal rows at the end
    while (last < shared - change.first &&
           before[before.size() - 1 - last].record == after[after.size() - 1 - last].record)
        ++last;
    change.removed = before.size() - change.first - last;
    change.inserted = after.size() - change.first - last;
    return change;
}
