#pragma once

#include <memory>
#include <string_view>

#include "audio/stream/LSoundSink.h"
#include "audio/wave/LAcmStream.h"
#include "base/LPath.h"
#include "base/LStream.h"
#include "base/LWaveFileFormat.h"

// Writes a WAV file through a codec of the machine: from 16-bit samples into any format that some codec
// makes. The codec is opened first, so a missing one leaves an existing file untouched; after that an
// existing file is replaced. While the file is open both sizes in its head say "unknown"; the destructor
// makes the codec give out the material that it holds back and writes the real sizes.
// Units:  GetFrames() counts the frames that were handed to the codec.
// Errors: a missing codec or file sets the error bit, and so does a Write that the codec or the disk does not
//         take. The bytes that the disk took are kept, to the last whole block; later Writes do nothing. Head
//         and data agree whenever the head can be written. A file that lacks only its very end keeps its
//         unknown sizes, as a mark for its reader: nobody can ask the sink any more.
// Thread: one at a time.
class LSNKACMFile final : public LSoundSinkBase {
public:
    LSNKACMFile(const LWaveFileFormat& format, const LPath& path, LAcmOpener opener = LAcmOpen);
    LSNKACMFile(const LWaveFileFormat& format, std::unique_ptr<LStream> stream, LAcmOpener opener = LAcmOpen);
    ~LSNKACMFile() override;

    void Write(const int32_t* samples, int32_t frames) override;

private:
    explicit LSNKACMFile(const LWaveFileFormat& format);

    bool OpenCodec(LAcmOpener opener);
    void Begin();
    bool WriteHeader(uint32_t dataBytes);
    size_t Feed(const int32_t* samples, size_t count);
    LAcmStream::Flow Convert(LAcmConversion::Flag flag);
    void Flush();
    void Drain();
    void Store(std::span<const uint8_t> bytes);
    void Fail(std::string_view trace);
    int64_t HeaderBytes() const;

    LWaveFileFormat m_format;
    LWaveFileFormat m_pcm;
    std::unique_ptr<LStream> m_stream;
    LAcmStream m_codec;
    int64_t m_dataBytes = 0;
    bool m_headWritten = false;  // the file is ours to finish
};
