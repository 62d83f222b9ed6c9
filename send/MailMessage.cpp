#include "send/MailMessage.h"

#include "base/LText.h"

static constexpr size_t kLongestAddress = 259;
static constexpr int kMostBoundaries = 100;
static constexpr char kMailer[] = "X-Mailer: Corvane http://www.mervald.example\r\n";

static constexpr char kDays[][4] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
static constexpr char kMonths[][4] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

std::string_view MailField(std::string_view text) {
    return text.substr(0, text.find_first_of(std::string_view("\r\n\0", 3)));
}

static std::string Field(std::string_view text) {
    return std::string(MailField(text));
}

MailMessage MailMessage::OfDictation(std::string_view to, std::string_view dictation,
                                     std::string_view senderName, std::string_view senderEmail,
                                     const LPath& file) {
    return {Field(to),
            Field(senderEmail),
            "Corvane Dictation",
            LFormat("File: %s\r\nFrom: %s\r\nEmail: %s\r\n\r\n"
                    "Please open the attached file to load the file into Quennet.\r\n\r\n"
                    "You must have Quennet installed to open the file. "
                    "Quennet can be downloaded free at http://www.mervald.example/quennet",
                    Field(dictation).c_str(), Field(senderName).c_str(), Field(senderEmail).c_str()),
            {file}};
}

std::vector<std::string_view> MailMessage::Recipients() const {
    std::vector<std::string_view> addresses;
    std::string_view rest = MailField(to);
    while (!rest.empty()) {
        const size_t end = rest.find(',');
        const std::string_view address = rest.substr(0, end).substr(0, kLongestAddress);
        if (!address.empty()) addresses.push_back(address);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return addresses;
}

std::string MailMessage::Header(std::string_view date, std::string_view boundary) const {
    std::string text =
        LFormat("MIME-Version: 1.0\r\nFrom: %s\r\nTo: %s\r\nSubject: %s\r\nDate: %s\r\n", Field(from).c_str(),
                Field(to).c_str(), Field(subject).c_str(), std::string(date).c_str()) +
        kMailer;
    if (attachments.empty()) return text;
    const std::string line(boundary);
    return text +
           LFormat("Content-Type: multipart/mixed; boundary=%s\r\n\r\n--%s\r\n", line.c_str(), line.c_str());
}

std::string MailMessage::Boundary() const {
    std::string boundary;
    for (int i = 0; i < kMostBoundaries; ++i) {
        boundary = LFormat("gc0p4Jq0M2Yt08jU534c%d", i);
        if (body.find(boundary) == std::string::npos) break;
    }
    return boundary;
}

std::string MailDate(const std::optional<LCalendar>& local) {
    if (!local || local->weekday < 0 || local->weekday > 6 || local->month < 1 || local->month > 12)
        return {};
    return LFormat("%s, %.2d %s 20%.2d %.2d:%.2d:%.2d +0000", kDays[local->weekday], local->day,
                   kMonths[local->month - 1], local->year % 100, local->hour, local->minute, local->second);
}

std::string MailAttachmentHeader(std::string_view boundary, std::string_view fileName) {
    const std::string name = Field(fileName);
    return LFormat(
        "\r\n--%s\r\nContent-Type: application/octet-stream; name=\"%s\"\r\n"
        "Content-Transfer-Encoding: base64\r\n"
        "Content-Disposition: attachment; filename=\"%s\"\r\n\r\n",
        std::string(boundary).c_str(), name.c_str(), name.c_str());
}

std::string MailEnd(std::string_view boundary) {
    return "\r\n--" + std::string(boundary) + "--\r\n";
}

std::string_view NextDotStuffed(std::string_view& text) {
    constexpr std::string_view kDotLine = "\r\n.";
    const size_t found = text.find(kDotLine);
    const std::string_view piece =
        text.substr(0, found == std::string_view::npos ? found : found + kDotLine.size());
    text.remove_prefix(found == std::string_view::npos ? text.size() : piece.size() - 1);
    return piece;
}
