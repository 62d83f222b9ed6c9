#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "base/LProcess.h"
#include "send/LIPSocketStream.h"
#include "send/MailMessage.h"

// Sends a mail through an SMTP server, without any mail program. Its attachments are read while they are
// sent.
// Units:  progress 0 to 1.
// Errors: Failed, with an error text for the user. One refusal counts as Done in spite of its text: the
//         server's of DATA. Stopped at every point before the server has taken the mail; one that breaks off
//         inside the message ends the connection without the message's end, and the server drops the mail.
// Thread: the send thread. A stop request is noticed within 200 ms.
class EmailSMTPSendProcess final : public LProcess {
public:
    static constexpr uint16_t kPort = 25;

    // mailHost: "host" or "host:user:password"; with a user the server is asked to authenticate him. The mail
    // outlives the process.
    EmailSMTPSendProcess(const MailMessage& mail, std::string_view mailHost, uint16_t port = kPort,
                         const LIPSocketStream::Pace& pace = {});
    // To be called once the server has taken the mail: what follows may take long.
    void SetArrived(std::function<void()> arrived) { m_arrived = std::move(arrived); }
    ProcessResult Process(ProcessContext& context) override;

private:
    class Dialogue;

    const MailMessage& m_mail;
    std::string m_host;
    std::string m_user;
    std::string m_password;
    uint16_t m_port;
    LIPSocketStream::Pace m_pace;
    std::function<void()> m_arrived;
};
