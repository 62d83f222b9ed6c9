#include "audio/wave/LWaveFile.h"

#include <algorithm>
#include <array>

#include "audio/wave/LAcmRecord.h"
#include "audio/wave/LSNKACMFile.h"
#include "audio/wave/LSNKPCMFile.h"
#include "audio/wave/LSRCACMWave.h"
#include "audio/wave/LSRCPCMFile.h"
#include "audio/wave/LWaveHeader.h"
#include "base/LArith.h"
#include "base/LBytes.h"
#include "base/LFile.h"
#include "base/LTrace.h"

static constexpr uint32_t ChunkId(const char (&name)[5]) {
    uint32_t id = 0;
    for (int i = 3; i >= 0; --i) id = id << 8 | static_cast<uint8_t>(name[i]);
    return id;
}

static constexpr uint32_t kFmtMin = 14;    // the format record without its bits per sample
static constexpr uint32_t kFmtMax = 8192;  // far above any real record; an extensible one has 40
static constexpr uint32_t kMaxSampleRate = 196000;

// The most chunks before the data. A file of 60 MB of zeros behind "RIFF" has millions of empty chunks, each
// of which may cost a file call: the walk took half a minute. No real file comes near this.
static constexpr int kMostChunks = 128;

static bool Fail(std::string_view trace) {
    LTrace(trace);
    return false;
}

// A reader for the head of a stream that fetches 2 KB at a time, which hold most heads whole.
class WaveHead {
public:
    explicit WaveHead(LReadStream& stream) : m_stream(stream) {}

    int64_t Position() const { return m_position; }
    void Seek(int64_t position) { m_position = position; }

    // Reads bytes at the position; returns fewer than asked only at the end or after a failure.
    size_t Read(std::span<uint8_t> bytes) {
        size_t done = 0;
        while (done < bytes.size()) {
            const auto present = Present();
            const size_t count = std::min(present.size(), bytes.size() - done);
            if (count == 0 && !Fill()) break;
            std::ranges::copy(present.first(count), bytes.begin() + static_cast<ptrdiff_t>(done));
            done += count;
            m_position += static_cast<int64_t>(count);
        }
        return done;
    }
    bool ReadExact(std::span<uint8_t> bytes) { return Read(bytes) == bytes.size(); }

private:
    // The bytes of the buffer from the position on.
    std::span<const uint8_t> Present() const {
        const int64_t at = m_position - m_start;
        if (at < 0 || at >= static_cast<int64_t>(m_used)) return {};
        return std::span(m_buffer).first(m_used).subspan(static_cast<size_t>(at));
    }
    bool Fill() {
        m_used = 0;
        if (!m_stream.Seek(m_position)) return false;
        m_start = m_position;
        m_used = m_stream.Read(m_buffer);
        return m_used > 0;
    }

    LReadStream& m_stream;
    std::array<uint8_t, 2048> m_buffer;
    size_t m_used = 0;
    int64_t m_start = 0;  // of the buffer
    int64_t m_position = 0;
};

// Walks the chunks of a head (RIFF: a name of 4 bytes, a size u32, then the contents, padded to even). Sizes
// count as signed, so a size close to 2^32 is refused rather than wrapped.
class WaveChunks {
public:
    explicit WaveChunks(WaveHead& head) : m_head(head) {}

    // Moves behind the "RIFF", size, "WAVE" of the file. Bytes in front of it are taken for a foreign chunk
    // and skipped: 8 of the 12 bytes read are that chunk's header, the other 4 its first contents.
    bool FindRiff() {
        std::array<uint8_t, 12> head;
        while (m_chunksLeft-- > 0 && m_head.ReadExact(head)) {
            LByteReader in(head);
            const uint32_t id = in.U32();
            m_size = in.U32();
            if (id == ChunkId("RIFF") && in.U32() == ChunkId("WAVE")) return true;
            if (PaddedSize() < 5) return Fail("LWaveFile::OpenSource chunk too short!");
            Skip(PaddedSize() - 4);
        }
        return Fail("LWaveFile::OpenSource No RIFF WAVE chunk found");
    }

    // Moves behind the header of the next chunk of that name.
    bool FindChunk(uint32_t wanted, std::string_view notFound) {
        std::array<uint8_t, 8> head;
        while (m_chunksLeft-- > 0 && m_head.ReadExact(head)) {
            LByteReader in(head);
            const uint32_t id = in.U32();
            m_size = in.U32();
            if (id == wanted) return true;
            if (PaddedSize() < 0) return Fail("LWaveFile::OpenSource subchunk too short (< 0)!");
            Skip(PaddedSize());
        }
        return Fail(notFound);
    }

    bool FindFormat() {
        return FindRiff() && FindChunk(ChunkId("fmt "), "LWaveFile::OpenSource fmt subchunk not found!");
    }
    bool FindData() { return FindChunk(ChunkId("data"), "LWaveFile::OpenSource data subchunk not found!"); }

    // The size of the chunk that was found.
    uint32_t Size() const { return m_size; }

private:
    int64_t PaddedSize() const {
        const int32_t size = static_cast<int32_t>(m_size);
        return size < 0 ? -1 : RoundUp(int64_t{size}, int64_t{2});
    }
    void Skip(int64_t bytes) { m_head.Seek(m_head.Position() + bytes); }

    WaveHead& m_head;
    int m_chunksLeft = kMostChunks;
    uint32_t m_size = 0;
};

static bool ReadFormat(WaveHead& head, uint32_t size, LWaveFileFormat& format) {
    if (size < kFmtMin || size > kFmtMax) return Fail("LWaveFile::OpenSource fmt to short or too long!");
    std::array<uint8_t, kFmtMax + 1> record;
    const size_t padded = RoundUp<size_t>(size, 2);
    const size_t got = head.Read(std::span(record).first(padded));
    if (got < size) return Fail("LWaveFile::OpenSource fmt error!");
    // Some writers, ours included, do not pad a record of odd length; the next chunk then begins at once,
    // with a letter rather than a zero byte.
    if (got > size && record[size] != 0) head.Seek(head.Position() - 1);
    // A record without its last field, or with half of it, has no extra bytes.
    const size_t used = size < LWaveFileFormat::kFixedSize ? std::min<size_t>(size, 16) : size;
    format = LWaveFileFormat(std::span(record).first(std::min(used, LWaveFileFormat::kSize)));
    return true;
}

static bool IsUsable(const LWaveFileFormat& format) {
    if (format.Channels() >= 1 && format.Channels() <= 255 && format.SampleRate() >= 1 &&
        format.SampleRate() <= kMaxSampleRate)
        return true;
    return Fail("LWaveFile::OpenSource channels or sample rate out of range");
}

// Whether the file is exactly as our sink would have written it: the same head, and the data up to the end.
static bool IsOurLayout(WaveHead& start, int64_t fileBytes, const LWaveInfo& info) {
    const int bytesPerSample = info.BytesPerSample();
    if (!info.IsPcm() || bytesPerSample > 2 || info.dataStart != kWaveHeaderBytes) return false;
    if (info.dataStart + info.dataBytes != fileBytes) return false;
    LWaveHeader head;
    start.Seek(0);
    if (!start.ReadExact(head)) return false;
    const LWaveHeader ours = WavePcmHeader(bytesPerSample, static_cast<uint8_t>(info.format.Channels()),
                                           static_cast<int32_t>(info.format.SampleRate()), kWaveSizeUnknown);
    return WaveHeadersAgree(head, ours);
}

int LWaveInfo::BytesPerSample() const {
    return std::max(1, (format.BitsPerSample() + 7) / 8);
}

int64_t LWaveInfo::Frames() const {
    if (!IsPcm()) {
        const LWaveFileFormat record = LAcmRecord(format);
        const int32_t blockFrames = LAcmBlockFrames(record);
        return blockFrames > 0 ? dataBytes / record.BlockAlign() * blockFrames : 0;
    }
    const int64_t frameBytes = int64_t{format.Channels()} * BytesPerSample();
    return frameBytes > 0 ? dataBytes / frameBytes : 0;
}

bool LWaveInfo::Holds(int64_t frames) const {
    if (IsPcm()) return Frames() == frames;
    const int32_t blockFrames = LAcmBlockFrames(LAcmRecord(format));
    if (blockFrames > 0) return Frames() + blockFrames > frames;
    return frames == 0 || dataBytes > 0;
}

int64_t LWaveInfo::LengthMs() const {
    const int64_t rate = std::max<int64_t>(format.SampleRate(), 1);
    if (const int64_t frames = Frames(); IsPcm() || frames > 0) return frames * 1000 / rate;
    const int64_t byteRate = format.AverageBytesPerSecond();
    return dataBytes * 1000 / (byteRate > 0 ? byteRate : rate);
}

bool LWaveFile::ReadInfo(LReadStream& stream, LWaveInfo& info) {
    info = LWaveInfo();
    WaveHead head(stream);
    WaveChunks chunks(head);
    if (!chunks.FindFormat() || !ReadFormat(head, chunks.Size(), info.format) || !chunks.FindData() ||
        !IsUsable(info.format))
        return false;
    info.dataStart = head.Position();
    info.isStreaming = chunks.Size() == kWaveSizeUnknown;
    const int64_t fileBytes = stream.Size();  // asked once: the file may grow while it is examined
    const int64_t present = fileBytes - info.dataStart;
    if (present < 0) return Fail("LWaveFile::OpenSource size of the file unknown");
    info.dataBytes = info.isStreaming ? present : std::min<int64_t>(chunks.Size(), present);
    info.isOurLayout = IsOurLayout(head, fileBytes, info);
    return stream.Seek(info.dataStart);
}

bool LWaveFile::ReadInfo(const LPath& path, LWaveInfo& info) {
    LFile file(path, LFile::Open::Read);
    if (file.IsOpen()) return ReadInfo(file, info);
    LTrace("LWaveFile::OpenSource Unable to Open File:", path.View());
    return false;
}

bool LWaveFile::IsComplete(const LPath& path, int64_t frames) {
    LFile file(path, LFile::Open::Read);
    LWaveInfo info;
    return LIsWholeWave(file) && ReadInfo(file, info) && info.Holds(frames);
}

int32_t LWaveFile::LengthMs(const LPath& path) {
    LFile file(path, LFile::Open::Read);
    LWaveInfo info;
    if (!file.IsOpen() || file.Size() == 0 || !ReadInfo(file, info)) return 0;
    return Saturate(info.LengthMs());
}

LSoundSource LWaveFile::OpenSource(const LPath& path) {
    auto file = std::make_unique<LFile>(path, LFile::Open::Read);
    if (file->IsOpen()) return OpenSource(std::move(file));
    LTrace("LWaveFile::OpenSource Unable to Open File:", path.View());
    return {};
}

LSoundSource LWaveFile::OpenSource(std::unique_ptr<LReadStream> stream) {
    LWaveInfo info;
    if (!ReadInfo(*stream, info)) return {};
    if (info.IsPcm() && info.BytesPerSample() == 1)
        return LSoundSource::Make<LSRCPCMFile8>(std::move(stream), info);
    if (info.IsPcm() && info.BytesPerSample() == 2)
        return LSoundSource::Make<LSRCPCMFile16>(std::move(stream), info);
    LSoundSource source = LSoundSource::Make<LSRCACMWave>(std::move(stream), info);
    return source->IsError() ? LSoundSource() : source;
}

LSoundSink LWaveFile::OpenSinkPCM(const LPath& path, int bits, uint8_t channels, int32_t sampleRate) {
    return LSNKPCMFileBase::Open(path, 0, bits, channels, sampleRate);
}

LSoundSink LWaveFile::OpenSink(const LPath& path, const LWaveFileFormat& format) {
    if (!IsUsable(format)) return {};
    if (format.Tag() != kFormatTagPcm) return LSoundSink::Make<LSNKACMFile>(format, path);
    return OpenSinkPCM(path, format.BitsPerSample(), static_cast<uint8_t>(format.Channels()),
                       static_cast<int32_t>(format.SampleRate()));
}

bool LWaveFile::TestPCM(LReadStream& stream) {
    WaveHead head(stream);
    WaveChunks chunks(head);
    if (!chunks.FindFormat()) return false;
    if (chunks.Size() < kFmtMin) return Fail("LWaveFile::TestPCM chunk too short");
    LWaveFileFormat format;
    return ReadFormat(head, chunks.Size(), format) && format.Tag() == kFormatTagPcm;
}

bool LWaveFile::TestPCM(const LPath& path) {
    LFile file(path, LFile::Open::Read);
    if (file.IsOpen()) return TestPCM(file);
    LTrace("LWaveFile::TestPCM unable to open file", path.View());
    return false;
}
