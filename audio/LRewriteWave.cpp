#include "audio/LRewriteWave.h"

#include "audio/LPRSourceToSink.h"
#include "audio/LSNKPCMFile.h"
#include "audio/LSRCPCMFile.h"
#include "audio/LWaveFile.h"
#include "base/LFile.h"
#include "base/LText.h"
#include "base/LTrace.h"

static ProcessResult Fail(ProcessContext& context, std::string_view trace, const LPath& path) {
    LTrace(trace, path.View());
    context.SetError(
        "The recording could not be made ready for new audio. The disk may be full, or the file may "
        "be in use by another program.");
    return ProcessResult::Failed;
}

// The samples of a file whatever their width.
static LSoundSource OpenAnyWidth(const LPath& path, const LWaveInfo& info) {
    if (info.BytesPerSample() <= 2) return LWaveFile::OpenSource(path);
    return LSoundSource::Make<LSRCPCMFileWide>(std::make_unique<LFile>(path, LFile::Open::Read), info);
}

// Whether the new file, read again from the disk, is what was to be written. A sink that fails while it
// closes cannot tell.
static bool IsComplete(const LPath& path, const LWaveInfo& old) {
    LWaveInfo written;
    return LWaveFile::ReadInfo(path, written) && written.isOurLayout && !written.isStreaming &&
           written.Frames() == old.Frames();
}

ProcessResult LRewriteWave::Process(ProcessContext& context) {
    const ProcessResult result = WriteTemporary(context);
    if (m_begun && result != ProcessResult::Done && !LFile::Delete(m_temporary))
        LTrace("LRewriteWave::Process unable to remove temporary file", m_temporary.View());
    return result;
}

ProcessResult LRewriteWave::WriteTemporary(ProcessContext& context) {
    LWaveInfo info;
    if (!LWaveFile::ReadInfo(m_path, info) || !info.IsPcm() || info.BytesPerSample() > 4)
        return Fail(context, "LRewriteWave::Process no PCM file", m_path);
    if (!info.NeedsRewrite()) return ProcessResult::Done;
    if (LEqualNoCase(m_temporary.View(), m_path.View()))
        return Fail(context, "LRewriteWave::Process no name for the new file", m_path);

    m_begun = true;
    constexpr int32_t kFlushSeconds = 60;  // the new file must be on the disk before the old one goes
    LSoundSink sink = LSNKPCMFileBase::Open(m_temporary, 0, info.BytesPerSample() == 1 ? 8 : 16,
                                            static_cast<uint8_t>(info.format.Channels()),
                                            static_cast<int32_t>(info.format.SampleRate()), kFlushSeconds);
    LPRSourceToSink copy(OpenAnyWidth(m_path, info), sink);
    const ProcessResult result = copy.Process(context);
    sink.Reset();
    if (result != ProcessResult::Done) return result;
    if (!IsComplete(m_temporary, info))
        return Fail(context, "LRewriteWave::Process incomplete temporary file", m_temporary);
    if (!LFile::Replace(m_temporary, m_path))
        return Fail(context, "LRewriteWave::Process unable to replace", m_path);
    return ProcessResult::Done;
}
