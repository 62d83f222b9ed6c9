#pragma once

#include "audio/stream/LSoundSink.h"

// A sink that wraps another one and passes on what it does not change. It counts the frames that it is given,
// on top of those that the wrapped sink holds already, and has the wrapped sink's channels and error bit; an
// empty handle sets the error bit. A cut goes as far as the wrapped sink cuts: some do not.
class LFilterSink : public LSoundSinkBase {
public:
    void Write(const int32_t* samples, int32_t frames) override {
        AddFrames(frames);
        if (!m_sink) return;
        m_sink->Write(samples, frames);
        if (m_sink->IsError()) SetError();
    }
    void Truncate(int32_t frames) override {
        if (frames > GetFrames()) return;
        if (!m_sink) return;
        m_sink->Truncate(frames);
        SetFrames(m_sink->GetFrames());
        if (m_sink->IsError()) SetError();
    }

protected:
    LFilterSink(const LSoundSink& sink, int32_t sampleRate)
        : LSoundSinkBase(sampleRate, sink ? sink->GetChannels() : uint8_t{1}), m_sink(sink) {
        if (!sink || sink->IsError()) SetError();
        if (sink) SetFrames(sink->GetFrames());
    }

    LSoundSink m_sink;
};
