#include "app/import/ImportProcess.h"

#include "store/DictationStore.h"
#include "tests/unit/send/SendTest.h"
#include "tests/unit/store/StoreTest.h"

namespace {

struct NoDecoders final : ForeignDecoders {
    LSoundSource OpenRealAudio(const LPath&, std::string& error) override {
        error = "No player";
        return {};
    }
    LSoundSource OpenDss(const LPath&, std::string&) override { return {}; }
    bool ConvertVoiceIt(const LPath&, const LPath&, std::string&) override { return false; }
};

// Frames of silence, of 128 kbit/s and 44,100 Hz; with other headers of 48,000 Hz.
Bytes SilentMp3(const char* header = "FF FB 90 64", size_t bytes = 413) {
    Bytes file;
    for (int i = 0; i < 20; ++i) file = file + Hex(header) + Bytes(bytes);
    return file;
}

struct ImportTest : StoreTest {
    ProcessResult Load(const std::string& name, const Bytes& contents) {
        const LPath source = m_temp.File(name);
        WriteFileText(source, std::string(contents.begin(), contents.end()));
        context.errors = {""}, context.progress.clear();
        work = std::make_unique<ImportProcess>(m_user, source, *FindImportRow(name),
                                               std::make_unique<NoDecoders>());
        return work->Process(context);
    }
    size_t Staged() const { return CountFiles(LPath::Join(LFolderOf(m_user.userFile.View()), "Import\\")); }

    NotingContext context;
    std::unique_ptr<ImportProcess> work;
};

}  // namespace

TEST_F(ImportTest, AFileIsLoadedAsWhatItHoldsOrRefusedWithTheReason) {
    const Bytes noCodec = Chunk("fmt ", FormatRecord(0x7777, 1, 8000, 8)) + Chunk("data", Bytes(9));
    // The bytes of the audio; 0: refused.
    const std::tuple<const char*, Bytes, int64_t, const char*> cases[] = {
        {"a.WAV", Recording(100), 246, ""},
        {"a.wav", WaveFile(PcmFormat(24) + Chunk("data", Bytes(300))), 346, ""},
        {"a.wav", Recording(0), 0, "holds no sound"},
        {"a.wav", SilentMp3(), 0, "no WAV file"},
        {"a.wav", WaveFile(noCodec), 0, "codec"},
        {"a.mp3", SilentMp3(), 46 + 20 * 1152 * 4, ""},
        {"a.mp3", SilentMp3() + SilentMp3("FF FB 94 64", 380), 46 + 20 * 1152 * 4,
         "Only the first 0:00:00 of"},
        {"a.mp3", Recording(100), 0, "No player"},
        {"a.dct", WriteDct("", Text("note"), Recording(100)), 246, ""},
    };
    int32_t number = 0;
    for (const auto& [name, contents, bytes, error] : cases) {
        const bool isDone = Load(name, contents) == ProcessResult::Done;
        EXPECT_NE(context.errors.back().find(error), std::string::npos) << context.errors.back();
        EXPECT_EQ(isDone, bytes > 0) << name << error;
        EXPECT_FALSE(Current(++number).AnyExists()) << "half of it in sight";
        EXPECT_TRUE(!isDone || work->Dictation().Publish());
        EXPECT_EQ(LFile(Current(number).audio, LFile::Open::Read).Size(), bytes) << name;
    }
    for (const int asked : {0, 1, 2}) {
        for (const auto& [name, contents, bytes, error] : cases) {
            context.cancelAfter = asked;
            Load(name, contents);
            work.reset();
            EXPECT_EQ(Staged(), 0u) << name << asked;
        }
    }
}

TEST_F(ImportTest, AnEndInBetweenLeavesNothingOrAWholeDictation) {
    for (int moved = 0; moved <= 2; ++moved) {
        ASSERT_EQ(Load("Knee.dct", WriteDct("", Text("note"), Recording(100))), ProcessResult::Done);
        const DictationFiles staged = work->Dictation().Files();
        const DictationFiles target = staged.InFolder(m_user.currentFolder);
        std::map<const LPath*, std::string> before;
        for (const LPath* file : {&staged.record, &staged.audio, &staged.notes})
            before[file] = ReadFileText(*file);
        work.reset();
        for (const auto& [file, text] : before) WriteFileText(*file, text);
        ASSERT_TRUE(moved < 1 || LFile::Move(staged.audio, target.audio));
        ASSERT_TRUE(moved < 2 || LFile::Move(staged.notes, target.notes));
        StagedDictation::Recover(m_user);
        EXPECT_EQ(Staged(), 0u);
        EXPECT_EQ(CountFiles(m_user.currentFolder), moved > 0 ? 3u : 0u);
        EXPECT_EQ(DictationRecord::Read(target.record).name, moved > 0 ? "Dictation 012" : "");
        DeleteDictationFiles(target);
    }
}

TEST_F(ImportTest, AnotherSessionLeavesAloneWhatIsBeingLoaded) {
    ASSERT_EQ(Load("Knee.wav", Recording(100)), ProcessResult::Done);
    StagedDictation& dictation = work->Dictation();
    Settings::Write(m_user.userFile, UserKeys::kNumber, dictation.Number());  // read before it was taken
    StagedDictation other;
    ASSERT_TRUE(other.Begin(m_user, "Other", 1));
    EXPECT_NE(other.Number(), dictation.Number());
    StagedDictation::Recover(m_user);  // its next start
    ASSERT_TRUE(dictation.Publish());
    EXPECT_EQ(DictationRecord::Read(dictation.Files().record).name, "Knee");
    EXPECT_EQ(ReadFileText(dictation.Files().audio).size(), 246u);
}
