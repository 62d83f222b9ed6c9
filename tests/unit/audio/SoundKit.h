#pragma once

#include <cmath>
#include <cstdio>
#include <numbers>
#include <numeric>
#include <random>

#include "tests/unit/audio/AudioTest.h"

// Reads in blocks of a size that fits nothing else.
inline Samples ReadFrames(LSoundSourceBase& source, int32_t frames, int32_t block = 777) {
    Samples samples(static_cast<size_t>(frames) * source.GetChannels(), 99);
    for (int32_t done = 0; done < frames; done += block)
        source.Read(samples.data() + static_cast<size_t>(done) * source.GetChannels(),
                    std::min(block, frames - done));
    return samples;
}

// Reads a recording through a stage while it grows by so many frames at each read, staying so far behind its
// present end.
template <class Open>
Samples ReadWhileItGrows(const Samples& in, int32_t rate, int32_t level, Open open, int32_t growth,
                         int32_t behind = 0) {
    const int32_t frames = static_cast<int32_t>(in.size());
    const LSoundSource recording = LSoundSource::Make<ArraySource>(rate, uint8_t{1}, in, level);
    auto& grower = static_cast<ArraySource&>(*recording);
    grower.present = 0;
    grower.isGrowing = true;
    const LSoundSource source = open(recording);
    Samples out;
    while (grower.isGrowing) {
        grower.present = std::min(grower.present + growth, frames);
        grower.isGrowing = grower.present < frames;
        const int32_t left = source->GetLength() - source->GetPosition();
        const Samples more = ReadFrames(*source, std::max(left - (grower.isGrowing ? behind : 0), 0));
        out.insert(out.end(), more.begin(), more.end());
    }
    EXPECT_EQ(grower.readAhead, 0) << growth;
    return out;
}

// Stands for all these samples in a test's table. Only what is computed in integers is the same in every
// build.
inline std::string Digest(const Samples& samples) {
    uint32_t hash = 2166136261u;
    for (const int32_t v : samples) hash = (hash ^ static_cast<uint32_t>(v)) * 16777619u;
    char text[9];
    std::snprintf(text, sizeof text, "%08x", static_cast<unsigned>(hash));
    return text;
}

inline Samples operator+(Samples a, const Samples& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

struct Rates {
    int32_t in, out;
};
inline constexpr Rates kConvertedRates[] = {{44100, 8000}, {8000, 44100},  {22050, 8000},
                                            {11025, 8000}, {48000, 44100}, {16000, 8000},
                                            {8000, 16000}, {8001, 8000},   {192000, 8000}};

// 1, 2, 3, ...
inline Samples Ramp(int32_t count) {
    Samples samples(static_cast<size_t>(count));
    std::iota(samples.begin(), samples.end(), 1);
    return samples;
}

inline Samples Noise(size_t count, int32_t peak, uint32_t seed = 1) {
    std::mt19937 random(seed);
    Samples samples(count);
    for (int32_t& v : samples) v = static_cast<int32_t>(random() % (2u * static_cast<uint32_t>(peak))) - peak;
    return samples;
}

// Blocks of very different loudness: quiet, at the limit, just above it, and as far as 32 bits go.
inline Samples Hostile(size_t count, int32_t limit, uint32_t seed) {
    std::mt19937 random(seed);
    Samples samples;
    while (samples.size() < count) {
        const int64_t loudness = int64_t{1} << random() % 32;
        const int64_t top = random() % 3 == 0 ? int64_t{limit} + random() % 200 : loudness;
        for (size_t left = 1 + random() % 700; left > 0 && samples.size() < count; --left) {
            const int64_t v = random() % 8 == 0 ? top : static_cast<int64_t>(random()) % (top + 1);
            samples.push_back(Saturate(random() % 2 ? v : -v));
        }
    }
    return samples;
}

inline Samples Tone(size_t count, double hz, int32_t rate, double amplitude) {
    Samples samples(count);
    for (size_t i = 0; i < count; ++i)
        samples[i] = static_cast<int32_t>(
            std::lround(amplitude * std::sin(2 * std::numbers::pi * hz * static_cast<double>(i) / rate)));
    return samples;
}

// The level of a tone in decibels above the given amplitude.
inline double ToneDb(const Samples& samples, double hz, int32_t rate, double amplitude) {
    double re = 0, im = 0;
    for (size_t i = 0; i < samples.size(); ++i) {
        const double angle = 2 * std::numbers::pi * hz * static_cast<double>(i) / rate;
        re += samples[i] * std::cos(angle);
        im += samples[i] * std::sin(angle);
    }
    return 20 * std::log10(2 * std::hypot(re, im) / static_cast<double>(samples.size()) / amplitude);
}

inline double LoudnessAt(const Samples& samples, size_t at, size_t count) {
    double energy = 0;
    for (size_t i = at; i < at + count; ++i) energy += static_cast<double>(samples[i]) * samples[i];
    return std::sqrt(energy / static_cast<double>(count));
}
