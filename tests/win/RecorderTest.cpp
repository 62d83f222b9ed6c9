#include <cmath>
#include <cstdlib>

#include "audio/device/LSoundRecorder_win.h"
#include "audio/stream/LSoundTime.h"
#include "audio/wave/LDeferredSink.h"
#include "audio/wave/LWaveFile.h"
#include "base/LTime.h"
#include "tests/unit/audio/AudioTest.h"

// These tests record from the platform's real default wave-in device. Where the machine has a wave-out device
// that is heard by that microphone (named "Microphone", as on a virtual sound card), they also speak into it.

using State = VoiceGate::State;

static constexpr int32_t kRate = 8000;
static constexpr uint32_t kDeadlineMs = 15000;
static constexpr int32_t kAnyLevel = -128;

namespace {

// Plays tones where the microphone hears them.
class Speaker {
public:
    bool Open() {
        WAVEFORMATEX format = {WAVE_FORMAT_PCM, 1, kRate, kRate * 2, 2, 16, 0};
        for (UINT i = 0; i < waveOutGetNumDevs(); ++i) {
            WAVEOUTCAPSA caps = {};
            if (waveOutGetDevCapsA(i, &caps, sizeof caps) == MMSYSERR_NOERROR &&
                std::string_view(caps.szPname) == "Microphone")
                return waveOutOpen(&m_device, i, &format, 0, 0, CALLBACK_NULL) == MMSYSERR_NOERROR;
        }
        return false;
    }
    ~Speaker() {
        if (!m_device) return;
        waveOutReset(m_device);
        waveOutUnprepareHeader(m_device, &m_header, sizeof m_header);
        waveOutClose(m_device);
    }
    void Say(int32_t milliseconds) {
        m_tone.resize(static_cast<size_t>(milliseconds * kRate / 1000));
        for (size_t i = 0; i < m_tone.size(); ++i)
            m_tone[i] = static_cast<int16_t>(16000 * std::sin(static_cast<double>(i) * 0.3455752));  // 440 Hz
        waveOutUnprepareHeader(m_device, &m_header, sizeof m_header);
        m_header = {};
        m_header.lpData = reinterpret_cast<char*>(m_tone.data());
        m_header.dwBufferLength = static_cast<DWORD>(m_tone.size() * 2);
        waveOutPrepareHeader(m_device, &m_header, sizeof m_header);
        waveOutWrite(m_device, &m_header, sizeof m_header);
    }

private:
    HWAVEOUT m_device = nullptr;
    WAVEHDR m_header = {};
    std::vector<int16_t> m_tone;
};

// What the recorder tells its owner, as one word each.
struct Notes final : LSoundRecorderNotify {
    void OnRecording() override { words += "recording "; }
    void OnWaiting() override { words += "waiting "; }
    void OnStopped(int32_t value) override { words += "stopped" + std::to_string(value) + " "; }
    void OnTime(int32_t milliseconds) override {
        backwards |= std::exchange(lastTime, milliseconds) > milliseconds;
    }
    void OnLevel() override { ++levels; }

    std::string words;
    int32_t lastTime = 0;
    int levels = 0;
    bool backwards = false;
};

class RecorderTest : public testing::Test {
protected:
    void SetUp() override { Need(waveInGetNumDevs() > 0, "a wave-in device"); }
    // The test machine has what these tests need, so that none of them passes there by being skipped.
    static void Need(bool isThere, const char* what) {
        if (isThere) return;
        if (std::getenv("RIG")) FAIL() << "needs " << what;
        GTEST_SKIP() << "needs " << what;
    }

    LSoundSink OpenSink(int32_t startFrames = 0) {
        return LDeferredSink::Open(m_path, startFrames, 16, 1, kRate);
    }
    bool Record(int32_t thresholdDb, int32_t hangTimeMs, uint32_t flags, int32_t maxTimeMs = 0) {
        return m_recorder.Start(OpenSink(), hangTimeMs, static_cast<int8_t>(thresholdDb), maxTimeMs, flags);
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
    bool PumpUntilTime(int32_t milliseconds) {
        return PumpUntil([&] { return m_notes.lastTime >= milliseconds; });
    }

    // Where in the recording the tone begins and ends, and how long the recording is.
    struct Heard {
        int32_t firstMs = -1, lastMs = -1, lengthMs = 0;
        int32_t ToneMs() const { return lastMs - firstMs; }
    };
    Heard Listen() const {
        LSoundSource source = LWaveFile::OpenSource(m_path);
        EXPECT_FALSE(source->IsError());
        Heard heard;
        heard.lengthMs = FramesToMs(source->GetLength(), kRate);
        int32_t sample = 0;
        while (source->GetPosition() < source->GetLength()) {
            source->Read(&sample, 1);
            if (std::abs(sample) < FromPcm16(2000)) continue;
            heard.lastMs = FramesToMs(source->GetPosition(), kRate);
            if (heard.firstMs < 0) heard.firstMs = heard.lastMs;
        }
        return heard;
    }

    TraceLog m_log;
    TempFolder m_folder;
    const LPath m_path = m_folder.File("dictation.wav");
    Notes m_notes;
    LSoundRecorder m_recorder{m_notes, 77};
};

class SpokenRecorderTest : public RecorderTest {
protected:
    void SetUp() override { Need(m_speaker.Open(), "a wave-out device that the microphone hears"); }

    Speaker m_speaker;
};

}  // namespace

TEST_F(SpokenRecorderTest, RecordsEverythingWithoutVoiceActivation) {
    ASSERT_TRUE(Record(kAnyLevel, 3000, LSoundRecorder::kRecordAtOnce));
    ASSERT_TRUE(PumpUntilTime(200));
    m_speaker.Say(1000);
    ASSERT_TRUE(PumpUntil([&] { return m_recorder.LevelDb(0) > 0; }));
    ASSERT_TRUE(PumpUntil([&] { return m_recorder.LevelDb(0) < -60; })) << "silence after the tone";
    m_recorder.Stop();

    EXPECT_EQ(m_notes.words, "recording stopped77 ");
    EXPECT_FALSE(m_notes.backwards);
    EXPECT_EQ(m_recorder.GetEnding(), LSoundRecorder::Ending::Stopped);
    EXPECT_EQ(m_recorder.GetState(), State::Stopped);
    const Heard heard = Listen();
    EXPECT_EQ(m_recorder.EndMs(), heard.lengthMs);
    EXPECT_GT(heard.firstMs, 200);
    EXPECT_NEAR(heard.ToneMs(), 1000, 20);
    EXPECT_GT(heard.lengthMs, heard.lastMs + 50);
}

TEST_F(SpokenRecorderTest, VoiceActivationKeepsTheWordsAndNotThePauses) {
    ASSERT_TRUE(Record(-20, 600, 0));
    std::string heardSoFar = "waiting ";
    for (int word = 0; word < 2; ++word) {
        ASSERT_TRUE(PumpUntil([&, seen = m_notes.levels] { return m_notes.levels > seen + 4; }));
        EXPECT_EQ(m_notes.words, heardSoFar);
        m_speaker.Say(700);
        heardSoFar += "recording waiting ";
        ASSERT_TRUE(PumpUntil([&] { return m_notes.words == heardSoFar; })) << m_notes.words;
    }
    m_recorder.Stop();
    EXPECT_EQ(m_notes.words, heardSoFar + "stopped77 ");
    const Heard heard = Listen();
    EXPECT_GT(heard.firstMs, 0) << "the onset is there";
    EXPECT_LE(heard.firstMs, 100);
    // Two words, the rest of at most 450 ms after the first, and what blocks of 100 ms add around them.
    EXPECT_NEAR(heard.ToneMs(), 700 + 450 + 100 + 700, 120);
    EXPECT_GE(heard.lengthMs, heard.lastMs + 50);
    EXPECT_LE(heard.lengthMs, heard.lastMs + 150);
}

TEST_F(SpokenRecorderTest, StopDoesNotClipWhatIsBeingSpoken) {
    ASSERT_TRUE(Record(-20, 3000, 0));
    ASSERT_TRUE(PumpUntil([&] { return m_notes.levels > 3; }));
    m_speaker.Say(10000);
    ASSERT_TRUE(PumpUntil([&] { return m_recorder.GetState() == State::Recording; }));
    const uint32_t start = LTickMs();
    const int32_t before = m_recorder.LastLoudMs();
    ASSERT_TRUE(PumpUntilTime(before + 730));
    const int32_t spokenMs = static_cast<int32_t>(LTickMs() - start);
    const int32_t taken = m_notes.lastTime;
    m_recorder.Stop();
    EXPECT_LT(LTickMs() - start - static_cast<uint32_t>(spokenMs), 400u) << "the window waits for this";
    const Heard heard = Listen();
    EXPECT_GE(heard.lastMs, heard.lengthMs - 3) << "loud to its very end";
    EXPECT_GE(heard.lengthMs, before + spokenMs - 20);
    EXPECT_GE(heard.lengthMs, taken + 50) << "with the block that was being filled";
}

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
    EXPECT_GE(Listen().lengthMs, 300);
}

TEST_F(RecorderTest, EndsByItselfAtTheMaximumTimeAndWhenTheDiskIsFull) {
    ASSERT_TRUE(Record(kAnyLevel, 3000, LSoundRecorder::kRecordAtOnce, 400));
    ASSERT_TRUE(PumpUntil([&] { return !m_recorder.IsActive(); }));
    EXPECT_EQ(m_recorder.GetEnding(), LSoundRecorder::Ending::MaxTime);
    EXPECT_GT(m_recorder.EndMs(), 400);

    Samples taken;
    ASSERT_TRUE(m_recorder.Start(LSoundSink::Make<CollectingSink>(kRate, uint8_t{1}, taken, 2000), 3000,
                                 kAnyLevel, 0, LSoundRecorder::kRecordAtOnce));
    ASSERT_TRUE(PumpUntil([&] { return !m_recorder.IsActive(); }));
    EXPECT_EQ(m_recorder.GetEnding(), LSoundRecorder::Ending::WriteError);
    EXPECT_EQ(m_recorder.EndMs(), 250);
    EXPECT_EQ(taken.size(), 2000u);
    EXPECT_EQ(m_notes.words, "recording stopped77 recording stopped77 ");
}

TEST_F(RecorderTest, RefusesWhatItCannotRecordTo) {
    Samples taken;
    EXPECT_FALSE(m_recorder.Start(LSoundSink(), 3000, -20, 0, 0));
    EXPECT_FALSE(
        m_recorder.Start(LSoundSink::Make<CollectingSink>(kRate, uint8_t{0}, taken), 3000, -20, 0, 0));
    EXPECT_TRUE(m_log.Has("LSoundRecorder::Start Sink Error"));
    EXPECT_FALSE(m_recorder.IsActive() || m_recorder.Restart());
    EXPECT_EQ(m_notes.words, "");
}

static LRESULT CALLBACK RefuseWindow(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

TEST(RecorderWithoutWindow, RefusesToStart) {
    WNDCLASSA refuses = {};
    refuses.lpfnWndProc = RefuseWindow;
    refuses.hInstance = GetModuleHandleA(nullptr);
    refuses.lpszClassName = "LWSoundRecorder";
    UnregisterClassA(refuses.lpszClassName, refuses.hInstance);
    ASSERT_NE(RegisterClassA(&refuses), 0);
    TraceLog log;
    Notes notes;
    Samples taken;
    LSoundRecorder recorder(notes);
    UnregisterClassA(refuses.lpszClassName, refuses.hInstance);
    EXPECT_FALSE(recorder.Start(LSoundSink::Make<CollectingSink>(kRate, uint8_t{1}, taken), 3000, -20, 0, 0));
    EXPECT_TRUE(log.Has("LSoundRecorder::Start Window Not Created Error"));
}

TEST(RecorderWithoutDevice, SaysThatItDidNotStart) {
    if (waveInGetNumDevs() != 0) GTEST_SKIP() << "this machine has a wave-in device";
    TraceLog log;
    Notes notes;
    Samples taken;
    LSoundRecorder recorder(notes);
    EXPECT_FALSE(recorder.Start(LSoundSink::Make<CollectingSink>(kRate, uint8_t{1}, taken), 3000, -20, 0, 0));
    EXPECT_TRUE(log.Has("LSoundRecorder::ThreadFunction waveInOpen Error"));
    EXPECT_EQ(notes.words, "");
}
