#pragma once

#include "audio/stream/LKernels.h"

// The hot loops of LKernels, written once for vectors of 32-bit lanes. The samples that fill no whole vector
// go to the plain loops, which compute with integers alone and so agree to the bit.
// One file for each instruction set V includes this header and is compiled for V. It must call no function of
// the library here: the linker keeps one copy of an inline function for the whole program, and that copy
// might use V's instructions on a processor without them. V has
//
//   Word, kLanes                    a vector and its number of 32-bit lanes, even
//   Scope                           an object that lives while vectors are in use
//   Load, Store, LoadAligned, Zero, All8, All32, First     from and to memory and integers
//   Add, Sub, And, Or, Xor, AndNot, Left, Right, Shift (arithmetic), Equal, Greater     of 32-bit lanes
//   Low8 to High32                  interleave the low or high half of two vectors
//   Pack32, Pack16                  narrow with saturation, Pack16 to unsigned
//   MultiplyAdd                     sums of two neighbouring products of 16 bits
//   Sums, Fold                      the partial sums of the two halves of one sample
//   Gather                          those of kLanes samples, sorted by half and place
template <class V>
class LVectorKernels {
    using Word = typename V::Word;
    using Scope = typename V::Scope;
    static constexpr size_t kLanes = V::kLanes;

    static Word Larger(Word a, Word b) {
        const Word greater = V::Greater(a, b);
        return V::Or(V::And(greater, a), V::AndNot(greater, b));
    }

    static uint32_t Peak(const int32_t* samples, size_t count) {
        [[maybe_unused]] const Scope scope{};
        // Vectors compare signed, but the magnitude of -2^31 is 2^31: both sides are shifted down by 2^31.
        const Word bias = V::All32(INT32_MIN);
        Word peaks = bias;
        size_t i = 0;
        for (; i + kLanes <= count; i += kLanes) {
            const Word v = V::Load(samples + i);
            const Word sign = V::Shift(v, 31);
            const Word magnitude = V::Sub(V::Xor(v, sign), sign);
            peaks = Larger(V::Xor(magnitude, bias), peaks);
        }
        uint32_t lanes[kLanes];
        V::Store(lanes, V::Xor(peaks, bias));
        uint32_t peak = kPlainKernels.peak(samples + i, count - i);
        for (const uint32_t lane : lanes) peak = lane > peak ? lane : peak;
        return peak;
    }

    // Each PCM sample goes to the top of its 32 bits; the shift back down extends the sign.
    static void FromPcm8s(const uint8_t* pcm, int32_t* samples, size_t count) {
        [[maybe_unused]] const Scope scope{};
        const Word zero = V::Zero();
        size_t i = 0;
        for (; i + 4 * kLanes <= count; i += 4 * kLanes) {
            const Word v = V::Xor(V::Load(pcm + i), V::All8(INT8_MIN));
            const Word low = V::Low8(zero, v), high = V::High8(zero, v);
            V::Store(samples + i, V::Shift(V::Low16(zero, low), 12));
            V::Store(samples + i + kLanes, V::Shift(V::High16(zero, low), 12));
            V::Store(samples + i + 2 * kLanes, V::Shift(V::Low16(zero, high), 12));
            V::Store(samples + i + 3 * kLanes, V::Shift(V::High16(zero, high), 12));
        }
        kPlainKernels.fromPcm8(pcm + i, samples + i, count - i);
    }

    static void FromPcm16s(const uint8_t* pcm, int32_t* samples, size_t count) {
        [[maybe_unused]] const Scope scope{};
        const Word zero = V::Zero();
        size_t i = 0;
        for (; i + 2 * kLanes <= count; i += 2 * kLanes) {
            const Word v = V::Load(pcm + 2 * i);
            V::Store(samples + i, V::Shift(V::Low16(zero, v), 12));
            V::Store(samples + i + kLanes, V::Shift(V::High16(zero, v), 12));
        }
        kPlainKernels.fromPcm16(pcm + 2 * i, samples + i, count - i);
    }

    // Rounds samples to bytes, one in each lane. The values from 0x7F800 to 0x7FFFF round up to 256, whose
    // low byte is 0; the comparison takes 1 off, which gives 255 (see ToPcm8).
    static Word Bytes(Word v) {
        const Word top = V::Equal(V::Shift(v, 11), V::All32(0xFF));
        const Word rounded = V::Shift(V::Add(v, V::All32(2048)), 12);
        const Word byte = V::Add(V::Add(rounded, V::All32(128)), top);
        return V::And(byte, V::All32(0xFF));
    }

    static void ToPcm8s(const int32_t* samples, uint8_t* pcm, size_t count) {
        [[maybe_unused]] const Scope scope{};
        const auto bytes = [&](size_t at) { return Bytes(V::Load(samples + at)); };
        size_t i = 0;
        for (; i + 4 * kLanes <= count; i += 4 * kLanes) {
            const Word low = V::Pack32(bytes(i), bytes(i + kLanes));
            const Word high = V::Pack32(bytes(i + 2 * kLanes), bytes(i + 3 * kLanes));
            V::Store(pcm + i, V::Pack16(low, high));
        }
        kPlainKernels.toPcm8(samples + i, pcm + i, count - i);
    }

    // Rounds samples and wraps them to 16 bits, so that packing finds nothing to saturate.
    static Word Words(Word v) { return V::Shift(V::Left(V::Add(v, V::All32(8)), 12), 16); }

    static void ToPcm16s(const int32_t* samples, uint8_t* pcm, size_t count) {
        [[maybe_unused]] const Scope scope{};
        size_t i = 0;
        for (; i + 2 * kLanes <= count; i += 2 * kLanes)
            V::Store(pcm + 2 * i,
                     V::Pack32(Words(V::Load(samples + i)), Words(V::Load(samples + i + kLanes))));
        kPlainKernels.toPcm16(samples + i, pcm + 2 * i, count - i);
    }

    // TimesGain from multiplications of 16 bits. The high half of a value, up to 20 bits, is split once more
    // into a * 2^12 + b. With the low half c, and the gain's halves H and L, the product (a * 2^12 + b) * H +
    // (((a * 2^12 + b) * L + c * H) >> 12) is a * H * 2^12 + (b * H + a * L) + ((b * L + c * H) >> 12).
    static Word Multiply(Word v, Word gain) {
        const Word mask = V::All32(0xFFF), upper = V::All32(-0x10000);
        const Word gainHigh = V::Right(gain, 12);
        const Word gains = V::Or(gainHigh, V::Left(V::And(gain, mask), 16));
        const Word a = V::And(V::Shift(v, 8), upper);
        const Word b = V::And(V::Right(v, 12), mask);
        const Word c = V::And(v, mask);
        const Word ab = V::MultiplyAdd(V::Or(b, a), gains);
        const Word bc = V::MultiplyAdd(V::Or(c, V::Left(b, 16)), gains);
        const Word aHigh = V::MultiplyAdd(V::Right(a, 16), gainHigh);
        return V::Add(V::Add(V::Left(aHigh, 12), ab), V::Right(bc, 12));
    }

    // kChannels is 1 or 2: a vector holds kLanes frames, or half as many.
    template <size_t kChannels>
    static void RampOf(const LGainRamp& ramp, const int32_t* in, int32_t* out, size_t frames) {
        [[maybe_unused]] const Scope scope{};
        constexpr size_t kFrames = kLanes / kChannels;
        int32_t gains[kLanes];
        for (size_t lane = 0; lane < kLanes; ++lane)
            gains[lane] = ramp.gain + ramp.step * static_cast<int32_t>(lane / kChannels);
        const Word lowest = V::All32(ramp.lowest);
        const Word step = V::All32(ramp.step * static_cast<int32_t>(kFrames));
        Word gain = V::Load(gains);
        size_t i = 0;
        for (; i + kFrames <= frames; i += kFrames) {
            V::Store(out + i * kChannels, Larger(Multiply(V::Load(in + i * kChannels), gain), lowest));
            gain = V::Add(gain, step);
        }
        const LGainRamp rest = {V::First(gain), ramp.step, ramp.lowest};
        kPlainKernels.ramp(rest, in + i * kChannels, out + i * kChannels, frames - i, kChannels);
    }

    static void Ramp(const LGainRamp& ramp, const int32_t* in, int32_t* out, size_t frames, size_t channels) {
        if (channels == 1) return RampOf<1>(ramp, in, out, frames);
        if (channels == 2) return RampOf<2>(ramp, in, out, frames);
        kPlainKernels.ramp(ramp, in, out, frames, channels);
    }

    static void Narrow(const int32_t* samples, int16_t* narrowed, size_t count) {
        [[maybe_unused]] const Scope scope{};
        // ((v >> 3) + 1) >> 1 is (v + 8) >> 4 without overflow.
        const auto rounded = [&](size_t at) {
            return V::Shift(V::Add(V::Shift(V::Load(samples + at), 3), V::All32(1)), 1);
        };
        size_t i = 0;
        for (; i + 2 * kLanes <= count; i += 2 * kLanes)
            V::Store(narrowed + i, V::Pack32(rounded(i), rounded(i + kLanes)));
        kPlainKernels.narrow(samples + i, narrowed + i, count - i);
    }

    // The partial sums of one sample: two for each half, of which none exceeds 32 bits for any input.
    template <size_t kHalf>
    static typename V::Sums SumHalves(const int16_t* history, const int16_t* row) {
        const auto product = [](const int16_t* samples, const int16_t* coefficients) {
            return V::MultiplyAdd(V::Load(samples), V::LoadAligned(coefficients));
        };
        Word first = product(history + 1, row), second = product(history + kHalf - 1, row + kHalf);
#pragma GCC unroll 8
        for (size_t i = 2 * kLanes; i < kHalf; i += 2 * kLanes) {
            first = V::Add(first, product(history + 1 + i, row + i));
            second = V::Add(second, product(history + kHalf - 1 + i, row + kHalf + i));
        }
        return V::Fold(first, second);
    }

    // (a + b) >> 1, without forming a + b, which may exceed 32 bits.
    static Word Halved(Word a, Word b) {
        return V::Add(V::And(a, b), V::Shift(V::Xor(a, b), 1));
    }

    // (a + b + 1024) >> 11, without forming a + b. The bit that halving drops is below a step of the result.
    // There is room for the 512: the magnitudes of a row sum to at most 2.41 times 65536, and only four times
    // would fill the 32 bits.
    static Word Rounded(Word a, Word b) {
        return V::Shift(V::Add(Halved(a, b), V::All32(512)), 10);
    }

    template <size_t kHalf>
    static void InterpolateBy(const LSincRows& rows, uint32_t phase, const int16_t* history, int32_t* out,
                              size_t count, size_t stride) {
        [[maybe_unused]] const Scope scope{};
        const uint32_t whole = rows.step / rows.phases, part = rows.step % rows.phases;
        size_t at = 0;
        const auto next = [&] {
            const typename V::Sums sums =
                SumHalves<kHalf>(history + at, rows.rows + size_t{phase} * (2 * kHalf));
            phase += part;
            // Arithmetic in place of a branch, which the processor would often predict wrongly.
            const uint32_t less = phase - rows.phases, carries = (less >> 31) ^ 1;
            at += whole + carries;
            phase = less + (rows.phases & (carries - 1));
            return sums;
        };
        for (; count >= kLanes; count -= kLanes, out += kLanes * stride) {
            const typename V::Places p = V::Gather(next);
            const Word samples = Rounded(Halved(p.firstEven, p.firstOdd), Halved(p.secondEven, p.secondOdd));
            if (stride == 1) {
                V::Store(out, samples);
            } else {
                int32_t lanes[kLanes];
                V::Store(lanes, samples);
                for (size_t i = 0; i < kLanes; ++i) out[i * stride] = lanes[i];
            }
        }
        if (count > 0) kPlainKernels.interpolate(rows, phase, history + at, out, count, stride);
    }

    static void Interpolate(const LSincRows& rows, uint32_t phase, const int16_t* history, int32_t* out,
                            size_t count, size_t stride) {
        if (rows.half == 32)
            InterpolateBy<32>(rows, phase, history, out, count, stride);
        else
            InterpolateBy<8>(rows, phase, history, out, count, stride);
    }

public:
    static constexpr LKernels kKernels = {Peak,     FromPcm8s, FromPcm16s, ToPcm8s,
                                          ToPcm16s, Ramp,      Narrow,     Interpolate};
};
