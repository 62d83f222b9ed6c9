#include "store/SentHistory.h"

#include "base/LProfile.h"
#include "tests/unit/store/StoreTest.h"

using SentHistoryTest = StoreTest;

TEST_F(SentHistoryTest, ShowsTheLastSentOneFirstAndFollowsChanges) {
    const auto send = [&](int32_t number, const std::string& keys) {
        WriteFileText(Sent(number).record, "[file]\r\nnumber=" + std::to_string(number) + "\r\n" + keys);
    };
    SentHistory history(m_user.sentFolder);
    const auto order = [&] {
        std::string numbers;
        for (const SentDictation& dictation : history.Dictations())
            numbers += std::to_string(dictation.number);
        return numbers;
    };
    send(1, "name=Old\x01one\r\nsenddate=1000000000\r\nrecipient=Jo (a)\r\nsendstatus=Sending\r\n");
    send(2, "senddate=0\r\n");
    send(3, "senddate=1600000000\r\n");
    send(4, "senddate=1600000000\r\n");
    LFile::MakeFolder(Sent(5).record);
    for (const char* other : {"00000006.dat~", "memo.dat", "00000007.wav"})
        WriteFileText(LPath::Join(m_user.sentFolder.View(), other), "x");
    NotingContext context;
    EXPECT_EQ(history.Process(context), ProcessResult::Done);
    EXPECT_EQ(order(), "2431");
    EXPECT_EQ(history.Dictations()[3].Text(), "2001-09-09 Old one: Sent to [Jo (a)] status [Sending]");
    EXPECT_EQ(history.Dictations()[2].Text(),
              "2020-09-13 Unknown Name: Sent to [Unknown Recipient] status [Unknown Status]");
    EXPECT_FALSE(history.Refresh(1000));
    LProfile::Write(Sent(1).record, "file", "sendstatus", "Sent");
    LFile::Delete(Sent(2).record);
    send(8, "senddate=1\r\n");
    for (int looks = 0; history.Refresh(0) && looks < 9;) ++looks;  // without time, one with each look
    EXPECT_EQ(order(), "4318");
    EXPECT_EQ(history.Dictations()[2].status, "Sent");
}
