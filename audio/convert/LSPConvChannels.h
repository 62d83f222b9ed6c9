#pragma once

#include <vector>

#include "audio/stream/LFilterSource.h"

// A filter between mono and stereo. Mono goes to both channels; of stereo the left channel is kept and the
// right one dropped, not mixed: a microphone on one side of a stereo line keeps its full level.
class LSPConvChannels final : public LFilterSource {
public:
    // The source with that many channels: itself when it has them already or has an error, otherwise wrapped.
    // The null source (traced) when either count is neither 1 nor 2.
    static LSoundSource OpenSource(const LSoundSource& source, uint8_t channels);

    // Use OpenSource; public only for the handle's Make(). One of the two counts is 1, the other 2.
    LSPConvChannels(const LSoundSource& source, uint8_t channels);

    void Read(int32_t* samples, int32_t frames) override;

private:
    std::vector<int32_t> m_block;  // one block as the wrapped source delivers it
};
