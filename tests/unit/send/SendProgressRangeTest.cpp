#include "send/SendProgressRange.h"

#include <gtest/gtest.h>

// What the bar shows while one queue is worked off, item by item; an entry added meanwhile counts at once.
TEST(SendProgressRange, SharesTheBarAmongTheEntries) {
    static const struct {
        int32_t entries;
        double start, end;
    } kSteps[] = {
        {3, 0.0, 1.0 / 3}, {2, 1.0 / 3, 2.0 / 3}, {3, 0.0, 1.0 / 3},  // added: no longer than it was
        {4, 0.0, 0.25},                                               // longer than ever: smaller shares
        {1, 0.75, 1.0},    {0, 0.0, 1.0},         {-3, 0.0, 1.0},    {1, 0.0, 1.0},
    };
    SendProgressRange range;
    for (const auto& step : kSteps) {
        range.SetCount(step.entries);
        EXPECT_NEAR(range.OfItem(0.0), step.start, 1e-12) << step.entries;
        EXPECT_NEAR(range.OfItem(1.0), step.end, 1e-12) << step.entries;
    }
}

TEST(SendProgressRange, AcceptsStepsOfFourHundredthsEitherWay) {
    SendProgressRange range;
    EXPECT_FALSE(range.Accept(0.03));
    EXPECT_TRUE(range.Accept(0.04));
    EXPECT_FALSE(range.Accept(0.01));
    EXPECT_TRUE(range.Accept(0.0));
    for (int step = 1; step <= 25; ++step) EXPECT_TRUE(range.Accept(step * 0.04)) << step;
    EXPECT_NEAR(range.LastAccepted(), 1.0, 1e-12);
}
