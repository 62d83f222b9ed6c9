#include "store/MoveToSent.h"

#include "base/LProfile.h"
#include "store/DictationStore.h"
#include "store/Recovery.h"
#include "store/SendToSettings.h"
#include "tests/unit/store/StoreTest.h"

namespace {

class MoveToSentTest : public StoreTest {
protected:
    static QueueAnswer NotQueued(const LPath&) { return QueueAnswer::No; }
    static QueueAnswer Queued(const LPath&) { return QueueAnswer::Yes; }
    static QueueAnswer Unknown(const LPath&) { return QueueAnswer::Unknown; }
    void Recover(QueueAnswer (*isQueued)(const LPath&) = NotQueued) {
        RecoverDictations(m_user, isQueued, 4000);
    }

    LPath Journal() const { return LPath::Join(LFolderOf(m_user.userFile.View()), "moving.txt"); }

    void ExpectWhole(const DictationFiles& files, const std::string& mark, bool withNotes = true,
                     int32_t number = 12) {
        EXPECT_EQ(DictationRecord::Read(files.record).name, mark);
        EXPECT_EQ(DictationRecord::Read(files.record).number, number);
        EXPECT_TRUE(ReadFileText(files.audio).starts_with(mark + " audio")) << files.audio.c_str();
        EXPECT_EQ(LFile::Exists(files.notes), withNotes);
        EXPECT_TRUE(!withNotes || ReadFileText(files.notes).starts_with(mark + " notes"));
    }

    // Back in Current as it was, with nothing of it in Sent.
    void ExpectPutBack(bool withNotes) {
        ExpectWhole(Current(12), "new", withNotes);
        const DictationRecord record = DictationRecord::Read(Current(12).record);
        EXPECT_FALSE(record.sendDate.has_value());
        EXPECT_EQ(record.recipient + record.sendStatus, "");
        EXPECT_EQ(CountFiles(m_user.currentFolder), withNotes ? 3u : 2u);
        EXPECT_EQ(CountFiles(m_user.sentFolder), 0u);
        EXPECT_FALSE(LFile::Exists(Journal()));
    }
};

TEST_F(MoveToSentTest, MovesTheFilesAndMarksTheRecord) {
    for (bool withNotes : {true, false}) {
        MakeFiles(Current(12), "new", withNotes);
        for (const LPath& path : {Sent(12).record, Sent(12).audio, Sent(12).notes}) LFile::Delete(path);
        MakeFiles(Sent(12), "old");
        MoveToSent move(m_user, Current(12).audio, NotQueued);
        ASSERT_TRUE(move.Run("Jo (jo@a)", 5000000000));
        EXPECT_EQ(move.Sent().audio, Sent(12).audio);
        move.Commit();
        ExpectWhole(Sent(12), "new", withNotes);
        const DictationRecord record = DictationRecord::Read(Sent(12).record);
        EXPECT_EQ(record.sendDate, 5000000000);
        EXPECT_EQ(record.recipient, "Jo (jo@a)");
        EXPECT_EQ(record.sendStatus, "Sending");
        EXPECT_EQ(CountFiles(m_user.currentFolder), 0u);
        const int32_t older = withNotes ? 1 : 2;
        ExpectWhole(Sent(older), "old", true, older);
        EXPECT_EQ(CountFiles(m_user.sentFolder), withNotes ? 6u : 8u)
            << "old notes are not the new dictation's";
        EXPECT_FALSE(LFile::Exists(Journal()));
    }
}

// A folder of the file's name stands in the way, as a file that another program holds does.
TEST_F(MoveToSentTest, PutsBackWhateverWasMovedWhenAFileCannotFollow) {
    const LPath lock = Journal().WithExtension(".lck");
    for (const LPath& obstacle : {lock, Sent(12).notes, Sent(12).record, Sent(12).audio}) {
        MakeFiles(Current(12), "new");
        ASSERT_TRUE(LFile::MakeFolder(obstacle));
        MoveToSent move(m_user, Current(12).record, NotQueued);
        EXPECT_FALSE(move.Run("Jo", 1)) << obstacle.c_str();
        EXPECT_EQ(move.ConcernsAll(), obstacle == lock);
        ExpectPutBack(true);
        LFile::DeleteFolder(obstacle);
    }
    for (const LPath& missing : {Current(12).audio, Current(12).record}) {
        MakeFiles(Current(12), "new");
        LFile::Delete(missing);
        EXPECT_FALSE(MoveToSent(m_user, Current(12).record, NotQueued).Run("Jo", 1)) << missing.c_str();
        EXPECT_EQ(CountFiles(m_user.currentFolder), 2u);
        EXPECT_EQ(CountFiles(m_user.sentFolder), 0u);
    }
}

TEST_F(MoveToSentTest, PutsBackWhatWasNotCommitted) {
    MakeFiles(Current(12), "new", false);
    LProfile::Write(Current(12).record, "file", "sendstatus", "Typed");
    MakeFiles(Sent(12), "old");
    {
        MoveToSent move(m_user, Current(12).record, NotQueued);
        ASSERT_TRUE(move.Run("Jo", 1));
    }
    ExpectWhole(Current(12), "new", false);
    ExpectWhole(Sent(1), "old", true, 1);
    EXPECT_EQ(CountFiles(m_user.sentFolder), 3u);
    EXPECT_EQ(DictationRecord::Read(Current(12).record).sendStatus, "Typed") << "of an earlier sending";
    EXPECT_EQ(DictationRecord::Read(Current(12).record).recipient, "");
}

// The program ends after each of the moves in turn: notes, record, audio.
TEST_F(MoveToSentTest, TheNextStartPutsBackWhatIsNotInTheQueue) {
    for (bool withNotes : {true, false}) {
        for (int moved = 0; moved <= 3; ++moved) {
            MakeFiles(Current(12), "new", withNotes);
            WriteFileText(Journal(), withNotes ? "00000012.dat+" : "00000012.dat");
            if (moved > 0 && withNotes) LFile::Move(Current(12).notes, Sent(12).notes);
            if (moved > 1) {
                LFile::Move(Current(12).record, Sent(12).record);
                DictationRecord values;
                values.sendDate = 1;
                values.sendStatus = "Sending";
                WriteSendKeys(Sent(12).record, values);
                LProfile::Flush(Sent(12).record);
            }
            if (moved > 2) LFile::Move(Current(12).audio, Sent(12).audio);
            Recover();
            ExpectPutBack(withNotes);
        }
    }
}

// Another program held audio and notes when they were to go back; then the user recorded and typed anew.
TEST_F(MoveToSentTest, ARecordingThatCouldNotGoBackIsListedBesideTheNextOne) {
    MakeFiles(Current(12), "new");
    LFile::Move(Current(12).audio, Sent(12).audio);
    LFile::Move(Current(12).notes, Sent(12).notes);
    WriteFileText(Journal(), "00000012.dat+");
    WriteFileText(Current(12).audio, "second audio");
    WriteFileText(Current(12).notes, std::string("typed meanwhile\0", 16));
    MoveToSent again(m_user, Current(12).record, NotQueued);
    ASSERT_TRUE(again.Run("Jo", 2));
    again.Commit();
    EXPECT_EQ(ReadFileText(Sent(12).audio), "second audio");
    EXPECT_EQ(ReadFileText(Sent(12).notes), std::string("typed meanwhile\r\n\r\nnew notes\0", 29));
    EXPECT_TRUE(ReadFileText(Current(1).audio).starts_with("new audio"));
    EXPECT_EQ(DictationRecord::Read(Current(1).record).name, "new (2)");
    EXPECT_EQ(CountFiles(m_user.currentFolder), 2u);
    EXPECT_EQ(CountFiles(m_user.sentFolder), 3u);
}

TEST_F(MoveToSentTest, ASentDictationComesBackWholeAndTheOneOfItsNumberStays) {
    MakeFiles(Sent(12), "sent");
    LProfile::Write(Sent(12).record, "file", "number", "99");
    MakeFiles(Current(12), "other");
    MoveToSent move(m_user, Sent(12).record, NotQueued);
    ASSERT_TRUE(move.BringBack()) << move.Reason();
    ExpectWhole(Current(12), "sent");
    ExpectWhole(Current(1), "other", true, 1);
    EXPECT_EQ(CountFiles(m_user.sentFolder), 0u);
    EXPECT_FALSE(LFile::Exists(Journal()));
}

// A folder of the file's name stands in the way, as a file that another program holds does.
TEST_F(MoveToSentTest, WhatCannotComeBackStaysAmongTheSentOnes) {
    MakeFiles(Sent(12), "sent");
    for (auto isQueued : {Queued, Unknown})
        EXPECT_FALSE(MoveToSent(m_user, Sent(12).record, isQueued).BringBack()) << "of the queue";
    for (const char* blocked : {".wav", ".dat", ".txt"}) {
        const LPath obstacle = Current(12).record.WithExtension(blocked);
        ASSERT_TRUE(LFile::MakeFolder(obstacle));
        EXPECT_FALSE(MoveToSent(m_user, Sent(12).record, NotQueued).BringBack()) << blocked;
        LFile::DeleteFolder(obstacle);
        ExpectWhole(Sent(12), "sent");
        EXPECT_EQ(CountFiles(m_user.currentFolder), 0u);
        EXPECT_FALSE(LFile::Exists(Journal()));
    }
    LFile::Delete(Sent(12).record);
    EXPECT_FALSE(MoveToSent(m_user, Sent(12).record, NotQueued).BringBack());
}

// The program ends after each of the moves in turn: audio, record, notes.
TEST_F(MoveToSentTest, TheNextStartFinishesAWayBackThatWasBegun) {
    for (int moved = 0; moved <= 3; ++moved) {
        for (const LPath& path : {Current(12).record, Current(12).audio, Current(12).notes})
            LFile::Delete(path);
        MakeFiles(Sent(12), "sent");
        LProfile::Write(Sent(12).record, "file", "sendstatus", "Sent");
        LProfile::Flush(Sent(12).record);
        WriteFileText(Journal(), "00000012.dat+");
        if (moved > 0) LFile::Move(Sent(12).audio, Current(12).audio);
        if (moved > 1) LFile::Move(Sent(12).record, Current(12).record);
        if (moved > 2) LFile::Move(Sent(12).notes, Current(12).notes);
        Recover();
        ExpectWhole(moved == 0 ? Sent(12) : Current(12), "sent");
        EXPECT_EQ(CountFiles(moved == 0 ? m_user.currentFolder : m_user.sentFolder), 0u);
        EXPECT_FALSE(LFile::Exists(Journal()));
    }
}

TEST_F(MoveToSentTest, NothingIsDecidedWhileTheQueueOrARecordCannotBeRead) {
    MakeFiles(Sent(12), "new");
    LProfile::Write(Sent(12).record, "file", "sendstatus", "Sending");
    MakeFiles(Current(13), "other");
    WriteFileText(Journal(), "00000012.dat+");
    Recover(Unknown);
    EXPECT_EQ(ReadFileText(Journal()), "00000012.dat+");
    MoveToSent other(m_user, Current(13).record, Unknown);
    EXPECT_FALSE(other.Run("Jo", 1)) << "its journal would take the place of the other's";
    EXPECT_STRNE(other.Reason(), "");
    LFile::Delete(Sent(12).record);
    ASSERT_TRUE(LFile::MakeFolder(Sent(12).record));
    Recover();
    EXPECT_TRUE(LFile::Exists(Journal()) && LFile::Exists(Sent(12).audio));
}

TEST_F(MoveToSentTest, TheNextStartCompletesWhatIsInTheQueueOrSent) {
    for (const char* status : {"Sending", "Sent", "Send Failed"}) {
        MakeFiles(Sent(12), "new");
        LProfile::Write(Sent(12).record, "file", "sendstatus", status);
        WriteFileText(Journal(), "00000012.dat+");
        Recover(std::string_view(status) == "Sending" ? Queued : NotQueued);
        ExpectWhole(Sent(12), "new");
        EXPECT_EQ(CountFiles(m_user.sentFolder), 3u);
        EXPECT_FALSE(LFile::Exists(Journal()));
    }
}

TEST_F(MoveToSentTest, AJournalOfRubbishMovesNothing) {
    MakeFiles(Sent(12), "sent");
    const std::string rubbish[] = {"", "..\\00000012.dat", "x", "00000012.dat\r\n00000013.dat",
                                   std::string(100000, '0')};
    for (const std::string& text : rubbish) {
        WriteFileText(Journal(), text);
        Recover();
        ExpectWhole(Sent(12), "sent");
        EXPECT_FALSE(LFile::Exists(Journal())) << text;
    }
}

TEST_F(MoveToSentTest, RecordAndAudioFindEachOtherWithoutAJournal) {
    // Record gone ahead to Sent, audio left behind.
    MakeFiles(Current(12), "new");
    LFile::Move(Current(12).record, Sent(12).record);
    LFile::Move(Current(12).notes, Sent(12).notes);
    LProfile::Write(Sent(12).record, "file", "sendstatus", "Sending");
    LProfile::Flush(Sent(12).record);
    Recover();
    ExpectPutBack(true);
    // Record brought back from Sent, audio still there.
    LFile::Move(Current(12).audio, Sent(12).audio);
    Recover();
    ExpectPutBack(true);
    // Record lost altogether.
    LFile::Delete(Current(12).record);
    Recover();
    EXPECT_EQ(DictationRecord::Read(Current(12).record).name, "Dictation 012");
    EXPECT_GT(DictationRecord::Read(Current(12).record).date.value_or(0), 4000);
}

TEST_F(MoveToSentTest, RecoveryLeavesWholeDictationsAndForeignFilesAlone) {
    MakeFiles(Current(12), "new");
    MakeFiles(Sent(12), "old");
    MakeFiles(Current(13), "unrecorded", false);
    LFile::Delete(Current(13).audio);
    WriteFileText(LPath::Join(m_user.currentFolder.View(), "memo.wav"), std::string(100, 'x'));
    WriteFileText(Current(14).audio, std::string(46, 'x'));  // a header and no sound
    Recover();
    ExpectWhole(Current(12), "new");
    ExpectWhole(Sent(12), "old");
    EXPECT_EQ(CountFiles(m_user.currentFolder), 6u);
}

TEST_F(MoveToSentTest, WhatWasBeingWrittenIsFinishedOrDropped) {
    const std::string wave(47, 'w'), cut(50, 'c');
    const std::string notes("newer\0", 6), record = "[file]\r\nname=a\r\n", old = "old";
    const Bytes bytes = SendToSettings().ToBytes();
    const std::string recipient(bytes.begin(), bytes.end());
    const std::tuple<const char*, const char*, std::string, std::string, std::string> kCases[] = {
        {"00000007\\Current\\00000001.txt", "00000007\\Current\\00000001.tx~", "", notes, notes},
        {"00000007\\Current\\00000002.txt", "00000007\\Current\\00000002.tx~", "", "hal", ""},
        {"00000007\\Current\\00000003.txt", "00000007\\Current\\00000003.tx~", old, notes, notes},
        {"00000007\\Current\\00000004.txt", "00000007\\Current\\00000004.tx~", old, "newe", old},
        {"00000007\\Current\\00000005.dat", "00000007\\Current\\00000005.dat~", "", record, record},
        {"00000007\\Sent\\00000006.dat", "00000007\\Sent\\00000006.dat~", record, "[fi", record},
        {"00000007\\user.dat", "00000007\\user.dat~", "", "", ""},
        {"00000007\\rec0.dat", "00000007\\rec0.re~", "", recipient, recipient},
        {"00000007\\rec1.dat", "00000007\\rec1.re~", "", recipient.substr(0, 900), ""},
        {"00000007\\rec2.dat", "00000007\\rec2.re~", old, recipient, old},
        {"settings.ini", "settings.ini~", "", record, record},
        {"bgsend.dat", "bgsend.dat~", record, "[", record},
        {"no file", "Temp.sta", "", "report", ""},
        {"00000007\\moving.txt", "00000007\\moving.mo~", "", "00000005.dat", ""},
        {"00000007\\Current\\00000005.wav", "00000007\\Current\\00000005.tmp", "", wave, wave},
        {"00000007\\Current\\00000007.wav", "00000007\\Current\\00000007.tmp", "", cut, cut},
        {"00000007\\Current\\00000004.wav", "00000007\\Current\\00000004.tmp", "", "RIFF", ""},
    };
    for (const auto& [path, left, before, written, expected] : kCases) {
        if (!before.empty()) WriteFileText(m_temp.File(path), before);
        WriteFileText(m_temp.File(left), written);
    }
    MakeFiles(Current(12), "kept");
    WriteFileText(Current(12).audio.WithExtension(".tmp"), wave);
    WriteFileText(Current(13).record, record);
    WriteFileText(Current(13).audio, "");
    const LPath foreign = LPath::Join(m_user.currentFolder.View(), "memo.tmp");
    WriteFileText(foreign, wave);
    Recover();
    for (const auto& [path, left, before, written, expected] : kCases) {
        EXPECT_EQ(ReadFileText(m_temp.File(path)), expected) << path;
        EXPECT_FALSE(LFile::Exists(m_temp.File(left))) << left;
    }
    ExpectWhole(Current(12), "kept");
    EXPECT_FALSE(LFile::Exists(Current(13).audio)) << "not even a header";
    EXPECT_TRUE(LFile::Exists(foreign));
    EXPECT_FALSE(LFile::Exists(Current(12).audio.WithExtension(".tmp")));
}

}  // namespace
