#include "audio/wave/LInsertWave.h"
#include "audio/wave/LSNKPCMFile.h"
#include "audio/wave/LWaveFile.h"
#include "tests/unit/audio/SoundKit.h"

static void WriteWave(const LPath& path, int frames, int first, int bits = 16) {
    const LSoundSink sink = LSNKPCMFileBase::Open(path, 0, bits, 1, 8000);
    Samples samples(static_cast<size_t>(frames));
    for (size_t i = 0; i < samples.size(); ++i) samples[i] = (first + static_cast<int>(i)) * 16;
    for (int done = 0; done < frames; done += kBlockFrames)
        sink->Write(samples.data() + done, std::min(frames - done, static_cast<int>(kBlockFrames)));
}

static std::string DataOf(const LPath& path) {
    return ReadFileText(path).substr(46);
}

TEST(InsertWave, PutsEverySampleWhereItBelongs) {
    for (const int32_t at : {0, 1, 70000, 199999, 200000, 999999}) {
        TempFolder folder;
        const LPath target = folder.File("00000001.wav"), recorded = folder.File("tmp1.tmp");
        WriteWave(target, 200000, 0);
        WriteWave(recorded, 70001, 20000);
        const std::string before = DataOf(target), added = DataOf(recorded);
        const size_t place = std::min(2 * static_cast<size_t>(at), before.size());

        LInsertWave insert(target, at, recorded);
        EXPECT_FALSE(insert.IsDone());
        NotingContext context;
        ASSERT_EQ(insert.Process(context), ProcessResult::Done) << at;
        EXPECT_EQ(DataOf(target), before.substr(0, place) + added + before.substr(place)) << at;
        EXPECT_TRUE(LWaveFile::IsComplete(target, 270001));
        EXPECT_EQ(DataOf(recorded), added);
        EXPECT_TRUE(insert.IsDone() || at > 200000) << "known again after a crash";
    }
}

TEST(InsertWave, LeavesTheDictationAsItWasWhenItCannotBeDone) {
    TempFolder folder;
    const LPath target = folder.File("00000001.wav"), recorded = folder.File("tmp1.tmp");
    WriteWave(target, 1000, 0);
    const std::string before = ReadFileText(target);
    const auto result = [&](bool cancel = false) {
        NotingContext context;
        context.cancelAfter = cancel ? 1 : -1;
        const ProcessResult ended = LInsertWave(target, 500, recorded).Process(context);
        EXPECT_EQ(context.errors.empty(), ended == ProcessResult::Stopped);
        EXPECT_EQ(ReadFileText(target), before);
        EXPECT_TRUE(LFile::IsAbsent(folder.File("00000001.tmp")));
        return ended;
    };
    EXPECT_EQ(result(), ProcessResult::Failed) << "no recording";
    WriteWave(recorded, 1000, 0, 8);
    EXPECT_EQ(result(), ProcessResult::Failed) << "another format";
    WriteWave(recorded, 1000, 0);
    EXPECT_EQ(result(true), ProcessResult::Stopped);
    ASSERT_TRUE(LFile::MakeFolder(folder.File("00000001.tmp")));
    NotingContext context;
    EXPECT_EQ(LInsertWave(target, 500, recorded).Process(context), ProcessResult::Failed);
    EXPECT_EQ(ReadFileText(target), before);
}
