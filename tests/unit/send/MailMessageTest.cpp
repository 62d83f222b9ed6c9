#include "send/MailMessage.h"

#include "send/MailedFiles.h"
#include "send/SmtpReply.h"
#include "tests/unit/TestKit.h"

TEST(MailMessage, ADateIsLocalTimeWithTheOffsetOfUtc) {
    EXPECT_EQ(MailDate(LCalendar{2007, 3, 5, 1, 9, 4, 5}), "Mon, 05 Mar 2007 09:04:05 +0000");
    EXPECT_EQ(MailDate(std::nullopt), "");
}

TEST(MailMessage, NoTextFromSettingsAddsALine) {
    const std::string evil("a@b\r\nBcc: x@y\n\0z", 17);
    MailMessage mail =
        MailMessage::OfDictation(evil, "Letter\nX: y", "Ann\r\n.\r\nQUIT", evil, LPath("a.dct"));
    EXPECT_TRUE(mail.body.starts_with("File: Letter\r\nFrom: Ann\r\nEmail: a@b\r\n\r\nPlease")) << mail.body;
    mail.to = mail.from = mail.subject = evil;
    EXPECT_EQ(mail.Recipients(), std::vector<std::string_view>{"a@b"});
    EXPECT_TRUE(
        mail.Header("now", "b")
            .starts_with(
                "MIME-Version: 1.0\r\nFrom: a@b\r\nTo: a@b\r\nSubject: a@b\r\nDate: now\r\nX-Mailer: "));
}

TEST(MailMessage, RecipientsAreSplitAtCommasAlone) {
    MailMessage mail;
    mail.to = ",a@b,, c@d ," + std::string(300, 'x') + ",";
    EXPECT_EQ(mail.Recipients(), (std::vector<std::string_view>{"a@b", " c@d ", std::string(259, 'x')}));
}

TEST(MailMessage, ABoundaryIsOneThatTheBodyDoesNotHold) {
    MailMessage mail;
    mail.body = "x gc0p4Jq0M2Yt08jU534c0 y";
    EXPECT_EQ(mail.Boundary(), "gc0p4Jq0M2Yt08jU534c1");
    for (int i = 0; i < 100; ++i) mail.body += "gc0p4Jq0M2Yt08jU534c" + std::to_string(i) + " ";
    EXPECT_EQ(mail.Boundary(), "gc0p4Jq0M2Yt08jU534c99");
}

TEST(MailMessage, ADotThatBeginsALineIsDoubled) {
    std::string_view text = "a.\n.\r\n.b\r\n..\r\n.\r\n.\r\n";
    std::string all;
    while (!text.empty()) all += NextDotStuffed(text);
    EXPECT_EQ(all, "a.\n.\r\n..b\r\n...\r\n..\r\n..\r\n");
}

TEST(SmtpReply, ALineThatNeverEndsIsRefused) {
    EXPECT_EQ(SmtpReply().Feed(std::string(SmtpReply::kLongest + 1, 'x')), SmtpReply::State::Failed);
}

TEST(MailedFiles, OnlyOldConvertedFilesGo) {
    const TempFolder sent;
    const std::vector<std::string> kept = {"00000012.wav", "dct.dct", "dct7-12.wav", "dct7-1x.dct"};
    for (const std::string& name : kept) WriteFileText(sent.File(name), "x");
    for (const char* name : {"dct00007-00012.dct", "WAV00007-123456.WAV"})
        WriteFileText(sent.File(name), "x");
    RemoveMailedFiles(sent.Path(), LNowSeconds() + 86000);
    EXPECT_EQ(TempFolder::Names(sent.Path()).size(), kept.size() + 2);
    RemoveMailedFiles(sent.Path(), LNowSeconds() + 86402);
    EXPECT_EQ(TempFolder::Names(sent.Path()), kept);
}
