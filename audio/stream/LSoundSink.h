#pragma once

#include <cstdint>
#include <utility>

#include "audio/stream/LSample.h"

// A consumer of audio blocks: a file, or a filter that wraps another sink. Its destructor writes the samples
// that the stage still holds and closes the target.
// Units:  counts are frames; samples are interleaved, on the 20-bit scale.
// Errors: a constructor or a Write that fails sets the error bit, which stays set.
// Thread: one at a time. The recorder owns its sink from Start() to Stop().
class LSoundSinkBase {
public:
    // sampleRate in Hz; channels 1 to 255 (0 counts as 1 and sets the error bit).
    LSoundSinkBase(int32_t sampleRate, uint8_t channels);
    virtual ~LSoundSinkBase() = default;
    LSoundSinkBase(const LSoundSinkBase&) = delete;
    LSoundSinkBase& operator=(const LSoundSinkBase&) = delete;

    // At most kBlockFrames frames. An override counts the frames that it takes with AddFrames.
    virtual void Write(const int32_t* samples, int32_t frames) = 0;
    // Cuts the written material back to that many frames. Ignored when fewer were written; below 0 means 0. A
    // sink that cannot cut, as the base, does nothing.
    virtual void Truncate(int32_t frames);

    int32_t GetFrames() const { return m_frames; }
    int32_t GetSampleRate() const { return m_sampleRate; }
    uint8_t GetChannels() const { return m_channels; }
    bool IsError() const { return (m_flags & kErrorBit) != 0; }

protected:
    void AddFrames(int32_t frames) { m_frames += frames; }
    void SetFrames(int32_t frames) { m_frames = frames; }
    void SetError() { m_flags |= kErrorBit; }

private:
    friend class LSoundSink;
    static constexpr uint8_t kErrorBit = 1;

    int32_t m_frames = 0;
    int32_t m_sampleRate;
    uint8_t m_channels;
    uint8_t m_flags = 0;
    uint16_t m_references = 0;
};

// The counted handle on a sink: sinks are made by Make() and shared through their handles alone, and the last
// handle destroys the sink. Unlike a source's handle it may be empty.
// Thread: handles on the same sink are copied and dropped on one thread at a time.
class LSoundSink {
public:
    LSoundSink() = default;
    LSoundSink(const LSoundSink& other);
    LSoundSink(LSoundSink&& other) noexcept;
    LSoundSink& operator=(LSoundSink other) noexcept;
    ~LSoundSink();

    template <class T, class... Args>
    static LSoundSink Make(Args&&... args) {
        return LSoundSink(new T(std::forward<Args>(args)...));
    }

    void Reset() { *this = LSoundSink(); }
    explicit operator bool() const { return m_sink != nullptr; }
    LSoundSinkBase* operator->() const { return m_sink; }
    LSoundSinkBase& operator*() const { return *m_sink; }

private:
    explicit LSoundSink(LSoundSinkBase* sink);

    LSoundSinkBase* m_sink = nullptr;
};
