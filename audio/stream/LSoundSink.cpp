#include "audio/stream/LSoundSink.h"

#include "base/LTrace.h"

LSoundSinkBase::LSoundSinkBase(int32_t sampleRate, uint8_t channels)
    : m_sampleRate(sampleRate), m_channels(channels) {
    if (channels == 0) {
        LTrace("LSoundSinkBase::LSoundSinkBase nChans == 0");
        m_channels = 1;
        SetError();
    }
}

void LSoundSinkBase::Truncate(int32_t) {}

LSoundSink::LSoundSink(LSoundSinkBase* sink) : m_sink(sink) {
    ++m_sink->m_references;
}

LSoundSink::LSoundSink(const LSoundSink& other) : m_sink(other.m_sink) {
    if (m_sink) ++m_sink->m_references;
}

LSoundSink::LSoundSink(LSoundSink&& other) noexcept : m_sink(std::exchange(other.m_sink, nullptr)) {}

LSoundSink& LSoundSink::operator=(LSoundSink other) noexcept {
    std::swap(m_sink, other.m_sink);
    return *this;
}

LSoundSink::~LSoundSink() {
    if (m_sink && --m_sink->m_references == 0) delete m_sink;
}
