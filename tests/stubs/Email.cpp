#include "tests/stubs/Email.h"

#include "send/Email.h"

bool Email::SendMAPI(std::string_view address, std::string_view subject, std::string_view body,
                     const LPath& attachment) {
    MailProgram::mails.push_back({Email::MapiAddress(address), std::string(subject), std::string(body),
                                  std::string(attachment.View())});
    return MailProgram::takesMails;
}
