#include "audio/wave/LSNKACMFile.h"
#include "audio/wave/LWaveFile.h"
#include "store/SendToSettings.h"
#include "tests/stubs/StandInCodec.h"
#include "tests/unit/send/SendTest.h"

// The dumps in docs/file-formats.md are what the program writes.

static constexpr size_t kOffsetDigits = 5;

// The bytes of the dump under a heading; between two lines whose offsets leave a gap there are zeros.
static Bytes Dump(const std::string& heading) {
    static const std::string doc = ReadFileText(LPath(CORVANE_DOCS "/file-formats.md"));
    Bytes bytes;
    const size_t start = doc.find("### Dump: " + heading + "\n");
    if (start == std::string::npos) return bytes;
    const size_t end = std::min(doc.find("\n#", start + 1), doc.size());
    for (size_t line = doc.find("\n    0", start); line < end; line = doc.find("\n    0", line + 1)) {
        const std::string text = doc.substr(line + 5, doc.find('\n', line + 1) - line - 5);
        const Bytes offset = Hex("0" + text.substr(0, kOffsetDigits));
        bytes.resize(size_t{offset[0]} << 16 | size_t{offset[1]} << 8 | offset[2]);
        const std::string rest = text.substr(kOffsetDigits + 2);
        bytes = bytes + Hex(rest.substr(0, rest.find("  ")));
    }
    return bytes;
}

TEST(FileFormats, DctFilesAreAsDocumented) {
    const Bytes audio = Text("RIFF") + Little(4) + Text("WAVE");
    EXPECT_EQ(WriteDct("", Text("Hello"), audio), Dump("plain DCT file"));
    EXPECT_EQ(WriteDct("A", Text("Hello"), audio), Dump("encrypted DCT file"));
}

TEST(FileFormats, AudioFilesAreAsDocumented) {
    const ScratchFile file({});
    const int32_t frames[] = {FromPcm16(1), FromPcm16(-2)};
    LWaveFile::OpenSinkPCM(file.path, 16, 1, 8000)->Write(frames, 2);
    EXPECT_EQ(file.Contents(), Dump("two frames of 16 bits"));

    const LWaveFileFormat gsm(Hex("3100 0100 401F0000 59060000 4100 0000 0200 4001"));
    LSNKACMFile(gsm, file.path, StandInCodec::Open);
    EXPECT_EQ(file.Contents(), Dump("a GSM 6.10 file without a frame"));
}

TEST(FileFormats, RecipientsAreAsDocumented) {
    Bytes expected = Dump("the first fields and the wave format of a new recipient");
    expected.resize(1964);
    EXPECT_EQ(SendToSettings().ToBytes(), expected);
}
