#include "base/LCopyFile.h"

#include <algorithm>
#include <string>
#include <vector>

#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LText.h"
#include "base/LThread.h"
#include "base/LTime.h"
#include "base/LTrace.h"

// The target's folder is shared: other installations number alike and may write the same name at this moment,
// and a virus scanner or a reader may hold any file. So no step trusts a name. A file is compared with the
// source before it is used, before it is renamed, and again under its final name, since between two calls its
// name may pass to another program's file.
// The copy is written under a temporary name (CopyBeside) and renamed, which never replaces anything. Keeping
// it open while it waits for its name was rejected: an open file cannot be renamed. Sharing one temporary
// name between installations was rejected as well: one emptied the other's copy, which was then delivered as
// whole; so TakePlace takes the first name of a row that nobody has. An unfinished copy is completed only
// through a handle that keeps all other writers out.

namespace {

constexpr size_t kCopyBlockBytes = 65536;

// The longest wait for others to let go of a file: a virus scanner, or a reader on another machine.
constexpr uint32_t kPlaceLimitMs = 2000;
constexpr uint32_t kPlaceRetryMs = 50;

constexpr int kMostNames = 1000;  // numbers tried in a row of names
constexpr int kMostRefusals = 2;  // then the folder lets no file be created

// The result of comparing the file under a name with the source. Beginning: a shorter file with the source's
// first bytes, such as an unfinished copy. Unknown: the file cannot be read, its drive does not answer, or
// the comparison was cancelled.
enum class Standing { Nothing, Beginning, Same, Other, Unknown };

// "dct00000-00001 (2).dct"; the first name is the path itself.
LPath Numbered(const LPath& path, int number) {
    if (number == 1) return path;
    const std::string_view extension = LSplitPath(path.View()).extension;
    LPath numbered(path.View().substr(0, path.View().size() - extension.size()));
    numbered.Append(LFormat(" (%d)", number) + std::string(extension));
    return numbered;
}

// Compares an open file from its start on. Without a context it cannot be cancelled.
Standing Compare(LFile& there, const LPath& from, ProcessContext* context) {
    LFile source(from, LFile::Open::Read);
    const int64_t size = there.Size(), total = source.Size();
    if (!there.IsOpen() || !source.IsOpen() || size < 0 || total < 0) return Standing::Unknown;
    if (size > total) return Standing::Other;
    std::vector<uint8_t> a(kCopyBlockBytes), b(kCopyBlockBytes);
    for (int64_t done = 0; done < size;) {
        if (done > 0 && context && context->CancelRequested()) return Standing::Unknown;
        const size_t count = static_cast<size_t>(std::min<int64_t>(size - done, kCopyBlockBytes));
        const auto blockA = std::span(a).first(count), blockB = std::span(b).first(count);
        if (!there.ReadExact(blockA) || !source.ReadExact(blockB)) return Standing::Unknown;
        if (!std::ranges::equal(blockA, blockB)) return Standing::Other;
        done += static_cast<int64_t>(count);
    }
    return size == total ? Standing::Same : Standing::Beginning;
}

Standing Compare(const LPath& path, const LPath& from, ProcessContext* context) {
    if (LFile::IsAbsent(path)) return Standing::Nothing;
    LFile there(path, LFile::Open::Read);
    return Compare(there, from, context);
}

// Copies the bytes present at the start: of a file that is still growing, those it has at that moment.
ProcessResult CopyBytes(const LPath& from, LFile& target, ProcessContext& context) {
    LFile source(from, LFile::Open::Read);
    const int64_t total = source.Size();
    if (total < 0) {
        LTrace("LProcessCopyFile::Process size of the file unknown");
        return ProcessResult::Failed;
    }
    std::vector<uint8_t> block(kCopyBlockBytes);
    for (int64_t done = 0; done < total;) {
        if (context.CancelRequested()) return ProcessResult::Stopped;
        const size_t count = static_cast<size_t>(std::min<int64_t>(total - done, kCopyBlockBytes));
        const std::span<uint8_t> bytes = std::span(block).first(count);
        if (!source.ReadExact(bytes)) {
            LTrace("LProcessCopyFile::Process unable to read file");
            return ProcessResult::Failed;
        }
        if (!target.WriteAll(bytes)) {
            LTrace("LProcessCopyFile::Process unable to write file");
            return ProcessResult::Failed;
        }
        done += static_cast<int64_t>(count);
        context.SetProgress(static_cast<double>(done) / static_cast<double>(total));
    }
    if (source.IsOpen() && target.Flush()) return ProcessResult::Done;
    // Network redirectors need not support flushing: then the size decides.
    LTrace("LProcessCopyFile::Process unable to flush file");
    return source.IsOpen() && target.Size() == total ? ProcessResult::Done : ProcessResult::Failed;
}

// Cuts a file to nothing. Others can only read it while we have it open, so no bytes but ours are lost.
void Empty(LFile file) {
    if (file.Seek(0)) file.SetEnd();
}

// Fills an open file with the copy. When that fails the file is emptied, since a folder in which files may be
// created need not allow deleting them.
ProcessResult Fill(const LPath& from, LFile target, ProcessContext& context) {
    const ProcessResult result = target.Seek(0) ? CopyBytes(from, target, context) : ProcessResult::Failed;
    if (result != ProcessResult::Done) Empty(std::move(target));
    return result;
}

// A name for the copy, and the file under it: open to be filled, or closed when the same bytes are there
// already.
struct Place {
    LPath path;  // empty: no name was free
    LFile file;
};

// Takes the first name of a row that is free or holds the beginning of a copy. A file that another program is
// still writing cannot be opened here; one that it finished meanwhile is recognised by comparing once more
// through the open handle.
Place TakePlace(const LPath& wanted, const LPath& from, ProcessContext& context) {
    for (int number = 1, refused = 0; number < kMostNames && refused < kMostRefusals; ++number) {
        if (context.CancelRequested()) break;
        const LPath path = Numbered(wanted, number);
        if (LFile made(path, LFile::Open::CreateAbsent); made.IsOpen()) return {path, std::move(made)};
        const Standing standing = Compare(path, from, &context);
        if (standing == Standing::Same) return {path, LFile()};
        const bool isThere = standing == Standing::Unknown && LFile::Exists(path);
        if (standing == Standing::Nothing || (standing == Standing::Unknown && !isThere)) ++refused;
        if (standing != Standing::Beginning) continue;
        LFile file(path, LFile::Open::Write);
        if (!file.IsOpen()) {
            ++refused;
            continue;
        }
        const Standing taken = Compare(file, from, &context);
        if (taken == Standing::Same) return {path, LFile()};
        if (taken == Standing::Beginning) return {path, std::move(file)};
    }
    return {};
}

// Moves a file to the first free name of a row. Returns its new name, empty when it cannot be moved.
LPath MoveToFree(const LPath& path, const LPath& wanted, int number) {
    for (; number < kMostNames; ++number) {
        const LPath free = Numbered(wanted, number);
        if (LFile::Move(path, free)) return free;
        if (!LFile::Exists(free)) break;
    }
    return {};
}

// Deletes the complete copy, unless another program's file has its name by now.
void Withdraw(const LPath& copy, const LPath& from) {
    if (LFile::IsAbsent(copy)) return;
    LFile file(copy, LFile::Open::Write);
    const Standing standing = Compare(file, from, nullptr);
    if (standing != Standing::Same && standing != Standing::Beginning) return;
    Empty(std::move(file));
    LFile::Delete(copy);
}

// The outcome of one attempt to name the copy. NotOurs: its name holds another file, or the target an
// unfinished one.
enum class Placing { Done, NotYet, NotOurs };

// Gives a complete copy its name. A move never replaces a file, and the moved file is compared afterwards:
// before the move another program may have given either name to a file of its own.
Placing PutInPlace(const LPath& copy, const LPath& target, const LPath& from, ProcessContext& context) {
    const Standing there = Compare(target, from, &context);
    if (there == Standing::Same) {
        Withdraw(copy, from);
        return Placing::Done;
    }
    const Standing ours = Compare(copy, from, &context);
    const bool isHeld =
        ours == Standing::Unknown || (ours == Standing::Nothing && there == Standing::Unknown);
    if (isHeld) return Placing::NotYet;
    // A beginning under the target's name was left by a direct copy; a direct copy completes it.
    if (ours != Standing::Same || there == Standing::Beginning) return Placing::NotOurs;
    if (there != Standing::Nothing && MoveToFree(target, target, 2).Empty()) return Placing::NotYet;
    const bool isMoved = LFile::Move(copy, target);
    return isMoved && Compare(target, from, &context) == Standing::Same ? Placing::Done : Placing::NotYet;
}

}  // namespace

ProcessResult LProcessCopyFile::Process(ProcessContext& context) {
    context.SetStatus("Please wait...");
    if (!LFile(m_from, LFile::Open::Read).IsOpen()) {
        LTrace("LProcessCopyFile::Process unable to open file", m_from.View());
        return ProcessResult::Failed;
    }
    if (m_into == Into::OwnFolder) return CopyAlone(context);
    if (Compare(m_to, m_from, &context) == Standing::Same) return ProcessResult::Done;
    const ProcessResult result = CopyBeside(context);
    return result == ProcessResult::Failed ? CopyDirectly(context) : result;
}

ProcessResult LProcessCopyFile::CopyAlone(ProcessContext& context) const {
    LFile target(m_to, LFile::Open::CreateAbsent);
    if (!target.IsOpen()) return ProcessResult::Failed;
    ProcessResult result = CopyBytes(m_from, target, context);
    const bool isSame = LFile(m_from, LFile::Open::Read).Size() == target.Size();
    if (result == ProcessResult::Done && !isSame) result = ProcessResult::Failed;
    target.Close();
    if (result != ProcessResult::Done) LFile::Delete(m_to);
    return result;
}

ProcessResult LProcessCopyFile::CopyBeside(ProcessContext& context) {
    Place place = TakePlace(Unfinished(), m_from, context);
    if (place.path.Empty()) {
        LTrace("LProcessCopyFile::CopyBeside unable to create file", Unfinished().View());
        return context.CancelRequested() ? ProcessResult::Stopped : ProcessResult::Failed;
    }
    if (place.file.IsOpen()) {
        const ProcessResult result = Fill(m_from, std::move(place.file), context);
        if (result != ProcessResult::Done) {
            LFile::Delete(place.path);
            return result;
        }
    }
    return NameCopy(place.path, context);
}

ProcessResult LProcessCopyFile::NameCopy(const LPath& copy, ProcessContext& context) {
    const uint32_t begun = LTickMs();
    for (;;) {
        const Placing placing = PutInPlace(copy, m_to, m_from, context);
        if (placing == Placing::Done) return ProcessResult::Done;
        const bool isStopped = context.CancelRequested();
        if (isStopped || placing == Placing::NotOurs || LTickMs() - begun >= kPlaceLimitMs) {
            LTrace("LProcessCopyFile::NameCopy unable to name file", m_to.View());
            Withdraw(copy, m_from);
            return isStopped ? ProcessResult::Stopped : ProcessResult::Failed;
        }
        LSignalObject().Wait(kPlaceRetryMs);
    }
}

// Makes the copy under the first name that no other file has. For folders where files can be created but not
// renamed, and for targets whose name cannot be freed.
ProcessResult LProcessCopyFile::CopyDirectly(ProcessContext& context) {
    Place place = TakePlace(m_to, m_from, context);
    if (place.path.Empty()) {
        LTrace("LProcessCopyFile::CopyDirectly unable to create file", m_to.View());
        return context.CancelRequested() ? ProcessResult::Stopped : ProcessResult::Failed;
    }
    if (!place.file.IsOpen()) return ProcessResult::Done;
    const ProcessResult result = Fill(m_from, std::move(place.file), context);
    if (result != ProcessResult::Done) RemoveEmptied(place.path);
    return result;
}

// Removes an emptied file. Once it is closed another program may give its name to a file of its own, so it is
// moved out of the way first, then compared and deleted, or moved back.
void LProcessCopyFile::RemoveEmptied(const LPath& path) const {
    const LPath away = MoveToFree(path, Unfinished(), 1);
    if (away.Empty()) return;
    if (Compare(away, m_from, nullptr) == Standing::Beginning)
        LFile::Delete(away);
    else
        MoveToFree(away, path, 1);
}

LPath LProcessCopyFile::Unfinished() const {
    return m_to.WithExtension(LLeftOver::kCopy);
}
