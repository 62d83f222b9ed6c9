#include "audio/convert/LSincFilter.h"
#include "audio/stream/LKernels.h"
#include "audio/stream/LSample.h"
#include "tests/unit/audio/SoundKit.h"

namespace {

// The versions that this processor runs.
std::vector<const LKernels*> AllKernels() {
    __builtin_cpu_init();
    std::vector<const LKernels*> all = {&kPlainKernels};
    if (__builtin_cpu_supports("mmx")) all.push_back(&kMmxKernels);
    if (__builtin_cpu_supports("sse2")) all.push_back(&kSse2Kernels);
    return all;
}

// False when vectors have been left in the registers of the floating-point unit, which then overflows.
bool IsFloatingPointUnitClean() {
    const volatile long double one = 1;
    return one + one / 2 == 1.5L;
}

struct Input {
    const int32_t* samples;
    const uint8_t* pcm;
    size_t count, channels;
};

// The most gain that leaves a product within its range.
int32_t HighestGain(const Input& in) {
    const int64_t peak = kPlainKernels.peak(in.samples, in.count);
    return static_cast<int32_t>(std::min<int64_t>(kUnityGain, (int64_t{1} << 46) / (peak + 1)));
}

template <class T>
T* As(Bytes& bytes) {
    return reinterpret_cast<T*>(bytes.data());
}

const struct {
    const char* name;
    void (*run)(const LKernels& kernels, const Input& in, Bytes& out);
} kLoops[] = {
    {"peak", [](auto& k, auto& in, auto& out) { *As<uint32_t>(out) = k.peak(in.samples, in.count); }},
    {"narrow", [](auto& k, auto& in, auto& out) { k.narrow(in.samples, As<int16_t>(out), in.count); }},
    {"to 8", [](auto& k, auto& in, auto& out) { k.toPcm8(in.samples, out.data(), in.count); }},
    {"to 16", [](auto& k, auto& in, auto& out) { k.toPcm16(in.samples, out.data(), in.count); }},
    {"from 8", [](auto& k, auto& in, auto& out) { k.fromPcm8(in.pcm, As<int32_t>(out), in.count); }},
    {"from 16", [](auto& k, auto& in, auto& out) { k.fromPcm16(in.pcm, As<int32_t>(out), in.count); }},
    {"ramp",
     [](auto& k, auto& in, auto& out) {
         const int32_t highest = HighestGain(in), step = highest / static_cast<int32_t>(in.count + 1);
         const size_t frames = in.count / in.channels;
         k.ramp({0, step, -1000}, in.samples, As<int32_t>(out), frames, in.channels);
         k.ramp({highest, -step, INT32_MIN}, in.samples, As<int32_t>(out) + in.count, frames, in.channels);
     }},
};

void ExpectAgreement(const Input& in) {
    for (const auto& loop : kLoops) {
        Bytes plain(8 * in.count + 4, 0x55);  // what lies behind the last one is not to be touched
        loop.run(kPlainKernels, in, plain);
        for (const LKernels* kernels : AllKernels()) {
            Bytes made(plain.size(), 0x55);
            loop.run(*kernels, in, made);
            EXPECT_EQ(made, plain) << loop.name << " of " << in.count;
            EXPECT_TRUE(IsFloatingPointUnitClean()) << loop.name;
        }
    }
}

}  // namespace

TEST(Sample, SurvivesTheInternalScaleRoundedAndNeverCracksAtTheTop) {
    for (int v = -32768; v <= 32767; ++v) ASSERT_EQ(ToPcm16(FromPcm16(static_cast<int16_t>(v))), v);
    for (int v = 0; v <= 255; ++v) ASSERT_EQ(ToPcm8(FromPcm8(static_cast<uint8_t>(v))), v);
    static const std::tuple<int32_t, int16_t, int16_t, uint8_t> kCases[] = {
        {7, 0, 0, 128},
        {8, 1, 1, 128},
        {-9, -1, -1, 128},
        {2047, 128, 128, 128},
        {2048, 128, 128, 129},
        {0x7F800, 32640, 32640, 255},
        {0x80000, -32768, 32767, 0},
        {-0x80009, 32767, -32768, 0},
    };
    for (const auto& [sample, pcm16, narrowed, pcm8] : kCases) {
        EXPECT_EQ(ToPcm16(sample), pcm16) << sample;
        EXPECT_EQ(ToPcm8(sample), pcm8) << sample;
        int16_t made;
        kPlainKernels.narrow(&sample, &made, 1);
        EXPECT_EQ(made, narrowed) << sample;
    }
}

// Lengths around the width of the fast loops, at any alignment of elements of one byte or more.
TEST(Kernels, AreTheSameInAllVersions) {
    std::mt19937 random(4);
    for (const size_t count : {0u, 1u, 3u, 4u, 7u, 8u, 15u, 16u, 17u, 31u, 33u, 250u, 1025u}) {
        for (size_t from = 0; from < 4; ++from) {
            Samples in = Hostile(count + from + 1, kFullScale16, static_cast<uint32_t>(count + from));
            for (int32_t& v : in)  // around the place where rounding to 8 bits is special
                if (random() % 4 == 0) v = 0x7F700 + static_cast<int32_t>(random() % 0xA00);
            Bytes pcm(2 * count + from + 1);
            for (uint8_t& byte : pcm) byte = static_cast<uint8_t>(random());
            for (const size_t channels : {1u, 2u, 5u})
                ExpectAgreement({&in[from], &pcm[from], count, channels});
            in[from + count / 2] = INT32_MIN;
            for (const LKernels* kernels : AllKernels())
                EXPECT_EQ(kernels->peak(&in[from], count + 1), 0x80000000u) << count;
        }
    }
}

// The input that drives every product of a sample the same way is the worst for each part of its sum.
static void ExpectTheWorstInputToFit(const LSincFilter& filter, int32_t phase, int sign) {
    LSincRows rows = filter.Rows();
    rows.step = 64 * rows.phases;  // the same phase five times: a whole vector and one more
    std::vector<int16_t> history(size_t{5} * 64, -32768);
    for (size_t i = 0; i < history.size(); ++i) {
        const int32_t tap = static_cast<int32_t>(i % 64);
        if (tap < filter.Taps() && filter.Coefficient(phase, tap) * sign > 0) history[i] = 32767;
    }
    int64_t halves[2] = {0, 0};
    for (size_t i = 0; i < 2 * rows.half; ++i) {
        const size_t slot = static_cast<size_t>(phase) * 2 * rows.half + i;
        halves[i / rows.half] += int64_t{rows.rows[slot]} * history[i < rows.half ? i + 1 : i - 1];
    }
    const int64_t expected = ((halves[0] >> 1) + (halves[1] >> 1) + 1024) >> 11;
    for (const LKernels* kernels : AllKernels()) {
        int32_t out[5];
        kernels->interpolate(rows, static_cast<uint32_t>(phase), history.data(), out, 5, 1);
        for (const int32_t sample : out) ASSERT_EQ(sample, expected) << rows.phases << " phase " << phase;
    }
}

TEST(Kernels, InterpolateTheWorstInputOfEachPhaseWithoutOverflow) {
    for (const int32_t taps : {15, 63}) {
        for (const auto& [in, out] : kConvertedRates) {
            const LSincFilter filter(in, out, taps);
            for (int32_t phase = 0; phase < filter.Phases(); ++phase)
                for (const int sign : {1, -1}) ExpectTheWorstInputToFit(filter, phase, sign);
        }
    }
}

TEST(Kernels, InterpolateTheSameInAllVersionsAtAnyPlaceAndCount) {
    std::mt19937 random(7);
    std::vector<int16_t> history(200);
    for (int16_t& v : history) v = static_cast<int16_t>(random());
    for (const int32_t taps : {15, 63}) {
        const LSincFilter filter(44100, 8000, taps);
        for (size_t i = 0; i < 80; ++i) {
            Samples plain;
            for (const LKernels* kernels : AllKernels()) {
                Samples out(30);  // what lies behind the samples, or between them, is not touched
                kernels->interpolate(filter.Rows(), static_cast<uint32_t>(i), history.data() + i, out.data(),
                                     i % 10, 1 + i / 40);
                EXPECT_TRUE(IsFloatingPointUnitClean());
                if (plain.empty()) plain = out;
                EXPECT_EQ(out, plain) << taps << " " << i;
            }
        }
    }
}
