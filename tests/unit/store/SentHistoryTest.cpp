#include "store/SentHistory.h"

#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "store/DictationRecord.h"
#include "tests/unit/store/StoreTest.h"

namespace {

class SentHistoryTest : public StoreTest {
protected:
    // The file numbers of the rows.
    std::string Order() {
        std::string order;
        for (const SentDictation& dictation : m_history.Dictations())
            order += std::to_string(NumberOfFileName(dictation.record).value_or(-1)) + " ";
        return order;
    }
    void Send(int32_t number, const std::string& keys) {
        WriteFileText(Sent(number).record, "[file]\r\nnumber=" + std::to_string(number) + "\r\n" + keys);
    }

    SentHistory m_history{m_user.sentFolder};
    NotingContext m_context;
};

TEST_F(SentHistoryTest, TheLastSentOneIsFirstAndWhatARecordDoesNotSayHasADefault) {
    Send(1, "name=Old\r\nsenddate=1000000000\r\nrecipient=Jo (a)\r\nsendstatus=Typed\r\n");
    Send(3, "senddate=1600000000\r\n");
    Send(4, "senddate=1600000000\r\n");
    WriteFileText(Sent(2).record, "");
    LFile::MakeFolder(Sent(5).record);
    for (const char* other : {"00000006.dat~", "memo.dat", "00000007.wav"})
        WriteFileText(LPath::Join(m_user.sentFolder.View(), other), "x");
    EXPECT_EQ(m_history.Process(m_context), ProcessResult::Done);
    EXPECT_EQ(Order(), "2 4 3 1 ");
    EXPECT_EQ(m_history.Dictations().back().Text(), "2001-09-09 Old: Sent to [Jo (a)] status [Typed]");
    const LCalendar today = LToCalendar(LNowSeconds());
    EXPECT_EQ(m_history.Dictations().front().Text().substr(4),
              LFormat("-%.2d-%.2d Unknown Name: Sent to [Unknown Recipient] status [Unknown Status]",
                      today.month, today.day));
}

TEST_F(SentHistoryTest, ALaterLookFindsWhatHasChanged) {
    Send(1, "senddate=1000000001\r\nsendstatus=Sending\r\n");
    Send(2, "senddate=1000000002\r\n");
    m_history.Process(m_context);
    EXPECT_FALSE(m_history.Refresh(1000));
    LProfile::Write(Sent(1).record, "file", "sendstatus", "Sent");
    LFile::Delete(Sent(2).record);
    Send(3, "senddate=1000000003\r\n");
    EXPECT_TRUE(m_history.Refresh(1000));
    EXPECT_EQ(Order(), "3 1 ");
    EXPECT_EQ(m_history.Dictations()[1].status, "Sent");
    for (int32_t number = 10; number < 30; ++number) Send(number, "");
    for (int looks = 0; m_history.Refresh(0) && looks < 40;) ++looks;
    EXPECT_EQ(m_history.Dictations().size(), 22u) << "without time, one with each look";
}

}  // namespace
