#include "audio/wave/LSNKPCMFile.h"

#include <algorithm>

#include "audio/stream/LKernels.h"
#include "audio/wave/LWaveHeader.h"
#include "base/LArith.h"
#include "base/LFile.h"
#include "base/LTrace.h"

// The header says "unknown" in both size fields from the first byte on, which every reader takes as "to the
// end of the file". So a recording that a crash cuts off is a normal recording, and the next start needs no
// repair step. The destructor writes the real sizes.
// When the disk takes only part of a block, the file is cut back to the last whole frame, so that head and
// data agree. Written audio is handed to the disk every few seconds of material rather than with each block,
// since the disk may be slow; the recorder's ring of buffers covers the wait.

static std::unique_ptr<LStream> OpenFile(const LPath& path) {
    auto file = std::make_unique<LFile>(path, LFile::Open::Write);
    if (file->IsOpen()) return file;
    LTrace("LSNKPCMFileBase::LSNKPCMFileBase unable to open file:", path.View());
    return nullptr;
}

template <class Target>
LSoundSink LSNKPCMFileBase::OpenAny(Target&& target, int32_t startFrames, int bits, uint8_t channels,
                                    int32_t sampleRate, int32_t flushSeconds) {
    if (bits < 1 || bits > 16) {
        LTrace("LWaveFile::OpenSinkPCM BitsPerSample too large - use BUILD_SUPPORT_32BITSAMPLEFORMATS");
        return {};
    }
    LSoundSink sink = bits <= 8 ? LSoundSink::Make<LSNKPCMFile8>(std::forward<Target>(target), startFrames,
                                                                 channels, sampleRate)
                                : LSoundSink::Make<LSNKPCMFile16>(std::forward<Target>(target), startFrames,
                                                                  channels, sampleRate);
    static_cast<LSNKPCMFileBase&>(*sink).m_flushSeconds = flushSeconds;
    return sink;
}

LSoundSink LSNKPCMFileBase::Open(const LPath& path, int32_t startFrames, int bits, uint8_t channels,
                                 int32_t sampleRate, int32_t flushSeconds) {
    return OpenAny(path, startFrames, bits, channels, sampleRate, flushSeconds);
}

LSoundSink LSNKPCMFileBase::Open(std::unique_ptr<LStream> stream, int32_t startFrames, int bits,
                                 uint8_t channels, int32_t sampleRate, int32_t flushSeconds) {
    return OpenAny(std::move(stream), startFrames, bits, channels, sampleRate, flushSeconds);
}

int32_t LSNKPCMFileBase::FramesHeld(int64_t fileBytes, int bytesPerSample, uint8_t channels) {
    const int64_t data = std::max<int64_t>(fileBytes - kWaveHeaderBytes, 0);
    return channels == 0 ? 0 : Saturate(data / (int64_t{bytesPerSample} * channels));
}

LSNKPCMFileBase::LSNKPCMFileBase(const LPath& path, int32_t startFrames, int bytesPerSample, uint8_t channels,
                                 int32_t sampleRate)
    : LSNKPCMFileBase(OpenFile(path), startFrames, bytesPerSample, channels, sampleRate) {}

LSNKPCMFileBase::LSNKPCMFileBase(std::unique_ptr<LStream> stream, int32_t startFrames, int bytesPerSample,
                                 uint8_t channels, int32_t sampleRate)
    : LSoundSinkBase(sampleRate, channels),
      m_stream(std::move(stream)),
      m_bytesPerSample(bytesPerSample),
      m_bytesPerFrame(bytesPerSample * GetChannels()),
      m_block(static_cast<size_t>(kBlockFrames) * static_cast<size_t>(m_bytesPerFrame)) {
    if (sampleRate < 1) LTrace("LSNKPCMFileBase::LSNKPCMFileBase SampleRate <= 0");
    if (IsError() || sampleRate < 1 || !m_stream || !Prepare(startFrames)) SetError();
}

// The head goes first: should the program end between the two steps, the file still reads, uncut.
bool LSNKPCMFileBase::Prepare(int32_t startFrames) {
    const int64_t fileBytes = m_stream->Size();
    if (fileBytes < 0) {
        LTrace("LSNKPCMFileBase::LSNKPCMFileBase size of the file unknown");
        return false;
    }
    const int32_t held = FramesHeld(fileBytes, m_bytesPerSample, GetChannels());
    if (!WriteHeader(kWaveSizeUnknown)) {
        LTrace("LSNKPCMFileBase::LSNKPCMFileBase unable to write the header");
        return false;
    }
    m_headWritten = true;
    SetFrames(Clamp(startFrames, 0, held));
    if (CutAt(GetFrames())) return true;
    LTrace("LSNKPCMFileBase::LSNKPCMFileBase SetFilePointer FAILED");
    return false;
}

bool LSNKPCMFileBase::WriteHeader(uint32_t dataBytes) {
    const LWaveHeader head = WavePcmHeader(m_bytesPerSample, GetChannels(), GetSampleRate(), dataBytes);
    return m_stream->Seek(0) && m_stream->WriteAll(head);
}

bool LSNKPCMFileBase::CutAt(int32_t frames) {
    return m_stream->Seek(kWaveHeaderBytes + DataBytes(frames)) && m_stream->SetEnd();
}

void LSNKPCMFileBase::Write(const int32_t* samples, int32_t frames) {
    if (IsError() || frames < 1) return;
    const size_t bytes = static_cast<size_t>(DataBytes(frames));
    if (DataBytes(GetFrames()) + static_cast<int64_t>(bytes) > kWaveMaxDataBytes ||
        frames > INT32_MAX - GetFrames()) {
        LTrace("LSNKPCMFileBase::Write the format holds no more");
        SetError();
        return;
    }
    Convert(samples, m_block.data(), static_cast<size_t>(frames) * GetChannels());
    const size_t taken = m_stream->Write(std::span(m_block).first(bytes));
    AddFrames(static_cast<int32_t>(taken / static_cast<size_t>(m_bytesPerFrame)));
    if (taken < bytes) {
        LTrace("LSNKPCMFileBase::Write disk full");
        SetError();
        CutAt(GetFrames());
        return;
    }
    FlushWhenDue(frames);
}

void LSNKPCMFileBase::FlushWhenDue(int32_t frames) {
    m_unflushedFrames += frames;
    if (m_flushSeconds < 1 || m_unflushedFrames / GetSampleRate() < m_flushSeconds) return;
    m_unflushedFrames = 0;
    if (!m_stream->Flush()) LTrace("LSNKPCMFileBase::Write unable to flush");
}

void LSNKPCMFileBase::Truncate(int32_t frames) {
    if (frames > GetFrames() || !m_headWritten) return;
    SetFrames(std::max(frames, 0));
    if (CutAt(GetFrames())) return;
    LTrace("LSNKPCMFileBase::Truncate unable to cut the file");
    SetError();
}

LSNKPCMFileBase::~LSNKPCMFileBase() {
    if (!m_headWritten) return;
    if (!WriteHeader(static_cast<uint32_t>(DataBytes(GetFrames()))))
        LTrace("LSNKPCMFileBase::~LSNKPCMFileBase unable to write the header");
    if (m_flushSeconds > 0 && !m_stream->Flush()) LTrace("LSNKPCMFileBase::~LSNKPCMFileBase unable to flush");
}

void LSNKPCMFile8::Convert(const int32_t* samples, uint8_t* bytes, size_t count) const {
    Kernels().toPcm8(samples, bytes, count);
}

void LSNKPCMFile16::Convert(const int32_t* samples, uint8_t* bytes, size_t count) const {
    Kernels().toPcm16(samples, bytes, count);
}
