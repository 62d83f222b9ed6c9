#pragma once

#include <memory>
#include <vector>

#include "audio/mp3/MP3Decoder.h"
#include "audio/stream/LSoundSource.h"
#include "base/LPath.h"
#include "base/LStream.h"

// An MP3 file (MPEG-1, 2 and 2.5, Layer III, without free formats) as a source. Output can exceed full scale;
// the level says so. All frames have the format of the first one; a frame that cannot be decoded ends the
// material, and the rest is silence.
// The length is exact where a frame of information or a constant bit rate tells it, else an estimate; while
// material is left it lies beyond the position, and once the end was met it is exact. A frame of information
// is not heard.
// Seek decodes from the start or from where it is. It keeps a position below 0 as it is: the frames before
// frame 0 read as silence (a filter's pre-roll).
// Units:  frames; offsets are bytes of the file.
// Errors: a file without a first frame sets the error bit, and so does a drive that goes away. A file that
//         cannot be decoded further on ends there, and IsWhole() tells.
// Thread: one at a time.
class LMP3Source final : public LSoundSourceBase {
public:
    explicit LMP3Source(const LPath& path);
    explicit LMP3Source(std::unique_ptr<LReadStream> stream, const MP3Kernels& kernels = GetMP3Kernels());
    ~LMP3Source() override;

    void Read(int32_t* samples, int32_t frames) override;
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override;
    void Seek(int32_t frame) override;
    // Once the end was met: false when it was not that of the file, and what follows is more than tags,
    // padding, or something that only looks like a frame; and when the file ends in the middle of a frame,
    // before as many as its information tells.
    bool IsWhole() const override { return m_isWhole; }

private:
    static constexpr int64_t kTagBytes = 128;  // at the end of the file

    bool Open();
    bool DecodeInitialHeader();
    void ReadInformation();
    void Restart();
    bool DecodeHeader();
    bool DecodeFrame();
    bool Advance();
    bool FindFrame(int64_t from, MP3Header& header, int64_t& start);
    bool IsTag(int64_t offset);
    int64_t BehindTags(int64_t offset);
    bool IsFollowedByJunk();
    bool IsFollowedByPadding();
    int32_t Buffered() const { return m_pcmFrames - m_pcmUsed; }
    int64_t Estimate() const;

    std::unique_ptr<LReadStream> m_stream;
    MP3Header m_first;
    MP3Header m_header;
    MP3Decoder m_decoder;
    std::vector<uint8_t> m_body;  // side information and main data of a frame
    std::vector<int32_t> m_pcm;   // the frame that was decoded last, of which
    int32_t m_pcmFrames = 0;
    int32_t m_pcmUsed = 0;      // were delivered
    int64_t m_firstFrame = 0;   // offset of the first frame that is heard
    int64_t m_frameStart = 0;   // offset behind the last frame
    int64_t m_fileSize = 0;     // when it was opened
    int64_t m_dataEnd = 0;      // offset
    int64_t m_toldFrames = -1;  // by the frame of information
    int32_t m_bitRate = 0;      // of the first frame
    bool m_isConstant = true;   // so far
    int64_t m_decoded = 0;      // frames since the start
    int32_t m_position = 0;
    int32_t m_end = -1;  // -1: unknown
    bool m_hasEnded = false;
    bool m_isWhole = false;
    bool m_endsInFrame = false;
};
