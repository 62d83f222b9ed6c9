#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/LPath.h"
#include "base/LTime.h"

// A mail with attachments, as it is written after DATA. Its fields come from settings and files; each ends
// before the first CR, LF or NUL, so that no text can add a header or a command.
struct MailMessage {
    std::string to;  // one address or several, separated by commas
    std::string from;
    std::string subject;
    std::string body;
    std::vector<LPath> attachments;

    // The mail that carries a dictation.
    static MailMessage OfDictation(std::string_view to, std::string_view dictation,
                                   std::string_view senderName, std::string_view senderEmail,
                                   const LPath& file);

    // The addresses of the field "to" as it stands but for empty ones, each cut to 259 characters.
    std::vector<std::string_view> Recipients() const;
    // The lines before the body; with attachments up to the beginning of the first part.
    std::string Header(std::string_view date, std::string_view boundary) const;
    // A line that does not occur in the body; the hundredth that was tried where all do.
    std::string Boundary() const;
};

// The text before the first CR, LF or NUL.
std::string_view MailField(std::string_view text);

// "Mon, 05 Mar 2007 09:04:05 +0000" of a local time; without one empty. The offset is not that of the local
// time, which typists' programs read as it stands.
std::string MailDate(const std::optional<LCalendar>& local);

// The header of a body part, and what stands before and behind the content of an attachment.
inline constexpr char kMailBodyHeader[] = "Content-Type: text/plain\r\n\r\n";
std::string MailAttachmentHeader(std::string_view boundary, std::string_view fileName);
std::string MailEnd(std::string_view boundary);

// Takes the next piece off a text that is sent line by line: up to and with the next dot that begins a line.
// The rest begins with that dot again, so the pieces together have it twice, as the protocol wants.
std::string_view NextDotStuffed(std::string_view& text);
