#pragma once

#include <cmath>
#include <numbers>

#include "tests/unit/audio/AudioTest.h"

// Reads in blocks of a size that fits nothing else.
inline Samples ReadFrames(LSoundSourceBase& source, int32_t frames, int32_t block = 777) {
    Samples samples(static_cast<size_t>(frames) * source.GetChannels(), 99);
    for (int32_t done = 0; done < frames; done += block)
        source.Read(samples.data() + static_cast<size_t>(done) * source.GetChannels(),
                    std::min(block, frames - done));
    return samples;
}

// A voice of 12 harmonics: syllables, a sliding pitch around pitchHz, half of full scale.
inline Samples Voice(int32_t rate, double seconds, double pitchHz) {
    Samples samples(static_cast<size_t>(seconds * rate));
    double phase = 0;
    for (size_t i = 0; i < samples.size(); ++i) {
        const double t = static_cast<double>(i) / rate;
        phase += 2 * std::numbers::pi * pitchHz * (1 + 0.1 * std::sin(2 * std::numbers::pi * 0.7 * t)) / rate;
        const double syllable = 0.1 + std::pow(std::sin(2 * std::numbers::pi * 1.5 * t), 2.0);
        double wave = 0;
        for (int h = 1; h <= 12; ++h) wave += std::cos(h * phase + h * h) / (1 + std::abs(h - 5));
        samples[i] = static_cast<int32_t>(0x10000 * syllable * wave);
    }
    return samples;
}

// The pitch of a voice at a frame, in Hz, by autocorrelation within a fifth of where it should be.
inline double PitchAt(const Samples& samples, int32_t rate, size_t at, double aboutHz) {
    double best = -1, pitch = 0;
    const size_t last = static_cast<size_t>(1.2 * rate / aboutHz);
    for (size_t lag = static_cast<size_t>(rate / (1.2 * aboutHz)); lag <= last; ++lag) {
        double match = 0, energy = 1;
        for (size_t i = at; i < at + static_cast<size_t>(rate / 40); ++i) {
            match += static_cast<double>(samples[i]) * samples[i + lag];
            energy += static_cast<double>(samples[i + lag]) * samples[i + lag];
        }
        if (match / std::sqrt(energy) <= best) continue;
        best = match / std::sqrt(energy);
        pitch = static_cast<double>(rate) / static_cast<double>(lag);
    }
    return pitch;
}

inline double LoudnessAt(const Samples& samples, size_t at, size_t count) {
    double energy = 0;
    for (size_t i = at; i < at + count; ++i) energy += static_cast<double>(samples[i]) * samples[i];
    return std::sqrt(energy / static_cast<double>(count));
}

inline int32_t LargestStep(const Samples& samples) {
    int32_t largest = 0;
    for (size_t i = 1; i < samples.size(); ++i)
        largest = std::max(largest, std::abs(samples[i] - samples[i - 1]));
    return largest;
}
