#include "audio/convert/LPRSourceToSink.h"

#include <algorithm>
#include <vector>

#include "audio/convert/LSPConvChannels.h"
#include "audio/convert/LSRCConvertRate.h"
#include "audio/convert/LSRCPeakLimit.h"
#include "base/LTrace.h"

static bool Refuse(ProcessContext& context, std::string_view trace, std::string_view text) {
    LTrace(trace);
    context.SetError(text);
    return false;
}

ProcessResult LPRSourceToSink::Process(ProcessContext& context) {
    context.SetStatus("Please wait...");
    const ProcessResult result = Prepare(context) && Match(context) ? Pump(context) : ProcessResult::Failed;
    m_source.Reset();
    m_sink.Reset();
    return result;
}

bool LPRSourceToSink::Prepare(ProcessContext& context) {
    if (m_source->IsError())
        return Refuse(context, "LPRSourceToSink::Process Source Error", "The audio cannot be read.");
    if (m_sink && m_sink->IsError())
        return Refuse(context, "LPRSourceToSink::Process Sink Error", "The audio file cannot be written.");
    return true;
}

bool LPRSourceToSink::Match(ProcessContext& context) {
    m_source = LSPConvChannels::OpenSource(m_source, m_sink ? m_sink->GetChannels() : 1);
    if (m_source->IsError())
        return Refuse(context, "LPRSourceToSink::Process no channel converter",
                      "Audio with this number of channels cannot be converted.");
    // The rate converter clips at full scale, so a limiter before it turns loud sound down; another one
    // behind it takes the converter's own overshoot.
    m_source = LSRCPeakLimit::OpenSource(m_source);
    m_source = LSRCConvertRate::OpenSource(m_source, m_sink ? m_sink->GetSampleRate() : 44100);
    if (m_source->IsError())
        return Refuse(context, "LPRSourceToSink::Process no rate converter",
                      "Audio with this sampling rate cannot be converted.");
    m_source = LSRCPeakLimit::OpenSource(m_source);
    return true;
}

// A length may be an estimate that moves while the source is read. The end is where the position meets the
// length of that moment; only the progress goes by the first length.
ProcessResult LPRSourceToSink::Pump(ProcessContext& context) {
    const double total = std::max(m_source->GetLength(), 1);
    std::vector<int32_t> block(size_t{kBlockFrames} * m_source->GetChannels());
    while (!context.CancelRequested()) {
        m_source->Read(block.data(), kBlockFrames);
        const int64_t beyond = int64_t{m_source->GetPosition()} - m_source->GetLength();
        if (beyond >= 0) {
            const int64_t frames = kBlockFrames - beyond;
            const bool written = frames < 1 || Write(context, block.data(), static_cast<int32_t>(frames));
            return written ? ProcessResult::Done : ProcessResult::Failed;
        }
        if (!Write(context, block.data(), kBlockFrames)) return ProcessResult::Failed;
        // Beyond the first length, which may have been unknown, nothing is told.
        if (m_source->GetPosition() < total) context.SetProgress(m_source->GetPosition() / total);
    }
    return ProcessResult::Stopped;
}

bool LPRSourceToSink::Write(ProcessContext& context, const int32_t* samples, int32_t frames) {
    if (!m_sink) return true;
    m_sink->Write(samples, frames);
    if (!m_sink->IsError()) return true;
    return Refuse(context, "LPRSourceToSink::Process Sink Error",
                  "The audio file could not be written. The disk may be full.");
}
