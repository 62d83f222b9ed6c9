#include <cmath>

#include "audio/device/PlayClock.h"
#include "audio/device/PlayMaterial.h"
#include "audio/device/PlayQueue.h"
#include "audio/stream/LDecibel.h"
#include "tests/unit/audio/AudioTest.h"

using Step = PlayQueue::Step;

static constexpr int32_t kBuffer = 100;

namespace {

// A source of silence whose end and growth the test moves.
class TapeSource final : public LSoundSourceBase {
public:
    explicit TapeSource(int32_t frames) : LSoundSourceBase(1000, 1, kFullScale16), length(frames) {}
    void Read(int32_t* samples, int32_t frames) override {
        std::fill_n(samples, frames, 0);
        position += frames;
    }
    int32_t GetPosition() const override { return position; }
    int32_t GetLength() const override { return length; }
    void Seek(int32_t frame) override { position = frame; }
    bool IsGrowing() const override { return growing; }

    int32_t position = 0;
    int32_t length;
    bool growing = false;
};

// The player's thread in little: obeys the queue, with a device that returns what the test says.
class PlayQueueTest : public testing::Test {
protected:
    void Begin() { m_queue.Start(kBuffer); }
    // Looks until there is nothing to do; what the last look said.
    Step Run() {
        for (;;) {
            const Step step = m_queue.Look(m_returned > 0, m_tape);
            if (step == Step::TakeBack) {
                m_queue.TookBack();
                --m_returned;
            } else if (step == Step::Refill) {
                m_tape.position += m_queue.FramesToTake();
                m_queue.Queued();
            }
            if (m_queue.StartsNow()) m_startDepth = static_cast<int>(m_queue.Depth());
            if (step != Step::TakeBack && step != Step::Refill) return step;
        }
    }
    Step Return(int buffers) {
        m_returned = buffers;
        return Run();
    }
    Step FailLooks(int count) {
        Step step = Step::Wait;
        for (int i = 0; i < count; ++i) step = m_queue.Look(false, m_tape);
        return step;
    }

    TapeSource m_tape{100 * kBuffer};
    PlayQueue m_queue;
    int m_returned = 0;
    int m_startDepth = -1;  // what was queued when the device began
};

}  // namespace

TEST_F(PlayQueueTest, FillsTheRingBeforePlayAndThenTakesOffOnce) {
    Begin();
    EXPECT_EQ(Run(), Step::Wait);
    EXPECT_EQ(m_queue.Depth(), PlayQueue::kBuffers);
    EXPECT_EQ(m_startDepth, -1);
    EXPECT_TRUE(m_queue.TakesOff());
    EXPECT_FALSE(m_queue.TakesOff());
    m_queue.Play();
    EXPECT_TRUE(m_queue.StartsNow()) << "nothing is left to wait for";
    EXPECT_FALSE(m_queue.StartsNow());
    EXPECT_EQ(Return(1), Step::Wait);
    EXPECT_EQ(m_queue.Oldest(), 1u);
    EXPECT_EQ(m_queue.Next(), 1u);
    m_queue.Empty();
    EXPECT_TRUE(m_queue.TakesOff()) << "the ring has been emptied";
}

TEST_F(PlayQueueTest, BeginsWith42BuffersOrWithAllThereIs) {
    static const struct {
        int32_t frames;
        int depth;
    } kCases[] = {{100 * kBuffer, 42}, {41 * kBuffer + 1, 42}, {3 * kBuffer, 3}, {kBuffer / 2, 1}};
    for (const auto& c : kCases) {
        m_tape.position = 0;
        m_tape.length = c.frames;
        Begin();
        m_queue.Play();
        Run();
        EXPECT_EQ(m_startDepth, c.depth) << c.frames;
    }
}

TEST_F(PlayQueueTest, EndsWhenTheLastBufferIsBackAndTellsItOnce) {
    m_tape.length = 2 * kBuffer + 30;
    Begin();
    m_queue.Play();
    EXPECT_EQ(Run(), Step::Wait);
    EXPECT_EQ(m_tape.position, m_tape.length) << "the last buffer is as short as what was left";
    EXPECT_EQ(Return(2), Step::Wait);
    EXPECT_EQ(Return(1), Step::End);
    EXPECT_EQ(Run(), Step::Wait);
}

TEST_F(PlayQueueTest, DoesNotEndBeforePlay) {
    m_tape.length = 0;
    Begin();
    EXPECT_EQ(FailLooks(200), Step::Wait);
    m_queue.Play();
    EXPECT_EQ(Run(), Step::End);
}

TEST_F(PlayQueueTest, LosesADeviceThatReturnsNothingUnlessItIsPausedOrCueing) {
    Begin();
    Run();
    EXPECT_EQ(FailLooks(200), Step::Wait) << "paused";
    m_queue.Play();
    EXPECT_EQ(FailLooks(PlayQueue::kMaxFailedLooks), Step::Wait);
    Return(1);  // it lives; this look was one that failed
    EXPECT_EQ(FailLooks(PlayQueue::kMaxFailedLooks - 1), Step::Wait);
    EXPECT_EQ(FailLooks(1), Step::DeviceLost);
    EXPECT_EQ(FailLooks(1), Step::Wait) << "told once";
    m_queue.Empty();
    m_queue.SetCueing(true);
    EXPECT_EQ(FailLooks(200), Step::Wait);
}

TEST_F(PlayQueueTest, FollowsMaterialThatGrows) {
    m_tape.length = kBuffer / 2;
    m_tape.growing = true;
    Begin();
    m_queue.Play();
    Run();
    EXPECT_EQ(m_startDepth, 1) << "the first sound does not wait";
    m_tape.length = kBuffer + 10;
    Run();
    EXPECT_EQ(m_queue.Depth(), 1u) << "while something is queued only whole buffers follow";
    m_tape.length = 2 * kBuffer;
    Run();
    EXPECT_EQ(m_queue.Depth(), 2u);
    EXPECT_EQ(Return(2), Step::Wait) << "dry, but not at the end";
    EXPECT_EQ(FailLooks(200), Step::Wait) << "and no fault of the device";
    m_tape.length = m_tape.position + PlayQueue::kGatherBuffers * kBuffer - 1;
    Run();
    EXPECT_EQ(m_queue.Depth(), 0u) << "gathers a few buffers, or it would run dry at each";
    m_tape.length += 1;
    Run();
    EXPECT_EQ(m_queue.Depth(), static_cast<size_t>(PlayQueue::kGatherBuffers));
    m_tape.length += 7;
    m_tape.growing = false;
    Run();
    EXPECT_EQ(m_tape.position, m_tape.length) << "the rest, once it has ended";
    EXPECT_EQ(Return(PlayQueue::kGatherBuffers + 1), Step::End);
}

TEST(PlayClock, FindsOutHowFarTheDeviceCountsAheadOfTheEar) {
    PlayClock clock;
    clock.Reset(8000);
    clock.Run(0xFFFFFF00);                                // the tick counter wraps meanwhile
    EXPECT_EQ(clock.Heard(1520, 0xFFFFFF00 + 100), 800);  // 190 ms after 100 ms
    EXPECT_EQ(clock.Heard(4720, 0xFFFFFF00 + 500), 4000);
    EXPECT_FALSE(clock.IsLearning(0xFFFFFF00 + 2000));
    // After an hour the machine's clock is 300 ms behind the device's; what was learnt holds.
    EXPECT_EQ(clock.Heard(8 * 3600300 + 720, 0xFFFFFF00 + 3600000), 8 * 3600300);
    EXPECT_TRUE(clock.IsPossible(8 * 3600300, 8 * 3602000)) << "what came back is not all heard";
    EXPECT_FALSE(clock.IsPossible(800, 8 * 3600300)) << "the device's counter has wrapped";
    clock.Hold(0xFFFFFF00 + 3600000);
    clock.Reset(8000);
    clock.Run(50);
    clock.Hold(150);
    EXPECT_EQ(clock.Heard(1000, 5000), 800) << "time does not run while paused";
    clock.Run(6000);
    EXPECT_EQ(clock.Heard(1600, 6100), 1400);
    clock.Reset(8000);
    clock.Run(0);
    EXPECT_EQ(clock.Heard(500, 100), 500) << "a device that counts late is believed";
}

TEST(PlayMaterial, LevelsFollowTheRootMeanSquareOfEachChannel) {
    static const struct {
        int32_t left, right;
        int leftDb, rightDb;
    } kCases[] = {
        {0, 31, kSilenceDb, kSilenceDb},  // 31 >> 5 is 0
        {32, -1, -69, -69},               // -1 >> 5 is -1
        {0x7FFF0, -0x80000, 15, 15},      // a square wave at full scale
        {92681, 92681 / 10, 0, -20},
    };
    for (const auto& c : kCases) {
        Samples samples;
        for (int32_t i = 0; i < kBlockFrames; ++i) samples.insert(samples.end(), {c.left, c.right});
        EXPECT_EQ(ChannelRmsDb(samples, 2, 0), c.leftDb) << c.left;
        EXPECT_EQ(ChannelRmsDb(samples, 2, 1), c.rightDb) << c.right;
    }
    EXPECT_EQ(ChannelRmsDb({}, 1, 0), kSilenceDb);
}

TEST(PlayMaterial, DeliversBlocksWithPositionAndLevels) {
    Samples ramp;
    for (int32_t i = 0; i < 1000; ++i) ramp.insert(ramp.end(), {i * 16, 0});
    PlayMaterial material;
    ASSERT_TRUE(material.Open(LSoundSource::Make<ArraySource>(1000, uint8_t{2}, ramp), 100));
    EXPECT_EQ(material.BufferFrames(), 100);
    material.Seek(500);
    PlayBlock block;
    material.Read(100, block);
    ASSERT_EQ(block.samples.size(), 200u);
    EXPECT_EQ(block.samples[0], 500);
    EXPECT_EQ(block.samples[198], 599);
    EXPECT_EQ(block.endFrame, 600);
    EXPECT_EQ(block.levels[1], kSilenceDb);
    EXPECT_GT(block.levels[0], kSilenceDb);
    EXPECT_EQ(material.ToSourceFrame(1050), 1000) << "never beyond the length";
}

TEST(PlayMaterial, EndsInThreeTenthsOfASecondOfSilenceAtAnyRate) {
    static const struct {
        int32_t rate;
        size_t buffers;
    } kCases[] = {{100, 2}, {8000, 3}, {44100, 3}, {192000, 8}};
    for (const auto& c : kCases) {
        PlayMaterial material;
        ASSERT_TRUE(material.Open(LSoundSource::Make<ArraySource>(c.rate, uint8_t{1}, Samples(100)), 100));
        EXPECT_EQ(material.TailBuffers(), c.buffers) << c.rate;
    }
}

TEST(PlayMaterial, TellsPlacesAtTheSpeedThatIsPlayed) {
    static const struct {
        int32_t percent, played;
    } kCases[] = {{INT32_MIN, 50}, {0, 50}, {70, 70}, {150, 150}, {INT32_MAX, 200}};
    for (const auto& c : kCases) {
        PlayMaterial material;
        ASSERT_TRUE(material.Open(LSoundSource::Make<ArraySource>(8000, uint8_t{1}, Samples(10000)), 100));
        ASSERT_TRUE(material.SetSpeed(c.percent, 0));
        EXPECT_EQ(material.ToSourceFrame(1000), 10 * c.played) << c.percent;
        material.Seek(INT32_MAX);
        EXPECT_EQ(material.Top().GetPosition(), material.Top().GetLength()) << c.percent;
        EXPECT_EQ(material.ToSourceFrame(material.Top().GetLength()), 10000) << c.percent;
    }
}

TEST(PlayMaterial, LimitsOnlyWhatMayBeTooLoud) {
    for (const int32_t level : {kFullScale16, kFullScale16 + 1}) {
        PlayMaterial material;
        ASSERT_TRUE(material.Open(
            LSoundSource::Make<ArraySource>(8000, uint8_t{1}, Samples(8000, level), level), 100));
        EXPECT_EQ(material.Top().GetLevel(), kFullScale16);
        PlayBlock block;
        material.Read(800, block);
        EXPECT_GE(*std::ranges::min_element(block.samples), 32000) << "it wrapped";
    }
    PlayMaterial material;
    TraceLog log;
    EXPECT_FALSE(material.Open(LSoundSource(), 100));
    EXPECT_TRUE(log.Has("LSoundPlayer::Start Source Error"));
}

TEST(PlayMaterial, CueRepeatsAQuarterOfABufferAndStaysInPlace) {
    static constexpr int32_t kRate = 1010;  // buffers of 101 frames, snippets of 26
    Samples ramp(3000);
    for (size_t i = 0; i < ramp.size(); ++i) ramp[i] = static_cast<int32_t>(i) * 16;
    PlayMaterial material;
    ASSERT_TRUE(material.Open(LSoundSource::Make<ArraySource>(kRate, uint8_t{1}, ramp), 100));
    material.Seek(1000);
    PlayBlock block;
    for (int i = 0; i < 2; ++i) {
        material.ReadCue(block);
        ASSERT_EQ(block.samples.size(), 101u);
        for (size_t k = 0; k < block.samples.size(); ++k) ASSERT_EQ(block.samples[k], 1000 + k % 26) << k;
    }
}

TEST(PlayMaterial, CueGraphShowsThePeaksAhead) {
    // Pieces of 1024 / 512 + 2 frames: each peak is that of its fourth frame.
    Samples samples(600 * 4, 100);
    for (size_t i = 3; i < samples.size(); i += 4) samples[i] = -static_cast<int32_t>(i / 4 * 0x800);
    samples[4 * 300 + 1] = 0x7F801;
    PlayMaterial material;
    ASSERT_TRUE(material.Open(LSoundSource::Make<ArraySource>(1000, uint8_t{1}, samples), 100));
    std::array<uint8_t, PlayMaterial::kGraphBytes> graph;
    material.Seek(200 * 4);
    for (int i = 0; i < 2; ++i) {
        material.ReadCueGraph(1024, graph);
        EXPECT_EQ(graph[0], 200);
        EXPECT_EQ(graph[50], 250);
        EXPECT_EQ(graph[100], 255) << "at 0x7F801, and above";
        EXPECT_EQ(graph[399], 255);
        EXPECT_EQ(graph[400], 0) << "past the end";
    }
    material.ReadCueGraph(INT32_MAX, graph);
    EXPECT_EQ(graph[0], 255);
    material.ReadCueGraph(-1, graph);
    EXPECT_EQ(graph[0], 0);
}
