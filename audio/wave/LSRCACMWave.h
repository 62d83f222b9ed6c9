#pragma once

#include <memory>

#include "audio/stream/LSoundSource.h"
#include "audio/wave/LAcmStream.h"
#include "audio/wave/LWaveFile.h"
#include "base/LStream.h"

// A WAV file whose data only a codec can read, as a source of 16-bit quality. It decodes as far as it is
// read, so its length is an estimate until the end was reached; while input is left it is beyond the
// position. The estimate and Seek go by the codec's blocks where the format tells how many frames they hold.
// Elsewhere they go by the file's byte rate, which a Seek compares with excerpts of the material, until all of
// it was decoded; a Seek beyond such an estimate goes to the last second. Seek keeps a position below 0 as it is
// (silence, as a filter's pre-roll).
// Errors: no codec for the format, or one that refuses to work, sets the error bit. A codec that fails or
//         stops yielding later on ends the material; IsWhole() tells.
class LSRCACMWave final : public LSoundSourceBase {
public:
    // info is what LWaveFile::ReadInfo told of the stream.
    LSRCACMWave(std::unique_ptr<LReadStream> stream, const LWaveInfo& info, LAcmOpener opener = LAcmOpen);
    ~LSRCACMWave() override;

    void Read(int32_t* samples, int32_t frames) override;
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override;
    void Seek(int32_t frame) override;

    // What does not fill a block is not missed; what cannot be read is.
    bool IsWhole() const override { return m_isWhole; }

private:
    bool OpenCodec(LAcmOpener opener);
    int32_t FrameBytes() const { return 2 * GetChannels(); }
    int32_t BufferedFrames() const;
    int64_t Unconsumed() const {
        return m_dataBytes - m_readBytes + static_cast<int64_t>(m_codec.InputUsed());
    }
    // Bytes of the data, and the frames that they become.
    struct Extent {
        int64_t bytes = 0;
        int64_t frames = 0;
    };
    int64_t FramesOf(int64_t bytes) const;
    // Of a place in the file: blocks when the format tells how long they are.
    int64_t SeekOffset(int32_t frame) const;
    int64_t FrameAt(int64_t offset) const;
    int64_t AlignedOffset(int32_t frame) const;
    int64_t LastSecondOffset() const;
    void GoTo(int64_t offset);
    void Discard(int64_t frames);
    void CheckByteRate();
    bool IsLeftOver(int64_t bytes) const;
    int32_t Take(int32_t* samples, int32_t frames);
    bool Decode();
    bool DecodeEnd();
    void TopUp();
    LAcmStream::Flow Convert(LAcmConversion::Flag flag);
    void EndAt(int64_t frame);

    std::unique_ptr<LReadStream> m_stream;
    int64_t m_dataStart;
    int64_t m_dataBytes;
    int64_t m_readBytes = 0;
    LWaveFileFormat m_format;
    int32_t m_blockAlign;
    int32_t m_blockFrames;  // 0: unknown
    LAcmStream m_codec;
    Extent m_scale;  // how long the material is to its bytes: a block, a second, or what was decoded
    bool m_isChecked;
    int64_t m_total = -1;  // frames of all the material, once it was decoded from its start; -1: unknown
    int32_t m_position = 0;
    int32_t m_end = -1;    // frame; -1: unknown
    bool m_isFed = false;  // the codec may hold something back
    bool m_isWhole = false;
    // Since the last jump:
    bool m_isFromStart = false;
    Extent m_decoded;
};
