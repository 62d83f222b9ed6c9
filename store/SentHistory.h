#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/LPath.h"
#include "base/LProcess.h"

// A dictation in the Sent folder, as its record describes it; what the record does not say has a default.
// Its texts are as they are shown.
struct SentDictation {
    LPath record;
    int32_t number = 0;    // the record's "number"; 0 when it has none
    int64_t sendDate = 0;  // seconds since 1970; the time of reading when the record has none
    std::string name = "Unknown Name";
    std::string recipient = "Unknown Recipient";
    std::string status = "Unknown Status";

    // "2026-11-21 Letter: Sent to [Jo (P:\Typing)] status [Sent]".
    std::string Text() const;
};

// The dictations of a Sent folder, the last sent one first. Only records that have changed are read again:
// with thousands of them a look at the folder then takes milliseconds.
// Errors: a record that cannot be read shows what it said before, or the defaults, and is read again at the
//         next look. A listing of the folder that breaks off removes nothing.
// Thread: one at a time.
class SentHistory final : public LProcess {
public:
    static constexpr uint32_t kLookMs = 1000;      // between two looks of a window that shows the history
    static constexpr uint32_t kReadBudgetMs = 30;  // of each, for records that have changed

    explicit SentHistory(const LPath& sentFolder) : m_folder(sentFolder) {}

    const std::vector<SentDictation>& Dictations() const { return m_dictations; }
    // Reads the whole history, with progress. Stopped: what was read until then is there.
    ProcessResult Process(ProcessContext& context) override;
    // Looks at the folder again and reads what has changed, for about budgetMs; the rest is left to the next
    // call. True when Dictations has changed.
    bool Refresh(uint32_t budgetMs);

private:
    // What a listing says of a record; another value means that the record has changed.
    struct Stamp {
        int64_t size = -1;
        uint64_t written = 0;
        bool operator==(const Stamp&) const = default;
    };
    struct Known {
        Stamp stamp;
        SentDictation dictation;
    };
    using Changed = std::vector<std::pair<int32_t, Stamp>>;

    Changed List();
    void Read(int32_t number, const Stamp& stamp);
    void Sort();

    LPath m_folder;
    std::map<int32_t, Known> m_known;  // by the number of the file name
    std::vector<SentDictation> m_dictations;
    bool m_isChanged = false;  // m_known has changed since m_dictations was made of it
};
