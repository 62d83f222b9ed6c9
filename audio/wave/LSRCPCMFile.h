#pragma once

#include <memory>
#include <vector>

#include "audio/stream/LSoundSource.h"
#include "audio/wave/LWaveFile.h"
#include "base/LStream.h"

// The PCM samples of a WAV file as a source. Its length is that of the data present when it is built. While
// the file is being recorded its length is that of the data present now, until the recorder finishes it. Seek
// keeps a position below 0 as it is: the frames before frame 0 read as silence (a filter's pre-roll).
// Units:  frames.
// Errors: a stream that cannot be read yields silence; IsWhole() tells.
// Thread: one at a time.
class LSRCPCMFileBase : public LSoundSourceBase {
public:
    void Read(int32_t* samples, int32_t frames) override;
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override { return PresentLength(); }
    void Seek(int32_t frame) override;
    // Asks the file system while the file grows, so it is not for every sample.
    bool IsGrowing() const override;
    // False after a read that fell short and was filled with silence; also while the file grows.
    bool IsWhole() const override { return m_isWhole && !IsGrowing(); }

protected:
    // info is the result of LWaveFile::ReadInfo on this stream.
    LSRCPCMFileBase(std::unique_ptr<LReadStream> stream, const LWaveInfo& info, int bytesPerSample);

private:
    virtual void Convert(const uint8_t* bytes, int32_t* samples, size_t count) const = 0;
    void ReadFrames(int32_t* samples, int32_t frames, int32_t firstFrame);
    void MissFrames();
    int32_t PresentLength() const;
    int32_t FramesIn(int64_t dataBytes) const;
    uint32_t DataBytesInHeader() const;

    std::unique_ptr<LReadStream> m_stream;
    int64_t m_dataStart;
    int32_t m_position = 0;
    // Both settle in the first IsGrowing() that finds the file finished.
    mutable int32_t m_length = 0;
    mutable bool m_growing = false;
    bool m_isWhole = true;
    int32_t m_bytesPerFrame;
    std::vector<uint8_t> m_block;
};

// Up to 8 bits, unsigned.
class LSRCPCMFile8 final : public LSRCPCMFileBase {
public:
    LSRCPCMFile8(std::unique_ptr<LReadStream> stream, const LWaveInfo& info)
        : LSRCPCMFileBase(std::move(stream), info, 1) {}

private:
    void Convert(const uint8_t* bytes, int32_t* samples, size_t count) const override;
};

// 9 to 16 bits, signed.
class LSRCPCMFile16 final : public LSRCPCMFileBase {
public:
    LSRCPCMFile16(std::unique_ptr<LReadStream> stream, const LWaveInfo& info)
        : LSRCPCMFileBase(std::move(stream), info, 2) {}

private:
    void Convert(const uint8_t* bytes, int32_t* samples, size_t count) const override;
};

// 17 to 32 bits, signed, rounded to 16 bits and held at full scale. For the rewriting of recordings; files
// that are only played go through the platform's codecs.
class LSRCPCMFileWide final : public LSRCPCMFileBase {
public:
    LSRCPCMFileWide(std::unique_ptr<LReadStream> stream, const LWaveInfo& info)
        : LSRCPCMFileBase(std::move(stream), info, info.BytesPerSample()),
          m_bytesPerSample(static_cast<size_t>(info.BytesPerSample())) {}

private:
    void Convert(const uint8_t* bytes, int32_t* samples, size_t count) const override;

    size_t m_bytesPerSample;  // 3 or 4
};
