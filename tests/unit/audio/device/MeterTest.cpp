#include "audio/device/LMeter.h"
#include "tests/unit/TestKit.h"

// 400 pixels, 100 segments: above -24 dB 12 dB take 25 of them, below it 24 dB. Red begins behind the 88th.
static constexpr int32_t kWidth = 400;

// One letter for each segment of the meter, equal ones counted: "G52.48" is 52 green and 48 dark segments.
static std::string Show(const LMeter& meter) {
    const LMeterPicture picture = meter.Draw(kWidth);
    std::string letters, text;
    for (int32_t x = 0; x < kWidth; x += LMeter::kSegmentPixels) {
        for (int32_t i = 1; i < LMeter::kSegmentPixels; ++i)
            EXPECT_EQ(picture.ColourAt(x), picture.ColourAt(x + i)) << "half a segment";
        letters += ".GR"[static_cast<size_t>(picture.ColourAt(x))];
    }
    for (size_t i = 0, next; i < letters.size(); i = next) {
        next = std::min(letters.find_first_not_of(letters[i], i), letters.size());
        text += letters[i] + std::to_string(next - i);
    }
    return text;
}

TEST(Meter, IsGreenBelowTheMarkedLevelAndRedAboveIt) {
    static const std::pair<int8_t, const char*> kCases[] = {{-127, ".100"},  {-48, ".100"},  {-47, "G1.99"},
                                                            {-24, "G25.75"}, {0, "G75.25"},  {6, "G88.12"},
                                                            {7, "G88R2.10"}, {12, "G88R12"}, {127, "G88R12"}};
    for (const auto& [db, shown] : kCases) {
        LMeter meter;
        meter.SetLevel(db, 0);
        EXPECT_EQ(Show(meter), shown) << int{db};
    }
}

TEST(Meter, HoldsThePeakThenLetsItFallAndIsStillWhenAllIsSilent) {
    // Tick counts wrap in the middle of it.
    for (const uint32_t begin : {0u, 0u - 1700u}) {
        LMeter meter;
        EXPECT_EQ(meter.WaitMs(begin), LMeter::kNever);
        meter.SetLevel(9, begin);
        EXPECT_EQ(meter.WaitMs(begin), LMeter::kNever) << "a steady level needs no timer";
        meter.SetLevel(8, begin + 100);
        meter.Advance(begin + 200);
        EXPECT_EQ(meter.WaitMs(begin + 200), LMeter::kHoldMs - 100) << "sleeps while the peak is held";
        meter.SetLevel(9, begin + 1000);
        meter.SetLevel(-127, begin + 1000);
        meter.Advance(begin + 1500);  // the bar falls 36 dB in a second
        EXPECT_EQ(Show(meter), "G56.37R1.6");
        EXPECT_EQ(meter.WaitMs(begin + 1500), LMeter::kStepMs);
        meter.Advance(begin + 2600);  // the bar has gone; the peak has begun to fall, 24 dB in a second
        EXPECT_EQ(Show(meter), ".89R1.10");
        meter.Advance(begin + 3000);
        EXPECT_EQ(Show(meter), ".68G1.31");
        uint32_t now = begin + 3000;
        while (meter.WaitMs(now) != LMeter::kNever && now - begin < 10000)
            meter.Advance(now += meter.WaitMs(now));
        EXPECT_EQ(Show(meter), ".100");
        EXPECT_LT(now - begin, 6000u);
        meter.Advance(now + 0x90000000u);
        EXPECT_EQ(Show(meter), ".100") << "what was held long ago does not come back";
    }
}
