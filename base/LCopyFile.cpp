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

// What stands under a name, compared with the file that is to have it.
enum class Standing { Nothing, Beginning, Same, Other };

// "dct00000-00001 (2).dct"; the first name is the path itself.
LPath Numbered(const LPath& path, int number) {
    if (number == 1) return path;
    const std::string_view extension = LSplitPath(path.View()).extension;
    LPath numbered(path.View().substr(0, path.View().size() - extension.size()));
    numbered.Append(LFormat(" (%d)", number) + std::string(extension));
    return numbered;
}

// A file that cannot be read is another.
Standing Compare(const LPath& path, const LPath& wanted) {
    if (!LFile::Exists(path)) return Standing::Nothing;
    LFile there(path, LFile::Open::Read), file(wanted, LFile::Open::Read);
    const int64_t size = there.Size();
    if (!there.IsOpen() || !file.IsOpen() || size < 0 || size > file.Size()) return Standing::Other;
    std::vector<uint8_t> a(kCopyBlockBytes), b(kCopyBlockBytes);
    for (int64_t left = size; left > 0;) {
        const size_t count = static_cast<size_t>(std::min<int64_t>(left, kCopyBlockBytes));
        const auto blockA = std::span(a).first(count), blockB = std::span(b).first(count);
        if (!there.ReadExact(blockA) || !file.ReadExact(blockB) || !std::ranges::equal(blockA, blockB))
            return Standing::Other;
        left -= static_cast<int64_t>(count);
    }
    return size == file.Size() ? Standing::Same : Standing::Beginning;
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

// Fills an open file. One that does not become whole is emptied before it is deleted, since a folder in which
// one may create need not let one delete.
ProcessResult Fill(const LPath& from, LFile target, const LPath& path, ProcessContext& context) {
    const ProcessResult result = CopyBytes(from, target, context);
    if (result == ProcessResult::Done) return result;
    if (target.Seek(0)) target.SetEnd();
    target.Close();
    LFile::Delete(path);
    return result;
}

// Gives another file of this name the next one that is free.
bool SetAside(const LPath& path) {
    for (int number = 2; number < kMostNames; ++number) {
        const LPath aside = Numbered(path, number);
        if (LFile::Move(path, aside)) return true;
        if (!LFile::Exists(aside)) return false;
    }
    return false;
}

// Gives a complete copy its name. A move never replaces anything.
bool PutInPlace(const LPath& copy, const LPath& target) {
    switch (Compare(target, copy)) {
        case Standing::Same:
            LFile::Delete(copy);
            return true;
        case Standing::Beginning:  // an earlier copy that was cut off
            if (LFile::Replace(copy, target)) return true;
            [[fallthrough]];
        case Standing::Other:
            return SetAside(target) && LFile::Move(copy, target);
        case Standing::Nothing:
            return LFile::Move(copy, target);
    }
    return false;
}

}  // namespace

ProcessResult LProcessCopyFile::Process(ProcessContext& context) {
    context.SetStatus("Please wait...");
    if (!LFile(m_from, LFile::Open::Read).IsOpen()) {
        LTrace("LProcessCopyFile::Process unable to open file", m_from.View());
        return ProcessResult::Failed;
    }
    if (Compare(m_to, m_from) == Standing::Same) return ProcessResult::Done;
    const ProcessResult result = CopyBeside(context);
    return result == ProcessResult::Failed ? CopyDirectly(context) : result;
}

ProcessResult LProcessCopyFile::CopyBeside(ProcessContext& context) {
    const LPath unfinished = m_to.WithExtension(LLeftOver::kCopy);
    LFile target(unfinished, LFile::Open::CreateNew);
    if (!target.IsOpen()) {
        LTrace("LProcessCopyFile::CopyBeside unable to create file", unfinished.View());
        return ProcessResult::Failed;
    }
    const ProcessResult result = Fill(m_from, std::move(target), unfinished, context);
    if (result != ProcessResult::Done) return result;
    const uint32_t begun = LTickMs();
    while (!PutInPlace(unfinished, m_to)) {
        const bool isStopped = context.CancelRequested();
        if (!isStopped && LTickMs() - begun < kPlaceLimitMs) {
            LSignalObject().Wait(kPlaceRetryMs);
            continue;
        }
        LTrace("LProcessCopyFile::CopyBeside unable to name file", m_to.View());
        LFile(unfinished, LFile::Open::CreateNew).Close();  // empty, where it cannot be deleted
        LFile::Delete(unfinished);
        return isStopped ? ProcessResult::Stopped : ProcessResult::Failed;
    }
    return ProcessResult::Done;
}

// Where files can be created but not renamed, or the name cannot be had, the copy is made under the first
// name that no other file has.
ProcessResult LProcessCopyFile::CopyDirectly(ProcessContext& context) {
    for (int number = 1, refused = 0; number < kMostNames && refused < 2; ++number) {
        const LPath path = Numbered(m_to, number);
        const Standing standing = Compare(path, m_from);
        if (standing == Standing::Same) return ProcessResult::Done;
        if (standing == Standing::Other) continue;
        const bool isBegun = standing == Standing::Beginning;
        LFile target(path, isBegun ? LFile::Open::Write : LFile::Open::CreateAbsent);
        if (target.IsOpen()) return Fill(m_from, std::move(target), path, context);
        ++refused;  // the folder's doing, or somebody else was quicker
    }
    LTrace("LProcessCopyFile::CopyDirectly unable to create file", m_to.View());
    return ProcessResult::Failed;
}
