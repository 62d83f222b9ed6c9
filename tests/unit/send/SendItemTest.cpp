#include "send/SendItem.h"

#include "tests/unit/send/SendTest.h"

namespace {

class SendItemTest : public testing::Test {
protected:
    ProcessResult Send(const LPath& dictation, const LPath& recipient) {
        const SendQueueEntry entry{dictation, recipient, 0, true};
        return SendItem(entry, DataFolder::FromText(world.data.View()), context).Send();
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
                           LPath::Join(world.sent.View(), "dct00000-00005.dct"),
                           LPath::Join(world.share.View(), "dct00000-00005.dct")};
    for (const LPath& path : stale) ASSERT_TRUE(WriteFileText(path, std::string(100000, 'x')));
    ASSERT_EQ(Send(dictation, world.AddRecipient(0, world.ToShare())), ProcessResult::Done);

    const std::string file = world.Delivered("dct00000-00005.dct");
    const std::string fields = std::string(
                                   "\x08Letter 5\x03"
                                   "Ann",
                                   13) +
                               std::string(8, '\0') + std::string("\x02UK\x0A\x05\0\0\0Hello", 13);
    EXPECT_EQ(file.substr(22, fields.size()), fields);
    // 4000 frames of 8 bits behind a head of 46 bytes.
    EXPECT_EQ(file.size(), 22 + fields.size() + 4046);
    EXPECT_EQ(file.substr(22 + fields.size(), 4), "RIFF");
    EXPECT_EQ(world.Status(5), "Sent");
    EXPECT_EQ(world.SentFiles(), kThreeFiles);
    EXPECT_TRUE(context.errors.empty());
    EXPECT_TRUE(std::ranges::is_sorted(context.progress));
    EXPECT_NEAR(context.progress.back(), 1.0, 1e-9);
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
    const char kUnable[] = "Unable to send \"Letter 5\".";
    const char kNoCopy[] = "Unable to copy files over network";  // counts as sent all the same
    const struct {
        const char* name;
        LPath recipient;
        const char *missingFile, *status, *error;
    } cases[] = {
        {"recipient gone", RecipientPath(world.data, 0, 70), "", "Send Failed", kUnable},
        {"audio gone", recipient(1), "00000005.wav", "", kUnable},
        {"e-mail", recipient(0), "", "Send Failed", kUnable},
        {"no method", recipient(9), "", "Send Failed", kUnable},
        {"no codec", recipient(1, "share", 0x7777), "", "", "Unable open temporary compressed wav file.\n\n"},
        {"share gone", recipient(1, "away"), "", "Sent", kNoCopy},
        {"no share", toNowhere, "", "Sent", kNoCopy},
    };
    for (const auto& c : cases) {
        const LPath dictation = world.AddDictation(5);
        Settings::Write(world.FilesOf(5).record, RecordKeys::kSendStatus, "");
        LFile::Delete(LPath::Join(world.sent.View(), c.missingFile));
        context.errors.clear();
        EXPECT_EQ(Send(dictation, c.recipient),
                  c.error == kNoCopy ? ProcessResult::Done : ProcessResult::Failed);
        EXPECT_EQ(world.Status(5), c.status) << c.name;
        EXPECT_TRUE(Error().starts_with(c.error)) << c.name << ": " << Error();
        EXPECT_EQ(world.SentFiles().size(), *c.missingFile ? 2u : 3u) << c.name;
    }
}

TEST_F(SendItemTest, TellsWhichDictationCouldNotBeConverted) {
    const LPath dictation = world.AddDictation(5);
    const std::string name = "Letter " + std::string(200, 'x');
    Settings::Write(world.FilesOf(5).record, RecordKeys::kName, name);
    SendToSettings noCodec = world.ToShare();
    noCodec.waveFormat = LWaveFileFormat(FormatRecord(0x7777, 1, 8000, 8));
    EXPECT_EQ(Send(dictation, world.AddRecipient(0, noCodec)), ProcessResult::Failed);
    // PCM needs no codec: here it is the file itself that cannot be made.
    ASSERT_TRUE(LFile::MakeFolder(LPath::Join(world.sent.View(), "00000005.tmp")));
    EXPECT_EQ(Send(dictation, world.AddRecipient(0, world.ToShare())), ProcessResult::Failed);
    ASSERT_EQ(context.errors.size(), 2u);
    const std::string begin = "\"" + name.substr(0, 80) + "\"";
    EXPECT_TRUE(context.errors[0].ends_with("compress the file.\n\n" + begin)) << Error();
    EXPECT_LE(context.errors[0].size(), 259u);
    EXPECT_TRUE(context.errors[1].starts_with("Unable to send " + begin)) << context.errors[1];
    EXPECT_EQ(context.errors[1].find("CODEC"), std::string::npos);
}

TEST_F(SendItemTest, ADictationThatVanishedGetsNoNewRecord) {
    const LPath dictation = LPath::Join(world.sent.View(), "00000005.wav");
    EXPECT_EQ(Send(dictation, RecipientPath(world.data, 0, 7)), ProcessResult::Failed);
    EXPECT_EQ(Send(dictation, world.AddRecipient(0, world.ToShare())), ProcessResult::Failed);
    ASSERT_EQ(context.errors.size(), 2u);
    EXPECT_TRUE(context.errors[1].starts_with("Unable to send \"00000005.wav\"."));
    EXPECT_TRUE(world.SentFiles().empty());
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
    EXPECT_TRUE(Error().starts_with("The notes of \"Letter 5\" are too long")) << Error();
    EXPECT_EQ(world.Status(5), "Sent");
}
