#include "send/DctWriter.h"

#include "tests/unit/audio/AudioTest.h"
#include "tests/unit/send/SendTest.h"

namespace {

DctHeader Header() {
    DctHeader header;
    header.user = 7;
    header.number = 12;
    header.name = "Dictation 012";
    header.sender.name = "Ann";
    header.sender.email = "a@b.c";
    header.sender.address[3] = "UK";
    return header;
}

// The writer takes any bytes for audio.
const Bytes kAudio = Text("RIFF") + Little(4) + Text("WAVE");

Bytes WriteDct(LMemoryFile& out, std::string_view passPhrase, const Bytes& notes, const Bytes& audio,
               ProcessResult expected = ProcessResult::Done) {
    LMemoryFile notesFile(notes);
    LMemoryFile audioFile(audio);
    NotedContext context;
    EXPECT_EQ(DctWriter(out, passPhrase, context).Write(Header(), &notesFile, &audioFile), expected);
    return FileBytes(out);
}

uint32_t U32At(const Bytes& bytes, size_t offset) {
    return LByteReader({bytes.data() + offset, 4}).U32();
}

// Where the fields after the notes begin.
constexpr size_t kPlainNotesEnd = 66;

// A file that only claims its size.
class HugeFile final : public LReadStream {
public:
    explicit HugeFile(int64_t size) : m_size(size) {}
    size_t Read(std::span<uint8_t> buffer) override { return buffer.size(); }
    bool Seek(int64_t) override { return true; }
    int64_t Position() const override { return 0; }
    int64_t Size() const override { return m_size; }

private:
    int64_t m_size;
};

}  // namespace

TEST(DctWriter, KeyCheckIsTheSumOfThePassPhraseModulo256) {
    LMemoryFile out;
    const std::string passPhrase(5, '\xC8');  // 5 * 200 = 3 * 256 + 232
    EXPECT_EQ(WriteDct(out, passPhrase, {}, kAudio)[18], 232);
}

TEST(DctWriter, CutsTextsAt255Bytes) {
    DctHeader header = Header();
    header.name = std::string(300, 'n');
    LMemoryFile out;
    NotedContext context;
    ASSERT_EQ(DctWriter(out, "", context).Write(header, nullptr, nullptr), ProcessResult::Done);
    const Bytes bytes = FileBytes(out);
    EXPECT_EQ(bytes[22], 255);
    EXPECT_EQ(bytes[22 + 256], 3) << "the sender's name follows at once";
    EXPECT_EQ(U32At(bytes, bytes.size() - 4), 0u) << "no notes, no audio";
    EXPECT_EQ(U32At(bytes, kDctLengthOffset), bytes.size());
}

TEST(DctWriter, CarriesAudioOfAnyLengthWhole) {
    LBlowFish cipher;
    ASSERT_TRUE(cipher.SetKey("pass"));
    for (size_t length : {0u, 1u, 8u, 32767u, 32768u, 32769u, 65536u, 100001u}) {
        Bytes audio(length);
        for (size_t i = 0; i < length; ++i) audio[i] = static_cast<uint8_t>(i * 7 + i / 251);
        LMemoryFile plain;
        const Bytes plainBytes = WriteDct(plain, "", Text("Hello"), audio);
        EXPECT_EQ(Bytes(plainBytes.begin() + kPlainNotesEnd, plainBytes.end()), audio) << length;
        EXPECT_EQ(U32At(plainBytes, kDctLengthOffset), plainBytes.size()) << length;

        constexpr size_t kChannels = kPlainNotesEnd + 1 + 3;  // key check, padding of the notes
        LMemoryFile encrypted;
        const Bytes bytes = WriteDct(encrypted, "pass", Text("Hello"), audio);
        EXPECT_EQ(U32At(bytes, kChannels + 1), length);
        EXPECT_EQ(U32At(bytes, kDctLengthOffset), bytes.size()) << length;
        Bytes padded((length + 7) / 8 * 8);
        std::copy(audio.begin(), audio.end(), padded.begin());
        cipher.EncryptBuffer(padded);
        EXPECT_EQ(Bytes(bytes.begin() + kChannels + 5, bytes.end()), padded) << length;
    }
}

TEST(DctWriter, CutsNotesThatNoReaderWouldAccept) {
    for (const char* passPhrase : {"", "pass"}) {
        const TraceLog trace;
        LMemoryFile longest, tooLong;
        const Bytes expected = WriteDct(longest, passPhrase, Bytes(kDctLongestNotes, 'x'), kAudio);
        EXPECT_FALSE(trace.Has("DctWriter::AddNotes notes too long, cut"));
        EXPECT_EQ(WriteDct(tooLong, passPhrase, Bytes(kDctLongestNotes + 1, 'x'), kAudio), expected);
        EXPECT_TRUE(trace.Has("DctWriter::AddNotes notes too long, cut"));
    }
}

TEST(DctWriter, FailsWhereverTheDiskFillsUp) {
    for (const char* passPhrase : {"", "pass"}) {
        LMemoryFile whole;
        const size_t size = WriteDct(whole, passPhrase, Text("Hello"), Bytes(70000, 5)).size();
        for (size_t capacity : {size_t{0}, size_t{1}, size_t{60}, size_t{200}, size_t{40000}, size - 1}) {
            LMemoryFile full;
            full.SetCapacity(capacity);
            const Bytes bytes =
                WriteDct(full, passPhrase, Text("Hello"), Bytes(70000, 5), ProcessResult::Failed);
            EXPECT_TRUE(bytes.size() < 6 || U32At(bytes, kDctLengthOffset) == 0) << "no reader takes it";
        }
    }
}

TEST(DctWriter, FailsWhenAFileEndsBeforeItsSize) {
    const Bytes text = Text("Hello");
    for (bool audioEnds : {false, true}) {
        LMemoryFile out, good(text);
        EndingFile ending(text, 3);
        NotedContext context;
        LReadStream* notes = &good;
        LReadStream* audio = &ending;
        if (!audioEnds) std::swap(notes, audio);
        EXPECT_EQ(DctWriter(out, "", context).Write(Header(), notes, audio), ProcessResult::Failed);
    }
}

TEST(DctWriter, RefusesAFileThatItsLengthFieldCannotHold) {
    const TraceLog trace;
    for (const char* passPhrase : {"", "pass"}) {
        LMemoryFile out;
        HugeFile audio(int64_t{0xFFFFFFFF});
        NotedContext context;
        EXPECT_EQ(DctWriter(out, passPhrase, context).Write(Header(), nullptr, &audio),
                  ProcessResult::Failed);
        EXPECT_EQ(out.Size(), 0);
    }
    EXPECT_TRUE(trace.Has("DctWriter::Write more than 4 GB"));
}

TEST(DctWriter, StopsBetweenEncryptedChunksOnly) {
    for (const char* passPhrase : {"", "pass"}) {
        LMemoryFile out, audio(Bytes(3 * kDctChunkBytes, 1));
        NotedContext context;
        context.cancelAt = 0.43;
        const bool isEncrypted = *passPhrase != 0;
        EXPECT_EQ(DctWriter(out, passPhrase, context).Write(Header(), nullptr, &audio),
                  isEncrypted ? ProcessResult::Stopped : ProcessResult::Done);
        EXPECT_EQ(U32At(FileBytes(out), kDctLengthOffset) == 0, isEncrypted);
    }
}

TEST(DctWriter, ProgressCreepsTowardsHalf) {
    LMemoryFile out, audio(Bytes(20 * kDctChunkBytes, 1));
    NotedContext context;
    ASSERT_EQ(DctWriter(out, "", context).Write(Header(), nullptr, &audio), ProcessResult::Done);
    ASSERT_EQ(context.progress.size(), 20u);
    EXPECT_NEAR(context.progress[0], 0.42, 1e-12);
    EXPECT_NEAR(context.progress[1], 0.436, 1e-12);
    EXPECT_NEAR(context.progress[2], 0.45904, 1e-12);
    EXPECT_TRUE(std::is_sorted(context.progress.begin(), context.progress.end()));
    EXPECT_LE(context.progress.back(), 0.5);
}
