#include "send/FtpDelivery.h"

#include "tests/unit/send/SendTest.h"

namespace {

// Notes what it is asked, and refuses the call of one name.
struct Server final : FtpConnection {
    bool Note(const std::string& call, const std::string& detail = {}) {
        calls += call + (detail.empty() ? " " : "(" + detail + ") ");
        return call != refused;
    }
    bool Connect() override { return Note("connect"); }
    bool LogOnServer(const std::string& server, const std::string& user,
                     const std::string& password) override {
        return Note("log-on", server + "," + user + "," + password);
    }
    bool SetCurrentDirectory(const std::string& path) override { return Note("folder", path); }
    bool PutFile(const LPath&, const std::string& remote) override { return Note("put", remote); }
    // Leaves a file behind also when it fails.
    bool GetFile(const std::string& remote, const LPath& local, int64_t) override {
        EXPECT_FALSE(LFile::Exists(local)) << "of an earlier run";
        WriteFileText(local, report);
        return Note("get", remote);
    }
    bool DeleteFile(const std::string& remote) override { return Note("delete", remote); }
    void Disconnect() override { Note("end"); }

    std::string refused, calls, report;
};

class FtpDeliveryTest : public testing::Test {
protected:
    ProcessResult Run(const char* refused = "") {
        WriteFileText(file, "dictation");
        server.refused = refused;
        server.calls.clear();
        context.errors.clear();
        const auto isQueued = [this](const LPath&) { return queued; };
        const SendDelivery delivery{file,   recipient, 7,        data,
                                    sender, "",        isQueued, [this] { server.Note("arrived"); }};
        return FtpDelivery(delivery, server, context).Run();
    }

    SendWorld world;
    const DataFolder data = DataFolder::FromText(world.data.View());
    const LPath file = LPath::Join(world.sent.View(), "dct00007-00005.dct");
    SendToSettings recipient;
    const UserDetails sender;
    Server server;
    NotingContext context;
    QueueAnswer queued = QueueAnswer::No;
};

TEST_F(FtpDeliveryTest, EachStageHasItsTextAndAStopBeforeIt) {
    // What would be a command of its own goes to no server.
    recipient.ftpHost = "host\nx";
    recipient.ftpUser = std::string("user\0x", 6);
    recipient.ftpPassword = "word\rx";
    recipient.ftpFolder = "in\r\nDELE other.dct";
    const char kClickOk[] =
        "\n\nClick OK to continue to attempt to connect when you send your next file. Click Cancel to clear "
        "all pending send files.";
    const std::tuple<const char*, const char*, double, std::string> stages[] = {
        {"connect", "connect ", 0.5, "Unable to connect to Internet."},
        {"log-on", "log-on(host,user,word) ", 0.58, "Unable to log onto FTP server."},
        {"folder", "folder(in) ", 0.65, "Unable to find FTP server directory."},
        {"put", "put(dct00007-00005.dct) ", 0.75, "Unable to upload file to FTP server."},
    };
    std::string calls;
    int before = 0;
    for (const auto& [name, call, progress, error] : stages) {
        context.cancelAfter = before++;
        EXPECT_EQ(Run(), ProcessResult::Stopped);
        EXPECT_EQ(server.calls, calls + "end ");
        calls += call;
        EXPECT_EQ(Run(name), ProcessResult::Failed);
        EXPECT_EQ(server.calls, calls + "end ");
        EXPECT_EQ(context.errors, std::vector{error + kClickOk});
        EXPECT_EQ(context.progress.back(), progress);
        EXPECT_TRUE(LFile::Exists(file));
    }
    context.cancelAfter = 4;
    EXPECT_EQ(Run(), ProcessResult::Done) << "it has arrived";
    EXPECT_EQ(server.calls, calls + "arrived end ");
    EXPECT_FALSE(LFile::Exists(file));
}

TEST_F(FtpDeliveryTest, TheReportOfTheSendingUserIsDeletedOnTheServerOnceAllOfItIsStored) {
    const LPath local = LPath::Join(world.data.View(), "Temp.sta");
    const LPath record = DictationFiles::OfNumber(SelectUser(data, 7).sentFolder, 11).record;
    server.report = std::string("\0\0\0\0\x0B\0\0\0Typed", 13) + std::string(11, '\0');
    const std::tuple<const char*, QueueAnswer, const char*, bool> cases[] = {
        {"", QueueAnswer::No, "Typed", true},
        {"", QueueAnswer::Unknown, "Sent", false},
        {"get", QueueAnswer::No, "Sent", false},
        {"delete", QueueAnswer::No, "Typed", true},
    };
    for (const auto& [refused, answer, status, isDeleted] : cases) {
        Settings::Write(record, RecordKeys::kNumber, 11);
        Settings::Write(record, RecordKeys::kSendStatus, "Sent");
        WriteFileText(local, server.report);
        queued = answer;
        EXPECT_EQ(Run(refused), ProcessResult::Done);
        EXPECT_EQ(server.calls, std::string("connect log-on(,,) put(dct00007-00005.dct) arrived ") +
                                    "get(s0000007.sta) " + (isDeleted ? "delete(s0000007.sta) " : "") +
                                    "end ");
        EXPECT_EQ(Settings::Read(record, RecordKeys::kSendStatus), status);
        EXPECT_EQ(context.progress.back(), 0.97);
        EXPECT_FALSE(LFile::Exists(local));
    }
}

}  // namespace
