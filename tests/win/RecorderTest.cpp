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
    ASSERT_GT(waveInGetNumDevs(), 0u) << "runs on the rig";
    Notes notes;
    LSoundRecorder recorder(notes, 77);
    recorder.SetDevice(99);  // there is none: the default one records
    Samples taken;
    static const std::tuple<int32_t, int32_t, LSoundRecorder::Ending> kCases[] = {
        {400, INT32_MAX, LSoundRecorder::Ending::MaxTime}, {0, 2000, LSoundRecorder::Ending::WriteError}};
    for (const auto& [maximumMs, diskHolds, ending] : kCases) {
        taken.clear();
        const LSoundSink sink = LSoundSink::Make<CollectingSink>(kRate, uint8_t{1}, taken, diskHolds);
        ASSERT_TRUE(recorder.Start(sink, 3000, kAnyLevel, maximumMs, LSoundRecorder::kRecordAtOnce));
        const uint32_t start = LTickMs();
        while (recorder.IsActive() && LTickMs() - start < kDeadlineMs) {
            MSG message;
            while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        }
        EXPECT_EQ(recorder.GetEnding(), ending);
        EXPECT_GE(taken.size(), 2000u) << "what was heard is kept";
        EXPECT_EQ(recorder.EndMs(), static_cast<int32_t>(taken.size()) * 1000 / kRate);
    }
    EXPECT_EQ(notes.words, "recording stopped77 recording stopped77 ");
    EXPECT_FALSE(recorder.Start(LSoundSink(), 3000, kAnyLevel, 0, 0));
}
