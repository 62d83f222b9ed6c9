#include "audio/wave/LDecodeWave.h"

#include "audio/convert/LPRSourceToSink.h"
#include "audio/wave/LWaveFile.h"
#include "base/LTrace.h"

LDecoded LDecodeWave(const LSoundSource& source, const LPath& path, ProcessContext& context) {
    if (source->IsError()) return LDecoded::NotRead;
    LSoundSink sink = LWaveFile::OpenSinkPCM(path, 16, source->GetChannels(), source->GetSampleRate());
    if (!sink || sink->IsError()) {
        LTrace("LDecodeWave unable to write", path.View());
        return LDecoded::NotWritten;
    }
    const ProcessResult result = LPRSourceToSink(source, sink).Process(context);
    const int32_t frames = sink->GetFrames();
    const bool isFull = sink->IsError();
    sink.Reset();
    if (result == ProcessResult::Stopped) return LDecoded::Stopped;
    if (isFull) return LDecoded::NotWritten;
    if (result != ProcessResult::Done || source->IsError()) return LDecoded::NotRead;
    // A full disk may show only after closing.
    if (!LWaveFile::IsComplete(path, frames)) return LDecoded::NotWritten;
    return source->IsWhole() ? LDecoded::Whole : LDecoded::Cut;
}
