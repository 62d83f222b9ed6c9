#pragma once

#include <memory>

#include "audio/stream/LSoundSource.h"
#include "audio/wave/LAcmStream.h"
#include "audio/wave/LWaveFile.h"
#include "base/LStream.h"

// A WAV file whose data only a codec can read, as a source of 16-bit quality. It decodes no further than it
// is read, so its length is an estimate until the end was reached; while input is left the length lies beyond
// the position.
// Length and Seek go by the codec's blocks where the format tells how many frames a block holds. Elsewhere
// they go by the file's byte rate, which the first Seek compares with excerpts of the material, until all of
// it was decoded once. A Seek beyond such an estimate goes to the last second. Seek keeps a position below 0
// as it is: it reads silence, as a filter's pre-roll.
// Units:  frames; offsets are bytes from the start of the data.
// Errors: no codec for the format, or one that refuses to work, sets the error bit. A codec that fails or
//         stops yielding later on ends the material; IsWhole() tells.
// Thread: one at a time.
class LSRCACMWave final : public LSoundSourceBase {
public:
    // info is the result of LWaveFile::ReadInfo on this stream.
    LSRCACMWave(std::unique_ptr<LReadStream> stream, const LWaveInfo& info, LAcmOpener opener = LAcmOpen);
    ~LSRCACMWave() override;

    void Read(int32_t* samples, int32_t frames) override;
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override;
    void Seek(int32_t frame) override;

    // Input that does not fill a block is no loss; input that cannot be read is.
    bool IsWhole() const override { return m_isWhole; }

private:
    bool OpenCodec(LAcmOpener opener);
    int32_t FrameBytes() const { return 2 * GetChannels(); }
    int32_t BufferedFrames() const;
    int64_t Unconsumed() const {
        return m_dataBytes - m_readBytes + static_cast<int64_t>(m_codec.InputUsed());
    }
    // A length of the data in bytes, and the number of frames that it decodes to.
    struct Extent {
        int64_t bytes = 0;
        int64_t frames = 0;
    };
    int64_t FramesOf(int64_t bytes) const;
    // Conversions between frames and offsets: by whole blocks where their length is known, else by m_scale.
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
    Extent m_scale;    // frames for bytes: of one block, of one second, of the excerpts or of the whole file
    bool m_isChecked;  // m_scale is not taken from the header alone
    int64_t m_total = -1;  // frames of all the material, once it was decoded from its start; -1: unknown
    int32_t m_position = 0;
    int32_t m_end = -1;    // frame; -1: unknown
    bool m_isFed = false;  // the codec may still hold material back
    bool m_isWhole = false;
    // Since the last jump:
    bool m_isFromStart = false;
    Extent m_decoded;
};
