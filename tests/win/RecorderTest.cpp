#include <cstdlib>

#include "audio/device/LSoundRecorder_win.h"
#include "base/LTime.h"
#include "tests/unit/audio/AudioTest.h"

// Records the silence of the platform's real default wave-in device.

static constexpr int32_t kRate = 8000;
static constexpr uint32_t kDeadlineMs = 15000;
static constexpr int8_t kAnyLevel = -128;

namespace {

// What the recorder tells its owner, as one word each.
struct Notes final : LSoundRecorderNotify {
    void OnRecording() override { words += "recording "; }
    void OnWaiting() override { words += "waiting "; }
    void OnStopped(int32_t value) override { words += "stopped" + std::to_string(value) + " "; }
    void OnTime(int32_t) override {}
    void OnLevel() override {}

    std::string words;
};

}  // namespace

TEST(Recorder, EndsByItselfAtTheMaximumTimeAndWhenTheDiskIsFull) {
    // The test machine has a device, so that no test passes there by being skipped.
    if (waveInGetNumDevs() == 0) {
        if (std::getenv("RIG")) FAIL() << "needs a wave-in device";
        GTEST_SKIP() << "needs a wave-in device";
    }
    Notes notes;
    LSoundRecorder recorder(notes, 77);
    recorder.SetDevice(99);  // there is none: the default one records
    Samples taken;
    static const struct {
        int32_t maximumMs, diskHolds;
        LSoundRecorder::Ending ending;
    } kCases[] = {{400, INT32_MAX, LSoundRecorder::Ending::MaxTime},
                  {0, 2000, LSoundRecorder::Ending::WriteError}};
    for (const auto& c : kCases) {
        taken.clear();
        const LSoundSink sink = LSoundSink::Make<CollectingSink>(kRate, uint8_t{1}, taken, c.diskHolds);
        ASSERT_TRUE(recorder.Start(sink, 3000, kAnyLevel, c.maximumMs, LSoundRecorder::kRecordAtOnce));
        const uint32_t start = LTickMs();
        while (recorder.IsActive() && LTickMs() - start < kDeadlineMs) {
            MSG message;
            while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        }
        EXPECT_EQ(recorder.GetEnding(), c.ending);
        EXPECT_GE(taken.size(), 2000u) << "what was heard is kept";
        EXPECT_EQ(recorder.EndMs(), static_cast<int32_t>(taken.size()) * 1000 / kRate);
    }
    EXPECT_EQ(notes.words, "recording stopped77 recording stopped77 ");
    EXPECT_FALSE(recorder.Start(LSoundSink(), 3000, kAnyLevel, 0, 0));
}
