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

namespace {

constexpr size_t kCopyBlockBytes = 65536;

// How long the copy waits for others to let go of a file: a virus scanner, or a reader on another machine.
constexpr uint32_t kPlaceLimitMs = 2000;
constexpr uint32_t kPlaceRetryMs = 50;

constexpr int kMostNames = 1000;
constexpr int kMostRefusals = 2;

// What stands under a name, compared with the source of the copy. Unknown: it cannot be read, its drive does
// not answer, or the comparison was cancelled.
enum class Standing { Nothing, Beginning, Same, Other, Unknown };

// "dct00000-00001 (2).dct"; the first name is the path itself.
LPath Numbered(const LPath& path, int number) {
    if (number == 1) return path;
    const std::string_view extension = LSplitPath(path.View()).extension;
    LPath numbered(path.View().substr(0, path.View().size() - extension.size()));
    numbered.Append(LFormat(" (%d)", number) + std::string(extension));
    return numbered;
}

// From the start of the open file on. Without a context it is not cancelled.
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

// Copies what there is at the start: a file that is still growing is copied as far as it went then.
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
    // Redirectors of networks need not know how to flush.
    LTrace("LProcessCopyFile::Process unable to flush file");
    return source.IsOpen() && target.Size() == total ? ProcessResult::Done : ProcessResult::Failed;
}

// A file that is open to others for reading only loses its bytes.
void Empty(LFile file) {
    if (file.Seek(0)) file.SetEnd();
}

// Fills an open file. One that does not become whole is emptied, since a folder in which one may create need
// not let one delete.
ProcessResult Fill(const LPath& from, LFile target, ProcessContext& context) {
    const ProcessResult result = target.Seek(0) ? CopyBytes(from, target, context) : ProcessResult::Failed;
    if (result != ProcessResult::Done) Empty(std::move(target));
    return result;
}

// A name for the copy, and the file under it, open to be filled unless the same bytes are there already.
struct Place {
    LPath path;  // empty: none was to be had
    LFile file;
};

// The first of a row of names that nobody has, or under which a beginning of the copy was left behind. What
// others are still writing cannot be opened here, and what they finished meanwhile shows once it is open.
Place TakePlace(const LPath& wanted, const LPath& from, ProcessContext& context) {
    for (int number = 1, refused = 0; number < kMostNames && refused < kMostRefusals; ++number) {
        if (context.CancelRequested()) break;
        const LPath path = Numbered(wanted, number);
        const Standing standing = Compare(path, from, &context);
        if (standing == Standing::Same) return {path, LFile()};
        if (standing == Standing::Unknown && !LFile::Exists(path)) ++refused;  // a folder, or no answer
        if (standing == Standing::Other || standing == Standing::Unknown) continue;
        const bool isBegun = standing == Standing::Beginning;
        LFile file(path, isBegun ? LFile::Open::Write : LFile::Open::CreateAbsent);
        if (!file.IsOpen()) {
            ++refused;  // the folder's doing, or somebody else was quicker
            continue;
        }
        const Standing taken = isBegun ? Compare(file, from, &context) : Standing::Beginning;
        if (taken == Standing::Same) return {path, LFile()};
        if (taken == Standing::Beginning) return {path, std::move(file)};
    }
    return {};
}

// Gives a file the first free name of a row; its new name, or an empty one when it cannot be moved.
LPath MoveToFree(const LPath& path, const LPath& wanted, int number) {
    for (; number < kMostNames; ++number) {
        const LPath free = Numbered(wanted, number);
        if (LFile::Move(path, free)) return free;
        if (!LFile::Exists(free)) break;
    }
    return {};
}

// Takes back a complete copy, unless its name is another's by now.
void Withdraw(const LPath& copy, const LPath& from) {
    if (LFile::IsAbsent(copy)) return;
    LFile file(copy, LFile::Open::Write);
    const Standing standing = Compare(file, from, nullptr);
    if (standing != Standing::Same && standing != Standing::Beginning) return;
    Empty(std::move(file));
    LFile::Delete(copy);
}

enum class Placing { Done, NotYet, NotOurs };

// Gives a complete copy its name. A move never replaces anything, and what it moved is looked at afterwards:
// until then another program may have given the copy's name, or the target's, to a file of its own.
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
    // A beginning was left by a copy that was made directly, and is completed in the same way.
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
    if (Compare(m_to, m_from, &context) == Standing::Same) return ProcessResult::Done;
    const ProcessResult result = CopyBeside(context);
    return result == ProcessResult::Failed ? CopyDirectly(context) : result;
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

// Where files can be created but not renamed, or the name cannot be had, the copy is made under the first
// name that no other file has.
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

// Once the file is closed another program may give its name to a file of its own: so it is moved out of the
// way before it is looked at and deleted.
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
