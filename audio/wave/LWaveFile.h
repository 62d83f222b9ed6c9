#pragma once

#include <cstdint>
#include <memory>

#include "audio/stream/LSoundSink.h"
#include "audio/stream/LSoundSource.h"
#include "base/LPath.h"
#include "base/LStream.h"
#include "base/LWaveFileFormat.h"

// The contents of the head of a WAV file.
struct LWaveInfo {
    LWaveFileFormat format;
    int64_t dataStart = 0;     // bytes from the start of the file
    int64_t dataBytes = 0;     // never beyond the end of the file; a streaming file's data run to its end
    bool isStreaming = false;  // the size fields hold 0xFFFFFFFF: the file is being written, or was cut off
    // True when the file has exactly the 46-byte head that our sink writes, with nothing after the data.
    bool isOurLayout = false;

    bool IsPcm() const { return format.Tag() == kFormatTagPcm; }
    // Whether a recording onto this file must rewrite it first (LRewriteWave).
    bool NeedsRewrite() const { return !isOurLayout; }
    // Bytes of one PCM sample: 1 for up to 8 bits, 2 for 9 to 16, and so on.
    int BytesPerSample() const;
    // Whole frames, of compressed data those in whole blocks; 0 when the format does not tell.
    int64_t Frames() const;
    // Whether these data are the right amount for that many frames: exactly for PCM, up to the last block
    // where the format tells the frames of a block. Elsewhere any data at all will do.
    bool Holds(int64_t frames) const;
    // From the whole frames or, where the format does not tell them, from the data size and the byte rate.
    int64_t LengthMs() const;
};

// Opens WAV files as sources and creates them as sinks: PCM of up to 16 bits through our own code, every
// other format through a codec of the machine (LSRCACMWave, LSNKACMFile). The head is foreign input: its
// sizes are claims, which the size of the file bounds.
// Units:  bytes for sizes, frames and milliseconds as named; sample rates 1 to 196000 Hz, 1 to 255 channels.
// Errors: each function traces its failure.
// Thread: any; the class has no state.
class LWaveFile {
public:
    // On any failure the null source, never an empty handle. A file that is still being written opens with
    // the data present now.
    static LSoundSource OpenSource(const LPath& path);
    static LSoundSource OpenSource(std::unique_ptr<LReadStream> stream);

    // bits 1 to 8 make an 8-bit file, 9 to 16 a 16-bit file; others give an empty handle. An existing file is
    // replaced from its start. Test the handle and then its error bit.
    static LSoundSink OpenSinkPCM(const LPath& path, int bits, uint8_t channels, int32_t sampleRate);
    // PCM formats as above; for other formats a codec of the machine. Empty or with its error bit set on
    // failure.
    static LSoundSink OpenSink(const LPath& path, const LWaveFileFormat& format);

    // Whether the file's "fmt " chunk has format tag 1; false (traced) where OpenSource takes no such chunk.
    static bool TestPCM(const LPath& path);
    static bool TestPCM(LReadStream& stream);

    // Reads the head of a file; false (traced) when OpenSource would not take it. The stream is left at the
    // start of the data.
    static bool ReadInfo(LReadStream& stream, LWaveInfo& info);
    static bool ReadInfo(const LPath& path, LWaveInfo& info);

    // Whether a file that one of our sinks has written, read again from the disk, holds all of these frames.
    // A sink that fails while it closes cannot tell.
    static bool IsComplete(const LPath& path, int64_t frames);

    // Length in milliseconds; 0 when the file is empty, missing or no WAV file.
    static int32_t LengthMs(const LPath& path);
};
