#include "send/DctWriter.h"

#include "tests/unit/BorrowedStream.h"
#include "tests/unit/send/SendTest.h"

static uint32_t U32At(const Bytes& bytes, size_t offset) {
    return LByteReader({bytes.data() + offset, 4}).U32();
}

// Where the fields after the notes begin.
static constexpr size_t kPlainNotesEnd = 66;

TEST(DctWriter, CutsTextsAt255Bytes) {
    DctHeader header = SampleHeader();
    header.name = std::string(300, 'n');
    LMemoryFile out;
    NotingContext context;
    ASSERT_EQ(DctWriter(out, "", context).Write(header, nullptr, nullptr), ProcessResult::Done);
    const Bytes bytes = FileBytes(out);
    EXPECT_EQ(bytes[22], 255);
    EXPECT_EQ(bytes[22 + 256], 3) << "the sender's name follows at once";
    EXPECT_EQ(U32At(bytes, bytes.size() - 4), 0u) << "no notes, no audio";
    EXPECT_EQ(U32At(bytes, kDctLengthOffset), bytes.size());
}

TEST(DctWriter, CarriesAudioOfAnyLengthWhole) {
    const std::string pass(5, '\xC8');  // their sum is 3 * 256 + 232
    LBlowFish cipher;
    ASSERT_TRUE(cipher.SetKey(pass));
    for (size_t length : {0u, 1u, 8u, 32767u, 32768u, 32769u, 65536u, 100001u}) {
        Bytes audio(length);
        for (size_t i = 0; i < length; ++i) audio[i] = static_cast<uint8_t>(i * 7 + i / 251);
        const Bytes plain = WriteDct("", Text("Hello"), audio);
        EXPECT_EQ(Bytes(plain.begin() + kPlainNotesEnd, plain.end()), audio) << length;
        EXPECT_EQ(U32At(plain, kDctLengthOffset), plain.size()) << length;

        constexpr size_t kChannels = kPlainNotesEnd + 1 + 3;  // key check, padding of the notes
        const Bytes bytes = WriteDct(pass, Text("Hello"), audio);
        EXPECT_EQ(bytes[18], 232) << "key check";
        EXPECT_EQ(U32At(bytes, kChannels + 1), length);
        EXPECT_EQ(U32At(bytes, kDctLengthOffset), bytes.size()) << length;
        audio.resize((length + 7) / 8 * 8);
        cipher.EncryptBuffer(audio);
        EXPECT_EQ(Bytes(bytes.begin() + kChannels + 5, bytes.end()), audio) << length;
    }
}

TEST(DctWriter, CutsNotesThatNoReaderWouldAccept) {
    for (const char* passPhrase : {"", "pass"}) {
        const TraceLog trace;
        const Bytes expected = WriteDct(passPhrase, Bytes(kDctLongestNotes, 'x'), Text("audio"));
        EXPECT_FALSE(trace.Has("DctWriter::AddNotes notes too long, cut"));
        EXPECT_EQ(WriteDct(passPhrase, Bytes(kDctLongestNotes + 1, 'x'), Text("audio")), expected);
        EXPECT_TRUE(trace.Has("DctWriter::AddNotes notes too long, cut"));
    }
}

TEST(DctWriter, FailsWhereverTheDiskFillsUp) {
    for (const char* passPhrase : {"", "pass"}) {
        const size_t size = WriteDct(passPhrase, Text("Hello"), Bytes(70000, 5)).size();
        for (size_t capacity : {size_t{0}, size_t{1}, size_t{60}, size_t{200}, size_t{40000}, size - 1}) {
            const Bytes bytes = WriteDct(passPhrase, Text("Hello"), Bytes(70000, 5), capacity);
            EXPECT_TRUE(bytes.size() < 6 || U32At(bytes, kDctLengthOffset) == 0) << "no reader takes it";
        }
    }
}

TEST(DctWriter, FailsWhenAFileEndsBeforeItsSizeOrIsTooLongForTheFormat) {
    const TraceLog trace;
    const ScratchFile scratch({});
    LFile huge(scratch.path, LFile::Open::Write);
    ASSERT_TRUE(huge.Seek(0xFFFFFFFF) && huge.SetEnd());
    LMemoryFile whole(Text("Hello"));
    LMemoryFile cut(Text("Hello"));
    BorrowedStream ending(cut);
    ending.readable = 3;
    for (const auto& [notes, audio] : std::initializer_list<std::pair<LReadStream*, LReadStream*>>{
             {&whole, &ending}, {&ending, &whole}, {&whole, &huge}}) {
        LMemoryFile out;
        out.SetCapacity(1000);
        NotingContext context;
        ASSERT_TRUE(notes->Seek(0) && audio->Seek(0));
        EXPECT_EQ(DctWriter(out, "", context).Write(SampleHeader(), notes, audio), ProcessResult::Failed);
        EXPECT_TRUE(audio != &huge || out.Size() == 0);
    }
    EXPECT_TRUE(trace.Has("DctWriter::Write more than 4 GB"));
}

TEST(DctWriter, StopsBetweenEncryptedChunksOnlyAndTellsNoMoreThanHalf) {
    for (const bool isEncrypted : {false, true}) {
        LMemoryFile out, audio(Bytes(20 * kDctChunkBytes, 1));
        NotingContext context;
        context.cancelAt = 0.45;
        EXPECT_EQ(DctWriter(out, isEncrypted ? "pass" : "", context).Write(SampleHeader(), nullptr, &audio),
                  isEncrypted ? ProcessResult::Stopped : ProcessResult::Done);
        EXPECT_EQ(context.progress.size(), isEncrypted ? 3u : 20u);
        EXPECT_TRUE(std::ranges::is_sorted(context.progress) && context.progress.back() <= 0.5);
    }
}
