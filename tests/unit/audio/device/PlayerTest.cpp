#include "audio/device/PlayClock.h"
#include "audio/device/PlayMaterial.h"
#include "audio/device/PlayQueue.h"
#include "audio/stream/LDecibel.h"
#include "tests/unit/audio/AudioTest.h"

using Step = PlayQueue::Step;

static constexpr int32_t kBuffer = 100;

namespace {

// The player's thread in little: obeys the queue, with a device that returns what the test says.
class PlayQueueTest : public testing::Test {
protected:
    PlayQueueTest() { m_queue.Start(kBuffer); }
    // Looks until there is nothing to do, while the device returns so many buffers; what the last look said.
    Step Run(int returned = 0) {
        for (;;) {
            const Step step = m_queue.Look(returned > 0, m_tape);
            if (step == Step::TakeBack) {
                m_queue.TookBack();
                --returned;
            } else if (step == Step::Refill) {
                m_tape.Seek(m_tape.GetPosition() + m_queue.FramesToTake());
                m_queue.Queued();
            }
            if (m_queue.StartsNow()) m_startDepth = static_cast<int>(m_queue.Depth());
            if (step != Step::TakeBack && step != Step::Refill) return step;
        }
    }
    Step FailLooks(int count) {
        Step step = Step::Wait;
        for (int i = 0; i < count; ++i) step = m_queue.Look(false, m_tape);
        return step;
    }

    ArraySource m_tape{1000, 1, Samples(100 * kBuffer)};  // of silence
    PlayQueue m_queue;
    int m_startDepth = -1;  // what was queued when the device began
};

}  // namespace

TEST_F(PlayQueueTest, BeginsWith42BuffersOrWithAllThereIsAndTakesOffOnce) {
    static const std::pair<int32_t, int> kCases[] = {
        {100 * kBuffer, 42}, {41 * kBuffer + 1, 42}, {3 * kBuffer, 3}, {kBuffer / 2, 1}};
    for (const auto& [frames, depth] : kCases) {
        m_tape.Seek(0);
        m_tape.present = frames;
        m_queue.Start(kBuffer);
        m_queue.Play();
        Run();
        EXPECT_EQ(m_startDepth, depth) << frames;
        EXPECT_TRUE(m_queue.TakesOff()) << "the ring is full, or all is in it";
    }
    EXPECT_FALSE(m_queue.TakesOff());
}

TEST_F(PlayQueueTest, LosesADeviceThatReturnsNothingUnlessItIsPaused) {
    Run();
    EXPECT_EQ(FailLooks(200), Step::Wait) << "paused";
    m_queue.Play();
    EXPECT_EQ(FailLooks(PlayQueue::kMaxFailedLooks), Step::Wait);
    Run(1);  // it lives; this look was one that failed
    EXPECT_EQ(FailLooks(PlayQueue::kMaxFailedLooks - 1), Step::Wait);
    EXPECT_EQ(FailLooks(1), Step::DeviceLost);
    EXPECT_EQ(FailLooks(1), Step::Wait) << "told once";
}

TEST_F(PlayQueueTest, FollowsMaterialThatGrows) {
    m_tape.present = kBuffer / 2;
    m_tape.isGrowing = true;
    m_queue.Play();
    Run();
    EXPECT_EQ(m_startDepth, 1) << "the first sound does not wait";
    m_tape.present = kBuffer + 10;
    Run();
    EXPECT_EQ(m_queue.Depth(), 1u) << "while something is queued only whole buffers follow";
    EXPECT_EQ(Run(1), Step::Wait) << "dry, but not at the end";
    EXPECT_EQ(FailLooks(200), Step::Wait) << "and no fault of the device";
    m_tape.present = m_tape.GetPosition() + PlayQueue::kGatherBuffers * kBuffer - 1;
    Run();
    EXPECT_EQ(m_queue.Depth(), 0u) << "gathers a few buffers, or it would run dry at each";
    m_tape.present += 1;
    Run();
    EXPECT_EQ(m_queue.Depth(), static_cast<size_t>(PlayQueue::kGatherBuffers));
    m_tape.present += 7;
    m_tape.isGrowing = false;
    Run();
    EXPECT_EQ(m_tape.GetPosition(), m_tape.present) << "the rest, once it has ended";
    EXPECT_EQ(Run(PlayQueue::kGatherBuffers + 1), Step::End);
}

TEST(PlayClock, FindsOutHowFarTheDeviceCountsAheadOfTheEar) {
    PlayClock clock;
    clock.Reset(8000);
    clock.Run(0xFFFFFF00);                                // the tick counter wraps meanwhile
    EXPECT_EQ(clock.Heard(1520, 0xFFFFFF00 + 100), 800);  // 190 ms after 100 ms
    EXPECT_FALSE(clock.IsLearning(0xFFFFFF00 + 2000));
    // After an hour the machine's clock is 300 ms behind the device's; what was learnt holds.
    EXPECT_EQ(clock.Heard(8 * 3600300 + 720, 0xFFFFFF00 + 3600000), 8 * 3600300);
    EXPECT_TRUE(clock.IsPossible(8 * 3600300, 8 * 3602000)) << "what came back is not all heard";
    EXPECT_FALSE(clock.IsPossible(800, 8 * 3600300)) << "the device's counter has wrapped";
    clock.Reset(8000);
    clock.Run(50);
    clock.Hold(150);
    EXPECT_EQ(clock.Heard(1000, 5000), 800) << "time does not run while paused";
    clock.Run(6000);
    EXPECT_EQ(clock.Heard(1600, 6100), 1400);
    EXPECT_EQ(clock.Heard(500, 6200), 300) << "what was learnt holds";
}

TEST(PlayMaterial, LevelsFollowTheRootMeanSquareOfEachChannel) {
    static const std::tuple<int32_t, int32_t, int, int> kCases[] = {
        {0, 32, kSilenceDb, -69}, {0x7FFF0, -0x80000, 15, 15}, {92681, 92681 / 10, 0, -20}};
    for (const auto& [left, right, leftDb, rightDb] : kCases) {
        Samples samples;
        for (int32_t i = 0; i < kBlockFrames; ++i) samples.insert(samples.end(), {left, right});
        EXPECT_EQ(ChannelRmsDb(samples, 2, 0), leftDb) << left;
        EXPECT_EQ(ChannelRmsDb(samples, 2, 1), rightDb) << right;
    }
    EXPECT_EQ(ChannelRmsDb({}, 1, 0), kSilenceDb);
}

TEST(PlayMaterial, DeliversItsPlace) {
    Samples ramp(3000);
    for (size_t i = 0; i < ramp.size(); ++i) ramp[i] = static_cast<int32_t>(i) * 16;
    PlayMaterial material;
    ASSERT_TRUE(material.Open(LSoundSource::Make<ArraySource>(1010, uint8_t{1}, ramp), 100));
    ASSERT_EQ(material.BufferFrames(), 101);
    material.Seek(1000);
    PlayBlock block;
    material.Read(50, block);
    ASSERT_EQ(block.samples.size(), 50u);
    EXPECT_EQ(block.samples[0], 1000);
    EXPECT_EQ(block.samples[49], 1049);
    EXPECT_EQ(block.endFrame, 1050);
    EXPECT_GT(block.levels[0], kSilenceDb);
}

TEST(PlayMaterial, LimitsWhatIsTooLoud) {
    PlayMaterial material;
    const Samples loud(8000, 2 * kFullScale16);
    ASSERT_TRUE(material.Open(LSoundSource::Make<ArraySource>(8000, uint8_t{1}, loud, INT32_MAX), 100));
    PlayBlock block;
    material.Read(800, block);
    EXPECT_GE(*std::ranges::min_element(block.samples), 32000) << "it wrapped";
}
