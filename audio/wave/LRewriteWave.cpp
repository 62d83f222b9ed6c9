#include "audio/wave/LRewriteWave.h"

#include "audio/convert/LPRSourceToSink.h"
#include "audio/wave/LAcmRecord.h"
#include "audio/wave/LSNKPCMFile.h"
#include "audio/wave/LSRCACMWave.h"
#include "audio/wave/LSRCPCMFile.h"
#include "base/LFile.h"
#include "base/LText.h"
#include "base/LTrace.h"

// Copies the audio into a temporary file with the pump (LPRSourceToSink), then proves the copy before it
// replaces the original: the source delivered all of its material, at least as many frames arrived as the
// head promises, and the file read again from the disk holds them. The original is lost afterwards, and a
// codec that failed on the way once left a source that called itself whole. The copy stands beside the
// original, so an end of the program half-way leaves a whole file.
// PCM is read directly, even in an extensible record and beyond 16 bits: the platform's codecs need not know
// those.

static ProcessResult Fail(ProcessContext& context, std::string_view trace, const LPath& path) {
    LTrace(trace, path.View());
    context.SetError(
        "The recording could not be made ready for new audio. The disk may be full, or the file may "
        "be in use by another program.");
    return ProcessResult::Failed;
}

// The info with the plain format of the audio: PCM may come in an extensible record.
static LWaveInfo Plain(LWaveInfo info) {
    info.format = LAcmRecord(info.format);
    return info;
}

static bool IsDirect(const LWaveInfo& plain) {
    return plain.IsPcm() && plain.format.BlockAlign() > 0;
}

bool LRewriteWave::CanRead(const LWaveInfo& info) {
    const LWaveInfo plain = Plain(info);
    return IsDirect(plain) ||
           (LAcmMayConvert(plain.format) && LAcmQuery(plain.format, LAcmPcm(plain.format)));
}

ProcessResult LRewriteWave::Process(ProcessContext& context) {
    const ProcessResult result = WriteTemporary(context);
    if (m_begun && result != ProcessResult::Done) LFile::SettleBeside(m_temporary, m_path);
    return result;
}

LSoundSource LRewriteWave::OpenOld(const LWaveInfo& info) const {
    auto file = std::make_unique<LFile>(m_path, LFile::Open::Read);
    if (!IsDirect(info)) return LSoundSource::Make<LSRCACMWave>(std::move(file), info, m_opener);
    if (info.BytesPerSample() == 1) return LSoundSource::Make<LSRCPCMFile8>(std::move(file), info);
    if (info.BytesPerSample() == 2) return LSoundSource::Make<LSRCPCMFile16>(std::move(file), info);
    return LSoundSource::Make<LSRCPCMFileWide>(std::move(file), info);
}

ProcessResult LRewriteWave::WriteTemporary(ProcessContext& context) {
    LWaveInfo info;
    if (!LWaveFile::ReadInfo(m_path, info)) return Fail(context, "LRewriteWave::Process no WAV file", m_path);
    if (!info.NeedsRewrite()) return ProcessResult::Done;
    if (LEqualNoCase(m_temporary.View(), m_path.View()))
        return Fail(context, "LRewriteWave::Process no name for the new file", m_path);

    info = Plain(info);
    LSoundSource source = OpenOld(info);
    if (source->IsError()) return Fail(context, "LRewriteWave::Process no codec", m_path);
    m_begun = true;
    constexpr int32_t kFlushSeconds = 60;  // the new file must be on the disk before the old one goes
    const int bits = IsDirect(info) && info.BytesPerSample() == 1 ? 8 : 16;
    LSoundSink sink = LSNKPCMFileBase::Open(m_temporary, 0, bits, source->GetChannels(),
                                            source->GetSampleRate(), kFlushSeconds);
    LPRSourceToSink copy(source, sink);
    const ProcessResult result = copy.Process(context);
    const int32_t copied = sink->GetFrames();
    sink.Reset();
    if (result != ProcessResult::Done) return result;
    if (!source->IsWhole() || copied < info.Frames() || !LWaveFile::IsComplete(m_temporary, copied))
        return Fail(context, "LRewriteWave::Process incomplete temporary file", m_temporary);
    source.Reset();
    if (!LFile::Replace(m_temporary, m_path) && !LFile::SettleBeside(m_temporary, m_path))
        return Fail(context, "LRewriteWave::Process unable to replace", m_path);
    return ProcessResult::Done;
}
