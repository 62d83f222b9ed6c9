#include "audio/stream/LSoundSource.h"

#include <algorithm>

#include "base/LArith.h"
#include "base/LTrace.h"

// The source of an empty handle: silence without end, of length 0. It spares each caller a test for null.
class LNullSource final : public LSoundSourceBase {
public:
    LNullSource() : LSoundSourceBase(11025, 1, kNullSourceLevel) { SetError(); }

    void Read(int32_t* samples, int32_t frames) override {
        std::fill_n(samples, frames, 0);
        m_position = Saturate(int64_t{m_position} + frames);
    }
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override { return 0; }
    void Seek(int32_t) override { m_position = 0; }

private:
    int32_t m_position = 0;
};

LSoundSourceBase::LSoundSourceBase(int32_t sampleRate, uint8_t channels, int32_t level) : m_level(level) {
    SetSampleRate(sampleRate);
    SetChannels(channels);
}

void LSoundSourceBase::SetSampleRate(int32_t sampleRate) {
    if (sampleRate < 1) {
        LTrace("LSoundSourceBase::SetSampleRate SampleRate <= 0 ERROR");
        sampleRate = 44100;
        SetError();
    }
    m_sampleRate = sampleRate;
}

void LSoundSourceBase::SetChannels(uint8_t channels) {
    if (channels == 0) {
        LTrace("LSoundSourceBase::SetChannels nChans == 0 ERROR");
        channels = 1;
        SetError();
    }
    m_channels = channels;
}

LSoundSource::LSoundSource() : LSoundSource(new LNullSource) {}

LSoundSource::LSoundSource(LSoundSourceBase* source) : m_source(source) {
    ++m_source->m_references;
}

LSoundSource::LSoundSource(const LSoundSource& other) : LSoundSource(other.m_source) {}

LSoundSource::LSoundSource(LSoundSource&& other) noexcept : LSoundSource() {
    std::swap(m_source, other.m_source);
}

LSoundSource& LSoundSource::operator=(LSoundSource other) noexcept {
    std::swap(m_source, other.m_source);
    return *this;
}

LSoundSource::~LSoundSource() {
    Drop(m_source);
}

void LSoundSource::Reset() {
    *this = LSoundSource();
}

void LSoundSource::Drop(LSoundSourceBase* source) {
    if (--source->m_references == 0) delete source;
}
