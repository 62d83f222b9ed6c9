#include "audio/wave/LSRCACMWave.h"

#include <algorithm>

#include "audio/stream/LKernels.h"
#include "audio/wave/LAcmRecord.h"
#include "base/LArith.h"
#include "base/LTrace.h"

// Read takes decoded frames from the codec's output buffer. When that is empty it tops the input up and
// converts again; at the end of the data one more conversion brings out the material that the codec holds
// back.
// A seek has to guess in formats without a block length. The header's byte rate alone was rejected: common
// writers store one that is several times too high or low, so a seek lands elsewhere and the position shows a
// wrong time. Measuring the first second alone was rejected too, since where the rate varies it seldom is
// that of the whole: a right length of a minute became 20 s. Four excerpts decide between header and
// measurement.
// An estimate never ends material that is still heard: while input is left, GetLength() stays beyond the
// position. A seek opens the codec anew (LAcm_win.cpp) and begins early enough for its prediction to settle.

using Flow = LAcmStream::Flow;

LSRCACMWave::LSRCACMWave(std::unique_ptr<LReadStream> stream, const LWaveInfo& info, LAcmOpener opener)
    : LSoundSourceBase(static_cast<int32_t>(info.format.SampleRate()),
                       static_cast<uint8_t>(info.format.Channels()), kFullScale16),
      m_stream(std::move(stream)),
      m_dataStart(info.dataStart),
      m_dataBytes(info.dataBytes),
      m_format(LAcmRecord(info.format)),
      m_blockAlign(std::max<int32_t>(m_format.BlockAlign(), 1)),
      m_blockFrames(LAcmBlockFrames(m_format)),
      m_isChecked(m_blockFrames > 0) {
    if (info.isStreaming) LTrace("LSRCACMWave::LSRCACMWave Wav File Is Streaming");
    const int64_t byteRate = info.format.AverageBytesPerSecond();
    m_scale = {byteRate > 0 ? byteRate : GetSampleRate(), GetSampleRate()};
    if (m_blockFrames > 0) m_scale = {m_blockAlign, m_blockFrames};
    if (!m_stream) LTrace("LSRCACMWave::LSRCACMWave hFile == INVALID_HANDLE_VALUE ERROR");
    if (!m_stream || !OpenCodec(opener)) {
        SetError();
        EndAt(0);
        return;
    }
    GoTo(0);
}

LSRCACMWave::~LSRCACMWave() {
    if (!m_codec.Unprepare()) LTrace("LSRCACMWave::~LSRCACMWave acmStreamUnprepareHeader ERROR");
    if (!m_codec.Close()) LTrace("LSRCACMWave::~LSRCACMWave acmStreamClose ERROR");
}

// The output buffer holds a whole block even when that exceeds a read, or the block could never be decoded.
bool LSRCACMWave::OpenCodec(LAcmOpener opener) {
    if (!LAcmMayConvert(m_format) || !m_codec.Open(m_format, LAcmPcm(m_format), opener) ||
        !m_codec.HasHandle()) {
        LTrace("LSRCACMWave::LSRCACMWave acmStreamOpen handle invalid ERROR");
        return false;
    }
    const int32_t frames = std::max(kBlockFrames, m_blockFrames);
    if (!m_codec.SizeForOutput(static_cast<uint32_t>(frames * FrameBytes()),
                               static_cast<uint32_t>(m_blockAlign))) {
        LTrace("LSRCACMWave::LSRCACMWave acmStreamSize ERROR");
        return false;
    }
    if (m_codec.Prepare()) return true;
    LTrace("LSRCACMWave::LSRCACMWave acmStreamPrepareHeader ERROR");
    return false;
}

int32_t LSRCACMWave::BufferedFrames() const {
    return static_cast<int32_t>(m_codec.Output().size()) / FrameBytes();
}

int64_t LSRCACMWave::FramesOf(int64_t bytes) const {
    return bytes / m_scale.bytes * m_scale.frames + bytes % m_scale.bytes * m_scale.frames / m_scale.bytes;
}

void LSRCACMWave::Read(int32_t* samples, int32_t frames) {
    const int32_t first = m_position;
    m_position = Saturate(int64_t{first} + frames);
    int32_t done = first < 0 ? static_cast<int32_t>(std::min(-int64_t{first}, int64_t{frames})) : 0;
    const auto values = [channels = size_t{GetChannels()}](int32_t count) {
        return static_cast<size_t>(count) * channels;
    };
    std::fill_n(samples, values(done), 0);
    while (done < frames) {
        done += Take(samples + values(done), frames - done);
        if (done == frames || m_end >= 0) break;
        if (!Decode()) {
            LTrace("LSRCACMWave::Read End Reached");
            EndAt(int64_t{first} + done);
        }
    }
    std::fill_n(samples + values(done), values(frames - done), 0);
}

// Moves decoded frames to the reader and returns their number. Half a frame at the end stays behind.
int32_t LSRCACMWave::Take(int32_t* samples, int32_t frames) {
    const int32_t count = std::min(frames, BufferedFrames());
    Kernels().fromPcm16(m_codec.Output().data(), samples, static_cast<size_t>(count) * GetChannels());
    m_codec.TakeOutput(static_cast<size_t>(count) * static_cast<size_t>(FrameBytes()));
    return count;
}

// Decodes the next piece into the output buffer; false when there is none. The loop ends, since each turn
// consumes input.
bool LSRCACMWave::Decode() {
    for (;;) {
        TopUp();
        const bool isFull = m_codec.FreeInput().empty();
        const Flow flow = m_codec.InputUsed() > 0 ? Convert(LAcmConversion::Flag::BlockAlign) : Flow::Idle;
        if (flow == Flow::Failed) return false;
        if (BufferedFrames() > 0) return true;
        if (flow == Flow::Idle || !isFull) return DecodeEnd();
    }
}

bool LSRCACMWave::DecodeEnd() {
    if (!m_isFed) return false;
    const bool yielded = Convert(LAcmConversion::Flag::End) == Flow::Yielded && BufferedFrames() > 0;
    if (!yielded) m_isFed = false;
    return yielded;
}

void LSRCACMWave::TopUp() {
    const auto room = m_codec.FreeInput();
    const int64_t wanted = std::min<int64_t>(m_dataBytes - m_readBytes, static_cast<int64_t>(room.size()));
    if (wanted < 1) return;
    const size_t got = m_stream->Read(room.first(static_cast<size_t>(wanted)));
    m_codec.AddInput(got);
    m_readBytes += static_cast<int64_t>(got);
    if (got > 0) m_isFed = true;
}

Flow LSRCACMWave::Convert(LAcmConversion::Flag flag) {
    const size_t input = m_codec.InputUsed();
    const Flow flow = m_codec.Convert(flag);
    if (flow == Flow::Failed) {
        if (input > 0) LTrace("LSRCACMWave::Read acmStreamConvert FAILED");
        return flow;
    }
    m_decoded.bytes += static_cast<int64_t>(input - m_codec.InputUsed());
    m_decoded.frames += BufferedFrames();
    return flow;
}

// Compares the header's byte rate with four excerpts from all over the material, and takes theirs where the
// two differ by more than a factor of two. Each excerpt is decoded to its end, since a codec may hold back
// any amount before that. The tolerance is wide for two reasons: an excerpt that begins amid a block loses
// part of it, and where the rate varies four excerpts say little.
void LSRCACMWave::CheckByteRate() {
    // An excerpt has the bytes of a quarter of a second by the header, held to 2 to 8 KB, or of two blocks
    // where those are more, up to 16 KB.
    constexpr int32_t kExcerpts = 4;
    constexpr int64_t kMostBlocksBytes = 16384;
    if (m_isChecked) return;
    m_isChecked = true;
    const int64_t allBytes = m_dataBytes;
    const int64_t quarterSecond = Clamp<int64_t>(m_scale.bytes / kExcerpts, 2048, 8192);
    const int64_t bytes = Clamp(2 * int64_t{m_blockAlign}, quarterSecond, kMostBlocksBytes);
    Extent found;
    for (int32_t i = 0; i < kExcerpts; ++i) {
        const int64_t at = i * allBytes / kExcerpts / m_blockAlign * m_blockAlign;
        m_dataBytes = std::min(allBytes, at + bytes);
        GoTo(at);
        while (Decode()) m_codec.TakeOutput(m_codec.Output().size());
        found.bytes += m_decoded.bytes;
        found.frames += m_decoded.frames;
    }
    m_dataBytes = allBytes;
    const int64_t told = FramesOf(found.bytes);
    const bool isUsable = found.bytes > 0 && found.frames > 0 && found.frames < INT32_MAX;
    if (isUsable && (told > 2 * found.frames || found.frames > 2 * told)) m_scale = found;
}

// Whether the input that the codec left is less than a block. Where the block align is only a claim of the
// file, a block counts as a moment of the decoded material: 150 ms, since one of MP3 lasts up to 72 ms.
bool LSRCACMWave::IsLeftOver(int64_t bytes) const {
    constexpr int64_t kLongestBlockMs = 150;
    if (bytes == 0) return true;
    if (m_blockFrames > 0) return bytes < m_blockAlign;
    return bytes * m_decoded.frames < kLongestBlockMs * GetSampleRate() / 1000 * m_decoded.bytes;
}

// Settles the end. Material that was decoded whole from its start gives the true length, and with it the true
// scale for later seeks.
void LSRCACMWave::EndAt(int64_t frame) {
    m_end = Saturate(std::max<int64_t>(frame, 0));
    const bool isRead = m_readBytes == m_dataBytes;
    m_isWhole = isRead && IsLeftOver(static_cast<int64_t>(m_codec.InputUsed())) && !m_codec.IsEndless();
    if (m_blockFrames > 0 || !m_isWhole || !m_isFromStart || m_decoded.frames == 0) return;
    m_total = Saturate(m_decoded.frames);
    m_scale = {m_dataBytes, m_total};
    m_isChecked = true;
}

int32_t LSRCACMWave::GetLength() const {
    if (m_end >= 0) return m_end;
    const int64_t position = std::max(m_position, 0);
    const int64_t estimate = m_total >= 0 ? m_total : position + BufferedFrames() + FramesOf(Unconsumed());
    const bool mayGoOn = m_isFed || Unconsumed() > 0;
    return Saturate(std::max(estimate, mayGoOn ? position + 1 : position));
}

int64_t LSRCACMWave::SeekOffset(int32_t frame) const {
    if (frame < 1) return 0;
    if (m_blockFrames > 0) return int64_t{frame} / m_blockFrames * m_blockAlign;
    return int64_t{frame} * m_scale.bytes / m_scale.frames;
}

int64_t LSRCACMWave::FrameAt(int64_t offset) const {
    return m_blockFrames > 0 ? offset / m_blockAlign * m_blockFrames : FramesOf(offset);
}

// The offset at which decoding has to begin to reach a frame: at the start of a block, and early enough for
// the codec to settle. A place near the start is reached from the start itself, since that is exact.
int64_t LSRCACMWave::AlignedOffset(int32_t frame) const {
    if (m_blockFrames == 0 && frame <= kBlockFrames) return 0;
    return SeekOffset(frame - LAcmWarmUpFrames(m_format)) / m_blockAlign * m_blockAlign;
}

// The offset for a place beyond the end, where that end is only an estimate: the player may be there, playing
// sound that the estimate denies.
int64_t LSRCACMWave::LastSecondOffset() const {
    return AlignedOffset(Saturate(FrameAt(m_dataBytes) - GetSampleRate()));
}

void LSRCACMWave::GoTo(int64_t offset) {
    m_codec.Restart();
    m_end = -1;
    m_isWhole = m_isFed = false;
    m_isFromStart = offset == 0;
    m_decoded = {};
    m_readBytes = offset;
    if (!m_stream->Seek(m_dataStart + offset)) LTrace("LSRCACMWave::Seek SetFilePointer FAILED");
}

void LSRCACMWave::Seek(int32_t frame) {
    m_position = frame;
    if (IsError()) return;
    if (frame > kBlockFrames) CheckByteRate();
    const bool isBeyond = SeekOffset(frame) > m_dataBytes;
    if ((isBeyond && m_blockFrames > 0) || (m_total >= 0 && frame >= m_total)) {
        GoTo(m_dataBytes);
        EndAt(m_total >= 0 ? m_total : FrameAt(m_dataBytes));
        return;
    }
    if (isBeyond) {
        GoTo(LastSecondOffset());
        return;
    }
    const int64_t offset = AlignedOffset(std::max(frame, 0));
    GoTo(offset);
    if (frame > 0) Discard(frame - FrameAt(offset));
}

// Decodes and drops frames, up to the place of a seek. Without known blocks the distance is a guess; one
// beyond kBlockFrames is too wild to follow.
void LSRCACMWave::Discard(int64_t frames) {
    if (m_blockFrames == 0 && frames > kBlockFrames) return;
    while (frames > 0) {
        const int64_t count = std::min<int64_t>(frames, BufferedFrames());
        m_codec.TakeOutput(static_cast<size_t>(count * FrameBytes()));
        frames -= count;
        if (frames == 0 || Decode()) continue;
        EndAt(m_position - frames);
        return;
    }
}
