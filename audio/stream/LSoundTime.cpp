#include "audio/stream/LSoundTime.h"

#include <algorithm>

#include "base/LText.h"
#include "base/LTrace.h"

bool LSoundTime::SetSamples(int32_t samples, int32_t sampleRate) {
    if (sampleRate <= 0) {
        LTrace("LSoundTime::SetSamples samplerate <= 0");
        return false;
    }
    samples = std::max(samples, 0);
    m_seconds = samples / sampleRate;
    m_milliseconds = FramesToMs(samples % sampleRate, sampleRate);
    return true;
}

std::string LSoundTime::Print(Form form) const {
    const long h = Hours(), m = Minutes(), s = Seconds(), ms = m_milliseconds;
    switch (form) {
        case Form::Seconds:
            return LFormat("%ld:%.2ld:%.2ld", h, m, s);
        case Form::Tenths:
            return LFormat("%ld:%.2ld:%.2ld.%.1ld", h, m, s, ms / 100);
        case Form::Hundredths:
            return LFormat("%ld:%.2ld:%.2ld.%.2ld", h, m, s, ms / 10);
        case Form::Milliseconds:
            return LFormat("%ld:%.2ld:%.2ld.%.3ld", h, m, s, ms);
        case Form::ShortTenths:
            return LFormat("%d:%.2d:%.2d.%.1d", Hours(), Minutes(), Seconds(), m_milliseconds / 100);
        case Form::MinutesSeconds:
            return LFormat("%.2ld:%.2ld", h * 60 + m, s);
    }
    return {};
}
