#include "store/Status.h"

#include "base/LFileLock.h"
#include "store/DictationRecord.h"
#include "tests/unit/store/StoreTest.h"

namespace {

std::string Number(uint32_t value) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<char>(value >> 8 * i));
    return bytes;
}

std::string Report(uint32_t number, std::string text) {
    text.resize(16);
    return Number(number) + text;
}

class StatusTest : public StoreTest {
protected:
    LFileLock m_lock;

    bool Load(const std::string& bytes, QueueAnswer queued = QueueAnswer::No) {
        const LPath path = Status::FileIn(m_temp.Path().View(), 7);
        EXPECT_EQ(LFileNameOf(path.View()), "s0000007.sta");
        WriteFileText(path, bytes);
        return Status(m_user, [queued](const LPath&) { return queued; }).LoadStatus(path);
    }
    std::string StatusOf(int32_t number) { return DictationRecord::Read(Sent(number).record).sendStatus; }
};

TEST_F(StatusTest, EachDictationGetsTheLastTextThatIsReportedOfIt) {
    for (int32_t number : {1, 2, 3})
        WriteFileText(Sent(number).record, "[file]\r\nsendstatus=Sent\r\nnumber=" + std::to_string(number));
    WriteFileText(Sent(4).record, "[file]\r\nname=without a number\r\n");
    EXPECT_TRUE(Load(Number(0) + Report(1, "Typed") + Report(2, "0123456789abcdef") + Report(0, "Nought") +
                     Report(1, "Printed") + Report(99, "Nobody's") + Report(3, "Cut").substr(0, 19)));
    EXPECT_EQ(StatusOf(1), "Printed");
    EXPECT_EQ(StatusOf(2), "0123456789abcde");
    EXPECT_EQ(StatusOf(3), "Sent");
    EXPECT_EQ(StatusOf(4), "Nought");
    EXPECT_EQ(CountFiles(m_user.sentFolder), 4u);
}

TEST_F(StatusTest, WhatCannotBeAppliedChangesNothing) {
    MakeFiles(Sent(12), "sent");
    const std::string report = Number(0) + Report(12, "Typed");
    static const struct {
        const char* what;
        std::string bytes;
        QueueAnswer queued;
        bool mayBeDeleted;
    } kCases[] = {
        {"a newer version", Number(1) + Report(12, "Typed"), QueueAnswer::No, true},
        {"too short", "abc", QueueAnswer::No, true},
        {"no report", Number(0), QueueAnswer::No, true},
        {"it is to be sent anew", report, QueueAnswer::Yes, true},
        {"the queue cannot be read", report, QueueAnswer::Unknown, false},
        {"too long", std::string((1 << 20) + 4, '\0'), QueueAnswer::No, false},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(Load(c.bytes, c.queued), c.mayBeDeleted) << c.what;
        EXPECT_EQ(StatusOf(12), "") << c.what;
    }
    const LFileLock::Result taken =
        m_lock.TryTake(LPath::Join(LFolderOf(m_user.userFile.View()), "moving.lck"));
    ASSERT_EQ(taken, LFileLock::Result::Taken);
    EXPECT_FALSE(Load(report)) << "while a dictation moves";
    EXPECT_EQ(StatusOf(12), "");
}

}  // namespace
