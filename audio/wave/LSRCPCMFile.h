#pragma once

#include <memory>
#include <vector>

#include "audio/stream/LSoundSource.h"
#include "audio/wave/LWaveFile.h"
#include "base/LStream.h"

// The PCM samples of a WAV file as a source. The length is that of the data present when the source is built;
// of a file that is being recorded it is that of the data present now, until the recorder has finished it.
// Seek keeps a position below 0 as it is: what is read before frame 0 is silence (pre-roll for a filter).
class LSRCPCMFileBase : public LSoundSourceBase {
public:
    void Read(int32_t* samples, int32_t frames) override;
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override { return PresentLength(); }
    void Seek(int32_t frame) override;
    // Asks the file: not for every sample.
    bool IsGrowing() const override;
    // False after a read that fell short, which is filled with silence; also while the file grows.
    bool IsWhole() const override { return m_isWhole && !IsGrowing(); }

protected:
    // info is what LWaveFile::ReadInfo told of the stream.
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
    // Settled by the question that finds the file finished.
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
