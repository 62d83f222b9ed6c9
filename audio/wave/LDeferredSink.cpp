#include "audio/wave/LDeferredSink.h"

#include <array>

#include "audio/wave/LWaveHeader.h"
#include "base/LArith.h"
#include "base/LFile.h"
#include "base/LTrace.h"

// The sink in two states. Until the first Write it holds only the open stream and the frame at which the
// recording begins; the first Write makes an LSNKPCMFile of the stream, which writes its header and cuts the
// file there. Cutting when the device starts was rejected: a device that starts and then delivers nothing
// would cost the end of the old recording. Opening the file only at the first Write was rejected too, since
// the user would hear of a locked file after having spoken.
// A file that was empty at the start is deleted again when it gets no audio; one with contents never is.

static constexpr int32_t kFlushSeconds = 10;  // the most that a power failure costs

static int BytesPerSample(int bits) {
    return bits <= 8 ? 1 : 2;
}

static LSoundSink OpenOn(std::unique_ptr<LStream> stream, const LPath& path, int32_t startFrames, int bits,
                         uint8_t channels, int32_t sampleRate) {
    if (bits < 1 || bits > 16) {
        LTrace("LDeferredSink::Open bits out of range");
        return {};
    }
    return LSoundSink::Make<LDeferredSink>(std::move(stream), path, startFrames, bits, channels, sampleRate);
}

LSoundSink LDeferredSink::Open(const LPath& path, int32_t startFrames, int bits, uint8_t channels,
                               int32_t sampleRate) {
    auto file = std::make_unique<LFile>(path, LFile::Open::Write);
    if (!file->IsOpen()) {
        LTrace("LDeferredSink::Open unable to open file:", path.View());
        file.reset();
    }
    return OpenOn(std::move(file), path, startFrames, bits, channels, sampleRate);
}

LSoundSink LDeferredSink::Open(std::unique_ptr<LStream> stream, int32_t startFrames, int bits,
                               uint8_t channels, int32_t sampleRate) {
    return OpenOn(std::move(stream), LPath(), startFrames, bits, channels, sampleRate);
}

LDeferredSink::LDeferredSink(std::unique_ptr<LStream> stream, const LPath& path, int32_t startFrames,
                             int bits, uint8_t channels, int32_t sampleRate)
    : LSoundSinkBase(sampleRate, channels), m_stream(std::move(stream)), m_bits(bits) {
    const int64_t fileBytes = m_stream ? m_stream->Size() : -1;
    if (fileBytes == 0) m_path = path;  // a file with contents is never removed
    if (fileBytes < 0 || sampleRate < 1) {
        SetError();
        return;
    }
    const int32_t held = LSNKPCMFileBase::FramesHeld(fileBytes, BytesPerSample(bits), GetChannels());
    SetFrames(Clamp(startFrames, 0, held));
    if (GetFrames() > 0 && !IsOurFile()) {
        LTrace("LDeferredSink::LDeferredSink file has another layout");
        SetError();
    }
}

bool LDeferredSink::IsOurFile() {
    LWaveHeader head;
    const LWaveHeader ours =
        WavePcmHeader(BytesPerSample(m_bits), GetChannels(), GetSampleRate(), kWaveSizeUnknown);
    return m_stream->Seek(0) && m_stream->ReadExact(head) && WaveHeadersAgree(head, ours);
}

LDeferredSink::~LDeferredSink() {
    const bool isEmpty = m_stream || (m_file && IsError() && GetFrames() == 0);
    m_stream.reset();
    m_file.Reset();
    if (isEmpty && !m_path.Empty() && !LFile::Delete(m_path))
        LTrace("LDeferredSink::~LDeferredSink unable to remove the empty file", m_path.View());
}

void LDeferredSink::Write(const int32_t* samples, int32_t frames) {
    if (IsError() || frames < 1) return;
    if (!m_file) {
        m_file = LSNKPCMFileBase::Open(std::move(m_stream), GetFrames(), m_bits, GetChannels(),
                                       GetSampleRate(), kFlushSeconds);
    }
    m_file->Write(samples, frames);
    Adopt();
}

void LDeferredSink::Truncate(int32_t frames) {
    if (!m_file) return;
    m_file->Truncate(frames);
    Adopt();
}

void LDeferredSink::Adopt() {
    SetFrames(m_file->GetFrames());
    if (m_file->IsError()) SetError();
}
