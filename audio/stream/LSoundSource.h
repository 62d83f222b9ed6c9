#pragma once

#include <cstdint>
#include <utility>

#include "audio/stream/LSample.h"

// A producer of audio blocks: a file, a decoder, or a filter that wraps another source.
// Units:  counts, positions and lengths are frames; samples are interleaved, on the 20-bit scale.
// Errors: a constructor that fails sets the error bit; test IsError() before the first Read().
// Thread: one at a time. The player owns its source from Start() to Stop().
class LSoundSourceBase {
public:
    // sampleRate in Hz (below 1: 44100 and the error bit); channels (0: 1 and the error bit); level is the
    // largest magnitude that the source may deliver (full scale 0x80000).
    LSoundSourceBase(int32_t sampleRate, uint8_t channels, int32_t level);
    virtual ~LSoundSourceBase() = default;
    LSoundSourceBase(const LSoundSourceBase&) = delete;
    LSoundSourceBase& operator=(const LSoundSourceBase&) = delete;

    // Always fills the whole request, past the end with silence, and advances all the same: the end is
    // reached when GetPosition() >= GetLength(). At most kBlockFrames frames.
    virtual void Read(int32_t* samples, int32_t frames) = 0;
    virtual int32_t GetPosition() const = 0;
    virtual int32_t GetLength() const = 0;
    virtual void Seek(int32_t frame) = 0;  // below 1: the start; beyond the length: the end
    // True while the material may still grow, because it is being recorded. GetLength() is then that of now;
    // a Read beyond it yields silence in place of the sound that is recorded there later.
    virtual bool IsGrowing() const { return false; }
    // Once the end was reached: whether all the material was delivered. False when it ended early, because a
    // codec failed or the file could not be read.
    virtual bool IsWhole() const { return true; }

    int32_t GetSampleRate() const { return m_sampleRate; }
    int32_t GetLevel() const { return m_level; }
    uint8_t GetChannels() const { return m_channels; }
    bool IsError() const { return (m_flags & kErrorBit) != 0; }

protected:
    void SetSampleRate(int32_t sampleRate);
    void SetChannels(uint8_t channels);
    void SetLevel(int32_t level) { m_level = level; }
    void SetError() { m_flags |= kErrorBit; }

private:
    friend class LSoundSource;
    static constexpr uint8_t kErrorBit = 1;

    int32_t m_sampleRate = 0;
    int32_t m_level;
    uint8_t m_channels = 0;
    uint8_t m_flags = 0;
    uint16_t m_references = 0;
};

// The counted handle on a source: sources are made by Make() and shared through their handles alone, and the
// last handle destroys the source. It is never empty: without a source of its own it holds a null source
// (11025 Hz, mono, level 0x200000, error bit set), so callers can always ask it.
// Thread: handles on the same source are copied and dropped on one thread at a time.
class LSoundSource {
public:
    LSoundSource();
    LSoundSource(const LSoundSource& other);
    LSoundSource(LSoundSource&& other) noexcept;
    LSoundSource& operator=(LSoundSource other) noexcept;
    ~LSoundSource();

    template <class T, class... Args>
    static LSoundSource Make(Args&&... args) {
        return LSoundSource(new T(std::forward<Args>(args)...));
    }

    void Reset();
    LSoundSourceBase* operator->() const { return m_source; }
    LSoundSourceBase& operator*() const { return *m_source; }

private:
    explicit LSoundSource(LSoundSourceBase* source);
    static void Drop(LSoundSourceBase* source);

    LSoundSourceBase* m_source;
};
