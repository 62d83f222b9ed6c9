#include "send/FtpDelivery.h"

#include "tests/unit/send/SendTest.h"

namespace {

constexpr char kClickOk[] =
    "\n\nClick OK to continue to attempt to connect when you send your next file. Click Cancel to clear all "
    "pending send files.";

// Notes what it is asked, one word each, and refuses the call of one name.
struct Server final : FtpConnection {
    bool Note(const std::string& call, const std::string& detail = {}) {
        calls += call + (detail.empty() ? "" : "(" + detail + ")") + " ";
        return call != refused;
    }
    bool Connect() override { return Note("connect"); }
    bool LogOnServer(const std::string& server, const std::string& user,
                     const std::string& password) override {
        return Note("log-on", server + "," + user + "," + password);
    }
    bool SetCurrentDirectory(const std::string& path) override { return Note("folder", path); }
    bool PutFile(const LPath& local, const std::string& remote) override {
        uploaded = ReadFileText(local);
        return Note("put", remote);
    }
    // Leaves the beginning of a file behind when it fails.
    bool GetFile(const std::string& remote, const LPath& local) override {
        wasThere = LFile::Exists(local);
        WriteFileText(local, report);
        return Note("get", remote);
    }
    bool DeleteFile(const std::string& remote) override { return Note("delete", remote); }
    void Disconnect() override { Note("end"); }

    std::string refused, calls, uploaded, report;
    bool wasThere = false;
};

class FtpDeliveryTest : public testing::Test {
protected:
    FtpDeliveryTest() {
        recipient.ftpHost = "host";
        recipient.ftpUser = "user";
        recipient.ftpPassword = "word";
        recipient.ftpFolder = "in";
        WriteFileText(file, "dictation");
    }
    ProcessResult Run() {
        const auto isQueued = [this](const LPath&) { return queued; };
        const SendDelivery delivery{file, recipient, user,
                                    data, isQueued,  [this] { server.Note("arrived"); }};
        return FtpDelivery(delivery, server, context).Run();
    }
    // The record of dictation 11 of a user, as sent.
    LPath MakeSent(uint32_t of) {
        const CurrentUser owner = SelectUser(data, of);
        const LPath record = DictationFiles::OfNumber(owner.sentFolder, 11).record;
        Settings::Write(record, RecordKeys::kNumber, 11);
        Settings::Write(record, RecordKeys::kSendStatus, "Sent");
        return record;
    }
    // A report that dictation 11 is typed.
    static std::string Typed() { return std::string("\0\0\0\0\x0B\0\0\0Typed", 13) + std::string(11, '\0'); }

    SendWorld world;
    const DataFolder data = DataFolder::FromText(world.data.View());
    const LPath file = LPath::Join(world.sent.View(), "dct00000-00005.dct");
    SendToSettings recipient;
    uint32_t user = 0;
    Server server;
    NotingContext context;
    QueueAnswer queued = QueueAnswer::No;
};

TEST_F(FtpDeliveryTest, EachStageThatFailsHasItsTextAndEndsTheConnection) {
    const std::string connected = "connect ", loggedOn = connected + "log-on(host,user,word) ",
                      inFolder = loggedOn + "folder(in) ", put = inFolder + "put(dct00000-00005.dct) ",
                      whole = put + "arrived get(s0000000.sta) ";
    const struct {
        const char* refused;
        std::string calls;
        double progress;
        std::string error;
    } cases[] = {
        {"connect", connected, 0.5, "Unable to connect to Internet."},
        {"log-on", loggedOn, 0.58, "Unable to log onto FTP server."},
        {"folder", inFolder, 0.65, "Unable to find FTP server directory."},
        {"put", put, 0.75, "Unable to upload file to FTP server."},
        {"get", whole, 0.97, ""},
        {"delete", whole + "delete(s0000000.sta) ", 0.97, ""},
    };
    server.report = Typed();
    for (const auto& c : cases) {
        WriteFileText(file, "dictation");
        server.refused = c.refused;
        server.calls.clear();
        context = {};
        const bool isSent = c.error.empty();
        EXPECT_EQ(Run(), isSent ? ProcessResult::Done : ProcessResult::Failed) << c.refused;
        EXPECT_EQ(server.calls, c.calls + "end ");
        EXPECT_EQ(context.progress.back(), c.progress) << c.refused;
        EXPECT_EQ(context.errors, isSent ? std::vector<std::string>() : std::vector{c.error + kClickOk});
        EXPECT_EQ(LFile::Exists(file), !isSent) << c.refused;
        EXPECT_FALSE(LFile::Exists(LPath::Join(world.data.View(), "Temp.sta"))) << c.refused;
    }
    EXPECT_EQ(server.uploaded, "dictation");
}

TEST_F(FtpDeliveryTest, AStopIsNoticedBeforeEachStageAndNoLongerUndoesAnUpload) {
    const char* const kLast[] = {"", "connect", "log-on", "folder", "put"};
    for (int stage = 0; stage < 5; ++stage) {
        WriteFileText(file, "dictation");
        server.calls.clear();
        context.cancelAfter = stage;
        EXPECT_EQ(Run(), stage < 4 ? ProcessResult::Stopped : ProcessResult::Done);
        EXPECT_NE(server.calls.find(kLast[stage]), std::string::npos) << stage;
        EXPECT_EQ(std::ranges::count(server.calls, ' '), stage < 4 ? stage + 1 : 6) << server.calls;
        EXPECT_EQ(LFile::Exists(file), stage < 4);
    }
    EXPECT_TRUE(context.errors.empty());
}

TEST_F(FtpDeliveryTest, NoFieldEndsACommandOfTheServer) {
    recipient.ftpHost = "host\nx";
    recipient.ftpUser = std::string("user\0x", 6);
    recipient.ftpPassword = "word\rx";
    recipient.ftpFolder = "\r\nDELE other.dct";  // no folder: the server's own
    EXPECT_EQ(Run(), ProcessResult::Done);
    EXPECT_TRUE(server.calls.starts_with("connect log-on(host,user,word) put(")) << server.calls;
}

TEST_F(FtpDeliveryTest, AReportIsDeletedOnTheServerOnceAllOfItIsStored) {
    const LPath stale = LPath::Join(world.data.View(), "Temp.sta");
    const struct {
        const char* name;
        std::string report;
        QueueAnswer queued;
        const char* refused;
        const char* status;
        bool isDeleted;
    } cases[] = {
        {"stored", Typed(), QueueAnswer::No, "", "Typed", true},
        {"of a dictation that waits", Typed(), QueueAnswer::Yes, "", "Sent", true},
        {"the queue cannot be read", Typed(), QueueAnswer::Unknown, "", "Sent", false},
        {"too short", "\1", QueueAnswer::No, "", "Sent", true},
        {"broken off", Typed(), QueueAnswer::No, "get", "Sent", false},
    };
    for (const auto& c : cases) {
        MakeSent(0);
        WriteFileText(stale, Typed());
        server = {};
        server.report = c.report;
        server.refused = c.refused;
        queued = c.queued;
        EXPECT_EQ(Run(), ProcessResult::Done) << c.name;
        EXPECT_EQ(world.Status(11), c.status) << c.name;
        EXPECT_EQ(server.calls.find("delete") != std::string::npos, c.isDeleted) << c.name;
        EXPECT_FALSE(server.wasThere || LFile::Exists(stale)) << c.name;
    }
    // One of an earlier run that cannot be removed keeps the new one waiting.
    LFile::Delete(stale);
    LFile::MakeFolder(stale);
    server = {};
    EXPECT_EQ(Run(), ProcessResult::Done);
    EXPECT_EQ(server.calls.find("get"), std::string::npos);
}

TEST_F(FtpDeliveryTest, AReportGoesToTheUserWhoSends) {
    SetCurrentUser(data.settingsFile, 0);
    const LPath loggedOn = MakeSent(0), sender = MakeSent(7);
    server.report = Typed();
    user = 7;
    EXPECT_EQ(Run(), ProcessResult::Done);
    EXPECT_NE(server.calls.find("get(s0000007.sta)"), std::string::npos);
    EXPECT_EQ(Settings::Read(sender, RecordKeys::kSendStatus), "Typed");
    EXPECT_EQ(Settings::Read(loggedOn, RecordKeys::kSendStatus), "Sent");
}

}  // namespace
