#include "store/DictationStore.h"

#include "app/window/DictationRow.h"
#include "base/LProfile.h"
#include "base/LTime.h"
#include "store/DictationRecord.h"
#include "store/NotesFile.h"
#include "store/SettingsKeys.h"
#include "tests/unit/store/StoreTest.h"

using DictationStoreTest = StoreTest;

TEST_F(DictationStoreTest, NumbersWrapToZeroAndNeverNameAnOldDictationAgain) {
    EXPECT_EQ(NextDictationNumber(m_user), 1);
    EXPECT_EQ(NextDictationNumber(m_user), 2);
    Settings::Write(m_user.userFile, UserKeys::kNumber, 99999999);
    EXPECT_EQ(NextDictationNumber(m_user), 99999999);
    EXPECT_EQ(NextDictationNumber(m_user), 0);
    WriteFileText(Current(1).record, "");
    WriteFileText(Current(2).audio, "");
    WriteFileText(Sent(3).notes, "");
    WriteFileText(Sent(4).audio, "");
    for (int32_t lost : {1, -7}) {
        Settings::Write(m_user.userFile, UserKeys::kNumber, lost);
        EXPECT_EQ(NextDictationNumber(m_user), 5);
        EXPECT_EQ(NextDictationNumber(m_user), 6);
    }
}

TEST_F(DictationStoreTest, ALostCounterTakesNoTimeWithManyDictations) {
    for (int32_t number = 1; number <= 2000; ++number)
        WriteFileText((number % 2 ? Current(number) : Sent(number)).record, "");
    const uint32_t begun = LTickMs();
    EXPECT_EQ(NextDictationNumber(m_user), 2001);
    EXPECT_LT(LTickMs() - begun, 1000u);
}

// A folder of the file's name can no more be read than a file that another program holds.
TEST_F(DictationStoreTest, WhatCannotBeReadIsNeitherNumberedNorWritten) {
    ASSERT_TRUE(LFile::MakeFolder(m_user.userFile));
    EXPECT_FALSE(NextDictationNumber(m_user).has_value());
    EXPECT_FALSE(MakeDictation(m_user, 1).has_value());
    ASSERT_TRUE(LFile::MakeFolder(Current(12).record));
    const DictationRow row = LoadDictationRow(Current(12).record);
    EXPECT_TRUE(row.isUnreadable);
    EXPECT_EQ(row.number, 12);
    EXPECT_EQ(row.name, "00000012");
    for (int32_t number : {12, 13}) {
        EXPECT_FALSE(StoreName(Current(number).record, "x"));
        EXPECT_FALSE(StorePriority(Current(number).record, "Low"));
    }
    EXPECT_EQ(CountFiles(m_user.currentFolder), 0u) << "a record that is gone is not begun anew";
}

TEST_F(DictationStoreTest, ControlBytesOfANameAreShownAsBlanksAndStayInTheFile) {
    WriteFileText(Current(7).record,
                  "[file]\r\nnumber=7\r\nname=A\x01"
                  "B\tC\x7F\xE4\r\n");
    const std::string kept = ReadFileText(Current(7).record);
    EXPECT_EQ(LoadDictationRow(Current(7).record).name, "A B C\x7F\xE4");
    EXPECT_EQ(ReadFileText(Current(7).record), kept);
}

TEST_F(DictationStoreTest, ANewDictationIsNamedAfterItsLastThreeDigits) {
    Settings::Write(m_user.userFile, UserKeys::kNumber, 1007);
    const std::optional<NewDictation> created = MakeDictation(m_user, 5000000000);
    ASSERT_TRUE(created.has_value());
    EXPECT_EQ(LFileNameOf(created->files.audio.View()), "00001007.wav");
    const DictationRecord record = DictationRecord::Read(created->files.record);
    EXPECT_EQ(record.name, "Dictation 007");
    EXPECT_EQ(record.number, 1007);
    EXPECT_EQ(record.date, 5000000000);
    EXPECT_EQ(record.priority, "Normal");
    CurrentUser elsewhere = m_user;
    elsewhere.currentFolder = m_temp.File("no such folder\\");
    EXPECT_FALSE(MakeDictation(elsewhere, 0).has_value());
}

TEST_F(DictationStoreTest, ARecordThatWasCutOffGetsTheNumberOfItsName) {
    const LPath path = Current(42).record;
    WriteFileText(path, "[file]\r\nname=Mrs Smith\r\n");
    DictationRecord record = DictationRecord::Read(path);
    EXPECT_FALSE(record.number.has_value());
    RepairRecord(path, record, 77);
    EXPECT_EQ(record.number, 42);
    record = DictationRecord::Read(path);
    EXPECT_EQ(record.number, 42);
    EXPECT_EQ(record.date, 77);
    Settings::Write(path, RecordKeys::kNumber, 5);
    record = DictationRecord::Read(path);
    RepairRecord(path, record, 99);
    EXPECT_EQ(record.number, 5) << "a number that is there stays, whatever the name says";
}

TEST_F(DictationStoreTest, DeletingTakesAllThreeFilesAndWhatWasLeftBesideThem) {
    MakeFiles(Current(12), "a");
    for (const char* extension : {".tmp", ".tx~", ".dat~", ".bad1"})
        WriteFileText(Current(12).record.WithExtension(extension), "x");
    EXPECT_TRUE(DeleteDictationFiles(Current(12)));
    EXPECT_EQ(CountFiles(m_user.currentFolder), 0u);
}

TEST_F(DictationStoreTest, OneListingTellsWhichFilesThereAreAndHowLongTheyAre) {
    WriteFileText(Current(1).record, "");
    WriteFileText(Current(1).audio, "123");
    for (const char* name : {"00000001.BAD1", "00000012.Dat", "00000001-dat.old", "1.data"})
        WriteFileText(LPath::Join(m_user.currentFolder.View(), name), "x");
    LFile::MakeFolder(Current(3).record);
    const FolderListing listing(m_user.currentFolder);
    EXPECT_EQ(listing.Records().size(), 2u);
    EXPECT_EQ(listing.SizeOf("00000001.WAV"), 3);
    EXPECT_EQ(listing.SizeOf(Current(12).record.View()), 1);
    EXPECT_FALSE(listing.SizeOf(Current(3).record.View()).has_value()) << "a folder";
    EXPECT_EQ(listing.OfBaseName(Current(1).notes).size(), 3u);
    EXPECT_TRUE(FolderListing(m_temp.File("no such folder")).Records().empty());
}

TEST_F(DictationStoreTest, OldSentFilesGoUnlessTheyHaveNoOtherHome) {
    MakeFiles(Sent(12), "old");
    LProfile::Write(Sent(12).record, "file", "sendstatus", "Typed");
    MakeFiles(Sent(13), "waiting");
    MakeFiles(Sent(16), "cut off");
    WriteFileText(LPath::Join(m_user.sentFolder.View(), ".hidden"), "x");
    MakeFiles(Sent(14), "failed", false);
    LProfile::Write(Sent(14).record, "file", "sendstatus", "Send Failed");
    WriteFileText(Sent(15).audio, std::string(100, 'x'));  // without a record
    const uint64_t unit = uint64_t{1} << 32;
    const uint64_t now = LNowFileTime();
    const LPath waiting = Sent(13).audio;
    const auto isQueued = [&](const LPath& audio) {
        return audio == waiting ? QueueAnswer::Unknown : QueueAnswer::No;
    };
    DeleteOldDictations(m_user.sentFolder, 30, now + 30 * 202 * unit - unit, isQueued);
    DeleteOldDictations(m_user.sentFolder, 0, now + 10000 * 202 * unit, isQueued);
    EXPECT_EQ(CountFiles(m_user.sentFolder), 13u);
    DeleteOldDictations(m_user.sentFolder, 30, now + 30 * 202 * unit + unit, isQueued);
    EXPECT_FALSE(Sent(12).AnyExists());
    EXPECT_EQ(CountFiles(m_user.sentFolder), 10u);
}

TEST_F(DictationStoreTest, TheDiskIsLowBelowTheThresholdInMegabytes) {
    EXPECT_TRUE(IsDiskLow(uint64_t{32 * 1024 - 1}, 32));
    EXPECT_FALSE(IsDiskLow(uint64_t{32 * 1024}, 32));
    EXPECT_TRUE(IsDiskLow(uint64_t{5} << 30, INT32_MAX)) << "more megabytes than 32 bits hold in KB";
    EXPECT_FALSE(IsDiskLow(0, -1));
}

TEST_F(DictationStoreTest, NotesEndInOneZeroByteAndShowAsOneLine) {
    const LPath notes = Current(1).notes;
    std::string text;
    EXPECT_TRUE(NotesFile::Read(notes, text)) << "no file is an empty text";
    EXPECT_TRUE(NotesFile::Write(notes, "\r\nline\ttwo"));
    EXPECT_EQ(ReadFileText(notes), std::string("\r\nline\ttwo\0", 11));
    EXPECT_EQ(NotesFile::Preview(notes), "  line two");
    WriteFileText(notes, std::string("abc\0def", 7));
    EXPECT_EQ(NotesFile::Preview(notes), "abc");
    EXPECT_TRUE(NotesFile::Read(notes, text));
    EXPECT_EQ(text, "abc");
    WriteFileText(notes, std::string(500, '\xE4'));
    EXPECT_EQ(NotesFile::Preview(notes), std::string(127, '\xE4'));
    EXPECT_EQ(CountFiles(m_user.currentFolder), 1u);
}
