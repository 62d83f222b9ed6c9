#pragma once

#include "audio/stream/LSoundSource.h"

// A source that wraps another one and passes on what it does not change. It has the wrapped source's error
// bit.
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
