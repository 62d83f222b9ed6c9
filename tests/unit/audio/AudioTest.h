#pragma once

#include <optional>

#include "audio/stream/LSoundSink.h"
#include "audio/stream/LSoundSource.h"
#include "base/LArith.h"
#include "base/LBytes.h"
#include "base/LMemoryFile.h"
#include "tests/unit/BorrowedStream.h"
#include "tests/unit/TestKit.h"

using Samples = std::vector<int32_t>;

inline Bytes operator+(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

inline Bytes Little(uint32_t value, int count = 4) {
    Bytes bytes;
    for (int i = 0; i < count; ++i, value >>= 8) bytes.push_back(static_cast<uint8_t>(value));
    return bytes;
}

inline Bytes Chunk(std::string_view name, const Bytes& contents) {
    return Text(name) + Little(static_cast<uint32_t>(contents.size())) + contents +
           Bytes(contents.size() % 2);
}

inline Bytes FormatRecord(uint32_t tag, uint32_t channels, uint32_t rate, uint32_t bits, size_t size = 18) {
    const uint32_t align = channels * ((bits + 7) / 8);
    Bytes record = Little(tag, 2) + Little(channels, 2) + Little(rate) + Little(align * rate) +
                   Little(align, 2) + Little(bits, 2);
    record.resize(size);
    return record;
}

// The fmt chunk of a PCM file.
inline Bytes PcmFormat(uint32_t bits, size_t size = 18, uint32_t channels = 1, uint32_t rate = 8000) {
    return Chunk("fmt ", FormatRecord(1, channels, rate, bits, size));
}

inline Bytes WaveFile(const Bytes& chunks) {
    return Text("RIFF") + Little(static_cast<uint32_t>(chunks.size() + 4)) + Text("WAVE") + chunks;
}

// A whole mono 16-bit file at 8000 Hz.
inline Bytes Wave16(const Bytes& data) {
    return WaveFile(PcmFormat(16) + Chunk("data", data));
}

// Keeps what it is given. fullAfter frames it is a disk that takes no more.
class CollectingSink final : public LSoundSinkBase {
public:
    CollectingSink(int32_t rate, uint8_t channels, Samples& taken, int32_t fullAfter = INT32_MAX)
        : LSoundSinkBase(rate, channels), m_taken(taken), m_fullAfter(fullAfter) {}
    void Write(const int32_t* samples, int32_t frames) override {
        const int32_t fits = std::min(frames, m_fullAfter - GetFrames());
        m_taken.insert(m_taken.end(), samples, samples + fits * GetChannels());
        AddFrames(fits);
        if (fits < frames) SetError();
    }
    void Truncate(int32_t frames) override {
        if (cuts && frames <= GetFrames()) StartAt(std::max(frames, 0));
    }
    void StartAt(int32_t frames) {
        SetFrames(frames);
        m_taken.resize(static_cast<size_t>(frames) * GetChannels());
    }

    bool cuts = true;  // a compressed file does not

private:
    Samples& m_taken;
    int32_t m_fullAfter;
};

// Delivers the samples it was made of, then silence.
class ArraySource final : public LSoundSourceBase {
public:
    ArraySource(int32_t rate, uint8_t channels, Samples samples, int32_t level = kFullScale16,
                bool error = false)
        : LSoundSourceBase(rate, channels, level),
          present(static_cast<int32_t>(samples.size()) / GetChannels()),
          m_samples(std::move(samples)) {
        if (error) SetError();
    }
    void Read(int32_t* samples, int32_t frames) override {
        EXPECT_LE(frames, kBlockFrames);
        for (int32_t i = 0; i < frames * GetChannels(); ++i) {
            const size_t at = static_cast<size_t>(m_position) * GetChannels() + static_cast<size_t>(i);
            const bool isThere =
                at < std::min(m_samples.size(), static_cast<size_t>(present) * GetChannels());
            samples[i] = isThere ? m_samples[at] : 0;
        }
        m_position = Saturate(int64_t{m_position} + frames);
        if (isGrowing) readAhead = std::max(readAhead, m_position - present);
    }
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override {
        return m_position >= present ? present : std::max(guess.value_or(present), m_position + 1);
    }
    void Seek(int32_t frame) override { m_position = std::clamp(frame, 0, present); }
    bool IsGrowing() const override { return isGrowing; }

    int32_t present;               // frames: fewer than were given while it grows, or more, all silent
    bool isGrowing = false;        // a recording that is being made,
    int32_t readAhead = 0;         // of which so many frames were read too early
    std::optional<int32_t> guess;  // its length until the end was met, as of a compressed file

private:
    Samples m_samples;
    int32_t m_position = 0;
};

// A WAV file in a folder of its own, gone with its object.
struct ScratchFile {
    explicit ScratchFile(const Bytes& contents) {
        EXPECT_TRUE(LFile(path, LFile::Open::CreateNew).WriteAll(contents));
    }
    Bytes Contents() const { return Text(ReadFileText(path)); }

    TempFolder folder;
    const LPath path = folder.File("a.wav");
};
