#include "audio/mp3/LMP3Source.h"

#include <algorithm>
#include <cstring>

#include "audio/mp3/MP3LT.h"
#include "base/LArith.h"
#include "base/LFile.h"
#include "base/LTrace.h"

namespace {

constexpr size_t kMostBodyBytes = 2048;  // the longest frame has 1441

bool Refuse(const char* reason) {
    LTrace(reason);
    return false;
}

// Headers are read byte by byte, files by blocks.
class BlockReader final : public LReadStream {
public:
    explicit BlockReader(std::unique_ptr<LReadStream> stream) : m_stream(std::move(stream)), m_block(16384) {}

    size_t Read(std::span<uint8_t> buffer) override {
        size_t done = 0;
        while (done < buffer.size()) {
            if (m_used == m_filled && !Fill()) break;
            const size_t count = std::min(buffer.size() - done, m_filled - m_used);
            std::memcpy(buffer.data() + done, &m_block[m_used], count);
            m_used += count;
            done += count;
        }
        return done;
    }
    bool Seek(int64_t position) override {
        m_used = m_filled = 0;
        m_blockEnd = position;
        return m_stream->Seek(position);
    }
    int64_t Position() const override { return m_blockEnd - static_cast<int64_t>(m_filled - m_used); }
    int64_t Size() const override { return m_stream->Size(); }

private:
    bool Fill() {
        m_used = 0;
        m_filled = m_stream->Read(m_block);
        m_blockEnd += static_cast<int64_t>(m_filled);
        return m_filled > 0;
    }

    std::unique_ptr<LReadStream> m_stream;
    std::vector<uint8_t> m_block;
    size_t m_used = 0;
    size_t m_filled = 0;
    int64_t m_blockEnd = 0;
};

bool ReadAt(LReadStream& stream, int64_t position, std::span<uint8_t> bytes) {
    return position >= 0 && stream.Seek(position) && stream.ReadExact(bytes);
}

template <size_t kCount>
bool StartsWith(std::span<const uint8_t> bytes, const char (&text)[kCount]) {
    return bytes.size() >= kCount - 1 && std::memcmp(bytes.data(), text, kCount - 1) == 0;
}

uint32_t BigEndian(const uint8_t* bytes) {
    return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

bool HasFormatOf(const MP3Header& a, const MP3Header& b) {
    return a.version == b.version && a.frequencyIndex == b.frequencyIndex && a.Channels() == b.Channels();
}

}  // namespace

LMP3Source::LMP3Source(const LPath& path) : LMP3Source(std::make_unique<LFile>(path, LFile::Open::Read)) {}

LMP3Source::LMP3Source(std::unique_ptr<LReadStream> stream, const MP3Kernels& kernels)
    : LSoundSourceBase(44100, 1, kMP3Level),
      m_stream(std::make_unique<BlockReader>(std::move(stream))),
      m_decoder(kernels),
      m_body(kMostBodyBytes + kMP3SpareBytes) {
    if (Open()) return;
    SetError();
    m_hasEnded = true;
    m_end = 0;
}

LMP3Source::~LMP3Source() = default;

bool LMP3Source::Open() {
    if (!MP3LT::InitTables()) return Refuse("LMP3Source::LMP3Source !MP3LT.InitTables() so SetError");
    if (!DecodeInitialHeader())
        return Refuse("LMP3Source::LMP3Source DecodeInitialHeader FAILED so SetError");
    SetSampleRate(m_first.sampleRate);
    SetChannels(m_first.Channels());
    if (!m_decoder.SetStream(m_first)) return Refuse("LMP3Source::LMP3Source ReorderMap i >= 576");
    m_pcm.resize(static_cast<size_t>(m_first.Frames()) * GetChannels());
    ReadInformation();
    m_dataEnd = m_stream->Size();
    uint8_t tag[3];
    if (ReadAt(*m_stream, m_dataEnd - kTagBytes, tag) && StartsWith(tag, "TAG")) m_dataEnd -= kTagBytes;
    m_bitRate = m_first.bitRate;
    Restart();
    return true;
}

// The picture in a tag holds bytes that look like a header. So one is preferred that another one of the same
// format, or the end, follows; where there is none such, the first one counts.
bool LMP3Source::DecodeInitialHeader() {
    constexpr int64_t kMostSkipped = 16384;
    MP3Header header;
    bool hasFound = false;
    while (header.ReadHeader(*m_stream)) {
        const int64_t start = m_stream->Position() - static_cast<int64_t>(header.HeaderBytes());
        if (start > kMostSkipped) break;
        const int64_t end = start + static_cast<int64_t>(header.FrameBytes());
        uint8_t bytes[4];
        MP3Header next;
        const bool isFollowed = end == m_stream->Size() || (ReadAt(*m_stream, end, bytes) &&
                                                            next.Accept(bytes) && HasFormatOf(header, next));
        if (isFollowed || !hasFound) {
            m_first = header;
            m_firstFrame = start;
            hasFound = true;
        }
        if (isFollowed || !m_stream->Seek(start + 1)) break;
    }
    return hasFound;
}

// A first frame whose place of main data names an encoder's information is not heard. It may tell how many
// frames follow.
void LMP3Source::ReadInformation() {
    const int64_t end = m_firstFrame + static_cast<int64_t>(m_first.FrameBytes());
    if (!ReadAt(*m_stream, m_firstFrame + static_cast<int64_t>(m_first.HeaderBytes()),
                std::span(m_body).first(m_first.FrameBytes() - m_first.HeaderBytes())))
        return;
    const std::span<const uint8_t> body =
        std::span(m_body).first(m_first.FrameBytes() - m_first.HeaderBytes());
    const auto data = body.subspan(std::min(m_first.SideInfoBytes(), body.size()));
    int64_t frames = -1;
    if (StartsWith(data, "Xing") || StartsWith(data, "Info")) {
        if (data.size() >= 12 && (data[7] & 1) != 0) frames = BigEndian(&data[8]);
    } else if (body.size() >= 50 && StartsWith(body.subspan(32), "VBRI")) {
        frames = BigEndian(&body[32 + 14]);
    } else {
        return;
    }
    m_firstFrame = end;
    // No frame has less than 20 bytes; who claims more frames than fit is not believed.
    if (frames <= m_stream->Size() / 20) m_toldFrames = frames * m_first.Frames();
}

void LMP3Source::Restart() {
    m_decoder.Restart();
    m_pcmFrames = m_pcmUsed = 0;
    m_decoded = 0;
    m_isWhole = m_hasEnded = false;
    m_stream->Seek(m_firstFrame);
    m_frameStart = m_firstFrame;
}

bool LMP3Source::DecodeHeader() {
    if (!m_header.ReadHeader(*m_stream))
        return Refuse("LMP3Source::DecodeHeader() returned false because ReadHeader did");
    if (m_header.version != m_first.version) return Refuse("Header rejected because version does not match");
    if (m_header.frequencyIndex != m_first.frequencyIndex)
        return Refuse("Header rejected because sampling frequency does not match");
    if (m_header.Channels() != m_first.Channels())
        return Refuse("Header rejected because channels do not match");
    return true;
}

bool LMP3Source::DecodeFrame() {
    m_frameStart = m_stream->Position();
    if (!DecodeHeader()) return Refuse("LMP3Source::DecodeFrame DecodeHeader FAILED so this function fails");
    const size_t bytes = m_header.SideInfoBytes() + m_header.MainDataBytes();
    if (!m_stream->ReadExact(std::span(m_body).first(bytes)))
        return Refuse("LMP3Source::DecodeFrame unable to read the whole frame");
    if (!m_decoder.Decode(m_header, m_body.data(), m_pcm.data())) return false;
    if (m_decoded == 0) m_bitRate = m_header.bitRate;
    m_isConstant = m_isConstant && m_header.bitRate == m_bitRate;
    m_pcmFrames = m_header.Frames();
    m_pcmUsed = 0;
    m_decoded += m_pcmFrames;
    return true;
}

// The next frame; at the end, none.
bool LMP3Source::Advance() {
    if (m_hasEnded) return false;
    if (DecodeFrame()) return true;
    LTrace("LMP3Source::Read DecodeFrame failed so end");
    m_hasEnded = true;
    m_pcmFrames = m_pcmUsed = 0;
    m_end = Saturate(m_decoded);
    m_isWhole = m_stream->Position() >= m_stream->Size() || IsFollowedByTag();
    return false;
}

bool LMP3Source::IsFollowedByTag() {
    uint8_t tag[8] = {};
    m_stream->Seek(m_frameStart);
    m_stream->Read(tag);
    return StartsWith(tag, "TAG") || StartsWith(tag, "ID3") || StartsWith(tag, "APETAGEX") ||
           StartsWith(tag, "LYRICSBE");
}

void LMP3Source::Read(int32_t* samples, int32_t frames) {
    const size_t channels = GetChannels();
    const int32_t first = m_position;
    m_position = Saturate(int64_t{first} + frames);
    int32_t done = first < 0 ? static_cast<int32_t>(std::min(-int64_t{first}, int64_t{frames})) : 0;
    std::fill_n(samples, static_cast<size_t>(done) * channels, 0);
    while (done < frames && (Buffered() > 0 || Advance())) {
        const int32_t count = std::min(frames - done, Buffered());
        std::copy_n(&m_pcm[static_cast<size_t>(m_pcmUsed) * channels], static_cast<size_t>(count) * channels,
                    samples + static_cast<size_t>(done) * channels);
        m_pcmUsed += count;
        done += count;
    }
    std::fill_n(samples + static_cast<size_t>(done) * channels, static_cast<size_t>(frames - done) * channels,
                0);
    // Where the end is expected it is looked for, so that the length is right when the position reaches it.
    if (Buffered() == 0 && m_position >= Estimate()) Advance();
}

int64_t LMP3Source::Estimate() const {
    if (m_toldFrames >= 0) return m_toldFrames;
    const int64_t bytes = std::max<int64_t>(m_dataEnd - m_stream->Position(), 0);
    const int64_t bitsOfFrame = int64_t{m_first.Frames()} * m_bitRate;
    if (m_isConstant) {
        const int64_t frames = (bytes * 8 * GetSampleRate() + bitsOfFrame / 2) / bitsOfFrame;
        return m_decoded + frames * m_first.Frames();
    }
    return m_decoded + bytes * m_decoded / std::max<int64_t>(m_stream->Position() - m_firstFrame, 1);
}

int32_t LMP3Source::GetLength() const {
    if (m_end >= 0) return m_end;
    return Saturate(std::max(Estimate(), m_decoded - Buffered() + 1));
}

void LMP3Source::Seek(int32_t frame) {
    m_position = frame;
    if (IsError()) return;
    const int64_t target = std::max(frame, 0);
    if (target < m_decoded - Buffered()) Restart();
    while (m_decoded <= target && Advance()) continue;
    m_pcmUsed = m_pcmFrames - static_cast<int32_t>(std::max<int64_t>(m_decoded - target, 0));
}
