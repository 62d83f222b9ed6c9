#pragma once

#include "audio/stream/LSoundSink.h"

// The base of sinks that wrap another sink: it passes every call on, and a filter overrides the calls that it
// changes. It has the wrapped sink's channels and error bit; an empty handle sets the error bit.
// Units:  GetFrames() counts the frames given to this sink, on top of those that the wrapped sink held at
//         first. After a cut it is the wrapped sink's count, since not every sink can be cut.
// Thread: that of the wrapped sink.
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
