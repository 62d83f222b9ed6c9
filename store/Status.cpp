#include "store/Status.h"

#include <utility>
#include <vector>

#include "base/LBytes.h"
#include "base/LFile.h"
#include "base/LFileLock.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "store/DictationFiles.h"
#include "store/DictationRecord.h"
#include "store/FolderListing.h"
#include "store/MoveToSent.h"

// The records are searched first and written afterwards, each as the holder of the moves' lock: the dictation
// is not sent again or recovered meanwhile. The window waits for that lock, so it is let go after each.

namespace {

constexpr uint32_t kVersion = 0;
constexpr size_t kTextBytes = 16;
constexpr size_t kRecordBytes = 4 + kTextBytes;

}  // namespace

Status::Status(const CurrentUser& user, AskQueue isQueued) : m_user(user), m_isQueued(std::move(isQueued)) {}

LPath Status::FileIn(std::string_view folder, uint32_t user) {
    return LPath::Join(folder, LFormat("s%.7ld.sta", static_cast<long>(user)));
}

bool Status::LoadStatus(const LPath& path) {
    std::vector<uint8_t> bytes;
    if (LFile::TryRead(path, kMostBytes, bytes) != LReadResult::Values) {
        LTrace("Status::LoadStatus unable to open file!", path.View());
        return false;
    }
    LByteReader in(bytes);
    if (in.U32() != kVersion || !in.Ok()) {
        LTrace("Status::LoadStatus version error!", path.View());
        return true;
    }
    Texts texts;
    while (in.Remaining() >= kRecordBytes) {
        const uint32_t number = in.U32();
        texts[number] = in.FixedText(kTextBytes);  // of several the last one counts
    }
    if (!texts.empty() && !Apply(texts)) return false;
    // Applying takes a while, and the typist may have reported more.
    std::vector<uint8_t> now;
    return LFile::TryRead(path, kMostBytes, now) == LReadResult::Values && now == bytes;
}

bool Status::Apply(const Texts& texts) const {
    const FolderListing listing(m_user.sentFolder);
    bool isWhole = listing.IsWhole();
    std::vector<std::pair<LPath, const std::string*>> found;
    for (const LPath& record : listing.Records()) {
        const DictationRecord values = DictationRecord::Read(record);
        if (values.result == LReadResult::Unreadable) isWhole = false;
        const auto text = texts.find(static_cast<uint32_t>(values.number.value_or(0)));
        const bool isNews = text != texts.end() && values.sendStatus != text->second;
        if (values.result == LReadResult::Values && isNews) found.emplace_back(record, &text->second);
    }
    for (const auto& [record, text] : found) {
        LFileLock turn;
        if (turn.Take(MoveToSent::LockOf(m_user), kMoveWaitMs) != LFileLock::Result::Taken) return false;
        const QueueAnswer queued = m_isQueued(DictationFiles::OfPath(record).audio);
        if (queued == QueueAnswer::No && !LFile::IsAbsent(record))
            isWhole = StoreStatus(record, *text) && isWhole;
        if (queued == QueueAnswer::Unknown) isWhole = false;
    }
    return isWhole;
}
