#pragma once

#include "audio/wave/LSNKPCMFile.h"

// The sink of a recording: a PCM file that is opened at once but changed only when the first audio arrives.
// So a file that is locked or read-only shows as error bit before the device starts.
// A recording that delivers nothing leaves an old file as it was. One that delivers nothing, or of which the
// disk takes nothing, leaves no file where there was none or an empty one. An existing file whose frames are
// to be kept must have our layout (LRewriteWave gives it); another one is refused. Written data are handed to
// the disk every ten seconds.
// Units:  frames. GetFrames() starts at startFrames, limited to the whole frames that the file holds.
// Errors: as LSNKPCMFileBase.
// Thread: one at a time.
class LDeferredSink final : public LSoundSinkBase {
public:
    // An empty handle when bits are not 1 to 16.
    static LSoundSink Open(const LPath& path, int32_t startFrames, int bits, uint8_t channels,
                           int32_t sampleRate);
    static LSoundSink Open(std::unique_ptr<LStream> stream, int32_t startFrames, int bits, uint8_t channels,
                           int32_t sampleRate);

    // Use Open; public only for the handle's Make(). path is the file to remove again when it was empty and
    // gets no audio, or no path.
    LDeferredSink(std::unique_ptr<LStream> stream, const LPath& path, int32_t startFrames, int bits,
                  uint8_t channels, int32_t sampleRate);
    ~LDeferredSink() override;

    void Write(const int32_t* samples, int32_t frames) override;
    // Before the first Write there is nothing to cut back.
    void Truncate(int32_t frames) override;

private:
    bool IsOurFile();
    void Adopt();

    std::unique_ptr<LStream> m_stream;  // until the first Write
    LPath m_path;
    int m_bits;
    LSoundSink m_file;  // from the first Write on
};
