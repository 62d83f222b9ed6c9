#include "store/Status.h"

#include "base/LFileLock.h"
#include "store/DictationRecord.h"
#include "tests/unit/store/StoreTest.h"

namespace {

class StatusTest : public StoreTest {
protected:
    // A report of 20 bytes; numbers below 256.
    static std::string Report(char number, std::string text) {
        text.resize(16);
        return std::string{number, 0, 0, 0} + text;
    }
    bool Load(const std::string& reports, QueueAnswer queued = QueueAnswer::No, char version = 0) {
        const LPath path = Status::FileIn(m_temp.Path().View(), 7);
        WriteFileText(path, std::string{version, 0, 0, 0} + reports);
        return Status(m_user, [queued](const LPath&) { return queued; }).LoadStatus(path);
    }
    std::string StatusOf(int32_t number) { return DictationRecord::Read(Sent(number).record).sendStatus; }
};

TEST_F(StatusTest, EachDictationGetsTheLastTextThatIsReportedOfIt) {
    for (int32_t number : {1, 2, 3})
        WriteFileText(Sent(number).record, "[file]\r\nsendstatus=Sent\r\nnumber=" + std::to_string(number));
    WriteFileText(Sent(4).record, "[file]\r\nname=without a number\r\n");
    EXPECT_TRUE(Load(Report(1, "Typed") + Report(2, "0123456789abcdef") + Report(0, "Nought") +
                     Report(1, "Printed") + Report(99, "Nobody's") + Report(3, "Cut").substr(0, 19)));
    EXPECT_EQ(StatusOf(1) + StatusOf(2) + StatusOf(3) + StatusOf(4), "Printed0123456789abcdeSentNought");
    EXPECT_EQ(CountFiles(m_user.sentFolder), 4u);
}

TEST_F(StatusTest, AReportThatCannotBeStoredYetIsKept) {
    MakeFiles(Sent(12), "sent");
    const std::string report = Report(12, "Typed");
    EXPECT_TRUE(Load(report, QueueAnswer::No, 1)) << "a newer version";
    EXPECT_TRUE(Load(report, QueueAnswer::Yes)) << "it is about an earlier sending";
    EXPECT_FALSE(Load(report, QueueAnswer::Unknown));
    LFileLock moving;
    moving.TryTake(LPath::Join(LFolderOf(m_user.userFile.View()), "moving.lck"));
    EXPECT_FALSE(Load(report)) << "while a dictation moves";
    EXPECT_EQ(StatusOf(12), "");
}

}  // namespace
