#include "send/LoadDCTProcess.h"

#include "base/LProfile.h"
#include "store/DictationStore.h"
#include "tests/unit/send/SendTest.h"

namespace {

// A DCT file by docs/file-formats.md, field by field.
struct SampleDct {
    uint32_t version = 0, flags = 0;
    Bytes texts = Text("\5Knees") + Text("\3Ann") + Text("\5a@b.c") + Bytes(4) + Text("\5Elm 1") + Bytes(2) +
                  Text("\2UK");
    uint8_t priority = 50, channels = 1;
    uint32_t notesLength = 8;
    Bytes notes = Text(std::string("Hello\0x\0", 8));
    Bytes audio = Recording(20000), rest;

    Bytes File() const {
        Bytes file = Little(flags) + Little(7) + Little(12) + Little(1000000000) + texts + Bytes{priority} +
                     Little(notesLength) + notes;
        if (version > 0) file = file + Bytes{channels} + Little(static_cast<uint32_t>(audio.size()));
        file = file + audio + rest;
        return Little(version, 2) + Little(static_cast<uint32_t>(file.size() + 6)) + file;
    }
};

struct LoadDCT : testing::Test {
    ProcessResult Load(const Bytes& file) {
        context.errors.clear();
        context.progress.clear();
        WriteFileText(dct, std::string(file.begin(), file.end()));
        return LoadDCTProcess(dct, files).Process(context);
    }
    std::string Key(const char* key) const { return LProfileSection(files.record, "file").Read(key, "-"); }
    std::string Error() const { return context.errors.empty() ? "" : context.errors.back(); }
    bool HasFiles() const { return LFile::Exists(files.audio) || LFile::Exists(files.notes); }

    TempFolder folder;
    const LPath dct = folder.File("a.dct");
    const DictationFiles files = DictationFiles::OfNumber(folder.Folder("Current"), 12);
    NotingContext context;
};

std::string Corrupt(const std::string& what) {
    return "Unable to load dct file because of file corruption (" + what +
           " error). Please ask the dictator to send it again.";
}

}  // namespace

TEST_F(LoadDCT, TakesAllThatAFileOfAnyVersionHolds) {
    for (uint32_t version : {0u, 1u, 2u}) {
        SampleDct sample;
        sample.version = version;
        sample.flags = version == 1 ? 2 : 0;  // means nothing before version 2
        if (version > 0) sample.rest = Text("something to come");
        ASSERT_TRUE(WriteFileText(files.record, "[file]\r\nname=a\r\nnumber=3\r\n"));
        ASSERT_EQ(Load(sample.File()), ProcessResult::Done) << Error();
        std::string values;
        for (const char* key : {"number", "date", "name", "sendername", "senderemail", "company", "phone",
                                "cell", "fax", "address1", "address2", "address3", "address4", "priority"})
            values += Key(key) + "|";
        EXPECT_EQ(values, "3|1000000000|Knees|Ann|a@b.c|||||Elm 1|||UK|Normal|");
        EXPECT_EQ(ReadFileText(files.notes), std::string("Hello\0", 6));
        EXPECT_EQ(Text(ReadFileText(files.audio)), Recording(20000));
        EXPECT_TRUE(std::ranges::is_sorted(context.progress) && context.progress.back() > 0.5);
        EXPECT_EQ(context.status, "Loading DCT File\n" + std::string(dct.View()));
        EXPECT_EQ(Load(sample.File()), ProcessResult::Failed) << "the number is used";
        EXPECT_EQ(Text(ReadFileText(files.audio)), Recording(20000));
        ASSERT_TRUE(DeleteDictationFiles(files));
    }
}

TEST_F(LoadDCT, RefusesWithTheReasonAndLeavesNothing) {
    const struct {
        void (*change)(SampleDct&);
        std::string error;
        ProcessResult result = ProcessResult::Failed;
    } cases[] = {
        {[](auto& s) { s.version = 3; },
         "Unable to load dct file because file version not supported. Please download the latest version of "
         "this software."},
        {[](auto& s) { s.version = s.flags = 2; },
         "Encrypted files cannot be opened with Corvane. Please use Quennet to open this file."},
        {[](auto& s) { s.texts = Bytes{255}, s.notes = s.audio = Bytes(); }, Corrupt("length")},
        {[](auto& s) { s.notes.resize(s.notesLength = 262145); }, Corrupt("notes"), ProcessResult::Stopped},
        {[](auto& s) { s.notesLength = 100000; }, Corrupt("notes"), ProcessResult::Stopped},
        {[](auto& s) { s.version = 1, s.channels = 0; }, Corrupt("channels")},
        {[](auto& s) { s.version = 2, s.channels = 2; },
         "Multichannel files cannot be opened with Corvane. Please use Quennet to open this file."},
        {[](auto& s) {
             s.audio = WaveFile(Chunk("fmt ", FormatRecord(0x7777, 1, 8000, 8)) + Chunk("data", {}));
         },
         "Unable to open dct file because audio compression codec is not installed on this computer."},
        {[](auto& s) { s.audio = Bytes(5000); }, Corrupt("audio")},
    };
    for (const auto& c : cases) {
        SampleDct sample;
        c.change(sample);
        EXPECT_EQ(Load(sample.File()), c.result) << c.error;
        EXPECT_EQ(Error(), c.error);
        EXPECT_FALSE(HasFiles()) << c.error;
    }
    EXPECT_EQ(Load(SampleDct().File() + Bytes(1)), ProcessResult::Failed);
    EXPECT_EQ(Error(), Corrupt("length"));
    for (int asked = 0; asked < 6; ++asked) {
        context.cancelAfter = asked;
        EXPECT_EQ(Load(SampleDct().File()), ProcessResult::Stopped);
        EXPECT_FALSE(HasFiles() || !context.errors.empty()) << asked;
    }
}

TEST_F(LoadDCT, ReadsTextsAsTheRecordCanHoldThem) {
    static const std::pair<uint8_t, const char*> kPriorities[] = {
        {0, "Low"}, {33, "Low"}, {34, "Normal"}, {75, "Normal"}, {76, "High"}, {255, "High"}};
    for (const auto& [byte, text] : kPriorities) {
        SampleDct sample;
        sample.priority = byte;
        sample.texts = Text("\x0FJo\r\nsendstatus=") + Bytes{255} + Bytes(255, 'n') + Bytes(9);
        sample.notes = Bytes(sample.notesLength = 262144, 'x');
        ASSERT_EQ(Load(sample.File()), ProcessResult::Done);
        EXPECT_EQ(Key("name") + Key("sendstatus") + Key("priority"), std::string("Jo-") + text);
        EXPECT_EQ(Key("sendername"), std::string(255, 'n'));
        EXPECT_EQ(ReadFileText(files.notes), std::string(262144, 'x') + '\0');
        DeleteDictationFiles(files);
    }
    SampleDct sample;
    sample.flags = 1;
    EXPECT_EQ(Load(sample.File()), ProcessResult::Done) << "says that it holds nothing";
    EXPECT_FALSE(HasFiles() || LFile::Exists(files.record));
}
