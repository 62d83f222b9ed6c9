#include "send/SendItem.h"

#include "send/SendError.h"
#include "tests/unit/send/SendTest.h"

namespace {

class SendItemTest : public testing::Test {
protected:
    ProcessResult Send(const LPath& dictation, const LPath& recipient) {
        const SendQueueEntry entry{dictation, recipient, 0, true};
        return SendItem(entry, DataFolder::FromText(world.data.View()), nullptr, context).Send();
    }
    std::string Error() const { return context.errors.empty() ? "" : context.errors[0]; }

    SendWorld world;
    NotingContext context;
};

const std::vector<std::string> kThreeFiles = {"00000005.dat", "00000005.txt", "00000005.wav"};

}  // namespace

TEST_F(SendItemTest, DeliversADctFileWithEverythingInItInPlaceOfWhatAnEarlierRunLeft) {
    const LPath userFile = UserFilePath(world.data, 0);
    Settings::Write(userFile, UserKeys::kName, "Ann");
    Settings::Write(userFile, UserKeys::kAddress[3], "UK");
    const LPath dictation = world.AddDictation(5);
    Settings::Write(world.FilesOf(5).record, RecordKeys::kPriority, "Low");
    const LPath stale[] = {LPath::Join(world.sent.View(), "00000005.tmp"),
                           LPath::Join(world.sent.View(), "dct00000-00005.dct")};
    for (const LPath& path : stale) ASSERT_TRUE(WriteFileText(path, std::string(100000, 'x')));
    ASSERT_EQ(Send(dictation, world.AddRecipient(0, world.ToShare())), ProcessResult::Done);

    const std::string file = world.Delivered("dct00000-00005.dct");
    const std::string names = "\x08Letter 5\x03" + std::string("Ann");
    EXPECT_EQ(file.substr(22, names.size()), names);
    const std::string rest("\x02UK\x0A\x05\0\0\0HelloRIFF", 17);
    // 4000 frames of 8 bits behind a head of 46 bytes.
    EXPECT_EQ(file.find(rest) + rest.size() - 4, file.size() - 4046);
    EXPECT_EQ(world.Status(5), "Sent");
    EXPECT_EQ(world.SentFiles(), kThreeFiles);
    EXPECT_TRUE(context.errors.empty());
    EXPECT_TRUE(std::ranges::is_sorted(context.progress));
    EXPECT_NEAR(context.progress.back(), 1.0, 1e-9);
}

TEST_F(SendItemTest, ADctFileCarriesOneChannelWhateverTheFormatAndAWaveFileAsManyAsItSays) {
    SendToSettings recipient = world.ToShare();
    recipient.waveFormat = LWaveFileFormat::Pcm(16, 2, 16000);
    const LPath dictation = world.AddDictation(5);
    ASSERT_EQ(Send(dictation, world.AddRecipient(0, recipient)), ProcessResult::Done);
    const std::string head("\1\0\1\0\x80\x3E\0\0\0\x7D\0\0\2\0\x10\0", 16);  // of 16000 Hz, mono
    EXPECT_NE(world.Delivered("dct00000-00005.dct").find(head), std::string::npos);
    recipient.flags = SendToSettings::kSendWave;
    Settings::Write(world.FilesOf(5).record, RecordKeys::kSendStatus, "");
    ASSERT_EQ(Send(dictation, world.AddRecipient(0, recipient)), ProcessResult::Done);
    EXPECT_EQ(world.Delivered("wav00000-00005.wav").substr(22, 1), "\2");
}

// A folder of the file's name can no more be read than a file that another program holds.
TEST_F(SendItemTest, NothingIsSentInTheNameOfNobody) {
    const LPath dictation = world.AddDictation(5);
    const LPath recipient = world.AddRecipient(0, world.ToShare());
    const LPath byMail = world.AddRecipient(1, SendToSettings());
    const LPath settings = DataFolder::FromText(world.data.View()).settingsFile;
    for (const LPath& path :
         {world.FilesOf(5).record, world.FilesOf(5).notes, UserFilePath(world.data, 0), settings}) {
        context.errors.clear();
        const std::string text = ReadFileText(path);
        LFile::Delete(path);
        ASSERT_TRUE(LFile::MakeFolder(path));
        EXPECT_EQ(Send(dictation, path == settings ? byMail : recipient), ProcessResult::Stopped)
            << path.c_str();
        EXPECT_NE(Error().find("It stays in the queue"), std::string::npos);
        LFile::DeleteFolder(path);
        if (!text.empty()) WriteFileText(path, text);
    }
    EXPECT_TRUE(TempFolder::Names(world.share).empty());
}

TEST_F(SendItemTest, SendsARecordingThatACrashCutOffWhole) {
    SendToSettings recipient = world.ToShare();
    recipient.flags = SendToSettings::kSendWave;
    const LPath dictation = world.AddDictation(5, Recording(20000, true));
    ASSERT_EQ(Send(dictation, world.AddRecipient(0, recipient)), ProcessResult::Done);
    const std::string file = world.Delivered("wav00000-00005.wav");
    ASSERT_EQ(file.size(), 46u + 20000);
    EXPECT_EQ(file.substr(42, 4), std::string("\x20\x4E\0\0", 4));
    EXPECT_EQ(world.SentFiles(), kThreeFiles);
}

TEST_F(SendItemTest, TellsTheUserAndTheRecordWhatFailed) {
    int32_t index = 0;
    const auto recipient = [&](uint32_t method, const char* folder = "share", uint32_t tag = 1) {
        SendToSettings settings;
        settings.method = method;
        settings.folder = world.temp.File(folder).View();
        if (tag != 1) settings.waveFormat = LWaveFileFormat(FormatRecord(tag, 1, 8000, 8));
        return world.AddRecipient(index++, settings);
    };
    const LPath toNowhere = recipient(1);
    ASSERT_TRUE(world.ToShare().Save(toNowhere));  // without a folder
    const char kUnable[] = "Unable to send the dictation.";
    Settings::Write(DataFolder::FromText(world.data.View()).settingsFile, SettingsKeys::kUseMapi, false);
    const char kNoMail[] = "Unable to connect to the mail server";
    const char kNoCopy[] = "Unable to copy files over network";  // counts as sent all the same
    const std::tuple<const char*, LPath, const char*, const char*, const char*> cases[] = {
        {"recipient gone", RecipientPath(world.data, 0, 70), "", "Send Failed", kUnable},
        {"audio gone", recipient(1), "00000005.wav", "", kUnable},
        {"e-mail", recipient(0), "", "Send Failed", kNoMail},
        {"no method", recipient(9), "", "Send Failed", kUnable},
        {"no codec", recipient(1, "share", 0x7777), "", "", "Unable open temporary compressed wav file.\n\n"},
        {"no recipient", world.FilesOf(5).record, "", "Send Failed", kUnable},
        {"share gone", recipient(1, "away"), "", "Sent", kNoCopy},
        {"no share", toNowhere, "", "Sent", kNoCopy},
    };
    for (const auto& [name, to, missingFile, status, error] : cases) {
        const LPath dictation = world.AddDictation(5);
        Settings::Write(world.FilesOf(5).record, RecordKeys::kSendStatus, "");
        LFile::Delete(LPath::Join(world.sent.View(), missingFile));
        context.errors.clear();
        EXPECT_EQ(Send(dictation, to), error == kNoCopy ? ProcessResult::Done : ProcessResult::Failed);
        EXPECT_EQ(world.Status(5), status) << name;
        EXPECT_TRUE(Error().starts_with(error)) << name << ": " << Error();
        EXPECT_LE(Error().size(), 259u) << name;
        EXPECT_EQ(world.SentFiles().size(), *missingFile ? 2u : 3u) << name;
    }
}

// The copy that was begun is completed when the dictation is sent again.
TEST_F(SendItemTest, AShareThatGoesAwayDuringTheCopyIsToldAndTakesTheDictationWhenItIsBack) {
    struct Unplugged final : NotingContext {
        void SetProgress(double fraction) override {
            if (fraction > 0.6) LFile::Move(share, away);
        }
        LPath share, away;
    } unplugged;
    unplugged.share = world.share.WithoutSeparator();
    unplugged.away = world.temp.File("away");
    const LPath dictation = world.AddDictation(5, Recording(400000));
    const SendQueueEntry entry{dictation, world.AddRecipient(0, world.ToShare()), 0, true};
    const DataFolder data = DataFolder::FromText(world.data.View());
    EXPECT_EQ(SendItem(entry, data, nullptr, unplugged).Send(), ProcessResult::Done);
    EXPECT_EQ(unplugged.errors, std::vector<std::string>{"Unable to copy files over network"});
    EXPECT_EQ(world.Status(5), "Sent");
    EXPECT_EQ(world.SentFiles(), kThreeFiles);

    ASSERT_TRUE(LFile::Move(unplugged.away, unplugged.share));
    Settings::Write(world.FilesOf(5).record, RecordKeys::kSendStatus, RecordKeys::kStatusSending);
    EXPECT_EQ(Send(dictation, entry.recipient), ProcessResult::Done);
    EXPECT_TRUE(context.errors.empty());
    const std::string copy = world.Delivered("dct00000-00005.dct");
    EXPECT_EQ(copy.size(), LByteReader({reinterpret_cast<const uint8_t*>(copy.data()) + 2, 4}).U32());
    EXPECT_EQ(TempFolder::Names(world.share), std::vector<std::string>{"dct00000-00005.dct"});
}

TEST_F(SendItemTest, AnEntryThatNamesOtherFilesIsRefusedAndTouchesNothing) {
    const LPath recipient = world.AddRecipient(0, world.ToShare());
    const LPath dictation = world.AddDictation(5);
    const LPath foreign[] = {world.temp.File("00000005.wav"),
                             LPath::Join(UserFolderPath(world.data, 1).View(), "Sent\\00000005.wav"),
                             LPath::Join(world.sent.View(), "..\\Sent\\00000005.wav"),
                             LPath::Join(world.sent.View(), "letter.wav"),
                             LPath::Join(world.sent.View(), "00000005.dat")};
    for (const LPath& path : foreign) {
        LFile::MakeFolder(LPath(LFolderOf(path.View())));
        if (path != world.FilesOf(5).record) WriteFileText(path, ReadFileText(dictation));
        context.errors.clear();
        EXPECT_EQ(Send(path, recipient), ProcessResult::Failed) << path.c_str();
        EXPECT_TRUE(Error().starts_with("A dictation could not be sent because its entry")) << Error();
        EXPECT_FALSE(LFile::Exists(path.WithExtension(".tmp")));
    }
    EXPECT_EQ(Send(dictation, world.temp.File("rec0.dat")), ProcessResult::Failed);
    EXPECT_EQ(world.Status(5), "Send Failed");
    EXPECT_TRUE(TempFolder::Names(world.share).empty());
}

TEST(SendErrorBox, TellsWhoseDictationWhereItIsAndWhatTheButtonsDo) {
    const std::string buttons =
        "\n\nClick OK to go on sending. Click Cancel to clear all pending send files.";
    const std::string kept = "\nThe dictation is kept among the sent dictations.", own = "Click OK to retry.";
    const std::string longName(200, 'x');
    EXPECT_EQ(SendErrorBoxText({"Why.", "", ""}), "Why." + buttons);
    EXPECT_EQ(SendErrorBoxText({"Why.", "A", "B\nC"}), "Why.\n\nDictation: A\nTypist: B C" + kept + buttons);
    EXPECT_EQ(SendErrorBoxText({own, longName, ""}),
              own + "\n\nDictation: " + longName.substr(0, 80) + "..." + kept);
}

TEST_F(SendItemTest, ADictationThatVanishedGetsNoNewRecordAndAFileThatCannotBeMadeIsNoMissingCodec) {
    EXPECT_EQ(Send(world.FilesOf(5).audio, world.AddRecipient(0, world.ToShare())), ProcessResult::Failed);
    EXPECT_TRUE(Error().ends_with("Its audio file is missing or cannot be read."));
    EXPECT_TRUE(world.SentFiles().empty());
    context.errors.clear();
    ASSERT_TRUE(LFile::MakeFolder(LPath::Join(world.sent.View(), "00000005.tmp")));
    EXPECT_EQ(Send(world.AddDictation(5), RecipientPath(world.data, 0, 0)), ProcessResult::Failed);
    EXPECT_EQ(Error().find("CODEC"), std::string::npos) << Error();
}

TEST_F(SendItemTest, AStopAnywhereLeavesNothingDeliveredAndNoStatus) {
    const LPath dictation = world.AddDictation(5, Recording(200000));
    const LPath recipient = world.AddRecipient(0, world.ToShareEncrypted());
    for (double stopAt : {0.0, 0.1, 0.43, 0.6}) {
        context.progress.clear();
        context.cancelAt = stopAt;
        EXPECT_EQ(Send(dictation, recipient), ProcessResult::Stopped) << stopAt;
        EXPECT_EQ(world.Delivered("dct00000-00005.dct"), "") << stopAt;
        EXPECT_EQ(world.Status(5), "") << stopAt;
        EXPECT_EQ(world.SentFiles(), kThreeFiles) << stopAt;
    }
    EXPECT_TRUE(context.errors.empty());
}

TEST_F(SendItemTest, TellsThatNotesWereCut) {
    const LPath dictation = world.AddDictation(5);
    ASSERT_TRUE(WriteFileText(world.FilesOf(5).notes, std::string(kDctLongestNotes + 1, 'n')));
    context.cancelAt = 0.43;
    EXPECT_EQ(Send(dictation, world.AddRecipient(0, world.ToShareEncrypted())), ProcessResult::Stopped);
    EXPECT_TRUE(context.errors.empty()) << "nothing was sent yet";
    context = {};
    EXPECT_EQ(Send(dictation, world.AddRecipient(0, world.ToShare())), ProcessResult::Done);
    EXPECT_TRUE(Error().starts_with("The notes are too long")) << Error();
    EXPECT_EQ(world.Status(5), "Sent");
}
