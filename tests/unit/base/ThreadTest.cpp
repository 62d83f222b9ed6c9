#include "base/LThread.h"

#include <gtest/gtest.h>

namespace {

constexpr uint32_t kDeadlineMs = 10000;

class Worker final : public LThread {
public:
    ~Worker() override { Stop(); }
    void ThreadFunction() override {
        ++runs;
        started.Signal();
        if (waits) ended = StopEvent().WaitEither(release, kDeadlineMs);
    }

    LSignalObject started, release;
    bool waits = true;
    int runs = 0, ended = -1;  // by which of both
};

}  // namespace

TEST(Thread, RunsOnceUntilItIsStoppedOrEndsAndStartsAgain) {
    Worker worker;
    ASSERT_TRUE(worker.Start(kThreadLowest));
    ASSERT_TRUE(worker.started.Wait(kDeadlineMs));
    EXPECT_TRUE(worker.Start(kThreadLowest)) << "already running";
    EXPECT_FALSE(worker.WaitForEnd(10));
    EXPECT_TRUE(worker.Stop(kDeadlineMs));
    EXPECT_FALSE(worker.IsRunning());
    EXPECT_EQ(worker.runs, 1);
    EXPECT_EQ(worker.ended, 0);

    worker.started.Reset();
    ASSERT_TRUE(worker.Start(kThreadNormal));
    EXPECT_FALSE(worker.StopRequested()) << "an old request must not end a new run";
    ASSERT_TRUE(worker.started.Wait(kDeadlineMs));
    worker.release.Signal();
    EXPECT_TRUE(worker.WaitForEnd(kDeadlineMs));
    EXPECT_EQ(worker.ended, 1);
    worker.waits = false;
    for (int run = 3; run <= 20; ++run)
        ASSERT_TRUE(worker.Start(kThreadNormal) && worker.WaitForEnd(kDeadlineMs));
    EXPECT_EQ(worker.runs, 20);
    EXPECT_TRUE(worker.Stop(0)) << "stopping what has ended";
}
