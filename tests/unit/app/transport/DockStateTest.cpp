#include "app/transport/DockState.h"

#include <gtest/gtest.h>

TEST(QuietTape, IsNoticedAfterFiveSecondsOfSound) {
    QuietTape tape;
    int ticks = 0;
    for (bool isQuiet = false; !isQuiet && ticks < 100; ++ticks) {
        tape.Level(ticks % 4 == 0 ? -48 : -30);  // the meter shows nothing in the pauses
        isQuiet = tape.Tick();
    }
    EXPECT_EQ(ticks, 39);
}
