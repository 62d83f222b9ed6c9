#include "audio/mp3/LMP3Source.h"

#include <algorithm>
#include <cstring>
#include <optional>

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
        const int64_t begin = m_blockEnd - static_cast<int64_t>(m_filled);
        if (position >= begin && position <= m_blockEnd) {
            m_used = static_cast<size_t>(position - begin);
            return true;
        }
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
    m_fileSize = m_dataEnd = m_stream->Size();
    uint8_t tag[3];
    if (ReadAt(*m_stream, m_dataEnd - kTagBytes, tag) && StartsWith(tag, "TAG")) m_dataEnd -= kTagBytes;
    m_bitRate = m_first.bitRate;
    Restart();
    return true;
}

bool LMP3Source::DecodeInitialHeader() {
    return FindFrame(0, m_first, m_firstFrame);
}

// Sound of other formats and the picture in a tag hold bytes that look like a header. So one counts only
// where another one of the same format follows its frame, or a tag, or the end.
bool LMP3Source::FindFrame(int64_t from, MP3Header& header, int64_t& start) {
    constexpr int64_t kMostSkipped = 16384;
    for (start = from - 1; start < from + kMostSkipped;) {
        if (!m_stream->Seek(start + 1) || !header.ReadHeader(*m_stream)) return false;
        start = m_stream->Position() - static_cast<int64_t>(header.HeaderBytes());
        const int64_t end = start + static_cast<int64_t>(header.FrameBytes());
        uint8_t bytes[4];
        MP3Header next;
        if (end == m_stream->Size() || IsTag(end)) return true;
        if (ReadAt(*m_stream, end, bytes) && next.Accept(bytes) && HasFormatOf(header, next)) return true;
    }
    return false;
}

// A first frame whose place of main data names an encoder's information is not heard. It may tell how many
// frames follow.
void LMP3Source::ReadInformation() {
    const std::span<uint8_t> frame = std::span(m_body).first(m_first.FrameBytes());
    if (!ReadAt(*m_stream, m_firstFrame, frame)) return;
    // It lies where it would without a check sum, also where there is one.
    const std::span<const uint8_t> data = frame.subspan(4 + m_first.SideInfoBytes());
    int64_t frames = -1;
    if (StartsWith(data, "Xing") || StartsWith(data, "Info")) {
        if (data.size() >= 12 && (data[7] & 1) != 0) frames = BigEndian(&data[8]);
    } else if (frame.size() >= 54 && StartsWith(std::span<const uint8_t>(frame).subspan(36), "VBRI")) {
        frames = BigEndian(&frame[36 + 14]);
    } else {
        return;
    }
    m_firstFrame += static_cast<int64_t>(m_first.FrameBytes());
    // No frame has less than 20 bytes; who claims more frames than fit is not believed.
    if (frames > 0 && frames <= m_stream->Size() / 20) m_toldFrames = frames * m_first.Frames();
}

void LMP3Source::Restart() {
    m_decoder.Restart();
    m_pcmFrames = m_pcmUsed = 0;
    m_decoded = 0;
    m_isWhole = m_hasEnded = false;
    m_header = m_first;
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
    m_endsInFrame = !m_stream->ReadExact(std::span(m_body).first(bytes));
    if (m_endsInFrame) return Refuse("LMP3Source::DecodeFrame unable to read the whole frame");
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
    uint8_t next;
    const bool isAtEnd = m_stream->Position() >= m_fileSize;
    if (!isAtEnd && m_stream->Read({&next, 1}) == 0) SetError();  // the drive has gone away
    // A download that broke off is cut in a frame, and shorter than its first one tells.
    const bool isCut = m_endsInFrame && m_toldFrames > m_decoded;
    m_isWhole = !IsError() && !isCut && (isAtEnd || IsFollowedByJunk() || IsFollowedByPadding());
    return false;
}

// Recorders fill their clusters, and downloads are made in full length before they begin.
bool LMP3Source::IsFollowedByPadding() {
    std::vector<uint8_t> block(16384);
    std::optional<uint8_t> filler;
    m_stream->Seek(m_frameStart);
    for (int64_t left = m_fileSize - m_frameStart; left > 0;) {
        const auto bytes = std::span(block).first(static_cast<size_t>(std::min<int64_t>(left, 16384)));
        if (!m_stream->ReadExact(bytes)) return false;
        if (!filler) filler = bytes[0];
        if (!std::ranges::all_of(bytes, [&](uint8_t byte) { return byte == *filler; })) return false;
        left -= static_cast<int64_t>(bytes.size());
    }
    return true;
}

// Whether what was rejected was no frame of another format, but only looked like one.
bool LMP3Source::IsFollowedByJunk() {
    MP3Header header;
    int64_t start = 0;
    const int64_t behind = BehindTags(m_frameStart);
    return (behind > m_frameStart || IsTag(m_frameStart) || !HasFormatOf(m_header, m_first)) &&
           !FindFrame(behind, header, start);
}

// Tags that tell their size are passed over.
int64_t LMP3Source::BehindTags(int64_t offset) {
    uint8_t head[16];
    while (ReadAt(*m_stream, offset, head)) {
        if (StartsWith(head, "ID3"))
            offset += 10 + (int64_t{head[6] & 127} << 21 | (head[7] & 127) << 14 | (head[8] & 127) << 7 |
                            (head[9] & 127));
        else if (StartsWith(head, "APETAGEX"))
            offset += 32 + (int64_t{head[15]} << 24 | head[14] << 16 | head[13] << 8 | head[12]);
        else if (StartsWith(head, "TAG"))
            offset += kTagBytes;
        else
            break;
    }
    return offset;
}

bool LMP3Source::IsTag(int64_t offset) {
    uint8_t tag[8] = {};
    m_stream->Seek(offset);
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
    if (!m_hasEnded && Buffered() == 0 && m_position >= Estimate()) Advance();
}

int64_t LMP3Source::Estimate() const {
    if (m_toldFrames >= 0) return m_toldFrames;
    const int64_t bytes = std::max<int64_t>(m_dataEnd - m_stream->Position(), 0);
    const int64_t bitsOfFrame = int64_t{m_first.Frames()} * m_bitRate;
    if (m_isConstant || m_decoded == 0) {
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
