#include "hardware/DockTransfer.h"

#include <chrono>

#include "store/SettingsKeys.h"
#include "tests/unit/TestKit.h"

// A data folder and a recorder's folder; loading is a note of the file's name.
class DockTransferTest : public testing::Test, protected DockTransfer::Host {
protected:
    using End = DockTransfer::End;

    // A file of a portable recorder, written so many seconds after 1970.
    void Put(const std::string& name, int64_t seconds, const std::string& text = "sound") {
        WriteFileText(FileOf(name), text);
        std::string path(FileOf(name).View());
        std::ranges::replace(path, '\\', '/');
        const std::chrono::sys_time<std::chrono::seconds> time{std::chrono::seconds(seconds)};
        std::filesystem::last_write_time(path, std::chrono::file_clock::from_sys(time));
    }
    LPath FileOf(const std::string& name) const { return LPath::Join(m_folder.View(), name); }
    DockTransfer::Outcome Run(const LPath& folder) {
        Settings::Write(m_settings, SettingsKeys::kDockTransferFolder, folder.View());
        m_loaded.clear();
        return DockTransfer(m_settings, m_data, *this).Run();
    }
    DockTransfer::Outcome Run() { return Run(m_folder); }

    bool RunApart(const std::function<void()>& look) override { return look(), true; }
    bool Next(const LPath&, size_t, size_t) override { return true; }
    LoadedFile Load(const LPath& file, bool sends) override {
        const std::string name(LFileNameOf(file.View()));
        m_loaded += name + (sends ? "! " : " ");
        if (m_whileLoading) m_whileLoading();
        if (name == m_broken) return LoadedFile::No;
        if (name == m_cancelled) return LoadedFile::Cancelled;
        return name == m_cut ? LoadedFile::Partly : LoadedFile::Whole;
    }

    TempFolder m_temp;
    const LPath m_data = m_temp.Folder("data"), m_folder = m_temp.Folder("recorder");
    const LPath m_settings = LPath::Join(m_data.View(), "settings.ini");
    std::string m_loaded, m_broken, m_cancelled, m_cut;
    std::function<void()> m_whileLoading;
};

TEST_F(DockTransferTest, TakesTheKindsInOrderAndNewFilesAlone) {
    Settings::Write(m_settings, SettingsKeys::kDockTransferDelete, false);
    Settings::Write(m_settings, SettingsKeys::kDockAutoSend, true);
    Put("a.mp3", 1000), Put("b.WAV", 3000), Put("c.dss", 500), Put("d.sri", 2000);
    Put("e.wave", 9000), Put("f.txt", 9000), Put("empty.wav", 9000, "");
    LFile::MakeFolder(FileOf("g.wav"));
    EXPECT_EQ(Run().loaded, 4u);
    EXPECT_EQ(m_loaded, "b.WAV! a.mp3! d.sri! c.dss! ");
    EXPECT_EQ(Settings::Read(m_settings, SettingsKeys::kDockTransferDate), 3000);
    Settings::Write(m_settings, SettingsKeys::kDockTransferNew, true);
    Put("c.dss", 3001), Put("d.sri", 3000);
    EXPECT_EQ(Run().loaded, 1u);
    EXPECT_EQ(m_loaded, "c.dss! ");
    EXPECT_EQ(Run().loaded, 0u);
}

TEST_F(DockTransferTest, AFileThatCannotBeLoadedEndsTheTransferAndIsNotNewAgain) {
    Settings::Write(m_settings, SettingsKeys::kDockTransferNew, true);
    Put("a.wav", 1000), Put("b.mp3", 5000), Put("c.dss", 2000);
    m_broken = "b.mp3";
    EXPECT_EQ(Run().end, End::NotLoaded);
    EXPECT_EQ(m_loaded, "a.wav b.mp3 ");
    EXPECT_EQ(TempFolder::Names(m_folder), (std::vector<std::string>{"b.mp3", "c.dss"}));
    EXPECT_EQ(Run().loaded, 0u) << "the time of the broken one is stored";
}

TEST_F(DockTransferTest, SaysWhatWasNotReachedAndHowToGetIt) {
    Put("a.wav", 1000), Put("b.mp3", 5000), Put("c.sri", 2000), Put("d.dss", 3000);
    m_broken = "b.mp3";
    const auto says = [this](const char* words) {
        const std::string text = DockTransferText(Run(), m_folder);
        EXPECT_NE(text.find(words), text.npos) << text;
    };
    says(
        "Further files that were not transferred: 2.\n\nThey are still in the folder. To transfer them, "
        "move");
    Settings::Write(m_settings, SettingsKeys::kDockTransferNew, true);
    says("passed over: 3. To transfer them, turn off");
    Settings::Write(m_settings, SettingsKeys::kDockTransferDate, 0);
    m_broken = "", m_cancelled = "b.mp3";
    says("Files that were not transferred: 3.\n\nThey are still in the folder. To transfer them, turn off");
}

// The recorder's file is often the only one.
TEST_F(DockTransferTest, DeletesOnlyWhatIsSafeElsewhere) {
    static const std::tuple<const char*, bool, bool, bool, bool> kCases[] = {
        {"loaded", true, false, false, true},
        {"not to be deleted", false, false, false, false},
        {"still being written", true, true, false, false},
        {"not read to its end", true, false, true, false},
    };
    for (const auto& [what, deletes, grows, isCut, isGoneAfter] : kCases) {
        Settings::Write(m_settings, SettingsKeys::kDockTransferDelete, deletes);
        m_whileLoading = [this, puts = grows] {
            if (puts) Put("a.wav", 1000, "more sound");
        };
        m_cut = isCut ? "a.wav" : "";
        Put("a.wav", 1000);
        const DockTransfer::Outcome outcome = Run();
        EXPECT_EQ(LFile::IsAbsent(FileOf("a.wav")), isGoneAfter) << what;
        EXPECT_EQ(outcome.left, deletes && !isGoneAfter) << what;
        EXPECT_EQ(DockTransferText(outcome, m_folder).empty(), outcome.left == 0) << what;
    }
}

TEST_F(DockTransferTest, TakesNothingOnTheStrengthOfSettingsThatCannotBeRead) {
    Put("a.wav", 1000);
    LFile::MakeFolder(m_settings);  // is there, and cannot be read
    EXPECT_EQ(DockTransfer(m_settings, m_data, *this).Run().end, End::SettingsHeld);
    EXPECT_EQ(m_loaded, "");
}

TEST_F(DockTransferTest, SaysWhyNothingCouldBeTransferred) {
    const std::pair<LPath, End> kCases[] = {
        {LPath(), End::NoFolder}, {FileOf("nowhere"), End::NoFolder},
        {m_data, End::OwnFolder}, {LPath::Join(m_data.View(), "00000000"), End::OwnFolder},
        {m_folder, End::Done},
    };
    for (const auto& [folder, end] : kCases) {
        const DockTransfer::Outcome outcome = Run(folder);
        EXPECT_EQ(outcome.end, end) << folder.View();
        EXPECT_FALSE(DockTransferText(outcome, folder).empty()) << folder.View();
    }
}
