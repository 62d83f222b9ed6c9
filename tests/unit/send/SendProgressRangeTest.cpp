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
