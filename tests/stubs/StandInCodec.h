#pragma once

#include "audio/wave/LAcm.h"

// A codec that does not exist, for tests of what files do through one: simple enough to predict, and it
// misbehaves as it is told. Between 16-bit PCM and any other tag. A block is a byte that counts groups, then
// one byte per group of samples, their first one's upper half; how many samples a group has follows from the
// block's frames: 320 of GSM 6.10, those that the platform's codec computes of MS ADPCM, else 8. As that one
// does it divides by what it computes, and fills as many frames of a block as the record says.
struct StandInCodec {
    static constexpr uint16_t kTag = 0x7F01;
    static constexpr uint16_t kMsAdpcm = 2;
    static constexpr uint16_t kGsm610 = 0x31;
    static constexpr int32_t kBlockFrames = 8;

    enum class Fault {
        None,
        NoCodec,
        OnlyNonRealTime,
        NoHandle,
        NoSize,
        AbsurdSize,
        NoPrepare,
        Fails,
        YieldsNothing,
        YieldsAndConsumesNothing,
        ConsumesNothing,  // and yields as if it had, again and again
        ConsumesTooMuch,  // says so
        YieldsTooMuch,    // says so
        OneBlockAtATime,
        HoldsBackABlock,      // until the end flag
        LeavesPartialBlocks,  // also at the end
        TakesOddBytes,        // one, and then nothing
        TakesAllAtOnce,       // when decoding, and gives it out buffer by buffer
        RefusesNothing,       // a conversion without input fails
        OddBytes,             // yields half a sample more than whole frames
    };
    static constexpr int kFaults = static_cast<int>(Fault::OddBytes) + 1;
    static inline Fault fault = Fault::None;
    static inline int failAfter = 0;  // conversions until the fault shows
    static inline int conversions = 0;
    static inline int restarts = 0;

    // An LAcmOpener.
    static bool Open(const LWaveFileFormat& from, const LWaveFileFormat& to, LAcmTiming timing,
                     std::unique_ptr<LAcmConversion>& conversion);
    // A format of its own: extra bytes 1, 2, 3.
    static LWaveFileFormat Format(uint16_t channels = 1, uint32_t sampleRate = 8000);
};
