#include "audio/convert/LSPConvChannels.h"

#include "base/LTrace.h"

LSoundSource LSPConvChannels::OpenSource(const LSoundSource& source, uint8_t channels) {
    const uint8_t present = source->GetChannels();
    if (present == channels || source->IsError()) return source;
    if (present > 2 || channels == 0 || channels > 2) {
        LTrace(
            "LSPConvChannels::OpenSource Multichannels (or 0) used when BUILD_SUPPORT_MULTICHANS is not set");
        return {};
    }
    return LSoundSource::Make<LSPConvChannels>(source, channels);
}

LSPConvChannels::LSPConvChannels(const LSoundSource& source, uint8_t channels)
    : LFilterSource(source, source->GetSampleRate(), channels, source->GetLevel()),
      m_block(size_t{kBlockFrames} * source->GetChannels()) {}

void LSPConvChannels::Read(int32_t* samples, int32_t frames) {
    const int32_t* block = m_block.data();
    const size_t count = static_cast<size_t>(frames);
    m_source->Read(m_block.data(), frames);
    if (GetChannels() == 1) {
        for (size_t i = 0; i < count; ++i) samples[i] = block[2 * i];
    } else {
        for (size_t i = 0; i < count; ++i) samples[2 * i] = samples[2 * i + 1] = block[i];
    }
}
