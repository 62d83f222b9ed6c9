#include "base/LCopyFile.h"

#include <vector>

#include "base/LFile.h"
#include "base/LTrace.h"

constexpr size_t kCopyBlockBytes = 65536;

// Copies what there is at the start: a file that is still growing is copied as far as it went then.
static ProcessResult CopyBytes(LFile& source, LFile& target, ProcessContext& context) {
    const int64_t total = source.Size();
    std::vector<uint8_t> block(kCopyBlockBytes);
    for (int64_t done = 0; done < total;) {
        if (context.CancelRequested()) return ProcessResult::Stopped;
        const int64_t left = total - done;
        const size_t count =
            left < static_cast<int64_t>(block.size()) ? static_cast<size_t>(left) : block.size();
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
    if (target.Flush()) return ProcessResult::Done;
    // Redirectors of networks need not know how to flush.
    LTrace("LProcessCopyFile::Process unable to flush file");
    return target.Size() == total ? ProcessResult::Done : ProcessResult::Failed;
}

ProcessResult LProcessCopyFile::Process(ProcessContext& context) {
    context.SetStatus("Please wait...");
    LFile source(m_from, LFile::Open::Read);
    if (!source.IsOpen()) {
        LTrace("LProcessCopyFile::Process unable to open file", m_from.View());
        return ProcessResult::Failed;
    }
    const LPath unfinished = m_to.WithExtension(".cv~");
    LFile target(unfinished, LFile::Open::CreateNew);
    if (!target.IsOpen()) {
        LTrace("LProcessCopyFile::Process unable to create file", unfinished.View());
        return ProcessResult::Failed;
    }
    ProcessResult result = CopyBytes(source, target, context);
    target.Close();
    if (result == ProcessResult::Done && !LFile::Replace(unfinished, m_to)) {
        LTrace("LProcessCopyFile::Process unable to replace file", m_to.View());
        result = ProcessResult::Failed;
    }
    if (result != ProcessResult::Done) LFile::Delete(unfinished);
    return result;
}
