#include "audio/wave/LSRCPCMFile.h"

#include <algorithm>
#include <array>

#include "audio/stream/LKernels.h"
#include "audio/wave/LWaveHeader.h"
#include "base/LArith.h"
#include "base/LBytes.h"
#include "base/LTrace.h"

// A file of unknown size may still be recorded, or may be the remains of a crash. The header does not tell
// the two apart, and a size that stands still proves nothing, since a recording may be waiting for a voice.
// So the file is opened once more without allowing writers (LReadStream::IsBeingWritten), which fails while
// the recorder has it open. Once the recorder has closed the file, the header holds the real size and the
// length is settled for good.
// Missing frames of a finished file are filled with silence and noted (IsWhole), since a copy with silence in
// it must not replace the original.

LSRCPCMFileBase::LSRCPCMFileBase(std::unique_ptr<LReadStream> stream, const LWaveInfo& info,
                                 int bytesPerSample)
    : LSoundSourceBase(static_cast<int32_t>(info.format.SampleRate()),
                       static_cast<uint8_t>(info.format.Channels()), kFullScale16),
      m_stream(std::move(stream)),
      m_dataStart(info.dataStart),
      m_bytesPerFrame(GetChannels() * bytesPerSample),
      m_block(static_cast<size_t>(kBlockFrames) * static_cast<size_t>(m_bytesPerFrame)) {
    if (info.isStreaming) LTrace("LSRCPCMFileBase::LSRCPCMFileBase Wav File Is Streaming");
    m_length = FramesIn(info.dataBytes);
    m_growing = info.isStreaming && m_stream->IsBeingWritten();
    LSRCPCMFileBase::Seek(0);
}

int32_t LSRCPCMFileBase::FramesIn(int64_t dataBytes) const {
    return Saturate(std::max<int64_t>(dataBytes, 0) / m_bytesPerFrame);
}

int32_t LSRCPCMFileBase::PresentLength() const {
    return m_growing ? FramesIn(m_stream->Size() - m_dataStart) : m_length;
}

bool LSRCPCMFileBase::IsGrowing() const {
    if (!m_growing) return false;
    // This order matters: the recorder may finish between the two questions, and then the header is already
    // right.
    const bool isBeingWritten = m_stream->IsBeingWritten();
    const uint32_t dataBytes = DataBytesInHeader();
    if (isBeingWritten && dataBytes == kWaveSizeUnknown) return true;
    m_length = FramesIn(std::min<int64_t>(dataBytes, m_stream->Size() - m_dataStart));
    m_growing = false;
    return false;
}

uint32_t LSRCPCMFileBase::DataBytesInHeader() const {
    std::array<uint8_t, 4> bytes;
    const int64_t place = m_stream->Position();
    const bool isRead = m_stream->Seek(m_dataStart - 4) && m_stream->ReadExact(bytes);
    m_stream->Seek(place);
    return isRead ? LByteReader(bytes).U32() : kWaveSizeUnknown;
}

void LSRCPCMFileBase::Read(int32_t* samples, int32_t frames) {
    const int32_t first = m_position;
    m_position = Saturate(int64_t{first} + frames);
    const int32_t before = first < 0 ? static_cast<int32_t>(std::min(-int64_t{first}, int64_t{frames})) : 0;
    const int32_t present = Clamp(PresentLength() - std::max(first, 0), 0, frames - before);

    const size_t channels = GetChannels();
    const auto values = [channels](int32_t count) { return static_cast<size_t>(count) * channels; };
    std::fill_n(samples, values(before), 0);
    if (present > 0) ReadFrames(samples + values(before), present, std::max(first, 0));
    const int32_t missing = frames - before - present;
    std::fill_n(samples + values(before + present), values(missing), 0);
    // Frames that are recorded there later will be read at their own place.
    if (missing > 0 && m_growing) m_stream->Seek(m_dataStart + int64_t{m_position} * m_bytesPerFrame);
}

void LSRCPCMFileBase::ReadFrames(int32_t* samples, int32_t frames, int32_t firstFrame) {
    const size_t bytes = static_cast<size_t>(frames) * static_cast<size_t>(m_bytesPerFrame);
    const size_t got = m_stream->Read(std::span(m_block).first(bytes));
    const int32_t whole = static_cast<int32_t>(got / static_cast<size_t>(m_bytesPerFrame));
    const size_t values = static_cast<size_t>(whole) * GetChannels();
    Convert(m_block.data(), samples, values);
    if (whole == frames) return;
    // The recorder has cut the file back meanwhile, or the file cannot be read here: silence takes the place
    // of the missing frames. The file may grow again, so its read place keeps step with the position.
    if (!m_growing) MissFrames();
    std::fill_n(samples + values, static_cast<size_t>(frames - whole) * GetChannels(), 0);
    m_stream->Seek(m_dataStart + (int64_t{firstFrame} + frames) * m_bytesPerFrame);
}

// Positions the stream too. Of a growing file the place beyond the end may hold data by the time it is read.
void LSRCPCMFileBase::Seek(int32_t frame) {
    m_position = frame;
    const int32_t last = m_growing ? INT32_MAX : m_length;
    if (!m_stream->Seek(m_dataStart + int64_t{Clamp(frame, 0, last)} * m_bytesPerFrame)) MissFrames();
}

void LSRCPCMFileBase::MissFrames() {
    if (m_isWhole) LTrace("LSRCPCMFileBase::Read unable to read all");
    m_isWhole = false;
}

void LSRCPCMFile8::Convert(const uint8_t* bytes, int32_t* samples, size_t count) const {
    Kernels().fromPcm8(bytes, samples, count);
}

void LSRCPCMFile16::Convert(const uint8_t* bytes, int32_t* samples, size_t count) const {
    Kernels().fromPcm16(bytes, samples, count);
}

void LSRCPCMFileWide::Convert(const uint8_t* bytes, int32_t* samples, size_t count) const {
    for (size_t i = 0; i < count; ++i, bytes += m_bytesPerSample) {
        uint32_t bits = 0;  // the sample, its highest byte at the top
        for (size_t b = 0; b < m_bytesPerSample; ++b)
            bits = bits >> 8 | static_cast<uint32_t>(bytes[b]) << 24;
        const int64_t rounded = (int64_t{static_cast<int32_t>(bits)} + 0x8000) >> 16;
        samples[i] = FromPcm16(static_cast<int16_t>(std::min<int64_t>(rounded, 0x7FFF)));
    }
}
