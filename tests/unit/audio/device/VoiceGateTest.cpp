#include "audio/device/VoiceGate.h"

#include "tests/unit/audio/AudioTest.h"

using State = VoiceGate::State;

namespace {

constexpr int32_t kRate = 8000;
constexpr size_t kBlock = 800;  // 100 ms
constexpr VoiceGate::Settings kVoice = {-20, 3000, 0, false};

// With a start level of -20 dB a loud block starts a recording, a soft one only keeps it going.
int32_t Level(char how) {
    return how == 'L' || how == 'l' ? 132000 : how == 'S' || how == 's' ? 9000 : 0;
}

// A gate between a microphone that the test speaks into and a sink that it looks at. Every block is one value
// throughout, the level plus the block's number, so that each written frame tells where it came from.
class GateTest : public testing::Test {
protected:
    void Start(VoiceGate::Settings settings, int32_t existingFrames = 0, int32_t diskHolds = INT32_MAX) {
        LSoundSink sink = LSoundSink::Make<CollectingSink>(kRate, uint8_t{1}, m_written, diskHolds);
        static_cast<CollectingSink&>(*sink).StartAt(existingFrames);
        m_gate.Start(sink, settings);
        m_next = 1;
    }
    // Loud, soft and quiet blocks, one for each letter: the small ones come late, H is loud in its second
    // half only.
    void Speak(std::string_view letters) {
        for (char how : letters) SpeakBlock(how, kBlock);
    }
    void SpeakBlock(char how, size_t frames) {
        Samples block(frames, Level(how) + m_next);
        if (how == 'H') std::fill(block.begin() + kBlock / 2, block.end(), Level('L') + m_next);
        how >= 'a' ? m_gate.TakeLate(block) : m_gate.Take(block);
        ++m_next;
    }
    // The written material as the numbers of its blocks, with the frames of those that are not whole.
    std::string Written() const {
        std::string text;
        for (size_t i = 0, run = 0; i < m_written.size(); i += run) {
            for (run = 0; i + run < m_written.size() && m_written[i + run] % 1000 == m_written[i] % 1000;)
                ++run;
            text += (text.empty() ? "" : " ") + std::to_string(m_written[i] % 1000);
            if (run != kBlock) text += ":" + std::to_string(run);
        }
        return text;
    }

    TraceLog m_log;
    Samples m_written;
    VoiceGate m_gate;
    int32_t m_next = 1;
};

}  // namespace

TEST(Decibel, RoundsToTheNearestStepOfItsScale) {
    const std::pair<uint32_t, int> cases[] = {{0, -127},   {1, -102},   {12373, -21}, {12374, -20},
                                              {138838, 0}, {138839, 1}, {524288, 12}, {0x80000000u, 84}};
    for (const auto& [peak, db] : cases) EXPECT_EQ(PeakToDb(peak), db) << peak;
    const int32_t lowest[] = {0, INT32_MIN, 0, 1};
    EXPECT_EQ(ChannelDb(lowest, 2, 1), 84);
    EXPECT_EQ(ChannelDb(lowest, 2, 0), -127);
}

TEST_F(GateTest, KeepsEveryWordWithItsOnsetAndCutsLongSilence) {
    static const struct {
        const char* spoken;
        int32_t hangTimeMs;
        State state;
        int32_t lastLoudMs;
        const char* written;
        int32_t endMs;
        const char* left;  // after Stop
    } kCases[] = {
        // The second half of the block before belongs to a word that begins in the first half of its block.
        {"Q", 3000, State::Waiting, 0, "", 0, ""},
        {"L", 3000, State::Recording, 100, "1", 100, "1"},
        {"QSL", 3000, State::Recording, 150, "2:400 3", 150, "2:400 3"},
        {"QH", 3000, State::Recording, 100, "2", 100, "2"},
        // A pause begins when the silence is longer than the hang time. Soft speech goes on.
        {"LQSQQQQQQ", 600, State::Recording, 300, "1 2 3 4 5 6 7 8 9", 350, "1 2 3 4:400"},
        {"LQSQQQQQQQ", 600, State::Waiting, 300, "1 2 3 4 5 6 7 8:400", 350, "1 2 3 4:400"},
        {"LQSQQQQQQQSL", 600, State::Recording, 900, "1 2 3 4 5 6 7 8:400 11:400 12", 900,
         "1 2 3 4 5 6 7 8:400 11:400 12"},
        // After a short hang time all of the silence lies within the rest that a pause keeps.
        {"LQQ", 100, State::Waiting, 100, "1 2 3", 150, "1 2:400"},
        {"LQQL", 100, State::Recording, 400, "1 2 3 4", 400, "1 2 3 4"},
        // Late blocks are written and measured, but cause no pause, and are not written in one.
        {"Lqqqqqs", 100, State::Recording, 700, "1 2 3 4 5 6 7", 700, "1 2 3 4 5 6 7"},
        {"LQqqqq", 3000, State::Recording, 100, "1 2 3 4 5 6", 150, "1 2:400"},
        {"Ql", 3000, State::Waiting, 0, "", 0, ""},
    };
    for (const auto& c : kCases) {
        m_written.clear();
        Start({-20, c.hangTimeMs, 0, false});
        Speak(c.spoken);
        EXPECT_EQ(m_gate.GetState(), c.state) << c.spoken;
        EXPECT_EQ(m_gate.LastLoudMs(), c.lastLoudMs) << c.spoken;
        EXPECT_EQ(Written(), c.written) << c.spoken;
        EXPECT_EQ(m_gate.Stop(), c.endMs) << c.spoken;
        EXPECT_EQ(Written(), c.left) << c.spoken;
        EXPECT_EQ(m_gate.GetState(), State::Stopped);
    }
    EXPECT_TRUE(m_log.Has("LSoundRecorder::WindowProcWIMData VoiceActivatedStart WAITING->RECORDING"));
    EXPECT_TRUE(m_log.Has("LSoundRecorder::ThreadFunction VoiceActivatedStop RECORDING->WAITING"));
}

TEST_F(GateTest, LowestThresholdsRecordSilenceToTheEnd) {
    for (const VoiceGate::Settings& settings :
         {VoiceGate::Settings{-128, 100, 0, true}, {-127, 100, 0, false}}) {
        m_written.clear();
        Start(settings);
        for (int i = 0; i < 40; ++i) m_gate.Take(Samples(kBlock, 0));
        EXPECT_EQ(m_gate.GetState(), State::Recording);
        EXPECT_EQ(m_gate.Stop(), 4000);
        EXPECT_EQ(m_written.size(), 40 * kBlock);
    }
}

TEST_F(GateTest, ContinuesTheClockOfExistingMaterial) {
    Start(kVoice, 16001);
    EXPECT_EQ(m_gate.LastLoudMs(), 2000);
    Speak("QQQQQ");
    EXPECT_EQ(m_gate.Stop(), 2000) << "nothing was said, nothing is cut";
    EXPECT_EQ(m_written.size(), 16001u);

    Start({-20, 3000, 2200, true}, 16000);
    Speak("QQ");
    EXPECT_FALSE(m_gate.MaxTimeReached()) << "exactly the maximum does not exceed it";
    Speak("Q");
    EXPECT_TRUE(m_gate.MaxTimeReached());
    EXPECT_TRUE(m_log.Has("LSoundRecorder::ThreadFunction Stop because MaxTime reached"));
}

TEST_F(GateTest, HearsTheLouderOfTwoChannelsAndCountsFrames) {
    m_gate.Start(LSoundSink::Make<CollectingSink>(kRate, uint8_t{2}, m_written), kVoice);
    m_gate.Take(Samples{1, 2, 1, 2});
    m_gate.Take(Samples{-3, -132000, -3, -132000});
    EXPECT_EQ(m_written, (Samples{1, 2, -3, -132000, -3, -132000}));
    EXPECT_EQ(m_gate.LevelDb(0), PeakToDb(3));
    EXPECT_EQ(m_gate.LevelDb(1), 0);
}

TEST_F(GateTest, TellsWhenTheSinkTakesNoMore) {
    Start(kVoice, 0, 1000);
    Speak("L");
    EXPECT_FALSE(m_gate.SinkFailed());
    Speak("L");
    EXPECT_TRUE(m_gate.SinkFailed());
    EXPECT_EQ(m_gate.Stop(), 125);
}
