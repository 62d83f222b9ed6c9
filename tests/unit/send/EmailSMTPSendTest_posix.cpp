#include "send/EmailSMTPSendProcess.h"

#include <atomic>
#include <map>
#include <regex>
#include <sstream>

#include "base/LTime.h"
#include "tests/unit/send/MailServer_posix.h"
#include "tests/unit/send/SendTest.h"

namespace {

constexpr LIPSocketStream::Pace kQuick{1, &LSocket::Resolve};
constexpr uint32_t kStopMs = 400;  // of which a busy machine may take 200
constexpr char kLogin[] = ":ann:se:cret";
constexpr char kNoServer[] = "Unable to connect to the mail server";

// The parts of the dialogue, by letters.
const std::map<char, std::string> kParts = {
    {'H', "HELO me\r\n"},
    {'E', "EHLO me\r\n"},
    {'A', "AUTH LOGIN\r\n"},
    {'U', "YW5u\r\n"},
    {'P', "c2U6Y3JldA==\r\n"},
    {'F', "MAIL FROM:<ann@x.org>\r\n"},
    {'R', "RCPT TO:<one@x.org>\r\nRCPT TO:<two@x.org>\r\n"},
    {'D', "DATA\r\n"},
    {'M',
     "MIME-Version: 1.0\r\nFrom: ann@x.org\r\nTo: one@x.org,two@x.org\r\nSubject: Corvane Dictation\r\n"
     "Date: now\r\nX-Mailer: Corvane http://www.mervald.example\r\n"
     "Content-Type: multipart/mixed; boundary=gc0p4Jq0M2Yt08jU534c0\r\n\r\n--gc0p4Jq0M2Yt08jU534c0\r\n"
     "Content-Type: text/plain\r\n\r\nFile: Letter 5\r\nFrom: Ann\r\nEmail: ann@x.org\r\n\r\n"
     "Please open the attached file to load the file into Quennet.\r\n\r\n"
     "You must have Quennet installed to open the file. "
     "Quennet can be downloaded free at http://www.mervald.example/quennet"
     "\r\n--gc0p4Jq0M2Yt08jU534c0\r\nContent-Type: application/octet-stream; "
     "name=\"dct00000-00005.dct\"\r\nContent-Transfer-Encoding: base64\r\n"
     "Content-Disposition: attachment; filename=\"dct00000-00005.dct\"\r\n\r\n"
     "YWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFhYWFh\r\nYQ==\r\n"
     "\r\n--gc0p4Jq0M2Yt08jU534c0--\r\n\r\n.\r\n"},
    {'Q', "QUIT\r\n"},
};

std::vector<std::string> Words(const std::string& text, size_t most = 99) {
    std::istringstream in(text);
    std::vector<std::string> words;
    for (std::string word; words.size() < most && in >> word;) words.push_back(word);
    return words;
}

// Asks to stop once it is told to, from any thread.
struct StoppingContext : NotingContext {
    bool CancelRequested() override { return isStopped; }
    std::atomic<bool> isStopped = false;
};

class EmailSMTPSend : public testing::Test {
protected:
    EmailSMTPSend() { FillAttachment(58); }
    void FillAttachment(size_t bytes) { WriteFileText(mail.attachments[0], std::string(bytes, 'a')); }
    ProcessResult Send(uint16_t port, const std::string& host, const LIPSocketStream::Pace& pace = kQuick) {
        context.errors.clear(), context.progress.clear();
        return EmailSMTPSendProcess(mail, host, port, pace).Process(context);
    }
    ProcessResult SendTo(const MailServer& server, const char* login,
                         const LIPSocketStream::Pace& pace = kQuick) {
        return Send(server.port, std::string("127.0.0.1") + login, pace);
    }
    std::string Error() const { return context.errors.empty() ? "" : context.errors[0]; }
    // What a server was sent; the moment and this machine's name are taken out.
    static std::string Said(MailServer& server) {
        const std::string said =
            std::regex_replace(server.Received(), std::regex("Date: [^\r]*"), "Date: now");
        return std::regex_replace(said, std::regex("^(..LO )" + LSocket::LocalHostName()), "$1me");
    }

    TempFolder folder;
    MailMessage mail = MailMessage::OfDictation("one@x.org,two@x.org", "Letter 5", "Ann", "ann@x.org",
                                                folder.File("dct00000-00005.dct"));
    StoppingContext context;
};

}  // namespace

TEST_F(EmailSMTPSend, EveryServerGetsTheSameDialogue) {
    const ProcessResult done = ProcessResult::Done, failed = ProcessResult::Failed;
    const char kNoAnswer[] = "Mail server not responding";
    const std::tuple<const char*, const char*, const char*, ProcessResult, const char*> cases[] = {
        {"", "220 250 250 250 250 354 250 221", "HFRDMQ", done, ""},
        {kLogin, "220 250+ 334 334 235 250 250 250 354 250 221", "EAUPFRDMQ", done, ""},
        // Without the method the mail goes all the same; so does one whose QUIT is not answered.
        {kLogin, "220 250 502 250 250 250 354 250 close", "EAFRDMQ", done, ""},
        {kLogin, "220 250 334 550 250 250 250 354 250 221", "EAUFRDMQ", done, ""},
        {"", "220 250 250 550 251 354 250 221", "HFRDMQ", done, ""},  // one recipient is enough
        {"", "554", "", failed, kNoAnswer},
        {"", "", "", failed, kNoAnswer},
        {"", "close", "", failed, kNoAnswer},
        {"", "endless", "", failed, kNoAnswer},
        {"", "trickle", "", failed, kNoAnswer},
        {"", "220 550", "H", failed, "Mail host server error (HELO not accepted)"},
        {kLogin, "220 250 334 334 535", "EAUP", failed,
         "Email authentication username or password not accepted"},
        {"", "220 250 550", "HF", failed, "Mail host server error (MAIL FROM not accepted)"},
        {"", "220 250 250 550 550", "HFR", failed,
         "Mail host server error (RCPT TO not accepted). Your server may required authenticated email. "
         "Please see Help for more information."},
        {"", "220 250 250 250 250 550", "HFRD", done, "Mail host server error (DATA not accepted)"},
        {"", "220 250 250 250 250 354 550", "HFRDM", failed,
         "Mail host server error (data terminator not accepted)"},
    };
    for (const auto& [login, replies, parts, result, error] : cases) {
        MailServer server(Words(replies));
        EXPECT_EQ(SendTo(server, login), result) << replies;
        std::string said;
        for (const char* part = parts; *part != 0; ++part) said += kParts.at(*part);
        EXPECT_EQ(Said(server), said) << replies;
        EXPECT_EQ(Error(), error) << replies;
        EXPECT_TRUE(std::ranges::is_sorted(context.progress)) << replies;
    }
}

// At each point, the last in the middle of the message: the server never sees the end of one that it did not
// get whole.
TEST_F(EmailSMTPSend, AStopIsHonouredAtOnceAndEndsNoMessage) {
    FillAttachment(8 << 20);
    for (size_t count = 0; count <= 9; ++count) {
        context.isStopped = false;
        MailServer server(Words("220 250 334 334 235 250 250 250 354", count), true);
        uint32_t stopped = 0;
        {
            const TestThread stopping([&] {
                EXPECT_TRUE(server.reached.Wait(5000));
                LSleep(20);  // any moment of the wait will do
                stopped = LTickMs();
                context.isStopped = true;
            });
            EXPECT_EQ(SendTo(server, kLogin, {}), ProcessResult::Stopped) << count;
        }
        EXPECT_LE(LTickMs() - stopped, kStopMs) << count;
        EXPECT_EQ(server.Received().find("\r\n.\r\n"), std::string::npos) << count;
        EXPECT_EQ(Error(), "") << count;
    }
}

TEST_F(EmailSMTPSend, AMessageThatBreaksOffHasNoEnd) {
    for (const bool isLost : {false, true}) {
        MailServer server(Words("220 250 250 250 250 354"), isLost);  // reads nothing until we give up
        isLost ? FillAttachment(8 << 20) : static_cast<void>(LFile::Delete(mail.attachments[0]));
        EXPECT_EQ(SendTo(server, ""), ProcessResult::Failed);
        EXPECT_EQ(Error(), isLost
                               ? "The connection to the mail server was lost while the mail was being sent."
                               : "Unable to send the dictation.\n\nIts converted file could not be read.");
        EXPECT_EQ(server.Received().find("\r\n.\r\n"), std::string::npos);
    }
}

TEST_F(EmailSMTPSend, AHostThatIsNotFoundOrDoesNotAnswerIsTold) {
    static LSignalObject s_answer;
    const LHostLookup::Resolve never = [](const std::string&, uint32_t&) { return !s_answer.Wait(5000); };
    const LHostLookup::Resolve any = [](const std::string& host, uint32_t& address) {
        return host != "nowhere" && LSocket::ParseAddress("127.0.0.1", address);
    };
    const uint16_t closed = MailServer({}).port;
    MailServer open({});
    EXPECT_EQ(Send(closed, "here", {1, any}), ProcessResult::Failed);
    EXPECT_EQ(Error(), kNoServer);
    for (const std::string& host : {std::string(), std::string("nowhere"), std::string(256, 'x')}) {
        EXPECT_EQ(Send(open.port, host, {1, any}), ProcessResult::Failed);
        EXPECT_EQ(Error(), kNoServer) << host;
    }
    const TestThread stopping([&] { LSleep(20), context.isStopped = true; });
    const uint32_t begun = LTickMs();
    EXPECT_EQ(Send(closed, "slow", {200, never}), ProcessResult::Stopped);
    EXPECT_LE(LTickMs() - begun, kStopMs);
    s_answer.Signal();
}
