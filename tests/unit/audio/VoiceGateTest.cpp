#include "audio/VoiceGate.h"

#include "tests/unit/audio/AudioTest.h"

using State = VoiceGate::State;

static constexpr int32_t kRate = 8000;
static constexpr int32_t kBlock = 800;  // 100 ms
// With a start level of -20 dB: starts a recording; only keeps it going; is silence.
static constexpr int32_t kLoud = 131072;
static constexpr int32_t kSoft = 9000;
static constexpr int32_t kQuiet = 100;

namespace {

// A gate between a microphone that the test speaks into and a sink that it looks at. Every block is one value
// throughout, the level plus the block's number, so that each written frame tells where it came from.
class GateTest : public testing::Test {
protected:
    void Start(VoiceGate::Settings settings, int32_t existingFrames = 0, int32_t diskHolds = INT32_MAX) {
        LSoundSink sink = LSoundSink::Make<CollectingSink>(kRate, uint8_t{1}, m_written, diskHolds);
        static_cast<CollectingSink&>(*sink).StartAt(existingFrames);
        m_gate.Start(sink, settings);
    }

    void Speak(int32_t level, int blocks = 1) {
        for (int i = 0; i < blocks; ++i) m_gate.Take(Samples(kBlock, level + m_next++));
    }
    // Two halves of a block at different levels.
    void SpeakHalves(int32_t first, int32_t second) {
        Samples block(kBlock, first + m_next);
        std::fill(block.begin() + kBlock / 2, block.end(), second + m_next++);
        m_gate.Take(block);
    }
    void SpeakLate(int32_t level, int32_t frames = kBlock) {
        m_gate.TakeLate(Samples(static_cast<size_t>(frames), level + m_next++));
    }

    // The written material as "value x frames" runs.
    std::string Written() const {
        std::string text;
        for (size_t i = 0, run = 0; i < m_written.size(); i += run) {
            for (run = 0; i + run < m_written.size() && m_written[i + run] == m_written[i];) ++run;
            text += (text.empty() ? "" : " ") + std::to_string(m_written[i]) + "x" + std::to_string(run);
        }
        return text;
    }
    int32_t WrittenMs() const { return static_cast<int32_t>(m_written.size()) / 8; }

    TraceLog m_log;
    Samples m_written;
    VoiceGate m_gate;
    int32_t m_next = 0;
};

constexpr VoiceGate::Settings kVoice = {-20, 3000, 0, false};

}  // namespace

TEST(Decibel, RoundsToTheNearestStepOfItsScale) {
    static const struct {
        uint32_t peak;
        int db;
    } kCases[] = {
        {0, -127},    {1, -102},   {131072, 0}, {524288, 12}, {13107, -20},      {12373, -21},
        {12374, -20}, {147068, 1}, {138839, 1}, {138838, 0},  {0x80000000u, 84},
    };
    for (const auto& c : kCases) EXPECT_EQ(PeakToDb(c.peak), c.db) << c.peak;
    const int32_t lowest[] = {0, INT32_MIN, 0, 1};
    EXPECT_EQ(ChannelDb(lowest, 2, 1), 84);
    EXPECT_EQ(ChannelDb(lowest, 2, 0), -127);
}

TEST_F(GateTest, WaitsForAVoiceAndKeepsTheOnsetOfTheFirstWord) {
    Start(kVoice);
    Speak(kQuiet);
    Speak(kSoft);  // below the start level
    EXPECT_EQ(Written(), "");
    Speak(kLoud);
    EXPECT_EQ(Written(), "9001x400 131074x800");
    EXPECT_EQ(m_gate.GetState(), State::Recording);
    EXPECT_EQ(m_gate.LastLoudMs(), 150);
    EXPECT_EQ(m_log.All(), "LSoundRecorder::WindowProcWIMData VoiceActivatedStart WAITING->RECORDING\n");
}

TEST_F(GateTest, TakesOnlyTheBlockWhenTheSoundBeginsInsideIt) {
    Start(kVoice);
    Speak(kQuiet);
    SpeakHalves(kQuiet, kLoud);
    EXPECT_EQ(Written(), "101x400 131073x400");
}

TEST_F(GateTest, TakesOnlyTheBlockWhenItIsTheFirst) {
    Start(kVoice);
    Speak(kLoud);
    EXPECT_EQ(Written(), "131072x800");
}

TEST_F(GateTest, PausesWhenTheHangTimeHasPassedAndCutsTheSilence) {
    Start(kVoice);
    Speak(kLoud);  // 0 to 100 ms
    Speak(kQuiet, 5);
    Speak(kSoft);  // loud enough to go on, ends at 700 ms
    Speak(kQuiet, 30);
    EXPECT_EQ(m_gate.GetState(), State::Recording) << "exactly the hang time is not longer than it";
    EXPECT_EQ(WrittenMs(), 3700);
    Speak(kQuiet);
    EXPECT_EQ(m_gate.GetState(), State::Waiting);
    EXPECT_EQ(WrittenMs(), 700 + 450);
    EXPECT_EQ(m_gate.LastLoudMs(), 700);
    EXPECT_TRUE(m_log.Has("LSoundRecorder::ThreadFunction VoiceActivatedStop RECORDING->WAITING"));

    Speak(kLoud);  // the pause ends: half of the block before, and the word
    EXPECT_EQ(WrittenMs(), 1150 + 50 + 100);
    EXPECT_EQ(m_gate.LastLoudMs(), 1300);
}

TEST_F(GateTest, NeverWritesABlockTwiceAroundAShortPause) {
    Start({-20, 100, 0, false});
    Speak(kLoud);
    Speak(kQuiet, 2);  // more than 100 ms: pauses, but all of it lies within the rest that is kept
    EXPECT_EQ(m_gate.GetState(), State::Waiting);
    Speak(kLoud);
    EXPECT_EQ(Written(), "131072x800 101x800 102x800 131075x800");
}

TEST_F(GateTest, StopKeepsTheLastWordAndCutsTheSilenceAfterIt) {
    Start(kVoice);
    Speak(kLoud);
    Speak(kQuiet, 2);
    EXPECT_EQ(m_gate.Stop(), 150);
    EXPECT_EQ(Written(), "131072x800 101x400");
    EXPECT_EQ(m_gate.GetState(), State::Stopped);
    EXPECT_EQ(m_gate.LastLoudMs(), 0);
}

TEST_F(GateTest, StopKeepsAWordThatHasOnlyJustBegunTheRecording) {
    Start(kVoice);
    Speak(kQuiet);
    Speak(kLoud);
    EXPECT_EQ(m_gate.Stop(), 150);
    EXPECT_EQ(Written(), "100x400 131073x800");
}

TEST_F(GateTest, StopDuringAPauseKeepsAShortRest) {
    Start({-20, 1000, 0, false});
    Speak(kLoud);
    Speak(kQuiet, 11);
    ASSERT_EQ(m_gate.GetState(), State::Waiting);
    EXPECT_EQ(m_gate.Stop(), 150);
}

TEST_F(GateTest, LateBlocksAreMeasuredLikeTheOthers) {
    Start(kVoice);
    Speak(kLoud);
    Speak(kQuiet, 3);
    SpeakLate(kSoft, 123);
    SpeakLate(kLoud, kBlockFrames);
    SpeakLate(kQuiet, 700);
    EXPECT_EQ(m_gate.Stop(), 400 + 1039 + 50);
    EXPECT_EQ(Written(), "131072x800 101x800 102x800 103x800 9004x123 131077x8192 106x397");
}

TEST_F(GateTest, LateBlocksCauseNoPauseAndAreNotWrittenInOne) {
    Start({-20, 100, 0, false});
    Speak(kLoud);
    for (int i = 0; i < 5; ++i) SpeakLate(kQuiet);
    SpeakLate(kSoft);
    EXPECT_EQ(m_gate.Stop(), 700);

    m_written.clear();
    Start(kVoice);
    Speak(kQuiet);
    SpeakLate(kLoud);
    EXPECT_EQ(m_gate.Stop(), 0);
    EXPECT_EQ(Written(), "");
}

TEST_F(GateTest, LowestThresholdsRecordSilenceToTheEnd) {
    for (const VoiceGate::Settings& settings :
         {VoiceGate::Settings{-128, 100, 0, true}, {-127, 100, 0, false}}) {
        m_written.clear();
        Start(settings);
        EXPECT_EQ(m_gate.StopLevelDb(), -127);
        for (int i = 0; i < 40; ++i) m_gate.Take(Samples(kBlock, 0));
        EXPECT_EQ(m_gate.GetState(), State::Recording);
        EXPECT_EQ(m_gate.Stop(), 4000);
        EXPECT_EQ(WrittenMs(), 4000);
    }
}

TEST_F(GateTest, ContinuesTheClockOfExistingMaterial) {
    Start(kVoice, 16001);
    EXPECT_EQ(m_gate.LastLoudMs(), 2000);
    Speak(kQuiet, 50);
    EXPECT_EQ(m_gate.Stop(), 2000) << "nothing was said, nothing is cut";
    EXPECT_EQ(m_written.size(), 16001u);

    Start({-20, 3000, 2200, true}, 16000);
    Speak(kQuiet, 2);
    EXPECT_FALSE(m_gate.MaxTimeReached()) << "exactly the maximum does not exceed it";
    Speak(kQuiet);
    EXPECT_TRUE(m_gate.MaxTimeReached());
    EXPECT_TRUE(m_log.Has("LSoundRecorder::ThreadFunction Stop because MaxTime reached"));
}

TEST_F(GateTest, HearsTheLouderOfTwoChannelsAndCountsFrames) {
    Samples written;
    m_gate.Start(LSoundSink::Make<CollectingSink>(kRate, uint8_t{2}, written), kVoice);
    const auto stereo = [](int32_t left, int32_t right) {
        Samples block;
        for (int i = 0; i < 4; ++i) block.insert(block.end(), {left, right});
        return block;
    };
    m_gate.Take(stereo(1, 2));
    m_gate.Take(stereo(-3, -kLoud));
    EXPECT_EQ(written, (Samples{1, 2, 1, 2, -3, -kLoud, -3, -kLoud, -3, -kLoud, -3, -kLoud}));
    EXPECT_EQ(m_gate.LevelDb(0), PeakToDb(3));
    EXPECT_EQ(m_gate.LevelDb(1), 0);
}

TEST_F(GateTest, TellsWhenTheSinkTakesNoMore) {
    Start(kVoice, 0, 1000);
    Speak(kLoud);
    EXPECT_FALSE(m_gate.SinkFailed());
    Speak(kLoud);
    EXPECT_TRUE(m_gate.SinkFailed());
    EXPECT_EQ(m_gate.LastLoudMs(), 125);
    EXPECT_EQ(m_gate.Stop(), 125);
}
