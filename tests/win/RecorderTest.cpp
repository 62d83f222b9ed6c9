#include <cstdlib>

#include "audio/device/LSoundRecorder_win.h"
#include "audio/wave/LDeferredSink.h"
#include "audio/wave/LWaveFile.h"
#include "base/LTime.h"
#include "tests/unit/audio/AudioTest.h"

// These tests record the silence of the platform's real default wave-in device.

static constexpr int32_t kRate = 8000;
static constexpr uint32_t kDeadlineMs = 15000;
static constexpr int8_t kAnyLevel = -128;

namespace {

// What the recorder tells its owner, as one word each.
struct Notes final : LSoundRecorderNotify {
    void OnRecording() override { words += "recording "; }
    void OnWaiting() override { words += "waiting "; }
    void OnStopped(int32_t value) override { words += "stopped" + std::to_string(value) + " "; }
    void OnTime(int32_t milliseconds) override { lastTime = milliseconds; }
    void OnLevel() override { ++levels; }

    std::string words;
    int32_t lastTime = 0;
    int levels = 0;
};

class RecorderTest : public testing::Test {
protected:
    // The test machine has one, so that no test passes there by being skipped.
    void SetUp() override {
        if (waveInGetNumDevs() > 0) return;
        if (std::getenv("RIG")) FAIL() << "needs a wave-in device";
        GTEST_SKIP() << "needs a wave-in device";
    }
    LSoundSink OpenSink(int32_t startFrames = 0) const {
        return LDeferredSink::Open(m_path, startFrames, 16, 1, kRate);
    }
    // Dispatches messages until the condition holds; false after the deadline.
    template <class Condition>
    static bool PumpUntil(Condition condition) {
        const uint32_t start = LTickMs();
        while (!condition()) {
            MSG message;
            while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
            if (LTickMs() - start > kDeadlineMs) return false;
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        }
        return true;
    }

    TempFolder m_folder;
    const LPath m_path = m_folder.File("dictation.wav");
    Notes m_notes;
    LSoundRecorder m_recorder{m_notes, 77};
};

}  // namespace

TEST_F(RecorderTest, SilenceLeavesTheOldRecordingAlone) {
    const Bytes old = Wave16(Bytes(2 * kRate, 1));
    LFile(m_path, LFile::Open::CreateNew).WriteAll(old);
    // Above full scale: nothing is loud enough.
    ASSERT_TRUE(m_recorder.Start(OpenSink(kRate / 2), 3000, 13, 0, 0));
    EXPECT_EQ(m_notes.lastTime, 500) << "the clock goes on where the recording continues";
    ASSERT_TRUE(PumpUntil([&] { return m_notes.levels > 3; }));
    m_recorder.Stop();
    EXPECT_EQ(m_notes.words, "waiting stopped77 ");
    EXPECT_EQ(Text(ReadFileText(m_path)), old);
}

TEST_F(RecorderTest, ArmedItWaitsForRestartOnTheDefaultDeviceAndEndsWithItsOwner) {
    Notes notes;
    {
        LSoundRecorder recorder(notes, 5);
        recorder.SetDevice(99);  // there is none
        ASSERT_TRUE(recorder.Start(OpenSink(), 3000, kAnyLevel, 0,
                                   LSoundRecorder::kRecordAtOnce | LSoundRecorder::kArmOnly));
        ASSERT_TRUE(PumpUntil([start = LTickMs()] { return LTickMs() - start > 500; }));
        EXPECT_EQ(notes.levels, 0);
        EXPECT_TRUE(recorder.Restart());
        ASSERT_TRUE(PumpUntil([&] { return notes.lastTime >= 300; }));
    }
    EXPECT_EQ(notes.words, "recording stopped5 ");
    EXPECT_GE(LWaveFile::OpenSource(m_path)->GetLength(), kRate * 3 / 10);
}

TEST_F(RecorderTest, EndsByItselfAtTheMaximumTimeAndWhenTheDiskIsFull) {
    Samples taken;
    const LSoundSink full = LSoundSink::Make<CollectingSink>(kRate, uint8_t{1}, taken, 2000);
    ASSERT_TRUE(m_recorder.Start(OpenSink(), 3000, kAnyLevel, 400, LSoundRecorder::kRecordAtOnce));
    ASSERT_TRUE(PumpUntil([&] { return !m_recorder.IsActive(); }));
    EXPECT_EQ(m_recorder.GetEnding(), LSoundRecorder::Ending::MaxTime);
    EXPECT_GT(m_recorder.EndMs(), 400);

    ASSERT_TRUE(m_recorder.Start(full, 3000, kAnyLevel, 0, LSoundRecorder::kRecordAtOnce));
    ASSERT_TRUE(PumpUntil([&] { return !m_recorder.IsActive(); }));
    EXPECT_EQ(m_recorder.GetEnding(), LSoundRecorder::Ending::WriteError);
    EXPECT_EQ(m_recorder.EndMs(), 250);
    EXPECT_EQ(m_notes.words, "recording stopped77 recording stopped77 ");

    EXPECT_FALSE(m_recorder.Start(LSoundSink(), 3000, kAnyLevel, 0, 0));
    EXPECT_FALSE(m_recorder.IsActive() || m_recorder.Restart());
}
