#include "audio/wave/LSNKACMFile.h"

#include <algorithm>

#include "audio/stream/LKernels.h"
#include "audio/wave/LAcmRecord.h"
#include "audio/wave/LWaveHeader.h"
#include "base/LArith.h"
#include "base/LFile.h"
#include "base/LTrace.h"

using Flow = LAcmStream::Flow;

LSNKACMFile::LSNKACMFile(const LWaveFileFormat& format)
    : LSoundSinkBase(static_cast<int32_t>(format.SampleRate()), static_cast<uint8_t>(format.Channels())),
      m_format(LAcmRecord(format)),
      m_pcm(LAcmPcm(format)) {
    if (format.Channels() <= 255 && GetSampleRate() >= 1) return;
    Fail("LSNKACMFile::LSNKACMFile channels or sample rate out of range");
}

LSNKACMFile::LSNKACMFile(const LWaveFileFormat& format, std::unique_ptr<LStream> stream, LAcmOpener opener)
    : LSNKACMFile(format) {
    if (IsError() || !OpenCodec(opener)) return;
    m_stream = std::move(stream);
    Begin();
}

LSNKACMFile::LSNKACMFile(const LWaveFileFormat& format, const LPath& path, LAcmOpener opener)
    : LSNKACMFile(format) {
    if (IsError() || !OpenCodec(opener)) return;
    auto file = std::make_unique<LFile>(path, LFile::Open::CreateNew);
    if (!file->IsOpen()) {
        Fail("LSNKACMFile::LSNKACMFile unable to open file");
        return;
    }
    m_stream = std::move(file);
    Begin();
}

bool LSNKACMFile::OpenCodec(LAcmOpener opener) {
    if (!LAcmMayConvert(m_format) || !m_codec.Open(m_pcm, m_format, opener)) {
        Fail("LSNKACMFile::LSNKACMFile acmStreamOpen ERROR");
    } else if (!m_codec.HasHandle()) {
        Fail("LSNKACMFile::LSNKACMFile acmStreamOpen handle invalid ERROR");
    } else if (!m_codec.SizeForInput(uint32_t{kBlockFrames} * m_pcm.BlockAlign())) {
        Fail("LSNKACMFile::LSNKACMFile acmStreamSize <= 0 ERROR");
    } else if (!m_codec.Prepare()) {
        Fail("LSNKACMFile::LSNKACMFile acmStreamPrepareHeader ERROR");
    }
    return !IsError();
}

void LSNKACMFile::Begin() {
    m_headWritten = WriteHeader(kWaveSizeUnknown) && m_stream->SetEnd();
    if (!m_headWritten) Fail("LSNKACMFile::LSNKACMFile unable to write the header");
}

LSNKACMFile::~LSNKACMFile() {
    const bool wasGood = !IsError();
    if (wasGood) Flush();
    const bool lacksItsEnd = wasGood && IsError();
    if (!m_codec.Unprepare()) LTrace("LSNKACMFile::~LSNKACMFile acmStreamUnprepareHeader ERROR");
    if (!m_codec.Close()) LTrace("LSNKACMFile::~LSNKACMFile acmStreamClose ERROR");
    if (m_headWritten && !lacksItsEnd && !WriteHeader(static_cast<uint32_t>(m_dataBytes)))
        LTrace("LSNKACMFile::~LSNKACMFile unable to write the header");
}

int64_t LSNKACMFile::HeaderBytes() const {
    return kWaveHeaderBytes + m_format.ExtraBytes();
}

bool LSNKACMFile::WriteHeader(uint32_t dataBytes) {
    return m_stream->Seek(0) && m_stream->WriteAll(WaveHeader(m_format, dataBytes));
}

void LSNKACMFile::Write(const int32_t* samples, int32_t frames) {
    if (frames < 1) return;
    size_t left = static_cast<size_t>(frames) * GetChannels();
    while (left > 0 && !IsError()) {
        const size_t taken = Feed(samples, left);
        samples += taken;
        left -= taken;
        const Flow flow = Convert(LAcmConversion::Flag::BlockAlign);
        if (flow == Flow::Idle && taken == 0) Fail("LSNKACMFile::Write acmStreamConvert takes nothing");
    }
    if (!IsError()) AddFrames(frames);
}

// Puts as many values as there is room for into the input buffer, and returns their number.
size_t LSNKACMFile::Feed(const int32_t* samples, size_t count) {
    const auto room = m_codec.FreeInput();
    count = std::min(count, room.size() / 2);
    Kernels().toPcm16(samples, room.data(), count);
    m_codec.AddInput(2 * count);
    return count;
}

Flow LSNKACMFile::Convert(LAcmConversion::Flag flag) {
    const Flow flow = m_codec.Convert(flag);
    if (flow == Flow::Failed) Fail("LSNKACMFile::Write acmStreamConvert FAILED");
    if (flow == Flow::Yielded) Store(m_codec.Output());
    return flow;
}

// Brings out the end of the material. Some codecs leave input that does not fill a block; none of it may be
// lost, so silence fills the block.
void LSNKACMFile::Flush() {
    Drain();
    const int32_t blockFrames = LAcmBlockFrames(m_format);
    if (IsError() || m_codec.InputUsed() == 0 || blockFrames == 0) return;
    const size_t blockBytes = static_cast<size_t>(blockFrames) * m_pcm.BlockAlign();
    const auto room = m_codec.FreeInput();
    const size_t missing = RoundUp(m_codec.InputUsed(), blockBytes) - m_codec.InputUsed();
    if (missing > room.size()) return;
    std::fill_n(room.begin(), missing, uint8_t{0});
    m_codec.AddInput(missing);
    Drain();
}

// Converts until the codec yields nothing more. The loop ends: each turn consumes input, or uses up the
// budget of LAcmStream for conversions without any.
void LSNKACMFile::Drain() {
    Flow flow;
    do flow = Convert(LAcmConversion::Flag::End);
    while (!IsError() && flow == Flow::Yielded);
}

void LSNKACMFile::Store(std::span<const uint8_t> bytes) {
    const int64_t most = kWaveMaxDataBytes - m_format.ExtraBytes();
    if (m_dataBytes + static_cast<int64_t>(bytes.size()) > most)
        return Fail("LSNKACMFile::Write the format holds no more");
    const size_t taken = m_stream->Write(bytes);
    m_dataBytes += static_cast<int64_t>(taken);
    if (taken == bytes.size()) return;
    Fail("LSNKACMFile::Write disk full");
    m_dataBytes -= m_dataBytes % m_format.BlockAlign();
    m_stream->Seek(HeaderBytes() + m_dataBytes);
    m_stream->SetEnd();
}

void LSNKACMFile::Fail(std::string_view trace) {
    LTrace(trace);
    SetError();
}
