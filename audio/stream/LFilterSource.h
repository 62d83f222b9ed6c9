#pragma once

#include "audio/stream/LSoundSource.h"

// The base of sources that wrap another source: it passes every call on, and a filter overrides the calls
// that it changes. It has the wrapped source's error bit.
// Units:  those of the wrapped source, unless the filter says otherwise.
// Thread: that of the wrapped source.
class LFilterSource : public LSoundSourceBase {
public:
    int32_t GetPosition() const override { return m_source->GetPosition(); }
    int32_t GetLength() const override { return m_source->GetLength(); }
    void Seek(int32_t frame) override { m_source->Seek(frame); }
    bool IsGrowing() const override { return m_source->IsGrowing(); }
    bool IsWhole() const override { return m_source->IsWhole(); }

protected:
    LFilterSource(const LSoundSource& source, int32_t sampleRate, uint8_t channels, int32_t level)
        : LSoundSourceBase(sampleRate, channels, level), m_source(source) {
        if (source->IsError()) SetError();
    }
    explicit LFilterSource(const LSoundSource& source)
        : LFilterSource(source, source->GetSampleRate(), source->GetChannels(), source->GetLevel()) {}

    LSoundSource m_source;
};
