#pragma once

#include <memory>
#include <vector>

#include "audio/stream/LSoundSink.h"
#include "base/LPath.h"
#include "base/LStream.h"

// Writes a PCM WAV file with our 46-byte head (LWaveHeader.h). While it is open both sizes in the head say
// "unknown", so the file can be read meanwhile and after a crash; the destructor writes the real ones. The
// first startFrames frames of an existing file are kept, as far as the file holds them. All others are cut
// off at once, also when startFrames is 0.
// Units:  GetFrames() counts whole frames in the file, including the kept ones.
// Errors: a target that cannot be opened or prepared sets the error bit, and so does a Write that the disk
//         does not take whole. The bytes that it took are kept, to the last whole frame; later Writes do
//         nothing. Head and data agree whenever the head can be written.
// Thread: one at a time.
class LSNKPCMFileBase : public LSoundSinkBase {
public:
    ~LSNKPCMFileBase() override;

    void Write(const int32_t* samples, int32_t frames) override;
    void Truncate(int32_t frames) override;

    // An 8-bit file for 1 to 8 bits, a 16-bit file for 9 to 16; an empty handle for others. flushSeconds: the
    // written data are handed to the disk itself after every so many seconds of audio and at the end, against
    // a power failure; 0: never.
    static LSoundSink Open(const LPath& path, int32_t startFrames, int bits, uint8_t channels,
                           int32_t sampleRate, int32_t flushSeconds = 0);
    static LSoundSink Open(std::unique_ptr<LStream> stream, int32_t startFrames, int bits, uint8_t channels,
                           int32_t sampleRate, int32_t flushSeconds = 0);

    // Whole frames behind the head of a file of fileBytes bytes.
    static int32_t FramesHeld(int64_t fileBytes, int bytesPerSample, uint8_t channels);

protected:
    LSNKPCMFileBase(std::unique_ptr<LStream> stream, int32_t startFrames, int bytesPerSample,
                    uint8_t channels, int32_t sampleRate);
    LSNKPCMFileBase(const LPath& path, int32_t startFrames, int bytesPerSample, uint8_t channels,
                    int32_t sampleRate);

private:
    virtual void Convert(const int32_t* samples, uint8_t* bytes, size_t count) const = 0;

    template <class Target>
    static LSoundSink OpenAny(Target&& target, int32_t startFrames, int bits, uint8_t channels,
                              int32_t sampleRate, int32_t flushSeconds);
    bool Prepare(int32_t startFrames);
    bool WriteHeader(uint32_t dataBytes);
    bool CutAt(int32_t frames);
    void FlushWhenDue(int32_t frames);
    int64_t DataBytes(int32_t frames) const { return int64_t{frames} * m_bytesPerFrame; }

    std::unique_ptr<LStream> m_stream;
    int32_t m_bytesPerSample;
    int32_t m_bytesPerFrame;
    int32_t m_flushSeconds = 0;
    int32_t m_unflushedFrames = 0;
    bool m_headWritten = false;  // the file is ours to finish
    std::vector<uint8_t> m_block;
};

// 8 bits, unsigned.
class LSNKPCMFile8 final : public LSNKPCMFileBase {
public:
    template <class Target>  // a std::unique_ptr<LStream>, or an LPath
    LSNKPCMFile8(Target&& target, int32_t startFrames, uint8_t channels, int32_t sampleRate)
        : LSNKPCMFileBase(std::forward<Target>(target), startFrames, 1, channels, sampleRate) {}

private:
    void Convert(const int32_t* samples, uint8_t* bytes, size_t count) const override;
};

// 16 bits, signed.
class LSNKPCMFile16 final : public LSNKPCMFileBase {
public:
    template <class Target>
    LSNKPCMFile16(Target&& target, int32_t startFrames, uint8_t channels, int32_t sampleRate)
        : LSNKPCMFileBase(std::forward<Target>(target), startFrames, 2, channels, sampleRate) {}

private:
    void Convert(const int32_t* samples, uint8_t* bytes, size_t count) const override;
};
