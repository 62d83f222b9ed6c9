#include "audio/device/LWaveRing_win.h"
#include "base/LTime.h"
#include "tests/unit/TestKit.h"

// A device whose answers the test chooses; the second buffer is the one that it does not give back.
static MMRESULT g_answer;
static WAVEHDR* g_first;

static const LWaveRing::Device kDevice = {
    .prepare = [](void*, WAVEHDR& header) -> MMRESULT {
        header.dwFlags |= WHDR_PREPARED;
        return MMSYSERR_NOERROR;
    },
    .unprepare = [](void*, WAVEHDR& header) -> MMRESULT {
        return &header == g_first + 1 ? g_answer : MMSYSERR_NOERROR;
    },
    .allocFailed = "alloc",
    .lockFailed = "lock",
    .prepareFailed = "prepare",
    .unprepareWaits = "waits",
    .unprepareFailed = "failed",
};

TEST(WaveRing, FreesItsMemoryOnlyWhenTheDeviceHasGivenItBack) {
    static const std::tuple<MMRESULT, bool, uint32_t> kCases[] = {
        {MMSYSERR_NOERROR, true, 0}, {MMSYSERR_NODRIVER, false, 0}, {WAVERR_STILLPLAYING, false, 500}};
    for (const auto& [answer, isFreed, waitsMs] : kCases) {
        TraceLog log;
        LWaveRing ring(kDevice);
        ASSERT_TRUE(ring.Create(nullptr, 3, 100));
        g_first = &ring[0];
        g_answer = answer;
        const HGLOBAL memory = GlobalHandle(g_first);
        const uint32_t start = LTickMs();
        ring.Release(nullptr);
        EXPECT_GE(LTickMs() - start, waitsMs);
        EXPECT_LT(LTickMs() - start, waitsMs + 1000);
        EXPECT_EQ(GlobalSize(memory) == 0, isFreed) << answer;
        EXPECT_EQ(log.Has("failed"), !isFreed);
        EXPECT_FALSE(ring);
    }
}
