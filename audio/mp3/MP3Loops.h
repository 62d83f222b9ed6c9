#pragma once

#include <cmath>

#include "audio/mp3/MP3Data.h"
#include "audio/mp3/MP3Kernels.h"
#include "base/LThread.h"

// The loops of MP3Kernels, written once for vectors of lanes. One file for each instruction set includes this
// header and is compiled for it; what is said in audio/stream/LVectorKernels.h of functions of the library
// holds here too. L has
//
//   V, kLanes                       a vector of floats with the operators of arithmetic, and its lanes
//   Load, Store                     at any alignment
//   LoadColumns                     one vector for each column of kLanes rows
//   StoreColumns                    kLanes columns to kLanes rows
//   Output                          kLanes samples of each channel, rounded: forwards, and mirrored
template <class L>
class MP3Loops {
    using V = typename L::V;
    static constexpr size_t kLanes = L::kLanes;
    static constexpr size_t kGroups = kMP3Bands / kLanes;

    // --- Tables, in the order in which the loops read them -------------------------------------------------

    // Windows of the transform of lines. What the fast transform leaves out (a factor for each output) is in
    // them, and so is the sign that every odd slot of every odd band changes.
    static constexpr size_t kParities = kLanes == 1 ? 2 : 1;  // of the first band of a group
    struct Windows {
        V longs[4][36];
        V shorts[12];
    };
    static inline Windows s_windows[kParities];
    // The synthesis window: for each group of output samples and each pair of slots, what the forward samples
    // take of both, then what the mirrored ones do. It holds the scale too, 2^19: 262144 of the synthesis
    // matrix and 2 of the window. Both are powers of two, so it makes no difference where they are applied.
    static inline V s_synthesis[16 / kLanes][8][4];

    static void PrepareWindows() {
        const double pi = 3.14159265358979323846;
        for (size_t p = 0; p < kParities; ++p) {
            for (int i = 0; i < 36; ++i) {
                const double whole = std::sin(pi / 36 * (i + 0.5));
                const double start = i < 18   ? whole
                                     : i < 24 ? 1
                                     : i < 30 ? std::sin(pi / 12 * (i - 18 + 0.5))
                                              : 0;
                const double stop = i < 6    ? 0
                                    : i < 12 ? std::sin(pi / 12 * (i - 6 + 0.5))
                                    : i < 18 ? 1
                                             : whole;
                const double windows[4] = {whole, start, 0, stop};
                const int n = i < 9 ? 9 + i : i < 27 ? 26 - i : i - 27;
                const double factor = (i < 9 ? 0.5 : -0.5) / std::cos((2 * n + 1) * pi / 72);
                for (int type = 0; type < 4; ++type)
                    s_windows[p].longs[type][i] = Signed(windows[type] * factor, i, p);
            }
            for (int i = 0; i < 12; ++i) {
                const int n = i < 3 ? 3 + i : i < 9 ? 8 - i : i - 9;
                const double factor = (i < 3 ? 0.5 : -0.5) / std::cos((2 * n + 1) * pi / 24);
                s_windows[p].shorts[i] = Signed(std::sin(pi / 12 * (i + 0.5)) * factor, i, p);
            }
        }
    }
    static V Signed(double value, int slot, size_t parity) {
        float lanes[kLanes];
        for (size_t lane = 0; lane < kLanes; ++lane)
            lanes[lane] = static_cast<float>((lane + parity) % 2 != 0 && slot % 2 != 0 ? -value : value);
        return L::Load(lanes);
    }

    static void PrepareSynthesis() {
        for (size_t group = 0; group < 16 / kLanes; ++group) {
            for (size_t i = 0; i < 8; ++i) {
                float taps[4][kLanes];
                for (size_t lane = 0; lane < kLanes; ++lane) {
                    const size_t j = group * kLanes + lane, mirror = j == 0 ? 16 : 32 - j;
                    const auto window = [&](size_t at) {
                        return static_cast<float>(kMP3Window[64 * i + at]) * 8;
                    };
                    taps[0][lane] = window(j);
                    taps[1][lane] = -window(32 + j);
                    taps[2][lane] = j == 0 ? 0 : -window(mirror);
                    taps[3][lane] = -window(32 + mirror);
                }
                for (size_t t = 0; t < 4; ++t) s_synthesis[group][i][t] = L::Load(taps[t]);
            }
        }
    }

    static inline LCriticalSection s_lock;
    static inline bool s_isPrepared = false;  // under the lock
    static void Prepare() {
        const LLock lock(s_lock);
        if (s_isPrepared) return;
        s_isPrepared = true;
        PrepareWindows();
        PrepareSynthesis();
    }

    // --- Lines ---------------------------------------------------------------------------------------------

    static void MidSide(float* left, float* right, size_t lines) {
        for (size_t i = 0; i < lines; i += kLanes) {
            const V a = L::Load(left + i), b = L::Load(right + i);
            L::Store(left + i, a + b);
            L::Store(right + i, a - b);
        }
    }

    static void ReduceAlias(float* lines, size_t limits) {
        constexpr float kCs[8] = {0.8574929257125443f, 0.8817419973177052f, 0.9496286491027328f,
                                  0.9833145924917902f, 0.9955178160675858f, 0.9991605581781475f,
                                  0.9998991952444471f, 0.9999931550702803f};
        constexpr float kCa[8] = {-0.5144957554275266f,  -0.47173196856497235f,  -0.31337745420390184f,
                                  -0.18191319961098118f, -0.09457419252642066f,  -0.04096558288530405f,
                                  -0.01419856857247115f, -0.0036999746737600373f};
        for (float* limit = lines + 18; limits > 0; --limits, limit += 18) {
            for (size_t i = 0; i < 8; i += kLanes) {
                const V cs = L::Load(kCs + i), ca = L::Load(kCa + i);
                const V a = L::Reversed(L::Load(limit - i - kLanes)), b = L::Load(limit + i);
                L::Store(limit - i - kLanes, L::Reversed(a * cs - b * ca));
                L::Store(limit + i, b * cs + a * ca);
            }
        }
    }

    // --- Lines to slots ------------------------------------------------------------------------------------

    // z[n] = sum of a[m] cos((2n + 1) m pi / 18). With c20 = c40 + c80 and c10 = c50 + c70 (degrees) the
    // products are shared.
    static void Cosines9(const V* a, V* z) {
        constexpr float c30 = 0.8660254037844386f, c40 = 0.7660444431189780f, c80 = 0.17364817766693033f,
                        c50 = 0.6427876096865393f, c70 = 0.3420201433256687f;
        const V p = a[2] + a[4], q = a[2] + a[8], r = a[4] - a[8];
        const V half = a[0] + a[6] * 0.5f, rest = a[0] - a[6], v = a[2] - a[4] - a[8];
        const V e0 = half + p * c40 + q * c80, e1 = rest + v * 0.5f;
        const V e2 = half - p * c80 - r * c40, e3 = half - q * c40 + r * c80;
        const V e4 = rest - v;
        const V s = a[1] + a[5], t = a[1] + a[7], u = a[5] - a[7];
        const V o0 = s * c50 + t * c70 + a[3] * c30, o1 = (a[1] - a[5] - a[7]) * c30;
        const V o2 = t * c50 - u * c70 - a[3] * c30, o3 = s * c70 + u * c50 - a[3] * c30;
        z[0] = e0 + o0, z[8] = e0 - o0;
        z[1] = e1 + o1, z[7] = e1 - o1;
        z[2] = e2 + o2, z[6] = e2 - o2;
        z[3] = e3 + o3, z[5] = e3 - o3;
        z[4] = e4;
    }

    // The 18 values from which the 36 outputs of a long block are made, but for factors that the windows
    // hold: sums of neighbours make the transform one of half the size, for even and for odd lines.
    static void Cosines18(V* x, V* y) {
        constexpr float kHalfSecants[9] = {0.5019099187716736f, 0.5176380902050415f, 0.5516889594812459f,
                                           0.6103872943807281f, 0.7071067811865475f, 0.8717233978105488f,
                                           1.1831007915762493f, 1.9318516525781366f, 5.736856622834928f};
        V even[9], odd[9], ze[9], zo[9];
        for (size_t k = 17; k > 0; --k) x[k] = x[k] + x[k - 1];
        for (size_t m = 0; m < 9; ++m) even[m] = x[2 * m];
        odd[0] = x[1];
        for (size_t m = 1; m < 9; ++m) odd[m] = x[2 * m + 1] + x[2 * m - 1];
        Cosines9(even, ze);
        Cosines9(odd, zo);
        for (size_t n = 0; n < 9; ++n) {
            const V o = zo[n] * kHalfSecants[n];
            y[n] = ze[n] + o;
            y[17 - n] = ze[n] - o;
        }
    }

    static void LongBlock(const float* lines, const V* window, float* overlap, float* slots) {
        V x[18], y[18];
        L::template LoadColumns<18>(lines, 18, x);
        Cosines18(x, y);
        for (size_t t = 0; t < 18; ++t) {
            L::Store(slots + t * kMP3Bands,
                     L::Load(overlap + t * kLanes) + y[t < 9 ? 9 + t : 26 - t] * window[t]);
            L::Store(overlap + t * kLanes, y[t < 9 ? 8 - t : t - 9] * window[18 + t]);
        }
    }

    // The same for one of three short blocks, of six lines.
    static void Cosines6(const V* lines, V* y) {
        constexpr float c30 = 0.8660254037844386f;
        constexpr float kHalfSecants[3] = {0.5176380902050415f, 0.7071067811865475f, 1.9318516525781366f};
        V x[6];
        x[0] = lines[0];
        for (size_t k = 1; k < 6; ++k) x[k] = lines[3 * k] + lines[3 * k - 3];
        const auto cosines3 = [](V a0, V a1, V a2, V* z) {
            const V half = a0 + a2 * 0.5f, o = a1 * c30;
            z[0] = half + o;
            z[1] = a0 - a2;
            z[2] = half - o;
        };
        V ze[3], zo[3];
        cosines3(x[0], x[2], x[4], ze);
        cosines3(x[1], x[3] + x[1], x[5] + x[3], zo);
        for (size_t n = 0; n < 3; ++n) {
            const V o = zo[n] * kHalfSecants[n];
            y[n] = ze[n] + o;
            y[5 - n] = ze[n] - o;
        }
    }

    static void ShortBlocks(const float* lines, const V* window, float* overlap, float* slots) {
        V x[18], sum[36] = {};
        L::template LoadColumns<18>(lines, 18, x);
        for (size_t w = 0; w < 3; ++w) {
            V y[6];
            Cosines6(x + w, y);
            for (size_t i = 0; i < 12; ++i) {
                V& place = sum[6 * (w + 1) + i];
                place = place + y[i < 3 ? 3 + i : i < 9 ? 8 - i : i - 9] * window[i];
            }
        }
        for (size_t t = 0; t < 18; ++t) {
            L::Store(slots + t * kMP3Bands, L::Load(overlap + t * kLanes) + sum[t]);
            L::Store(overlap + t * kLanes, sum[18 + t]);
        }
    }

    // A group of short bands of which the first are long.
    static void MixedBlocks(const float* lines, size_t longLanes, float* overlap, float* slots) {
        float shortOverlap[18 * kLanes], shortSlots[18 * kMP3Bands];
        for (size_t i = 0; i < 18 * kLanes; ++i) shortOverlap[i] = overlap[i];
        const Windows& windows = s_windows[0];
        LongBlock(lines, windows.longs[0], overlap, slots);
        ShortBlocks(lines, windows.shorts, shortOverlap, shortSlots);
        for (size_t t = 0; t < 18; ++t) {
            for (size_t lane = longLanes; lane < kLanes; ++lane) {
                slots[t * kMP3Bands + lane] = shortSlots[t * kMP3Bands + lane];
                overlap[t * kLanes + lane] = shortOverlap[t * kLanes + lane];
            }
        }
    }

    static void EmptyBlock(float* overlap, float* slots) {
        for (size_t t = 0; t < 18; ++t) {
            L::Store(slots + t * kMP3Bands, L::Load(overlap + t * kLanes));
            L::Store(overlap + t * kLanes, V{});
        }
    }

    static void Transform(const float* lines, size_t bands, uint8_t blockType, size_t longBands,
                          MP3ChannelState& state, float* slots) {
        for (size_t group = 0; group < kGroups; ++group) {
            const size_t band = group * kLanes;
            const float* from = lines + band * 18;
            float* overlap = state.overlap + band * 18;
            const Windows& windows = s_windows[group % kParities];
            if (band >= bands && band >= state.overlapBands)
                for (size_t t = 0; t < 18; ++t) L::Store(slots + t * kMP3Bands + band, V{});
            else if (band >= bands)
                EmptyBlock(overlap, slots + band);
            else if (blockType != 2)
                LongBlock(from, windows.longs[blockType], overlap, slots + band);
            else if (band + kLanes <= longBands)
                LongBlock(from, windows.longs[0], overlap, slots + band);
            else if (band < longBands)
                MixedBlocks(from, longBands - band, overlap, slots + band);
            else
                ShortBlocks(from, windows.shorts, overlap, slots + band);
        }
        state.overlapBands = bands;
    }

    // --- Slots to samples ----------------------------------------------------------------------------------

    // x[m] becomes the sum of x[k] cos(m (2k + 1) pi / 2N): sums of both ends are the even results; their
    // differences, divided by twice their cosine, are a transform of which neighbours add up to the odd ones.
    template <size_t N>
    [[gnu::always_inline]] static inline void Cosines(V* x) {
        constexpr size_t kHalf = N / 2;
        constexpr float kHalfSecants[32] = {0,
                                            0.7071067811865475f,  // N = 2, at N / 2
                                            0.5411961001461970f,
                                            1.3065629648763766f,  // 4
                                            0.5097955791041592f,
                                            0.6013448869350453f,
                                            0.8999762231364157f,
                                            2.5629154477415064f,  // 8
                                            0.5024192861881557f,
                                            0.5224986149396889f,
                                            0.5669440348163577f,
                                            0.6468217833599901f,  // 16
                                            0.7881546234512502f,
                                            1.0606776859903474f,
                                            1.7224470982383342f,
                                            5.1011486186891641f,
                                            0.5006029982351963f,
                                            0.5054709598975436f,
                                            0.5154473099226245f,
                                            0.5310425910897841f,  // 32
                                            0.5531038960344445f,
                                            0.5829349682061339f,
                                            0.6225041230356648f,
                                            0.6748083414550057f,
                                            0.7445362710022984f,
                                            0.8393496454155270f,
                                            0.9725682378619607f,
                                            1.1694399334328847f,
                                            1.4841646163141661f,
                                            2.0577810099534115f,
                                            3.4076084184687190f,
                                            10.190008123548033f};
        V sums[kHalf], differences[kHalf];
        for (size_t k = 0; k < kHalf; ++k) {
            sums[k] = x[k] + x[N - 1 - k];
            differences[k] = (x[k] - x[N - 1 - k]) * kHalfSecants[kHalf + k];
        }
        if constexpr (N > 2) {
            Cosines<kHalf>(sums);
            Cosines<kHalf>(differences);
        }
        for (size_t m = 0; m < kHalf; ++m) {
            x[2 * m] = sums[m];
            x[2 * m + 1] = m + 1 < kHalf ? differences[m] + differences[m + 1] : differences[m];
        }
    }

    // The transform of kLanes slots, into as many places of the history.
    static void TransformSlots(const float* slots, float* const* places) {
        V x[32];
        L::template LoadColumns<32>(slots, kMP3Bands, x);
        Cosines<32>(x);
        for (size_t i = 0; i < 16; i += kLanes) {
            L::StoreColumns(x + 16 + i, places, i);
            V down[kLanes];
            for (size_t k = 0; k < kLanes; ++k) down[k] = x[16 - i - k];
            L::StoreColumns(down, places, 16 + i);
            if (i > 0) continue;
            down[0] = x[0];
            L::StoreColumns(down, places, 32);
        }
    }

    // 32 samples of each channel, from a slot and the 15 before it.
    template <size_t kChannels>
    static void Filter(const float* const* slots, int32_t* samples) {
        for (size_t group = 0; group < 16 / kLanes; ++group) {
            V forward[kChannels], mirrored[kChannels];
            const size_t i0 = group * kLanes, mirrorPlace = group == 0 ? 32 : 16 + i0;
            for (size_t c = 0; c < kChannels; ++c) {
                const float* slot = slots[c];
                V f = {}, m = {};
#pragma GCC unroll 8
                for (size_t i = 0; i < 8; ++i, slot -= 2 * kMP3SlotFloats) {
                    const V* taps = s_synthesis[group][i];
                    const V even = L::Load(slot + i0);
                    const V odd = L::Load(slot - kMP3SlotFloats + 16 + i0);
                    const V oddMirrored = group == 0 ? L::Load(slot - kMP3SlotFloats + mirrorPlace) : odd;
                    f = f + (even * taps[0] + odd * taps[1]);
                    m = m + (even * taps[2] + oddMirrored * taps[3]);
                }
                forward[c] = f;
                mirrored[c] = m;
            }
            L::template Output<kChannels>(forward, mirrored, i0, samples);
        }
    }

    static void Synthesise(float* slots, MP3ChannelState* states, size_t channels, int32_t* samples) {
        constexpr size_t kPast = kMP3PastSlots * kMP3SlotFloats;
        float unused[kMP3SlotFloats];
        for (size_t row = 0; row < channels * kMP3Slots; row += kLanes) {
            float* places[kLanes];
            for (size_t lane = 0; lane < kLanes; ++lane) {
                const size_t c = (row + lane) / kMP3Slots, slot = (row + lane) % kMP3Slots;
                places[lane] = c < channels ? states[c].history + kPast + slot * kMP3SlotFloats : unused;
            }
            TransformSlots(slots + row * kMP3Bands, places);
        }
        for (size_t slot = 0; slot < kMP3Slots; ++slot, samples += 32 * channels) {
            const size_t at = kPast + slot * kMP3SlotFloats;
            const float* now[2] = {states[0].history + at, states[channels - 1].history + at};
            if (channels == 2)
                Filter<2>(now, samples);
            else
                Filter<1>(now, samples);
        }
        for (size_t c = 0; c < channels; ++c)
            for (size_t i = 0; i < kPast; ++i)
                states[c].history[i] = states[c].history[kMP3Slots * kMP3SlotFloats + i];
    }

public:
    static constexpr MP3Kernels kKernels = {Prepare, MidSide, ReduceAlias, Transform, Synthesise};
};
