#include "send/EmailSMTPSendProcess.h"

#include <algorithm>
#include <array>

#include "base/LFile.h"
#include "base/LTrace.h"
#include "send/SendError.h"

// A row of steps, each a command and the code that it wants. What a stop request meets is Stopped; what comes
// of a broken connection is a reply of code 0, and so the refusal of the step.

namespace {

constexpr int32_t kConnectMs = 10000;
constexpr int32_t kCommandMs = 20000;
constexpr int32_t kBodyMs = 30000;
constexpr uint32_t kHeldMs = 200;  // wait for an attachment that another program has open

constexpr size_t kLineBytes = 57;  // of an attachment in one line
constexpr size_t kReadLines = 64;  // read at once, before the stop request is tested again

// What is traced and what the user is told when a step fails.
struct Refusal {
    const char* trace;
    const char* text;
};
constexpr Refusal kNoServer = {"SendEmailSMTP unable to connect", "Unable to connect to the mail server"};
constexpr Refusal kNotReady = {"SendEmailSMTP service not ready", "Mail server not responding"};
constexpr Refusal kHello = {"SendEmailSMTP HELO not accepted", "Mail host server error (HELO not accepted)"};
constexpr Refusal kPassword = {"SendEmailSMTP Email Authentication not accepted",
                               "Email authentication username or password not accepted"};
constexpr Refusal kFrom = {"SendEmailSMTP MAIL FROM not accepted",
                           "Mail host server error (MAIL FROM not accepted)"};
constexpr Refusal kTo = {
    "SendEmailSMTP RCPT TO not accepted",
    "Mail host server error (RCPT TO not accepted). Your server may required authenticated email. Please see "
    "Help for more information."};
constexpr Refusal kData = {"SendEmailSMTP DATA not accepted", "Mail host server error (DATA not accepted)"};
constexpr Refusal kLost = {"SendEmailSMTP unable to send message",
                           "The connection to the mail server was lost while the mail was being sent."};
constexpr Refusal kTerminator = {"SendEmailSMTP data terminator not accepted",
                                 "Mail host server error (data terminator not accepted)"};

// The share of a mail's progress that its attachments have.
constexpr double kAttachmentsFrom = 0.3;
constexpr double kAttachmentsShare = 0.6;

std::span<const uint8_t> Bytes(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

// The text up to the next colon, which is taken off with it.
std::string_view TakeField(std::string_view& rest) {
    const std::string_view field = rest.substr(0, rest.find(':'));
    rest.remove_prefix(std::min(rest.size(), field.size() + 1));
    return field;
}

}  // namespace

class EmailSMTPSendProcess::Dialogue {
public:
    Dialogue(const EmailSMTPSendProcess& process, ProcessContext& context)
        : m_process(process), m_context(context), m_stream(context, process.m_pace) {}

    ProcessResult Run();

private:
    using Step = ProcessResult (Dialogue::*)();

    ProcessResult Connect();
    ProcessResult Greet();
    ProcessResult LogIn();
    ProcessResult NameSender();
    ProcessResult NameRecipients();
    ProcessResult SendMail();
    ProcessResult SendMessage();
    ProcessResult SendBody();
    ProcessResult SendAttachment(size_t index, const std::string& boundary);
    ProcessResult SendLines(std::span<const uint8_t> bytes, double from, double perByte);

    // Inside the message, where nothing is answered.
    ProcessResult Write(std::string_view bytes, int32_t budgetMs) {
        return Written(m_stream.ProcessSend(bytes, budgetMs));
    }
    ProcessResult Written(ProcessResult sent) { return sent == ProcessResult::Failed ? Refuse(kLost) : sent; }

    ProcessResult Ask(std::string_view command, int32_t& code);
    ProcessResult AskBase64(std::string_view text, int32_t& code);
    ProcessResult Reply(ProcessResult sent, int32_t& code);
    ProcessResult Require(std::string_view command, int32_t wanted, const Refusal& refusal);
    ProcessResult Refuse(const Refusal& refusal);

    const EmailSMTPSendProcess& m_process;
    ProcessContext& m_context;
    LIPSocketStream m_stream;
};

// Reads the reply to what was sent. A command that could not be sent has the reply 0.
ProcessResult EmailSMTPSendProcess::Dialogue::Reply(ProcessResult sent, int32_t& code) {
    code = 0;
    if (sent == ProcessResult::Done) sent = m_stream.ReadReply(code);
    return sent == ProcessResult::Stopped ? sent : ProcessResult::Done;
}

ProcessResult EmailSMTPSendProcess::Dialogue::Ask(std::string_view command, int32_t& code) {
    return Reply(m_stream.ProcessSend(command, kCommandMs), code);
}

ProcessResult EmailSMTPSendProcess::Dialogue::AskBase64(std::string_view text, int32_t& code) {
    return Reply(m_stream.SendBase64(Bytes(text)), code);
}

ProcessResult EmailSMTPSendProcess::Dialogue::Require(std::string_view command, int32_t wanted,
                                                      const Refusal& refusal) {
    int32_t code = 0;
    const ProcessResult result = Ask(command, code);
    if (result != ProcessResult::Done) return result;
    return code == wanted ? ProcessResult::Done : Refuse(refusal);
}

ProcessResult EmailSMTPSendProcess::Dialogue::Refuse(const Refusal& refusal) {
    LTrace(refusal.trace);
    m_context.SetError(refusal.text);
    return ProcessResult::Failed;
}

ProcessResult EmailSMTPSendProcess::Dialogue::Run() {
    constexpr std::array<Step, 6> kSteps = {&Dialogue::Connect,        &Dialogue::Greet,
                                            &Dialogue::LogIn,          &Dialogue::NameSender,
                                            &Dialogue::NameRecipients, &Dialogue::SendMail};
    for (const Step step : kSteps) {
        const ProcessResult result = (this->*step)();
        if (result != ProcessResult::Done) return result;
    }
    return ProcessResult::Done;
}

ProcessResult EmailSMTPSendProcess::Dialogue::Connect() {
    m_context.SetProgress(0.0);
    const ProcessResult result = m_stream.ProcessConnect(m_process.m_host, kConnectMs, m_process.m_port);
    return result == ProcessResult::Failed ? Refuse(kNoServer) : result;
}

ProcessResult EmailSMTPSendProcess::Dialogue::Greet() {
    m_context.SetProgress(0.1);
    const ProcessResult result = Require("", 220, kNotReady);
    if (result != ProcessResult::Done) return result;
    const std::string name(MailField(LSocket::LocalHostName()));
    return Require((m_process.m_user.empty() ? "HELO " : "EHLO ") + name + "\r\n", 250, kHello);
}

// A server that does not know the method gets the mail all the same; it may demand no authentication.
ProcessResult EmailSMTPSendProcess::Dialogue::LogIn() {
    if (m_process.m_user.empty()) return ProcessResult::Done;
    int32_t code = 0;
    ProcessResult result = Ask("AUTH LOGIN\r\n", code);
    if (result != ProcessResult::Done) return result;
    if (code != 334) {
        LTrace("SendEmailSMTP AUTH LOGIN did not return 334!");
        return result;
    }
    result = AskBase64(m_process.m_user, code);
    if (result != ProcessResult::Done) return result;
    if (code != 334) {
        LTrace("SendEmailSMTP AUTH LOGIN did not return 334 after password!");
        return result;
    }
    result = AskBase64(m_process.m_password, code);
    if (result != ProcessResult::Done) return result;
    return code == 235 ? result : Refuse(kPassword);
}

ProcessResult EmailSMTPSendProcess::Dialogue::NameSender() {
    return Require("MAIL FROM:<" + std::string(MailField(m_process.m_mail.from)) + ">\r\n", 250, kFrom);
}

ProcessResult EmailSMTPSendProcess::Dialogue::NameRecipients() {
    bool isAnyAccepted = false;
    for (const std::string_view address : m_process.m_mail.Recipients()) {
        int32_t code = 0;
        const ProcessResult result = Ask("RCPT TO:<" + std::string(address) + ">\r\n", code);
        if (result != ProcessResult::Done) return result;
        isAnyAccepted = isAnyAccepted || code == 250 || code == 251;
    }
    return isAnyAccepted ? ProcessResult::Done : Refuse(kTo);
}

// From DATA to the end.
ProcessResult EmailSMTPSendProcess::Dialogue::SendMail() {
    int32_t code = 0;
    ProcessResult result = Ask("DATA\r\n", code);
    if (result != ProcessResult::Done) return result;
    if (code != 354) {
        Refuse(kData);
        return ProcessResult::Done;  // kept on purpose: the text tells, the record says "Sent"
    }
    result = SendMessage();
    if (result == ProcessResult::Done) result = Require("\r\n.\r\n", 250, kTerminator);
    if (result != ProcessResult::Done) return result;
    if (m_process.m_arrived) m_process.m_arrived();  // whatever follows
    m_context.SetProgress(0.95);
    if (Ask("QUIT\r\n", code) != ProcessResult::Done || code == 0) LTrace("SendEmailSMTP QUIT failed");
    return ProcessResult::Done;
}

// Everything between DATA and the terminator.
ProcessResult EmailSMTPSendProcess::Dialogue::SendMessage() {
    const MailMessage& mail = m_process.m_mail;
    m_context.SetProgress(0.2);
    const std::string boundary = mail.Boundary();
    ProcessResult result = Write(mail.Header(MailDate(LLocalTime()), boundary), kCommandMs);
    if (result == ProcessResult::Done) result = SendBody();
    if (mail.attachments.empty() || result != ProcessResult::Done) return result;
    m_context.SetProgress(kAttachmentsFrom);
    for (size_t i = 0; i < mail.attachments.size() && result == ProcessResult::Done; ++i)
        result = SendAttachment(i, boundary);
    return result == ProcessResult::Done ? Write(MailEnd(boundary), kCommandMs) : result;
}

ProcessResult EmailSMTPSendProcess::Dialogue::SendBody() {
    const std::string part = kMailBodyHeader + m_process.m_mail.body;
    std::string_view text = part;
    ProcessResult result = ProcessResult::Done;
    while (!text.empty() && result == ProcessResult::Done) result = Write(NextDotStuffed(text), kBodyMs);
    return result;
}

ProcessResult EmailSMTPSendProcess::Dialogue::SendAttachment(size_t index, const std::string& boundary) {
    const LPath& path = m_process.m_mail.attachments[index];
    const double share = kAttachmentsShare / static_cast<double>(m_process.m_mail.attachments.size());
    const double from = kAttachmentsFrom + share * static_cast<double>(index);
    ProcessResult result = Write(MailAttachmentHeader(boundary, LFileNameOf(path.View())), kCommandMs);
    if (result != ProcessResult::Done) return result;
    LFile file;
    LFile::OpenToRead(path, file, kHeldMs);
    const int64_t size = file.IsOpen() ? file.Size() : -1;
    int64_t done = 0;
    while (done < size) {
        if (m_context.CancelRequested()) return ProcessResult::Stopped;
        uint8_t buffer[kLineBytes * kReadLines];
        const size_t count = file.Read(buffer);
        if (count == 0) break;
        const double perByte = share / static_cast<double>(size);
        result = SendLines({buffer, count}, from + perByte * static_cast<double>(done), perByte);
        if (result != ProcessResult::Done) return result;
        done += static_cast<int64_t>(count);
    }
    if (done == size) return ProcessResult::Done;
    LTrace("SendEmailSMTP unable to read attachment", path.View());
    m_context.SetError(UnableToSend("Its converted file could not be read."));
    return ProcessResult::Failed;
}

// Sends a piece of an attachment; from is the progress at its beginning.
ProcessResult EmailSMTPSendProcess::Dialogue::SendLines(std::span<const uint8_t> bytes, double from,
                                                        double perByte) {
    for (size_t done = 0; done < bytes.size();) {
        const auto line = bytes.subspan(done, std::min(kLineBytes, bytes.size() - done));
        const ProcessResult sent = Written(m_stream.SendBase64(line));
        if (sent != ProcessResult::Done) return sent;
        done += line.size();
        m_context.SetProgress(from + perByte * static_cast<double>(done));
    }
    return ProcessResult::Done;
}

EmailSMTPSendProcess::EmailSMTPSendProcess(const MailMessage& mail, std::string_view mailHost, uint16_t port,
                                           const LIPSocketStream::Pace& pace)
    : m_mail(mail), m_port(port), m_pace(pace) {
    std::string_view rest = MailField(mailHost);
    m_host = TakeField(rest);
    m_user = TakeField(rest);
    m_password = rest;
}

ProcessResult EmailSMTPSendProcess::Process(ProcessContext& context) {
    const LSocket::Use sockets;
    if (!sockets.IsReady()) LTrace("SendEmailSMTP this machine has no sockets");
    return Dialogue(*this, context).Run();  // closes the connection with any result
}
