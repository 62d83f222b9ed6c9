#include <gtest/gtest.h>

#include "app/transport/PlayPlan.h"
#include "app/transport/RecordPlan.h"
#include "app/window/DictationRow.h"

static LWaveInfo Existing(uint16_t bits, uint16_t channels, uint32_t rate, int64_t dataBytes) {
    LWaveInfo info;
    info.format = LWaveFileFormat::Pcm(bits, channels, rate);
    info.dataStart = 46;
    info.dataBytes = dataBytes;
    info.isOurLayout = true;
    return info;
}

TEST(RecordPlan, BeginsAtThePositionTheEndOrTheStart) {
    static const struct {
        const char* what;
        RecordMode mode;
        int32_t positionMs;
        int64_t bytes;  // 16 bits, mono, 8000 Hz: 16 bytes to the millisecond
        int32_t startMs, startFrames;
        bool isInsert = false;
    } kCases[] = {
        {"new dictation", RecordMode::Overwrite, 0, 0, 0, 0},
        {"append to nothing", RecordMode::Append, 700, 0, 0, 0},
        {"within the first half second", RecordMode::Overwrite, 500, 160000, 0, 0},
        {"just after it", RecordMode::Overwrite, 501, 160000, 501, 4008},
        {"in the middle", RecordMode::Overwrite, 1200, 160000, 1200, 9600},
        {"append ignores the position", RecordMode::Append, 1200, 160000, 10000, 80000},
        {"insert in the middle", RecordMode::Insert, 1200, 160000, 1200, 9600, true},
        {"insert within the first half second", RecordMode::Insert, 400, 160000, 400, 3200, true},
        {"insert into little more than half a second", RecordMode::Insert, 0, 8032, 0, 0, true},
        {"insert into half a second records over it", RecordMode::Insert, 400, 8000, 0, 0},
        {"insert a second and a bit before the end", RecordMode::Insert, 8999, 160000, 8999, 71992, true},
        {"insert within the last second records over it", RecordMode::Insert, 9000, 160000, 9000, 72000},
        {"insert behind the end", RecordMode::Insert, 99999, 160000, 10000, 80000},
        {"beyond the end", RecordMode::Overwrite, 99999, 160000, 10000, 80000},
        {"a negative position", RecordMode::Overwrite, -5, 160000, 0, 0},
        // 10,000.4 ms: the milliseconds are rounded down, but no frame is cut when appending.
        {"append keeps the last frames", RecordMode::Append, 0, 160006, 10000, 80003},
        {"an odd last byte is no frame", RecordMode::Append, 0, 160007, 10000, 80003},
    };
    for (const auto& c : kCases) {
        const RecordStart start = PlanRecording(c.mode, c.positionMs, Existing(16, 1, 8000, c.bytes));
        EXPECT_EQ(start.positionMs, c.startMs) << c.what;
        EXPECT_EQ(start.frames, c.startFrames) << c.what;
        EXPECT_EQ(start.isInsert, c.isInsert) << c.what;
    }
}

TEST(RecordPlan, TheShownEndIsTheEndOfTheFileThatAnotherProgramChanged) {
    const auto startAt = [](ShownPlace shown, int64_t bytes) {
        const RecordMode mode = ModeAt(RecordMode::Overwrite, shown);
        return PlanRecording(mode, shown.positionMs, Existing(16, 1, 8000, bytes)).positionMs;
    };
    EXPECT_EQ(startAt({10000, 10000}, 288000), 18000) << "longer";
    EXPECT_EQ(startAt({10000, 10000}, 64000), 4000) << "shorter";
    EXPECT_EQ(startAt({0, 0}, 64000), 4000) << "was empty";
    EXPECT_EQ(startAt({4000, 10000}, 288000), 4000) << "a place that the user chose";
}

TEST(RecordPlan, OnlyAppendingLeavesAllInItsPlace) {
    for (const RecordMode mode : {RecordMode::Overwrite, RecordMode::Insert, RecordMode::Append}) {
        EXPECT_TRUE(OnlyAppends(mode, {501, 501}));
        EXPECT_FALSE(OnlyAppends(mode, {500, 500})) << "replaces half a second";
        EXPECT_EQ(OnlyAppends(mode, {9999, 10000}), mode == RecordMode::Append);
    }
}

TEST(DictationRow, DurationsAreRoundedToWholeSeconds) {
    EXPECT_EQ(FormatDuration(499), "00:00");
    EXPECT_EQ(FormatDuration(59500), "01:00");
    EXPECT_EQ(FormatDuration(36000000), "600:00");
}

TEST(DictationRow, ANameIsChangedOnlyByAnotherText) {
    // What is stored; null: nothing is touched.
    static const std::pair<const char*, const char*> kCases[] = {
        {"Case 2", "Case 2"},  {" Case 2\t", "Case 2"}, {"case 1", "case 1"}, {"Case 1", nullptr},
        {" Case 1 ", nullptr}, {"", nullptr},           {" \r\n", nullptr}};
    for (const auto& [typed, stored] : kCases) {
        const std::optional<std::string> name = ChangedName("Case 1", typed);
        EXPECT_EQ(name.has_value(), stored != nullptr) << typed;
        if (name && stored) {
            EXPECT_EQ(*name, stored);
        }
    }
}

TEST(PlayPlan, BeginsWhereTheUserExpects) {
    EXPECT_EQ(WindStartMs(5000, WindDirection::Back), 4500);
    EXPECT_EQ(WindStartMs(499, WindDirection::Back), 0);
    EXPECT_EQ(WindStartMs(5000, WindDirection::Forward), 5000);
    EXPECT_EQ(PlayStartMs(4999, 5000), 4999);
    EXPECT_EQ(PlayStartMs(5000, 5000), 0);
    EXPECT_EQ(SpeedPercent(ToPlaySpeed(0)), 70);
    EXPECT_EQ(SpeedPercent(ToPlaySpeed(2)), 150);
    for (int32_t unknown : {-1, 3}) EXPECT_EQ(SpeedPercent(ToPlaySpeed(unknown)), 100);
}
