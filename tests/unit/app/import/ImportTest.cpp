#include <random>

#include "app/import/ForeignSource.h"
#include "app/import/ImportProcess.h"
#include "app/import/ImportSelection.h"
#include "base/LProcessApart.h"
#include "base/LThread.h"
#include "store/DictationStore.h"
#include "tests/unit/send/SendTest.h"
#include "tests/unit/store/StoreTest.h"

namespace {

// Gives out blocks of these counts of frames.
struct Blocks final : ForeignPcm {
    explicit Blocks(std::vector<int32_t> c) : counts(std::move(c)) {}
    int32_t Read(int16_t* samples, int32_t frames) override {
        const int32_t count = counts.empty() ? 0 : counts.front();
        if (!counts.empty()) counts.erase(counts.begin());
        std::fill_n(samples, std::clamp(count, 0, frames), int16_t{-32768});
        return count;
    }
    std::vector<int32_t> counts;
};

struct Decoders final : ForeignDecoders {
    LSoundSource OpenRealAudio(const LPath&, std::string& error) override {
        return error = "No player", LSoundSource();
    }
    LSoundSource OpenDss(const LPath&, std::string&) override {
        return LSoundSource::Make<ForeignSource>(std::make_unique<Blocks>(dss), ForeignFormat{8000, 1, 0});
    }
    bool ConvertVoiceIt(const LPath&, const LPath& wave, std::string&) override {
        return WriteFileText(wave, std::string(sri.begin(), sri.end()));
    }
    std::vector<int32_t> dss = {700, 300};
    Bytes sri = Recording(500);
};

// Two seconds of silence, 128 kbit/s and 44,100 Hz.
Bytes SilentMp3() {
    Bytes file;
    for (int i = 0; i < 76; ++i) file = file + Hex("FF FB 90 64") + Bytes(413);
    return file;
}

struct ImportTest : StoreTest {
    ProcessResult Load(const std::string& name, const Bytes& contents,
                       std::unique_ptr<Decoders> decoders = std::make_unique<Decoders>()) {
        const LPath source = m_temp.File(name);
        WriteFileText(source, std::string(contents.begin(), contents.end()));
        context.errors.clear(), context.progress.clear();
        work = std::make_unique<ImportProcess>(m_user, source, *FindImportRow(name), std::move(decoders));
        const ProcessResult result = work->Process(context);
        LFile::Delete(source);
        return result;
    }
    size_t Staged() const { return CountFiles(LPath::Join(LFolderOf(m_user.userFile.View()), "Import\\")); }

    NotingContext context;
    std::unique_ptr<ImportProcess> work;
};

}  // namespace

TEST_F(ImportTest, EachRouteGivesAWholeDictationOrItsReason) {
    auto broken = std::make_unique<Decoders>(), cut = std::make_unique<Decoders>(),
         none = std::make_unique<Decoders>();
    broken->dss = {500, -1};
    cut->sri.resize(600);
    none->dss = {};
    struct {
        const char* name;
        Bytes contents;
        int64_t bytes;  // of the audio
        const char* error;
        std::unique_ptr<Decoders> decoders = std::make_unique<Decoders>();
    } cases[] = {
        {"a.WAV", Recording(100), 246, ""},
        {"a.wav", WaveFile(PcmFormat(24) + Chunk("data", Bytes(300))), 346, ""},
        {"a.wav", Recording(0), -1, "holds no sound"},
        {"a.wav", SilentMp3(), -1, "no WAV file"},
        {"a.wav", WaveFile(Chunk("fmt ", FormatRecord(0x7777, 1, 8000, 8)) + Chunk("data", Bytes(9))), -1,
         "codec"},
        {"a.mp3", SilentMp3(), 46 + 76 * 1152 * 4, ""},
        {"a.mp3", Recording(100), -1, "No player"},
        {"a.dss", Bytes(1), 46 + 2000, ""},
        {"a.dss", Bytes(1), -1, "to its end", std::move(broken)},
        {"a.dss", Bytes(1), -1, "no sound", std::move(none)},
        {"a.sri", Bytes(1), 1046, ""},
        {"a.sri", Bytes(1), -1, "to its end", std::move(cut)},
        {"a.dct", WriteDct("", Text("note"), Recording(100)), 246, ""},
        {"a.dct", Bytes(9), -1, "length error"},
    };
    int32_t number = 0;
    for (auto& c : cases) {
        const bool isDone = Load(c.name, c.contents, std::move(c.decoders)) == ProcessResult::Done;
        EXPECT_NE((context.errors.empty() ? "" : context.errors.back()).find(c.error), std::string::npos)
            << c.name << c.error;
        EXPECT_EQ(isDone, c.bytes > 0) << c.name << c.error;
        ++number;
        EXPECT_FALSE(Current(number).AnyExists()) << "half of it in sight";
        if (!isDone) continue;
        ASSERT_TRUE(work->Dictation().Publish());
        EXPECT_EQ(LFile(Current(number).audio, LFile::Open::Read).Size(), c.bytes) << c.name;
        EXPECT_EQ(DictationRecord::Read(Current(number).record).number, number)
            << "a failure uses its number";
    }
    EXPECT_EQ(Staged(), 0u);
}

// The program ends after each step of the move in turn, and before it.
TEST_F(ImportTest, AnEndInBetweenLeavesNothingOrAWholeDictation) {
    for (int moved = 0; moved <= 2; ++moved) {
        ASSERT_EQ(Load("Knee.dct", WriteDct("", Text("note"), Recording(100))), ProcessResult::Done);
        const DictationFiles staged = work->Dictation().Files(),
                             target = staged.InFolder(m_user.currentFolder);
        std::map<std::string, std::string> before;
        for (const LPath& path : {staged.record, staged.audio, staged.notes})
            before[path.c_str()] = ReadFileText(path);
        work.reset();
        for (const auto& [path, text] : before) WriteFileText(LPath(path), text);
        ASSERT_TRUE(moved < 1 || LFile::Move(staged.audio, target.audio));
        ASSERT_TRUE(moved < 2 || LFile::Move(staged.notes, target.notes));
        StagedDictation::Recover(m_user);
        EXPECT_EQ(Staged(), 0u);
        EXPECT_EQ(CountFiles(m_user.currentFolder), moved > 0 ? 3u : 0u);
        EXPECT_EQ(DictationRecord::Read(target.record).name, moved > 0 ? "Dictation 012" : "");
        for (const LPath& path : {target.record, target.audio, target.notes}) LFile::Delete(path);
    }
}

TEST_F(ImportTest, DamagedFilesLeaveNothingBehind) {
    const std::pair<const char*, Bytes> seeds[] = {{"a.wav", Recording(2000)},
                                                   {"a.mp3", SilentMp3()},
                                                   {"a.dct", WriteDct("", Text("note"), Recording(2000))}};
    std::mt19937 chance(10);
    const auto below = [&](size_t n) { return size_t{chance()} % n; };
    for (int i = 0; i < 2000; ++i) {
        auto [name, file] = seeds[below(3)];
        for (size_t flips = below(9); flips > 0; --flips)
            file[below(below(2) ? 64 : file.size())] = static_cast<uint8_t>(chance());
        if (below(4) == 0) file.resize(below(file.size()));
        if (below(8) == 0) name = seeds[below(3)].first;
        context.cancelAfter = below(8) == 0 ? static_cast<int>(below(9)) : -1;
        const ProcessResult result = Load(name, file);
        ASSERT_TRUE(result != ProcessResult::Failed || !context.errors.empty()) << i;
        if (result == ProcessResult::Done && i % 2 == 0) {
            ASSERT_TRUE(work->Dictation().Publish());
            ASSERT_TRUE(DeleteDictationFiles(work->Dictation().Files()));
        }
        work.reset();
        ASSERT_EQ(Staged() + CountFiles(m_user.currentFolder), 0u) << i;
    }
}

TEST(ImportSelection, ReadsOnePathOrAFolderWithNames) {
    static const struct {
        std::string_view buffer;
        std::string folder, files;
    } kCases[] = {
        {std::string_view("C:\\in\\a.wav\0\0x", 14), "C:\\in\\", "C:\\in\\a.wav;"},
        {std::string_view("C:\\in\0a.wav\0b c.mp3\0\0x", 22), "C:\\in", "C:\\in\\a.wav;C:\\in\\b c.mp3;"},
        {std::string_view("C:\\\0a.wav\0b.wav", 15), "C:\\", "C:\\a.wav;C:\\b.wav;"},
        {std::string_view("\0a", 2), "", ""},
    };
    for (const auto& c : kCases) {
        const ImportSelection chosen = ImportSelection::Parse(c.buffer);
        std::string files;
        for (const LPath& file : chosen.files) files += std::string(file.View()) + ";";
        EXPECT_EQ(std::string(chosen.folder.View()) + "|" + files, c.folder + "|" + c.files);
    }
}

TEST(ProcessApart, IsLeftBehindByACancelWhenItsCallDoesNotReturn) {
    struct Late final : LProcess {
        ProcessResult Process(ProcessContext& told) override {
            told.SetProgress(0.5);
            go->Wait(kWaitForever);
            return told.CancelRequested() ? ProcessResult::Stopped : ProcessResult::Done;
        }
        std::shared_ptr<LSignalObject> go = std::make_shared<LSignalObject>();
    };
    NotingContext context;
    for (const bool isLate : {false, true}) {
        const auto late = std::make_shared<Late>();
        const auto go = late->go;
        if (!isLate) go->Signal();
        context.cancelAt = isLate ? 0.5 : 2;
        EXPECT_EQ(LProcessApart(late).Process(context),
                  isLate ? ProcessResult::Stopped : ProcessResult::Done);
        EXPECT_EQ(context.progress.back(), 0.5);
        go->Signal();
    }
}
