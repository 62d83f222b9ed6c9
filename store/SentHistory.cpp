#include "store/SentHistory.h"

#include <algorithm>
#include <set>

#include "base/LFile.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "store/DictationFiles.h"
#include "store/DictationRecord.h"

// A record is read when the size or the time of writing that the listing gives of it has changed. Where times
// are kept in steps of two seconds the size tells: each status that the program writes has a length of its
// own.

static constexpr uint32_t kTellPeriodMs = 100;  // between two reports of progress

std::string SentDictation::Text() const {
    const LCalendar day = LToCalendar(sendDate);
    return LFormat("%.4d-%.2d-%.2d %s: Sent to [%s] status [%s]", day.year, day.month, day.day, name.c_str(),
                   recipient.c_str(), status.c_str());
}

// The records that are new or have changed; those that are gone are dropped.
SentHistory::Changed SentHistory::List() {
    Changed changed;
    std::set<int32_t> listed;
    const bool isWhole = LListFolder(m_folder, "*.dat", [&](const LFolderEntry& entry) {
        const std::optional<int32_t> number = NumberOfFileName(LPath(entry.name));
        // The pattern also fits longer extensions.
        if (entry.isFolder || !number || !LEqualNoCase(LSplitPath(entry.name).extension, ".dat")) return true;
        listed.insert(*number);
        const Stamp stamp{entry.size, entry.written};
        const auto known = m_known.find(*number);
        if (known == m_known.end() || known->second.stamp != stamp) changed.emplace_back(*number, stamp);
        return true;
    });
    if (isWhole && std::erase_if(m_known, [&](const auto& known) { return !listed.contains(known.first); }))
        m_isChanged = true;
    return changed;
}

void SentHistory::Read(int32_t number, const Stamp& stamp) {
    const LPath record = DictationFiles::OfNumber(m_folder, number).record;
    const DictationRecord values = DictationRecord::Read(record, 0);
    if (values.result == LReadResult::Absent) return;
    Known& known = m_known[number];
    if (values.result == LReadResult::Unreadable && !known.dictation.record.Empty()) return;
    SentDictation read;
    read.record = record;
    read.number = values.number.value_or(0);
    read.sendDate = values.sendDate.value_or(0) > 0 ? *values.sendDate : LNowSeconds();
    if (!values.name.empty()) read.name = LShownText(values.name);
    if (!values.recipient.empty()) read.recipient = LShownText(values.recipient);
    if (!values.sendStatus.empty()) read.status = LShownText(values.sendStatus);
    // Without a stamp it is read again.
    known = {values.result == LReadResult::Values ? stamp : Stamp{}, read};
    m_isChanged = true;
}

void SentHistory::Sort() {
    m_isChanged = false;
    m_dictations.clear();
    for (const auto& [number, known] : m_known) m_dictations.push_back(known.dictation);
    std::ranges::reverse(m_dictations);  // of those sent in one second the last number first
    std::ranges::stable_sort(m_dictations, std::greater(), &SentDictation::sendDate);
}

ProcessResult SentHistory::Process(ProcessContext& context) {
    context.SetStatus("Please wait...");
    ProcessResult result = ProcessResult::Done;
    const Changed changed = List();
    uint32_t toldMs = LTickMs();
    double count = 0;
    for (const auto& [number, stamp] : changed) {
        Read(number, stamp);
        ++count;
        if (LTickMs() - toldMs < kTellPeriodMs) continue;
        toldMs = LTickMs();
        context.SetProgress(count / static_cast<double>(changed.size()));
        if (context.CancelRequested()) {
            result = ProcessResult::Stopped;
            break;
        }
    }
    Sort();
    return result;
}

bool SentHistory::Refresh(uint32_t budgetMs) {
    const uint32_t begun = LTickMs();
    for (const auto& [number, stamp] : List()) {
        Read(number, stamp);
        if (LTickMs() - begun >= budgetMs) break;
    }
    const bool isChanged = m_isChanged;
    if (isChanged) Sort();
    return isChanged;
}
