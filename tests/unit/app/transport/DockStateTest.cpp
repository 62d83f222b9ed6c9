#include "app/transport/DockState.h"

#include <gtest/gtest.h>

TEST(QuietTape, IsNoticedAfterFiveSecondsOfSound) {
    QuietTape tape;
    const auto play = [&tape](int8_t levelDb, int ticks) {
        bool isQuiet = false;
        while (ticks-- > 0) tape.Level(levelDb), isQuiet = tape.Tick();
        return isQuiet;
    };
    EXPECT_FALSE(play(-48, 1000)) << "the meter shows nothing";
    EXPECT_FALSE(play(-30, 19));
    EXPECT_FALSE(play(-60, 4));
    EXPECT_TRUE(play(-30, 5));
}
