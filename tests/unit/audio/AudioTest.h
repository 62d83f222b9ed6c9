#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "audio/LSoundSink.h"
#include "audio/LSoundSource.h"
#include "base/LBytes.h"
#include "base/LFile.h"
#include "base/LMemoryFile.h"
#include "base/LProcess.h"
#include "base/LTrace.h"
#include "tests/unit/TempFolder.h"

using Bytes = std::vector<uint8_t>;
using Samples = std::vector<int32_t>;

// A stream on a memory file that outlives it, so that a test sees what a sink left behind.
class BorrowedStream final : public LStream {
public:
    explicit BorrowedStream(LMemoryFile& file) : m_file(file) {}
    size_t Read(std::span<uint8_t> buffer) override { return m_file.Read(buffer); }
    bool Seek(int64_t position) override { return m_file.Seek(position); }
    int64_t Position() const override { return m_file.Position(); }
    int64_t Size() const override { return m_file.Size(); }
    size_t Write(std::span<const uint8_t> bytes) override { return m_file.Write(bytes); }
    bool SetEnd() override { return m_file.SetEnd(); }
    bool Flush() override {
        ++flushes;
        return true;
    }
    static inline int flushes = 0;

private:
    LMemoryFile& m_file;
};

inline std::unique_ptr<LStream> Borrow(LMemoryFile& file) {
    return std::make_unique<BorrowedStream>(file);
}

inline Bytes FileBytes(const LMemoryFile& file) {
    return {file.View().begin(), file.View().end()};
}

// Bytes from hexadecimal text; blanks are for the reader.
inline Bytes Hex(std::string_view text) {
    Bytes bytes;
    int digits = 0, value = 0;
    for (char c : text) {
        if (c == ' ') continue;
        value = value * 16 + (c <= '9' ? c - '0' : (c | 32) - 'a' + 10);
        if (++digits % 2 == 0) bytes.push_back(static_cast<uint8_t>(value)), value = 0;
    }
    return bytes;
}

inline Bytes operator+(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

inline Bytes Little(uint32_t value, int count = 4) {
    Bytes bytes;
    for (int i = 0; i < count; ++i, value >>= 8) bytes.push_back(static_cast<uint8_t>(value));
    return bytes;
}

inline Bytes Text(std::string_view text) {
    return {text.begin(), text.end()};
}

inline Bytes Chunk(std::string_view name, const Bytes& contents) {
    Bytes chunk = Text(name) + Little(static_cast<uint32_t>(contents.size())) + contents;
    if (contents.size() % 2) chunk.push_back(0);
    return chunk;
}

inline Bytes FormatRecord(int tag, int channels, int rate, int bits, size_t size = 18) {
    const int align = channels * ((bits + 7) / 8);
    Bytes record = Little(static_cast<uint32_t>(tag), 2) + Little(static_cast<uint32_t>(channels), 2) +
                   Little(static_cast<uint32_t>(rate)) + Little(static_cast<uint32_t>(align * rate)) +
                   Little(static_cast<uint32_t>(align), 2) + Little(static_cast<uint32_t>(bits), 2);
    record.resize(size);
    return record;
}

inline Bytes WaveFile(const Bytes& chunks) {
    return Text("RIFF") + Little(static_cast<uint32_t>(chunks.size() + 4)) + Text("WAVE") + chunks;
}

// The trace lines of one scope.
class TraceLog {
public:
    TraceLog() : m_before(LSetTraceSink(Take)) { s_lines.clear(); }
    ~TraceLog() { LSetTraceSink(m_before); }
    static bool Has(std::string_view line) {
        return std::find(s_lines.begin(), s_lines.end(), line) != s_lines.end();
    }
    static std::string All() {
        std::string all;
        for (const std::string& line : s_lines) all += line + "\n";
        return all;
    }

private:
    static void Take(std::string_view line, std::string_view) { s_lines.emplace_back(line); }
    static inline std::vector<std::string> s_lines;
    LTraceSink m_before;
};

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
        if (frames > GetFrames()) return;
        SetFrames(std::max(frames, 0));
        m_taken.resize(static_cast<size_t>(GetFrames()) * GetChannels());
    }
    void StartAt(int32_t frames) {
        SetFrames(frames);
        m_taken.resize(static_cast<size_t>(frames) * GetChannels());
    }

private:
    Samples& m_taken;
    int32_t m_fullAfter;
};

// Delivers the samples it was made of, then silence.
class ArraySource final : public LSoundSourceBase {
public:
    ArraySource(int32_t rate, uint8_t channels, Samples samples, int32_t level = kFullScale16,
                bool error = false)
        : LSoundSourceBase(rate, channels, level), m_samples(std::move(samples)) {
        if (error) SetError();
    }
    void Read(int32_t* samples, int32_t frames) override {
        for (int32_t i = 0; i < frames * GetChannels(); ++i) {
            const size_t at = static_cast<size_t>(m_position * GetChannels() + i);
            samples[i] = at < m_samples.size() ? m_samples[at] : 0;
        }
        m_position += frames;
    }
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override { return static_cast<int32_t>(m_samples.size()) / GetChannels(); }
    void Seek(int32_t frame) override { m_position = std::clamp(frame, 0, GetLength()); }

private:
    Samples m_samples;
    int32_t m_position = 0;
};

// Notes what a process reports; asks it to stop after a number of tests.
class NotingContext final : public ProcessContext {
public:
    bool CancelRequested() override { return cancelAfter-- == 0; }
    void SetProgress(double fraction) override { progress.push_back(fraction); }
    void SetStatus(std::string_view text) override { status = text; }
    void SetError(std::string_view text) override { error = text; }

    int cancelAfter = -1;
    std::vector<double> progress;
    std::string status;
    std::string error;
};

// A WAV file in a folder of its own, gone with its object.
class ScratchFile {
public:
    explicit ScratchFile(const Bytes& contents) {
        LFile file(path, LFile::Open::Write);
        EXPECT_TRUE(file.IsOpen() && file.WriteAll(contents));
    }
    Bytes Contents() const {
        Bytes bytes;
        EXPECT_TRUE(LFile::ReadWhole(path, 1 << 24, bytes));
        return bytes;
    }

private:
    TempFolder m_folder;

public:
    const LPath path = m_folder.File("a.wav");
};
