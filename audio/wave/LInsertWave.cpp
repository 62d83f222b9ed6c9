#include "audio/wave/LInsertWave.h"

#include <algorithm>
#include <array>

#include "audio/wave/LAcmRecord.h"
#include "audio/wave/LWaveFile.h"
#include "audio/wave/LWaveHeader.h"
#include "base/LArith.h"
#include "base/LFile.h"
#include "base/LTrace.h"

// Three passages of bytes behind a new head: the target up to the frame, the inserted audio, the rest of the
// target. The copy is proved before it replaces the target, which is lost afterwards: its length on the disk
// is that of the three passages. Inserting in place, by moving the rest of the target backwards, was
// rejected: it would be quicker for an insertion near the end, and a power failure would cost the dictation.

namespace {

constexpr size_t kBlockBytes = size_t{256} * 1024;

// A passage of a file that is copied whole.
struct Passage {
    LFile* file;
    int64_t start;
    int64_t bytes;
};

ProcessResult Fail(ProcessContext& context, std::string_view trace, const LPath& path) {
    LTrace(trace, path.View());
    context.SetError(
        "The recording could not be inserted. The disk may be full, or the dictation may be in use by "
        "another "
        "program.");
    return ProcessResult::Failed;
}

// Copies the passage; done and total are for the progress.
ProcessResult Copy(const Passage& passage, LFile& to, int64_t& done, int64_t total, ProcessContext& context) {
    if (!passage.file->Seek(passage.start)) return ProcessResult::Failed;
    std::vector<uint8_t> block(kBlockBytes);
    for (int64_t left = passage.bytes; left > 0;) {
        if (context.CancelRequested()) return ProcessResult::Stopped;
        const size_t size = static_cast<size_t>(std::min<int64_t>(left, kBlockBytes));
        if (!passage.file->ReadExact({block.data(), size}) || to.Write({block.data(), size}) != size)
            return ProcessResult::Failed;
        left -= static_cast<int64_t>(size);
        done += static_cast<int64_t>(size);
        context.SetProgress(static_cast<double>(done) / static_cast<double>(total));
    }
    return ProcessResult::Done;
}

// Opens PCM audio that can be copied frame by frame, with the plain form of its format.
bool OpenPcm(const LPath& path, LFile& file, LWaveInfo& info) {
    file = LFile(path, LFile::Open::Read);
    if (!file.IsOpen() || !LWaveFile::ReadInfo(file, info)) return false;
    info.format = LAcmRecord(info.format);
    return info.IsPcm() && info.format.BlockAlign() > 0 && info.BytesPerSample() <= 2;
}

bool AreAlike(const LWaveFileFormat& a, const LWaveFileFormat& b) {
    return a.Channels() == b.Channels() && a.SampleRate() == b.SampleRate() &&
           a.BitsPerSample() == b.BitsPerSample() && a.BlockAlign() == b.BlockAlign();
}

}  // namespace

ProcessResult LInsertWave::Process(ProcessContext& context) {
    context.SetStatus("Please wait...");
    const ProcessResult result = WriteMerged(context);
    if (m_begun && result != ProcessResult::Done) LFile::SettleBeside(m_merged, m_target);
    return result;
}

bool LInsertWave::IsDone() const {
    LFile target;
    LFile inserted;
    LWaveInfo old;
    LWaveInfo added;
    if (!OpenPcm(m_target, target, old) || !OpenPcm(m_inserted, inserted, added)) return false;
    if (!AreAlike(old.format, added.format) || added.Frames() < 1) return false;
    const int64_t frameBytes = old.format.BlockAlign();
    if (old.Frames() - m_atFrame < added.Frames()) return false;
    if (!target.Seek(old.dataStart + m_atFrame * frameBytes) || !inserted.Seek(added.dataStart)) return false;
    std::vector<uint8_t> there(kBlockBytes);
    std::vector<uint8_t> wanted(kBlockBytes);
    for (int64_t left = added.Frames() * frameBytes; left > 0;) {
        const size_t size = static_cast<size_t>(std::min<int64_t>(left, kBlockBytes));
        there.resize(size);
        wanted.resize(size);
        if (!target.ReadExact(there) || !inserted.ReadExact(wanted) || there != wanted) return false;
        left -= static_cast<int64_t>(size);
    }
    return true;
}

ProcessResult LInsertWave::WriteMerged(ProcessContext& context) {
    LFile target;
    LFile inserted;
    LWaveInfo old;
    LWaveInfo added;
    if (!OpenPcm(m_target, target, old)) return Fail(context, "LInsertWave::Process no PCM target", m_target);
    if (!OpenPcm(m_inserted, inserted, added) || !AreAlike(old.format, added.format))
        return Fail(context, "LInsertWave::Process nothing to insert", m_inserted);

    const int64_t frameBytes = old.format.BlockAlign();
    const int64_t at = Clamp(int64_t{m_atFrame}, int64_t{0}, old.Frames()) * frameBytes;
    const int64_t oldBytes = old.Frames() * frameBytes;
    const int64_t addedBytes = added.Frames() * frameBytes;
    const int64_t total = oldBytes + addedBytes;
    if (total > kWaveMaxDataBytes || total / frameBytes > INT32_MAX)
        return Fail(context, "LInsertWave::Process longer than a WAV file can be", m_target);

    const std::array<Passage, 3> passages = {{{&target, old.dataStart, at},
                                              {&inserted, added.dataStart, addedBytes},
                                              {&target, old.dataStart + at, oldBytes - at}}};
    LFile::Delete(m_merged, kMoveWaitMs);  // of a run that was cut off
    LFile merged(m_merged, LFile::Open::CreateNew);
    if (!merged.IsOpen()) return Fail(context, "LInsertWave::Process unable to create", m_merged);
    m_begun = true;
    const LWaveHeader head =
        WavePcmHeader(old.BytesPerSample(), static_cast<uint8_t>(old.format.Channels()),
                      static_cast<int32_t>(old.format.SampleRate()), static_cast<uint32_t>(total));
    bool isWritten = merged.Write(head) == head.size();
    int64_t done = 0;
    for (const Passage& passage : passages) {
        if (!isWritten) break;
        const ProcessResult result = Copy(passage, merged, done, total, context);
        if (result == ProcessResult::Stopped) return result;
        isWritten = result == ProcessResult::Done;
    }
    isWritten = isWritten && merged.Flush();
    merged.Close();
    target.Close();
    if (!isWritten || !LWaveFile::IsComplete(m_merged, total / frameBytes))
        return Fail(context, "LInsertWave::Process incomplete merged file", m_merged);
    if (!LFile::Replace(m_merged, m_target) && !LFile::SettleBeside(m_merged, m_target))
        return Fail(context, "LInsertWave::Process unable to replace", m_target);
    return ProcessResult::Done;
}
