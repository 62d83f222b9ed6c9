#include "audio/convert/LSRCPeakLimit.h"
#include "tests/unit/audio/SoundKit.h"

static LSoundSource Limited(int32_t rate, uint8_t channels, const Samples& in, int32_t limit = kFullScale16) {
    return LSRCPeakLimit::OpenSource(LSoundSource::Make<ArraySource>(rate, channels, in, INT32_MAX), limit);
}

TEST(PeakLimit, LetsNothingAboveTheLimitThroughAndKeepsToItsRules) {
    static const std::tuple<int32_t, uint8_t, int32_t, int32_t, const char*> kCases[] = {
        {100, 1, 0x7FFF0, 8192, "e3faadde"},     {8000, 2, 0x7FFF0, 100, "990fc458"},
        {44100, 2, INT32_MAX, 1261, "c6e1bf0b"}, {8000, 6, 0x7FFF0, 229, "fd454ed5"},
        {22050, 1, 1000, 8192, "94fbc2ea"},      {1000, 3, 0, 13, "8fd17f05"},
        {8000, 1, -5, 8192, "36c1c385"},         {2000000, 1, 0x7FFF0, 77, "205093f1"}};
    for (const auto& [rate, channels, wanted, piece, digest] : kCases) {
        const int32_t limit = std::clamp(wanted, 0, LSRCPeakLimit::kHighestLimit);
        const Samples in = Hostile(size_t{30000} * channels, limit, 5);
        const LSoundSource source = Limited(rate, channels, in, wanted);
        EXPECT_EQ(source->GetLevel(), limit);
        EXPECT_EQ(source->GetLength(), 30000);
        EXPECT_EQ(source->GetPosition(), 0);
        const Samples out = ReadFrames(*source, 30000, piece);
        EXPECT_EQ(source->GetPosition(), 30000);
        for (const int32_t v : out) ASSERT_LE(std::abs(int64_t{v}), limit) << rate;
        EXPECT_EQ(Digest(out), digest) << rate << " Hz, " << int{channels};
    }
}

// Peaks whose gain is nearly exact: the negative product, rounded down, would pass the limit by one.
TEST(PeakLimit, HoldsTheLimitWhereProductsRoundDown) {
    static const std::pair<int32_t, int32_t> kCases[] = {
        {1, 0x93}, {1000, 0x103F}, {kFullScale16, 0xC437F}, {0x3FFFFF, 0x7131BF}};
    for (const auto& [limit, peak] : kCases) {
        for (const uint8_t channels : {uint8_t{1}, uint8_t{2}, uint8_t{3}}) {
            const Samples out = ReadFrames(*Limited(100, channels, Samples(60, -peak), limit), 20);
            EXPECT_EQ(*std::min_element(out.begin(), out.end()), -limit) << limit;
        }
    }
}

TEST(PeakLimit, PassesQuietSoundUnchangedAndIsLeftOutWhereTheLevelSaysSo) {
    const Samples quiet = Noise(5000, kFullScale16);
    EXPECT_EQ(ReadFrames(*Limited(8000, 1, quiet), 5000), quiet);
    const LSoundSource fits = LSoundSource::Make<ArraySource>(8000, uint8_t{1}, quiet);
    EXPECT_EQ(&*LSRCPeakLimit::OpenSource(fits), &*fits);
    const LSoundSource broken = LSoundSource::Make<ArraySource>(8000, uint8_t{1}, quiet, INT32_MAX, true);
    EXPECT_TRUE(LSRCPeakLimit::OpenSource(broken)->IsError());
}

TEST(PeakLimit, StartsAnewAfterASeek) {
    const Samples in = Hostile(9000, kFullScale16, 2);
    const LSoundSource source = Limited(8000, 1, in);
    ReadFrames(*source, 700);
    for (const int32_t place : {4321, 0, 8999, 20000, -3}) {
        const int32_t from = std::clamp(place, 0, 9000);
        source->Seek(place);
        EXPECT_EQ(source->GetPosition(), from);
        const Samples ahead(in.begin() + from, in.end());
        EXPECT_EQ(ReadFrames(*source, 500, 77), ReadFrames(*Limited(8000, 1, ahead), 500)) << place;
        EXPECT_EQ(source->GetPosition(), from + 500);
    }
}

TEST(PeakLimit, ReachesALengthBeyondWhichNothingCounts) {
    const LSoundSource endless = LSoundSource::Make<ArraySource>(8000, uint8_t{1}, Samples(), INT32_MAX);
    static_cast<ArraySource&>(*endless).present = INT32_MAX;
    endless->Seek(INT32_MAX);
    const LSoundSource source = LSRCPeakLimit::OpenSource(endless);
    EXPECT_GE(source->GetPosition(), source->GetLength());
}

static Samples ReadAlong(const Samples& in, int32_t growth, int32_t behind) {
    return ReadWhileItGrows(
        in, 8000, INT32_MAX, [](const LSoundSource& s) { return LSRCPeakLimit::OpenSource(s); }, growth,
        behind);
}

TEST(PeakLimit, NeitherLosesNorOvertakesWhatIsStillBeingRecorded) {
    const Samples quiet = Ramp(6000), loud = Hostile(6000, kFullScale16, 3);
    const Samples whole = ReadFrames(*Limited(8000, 1, loud), 6000);
    for (const int32_t growth : {37, 228, 1000}) {
        EXPECT_EQ(ReadAlong(quiet, growth, 0), quiet) << growth;
        for (const int32_t v : ReadAlong(loud, growth, 0)) ASSERT_LE(std::abs(int64_t{v}), kFullScale16);
        EXPECT_EQ(ReadAlong(loud, growth, 700), whole) << "with the full look-ahead, grown by " << growth;
    }
    const LSoundSource beginning = LSoundSource::Make<ArraySource>(8000, uint8_t{1}, Ramp(10), INT32_MAX);
    static_cast<ArraySource&>(*beginning).isGrowing = true;
    EXPECT_EQ(ReadFrames(*LSRCPeakLimit::OpenSource(beginning), 600), Ramp(10) + Samples(590));
}
