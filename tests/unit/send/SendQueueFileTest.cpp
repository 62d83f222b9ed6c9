#include "send/SendQueueFile.h"

#include <gtest/gtest.h>

#include "base/LProfile.h"
#include "base/LTime.h"
#include "tests/unit/TempFolder.h"
#include "tests/unit/TestThread.h"

namespace {

SendQueueEntry Entry(int number) {
    const std::string name = std::to_string(number);
    return {LPath("C:\\Sent\\" + name + ".wav"), LPath("C:\\rec" + name + ".dat"),
            static_cast<uint32_t>(number), true};
}

class SendQueueFileTest : public testing::Test {
protected:
    SendQueueFileTest() { queue.SetPath(path); }
    void Write(std::string_view text) {
        ASSERT_TRUE(WriteFileText(path, text));
        LProfile::Flush(path);
    }
    bool Append(int number) {
        int32_t count = 0;
        return queue.Append(Entry(number), count);
    }
    SendQueueEntry Head() const {
        SendQueueEntry head;
        int32_t count = 0;
        EXPECT_TRUE(queue.ReadHead(head, count));
        return head;
    }
    std::string Key(const char* key) const { return LProfile::Read(path, "bgsend", key, "(none)"); }
    // Empties the queue; the users' numbers in their order, "?" for an entry that is not whole.
    std::string Drain() {
        std::string drained;
        SendQueueEntry head;
        int32_t count = 0;
        for (int guard = 0; queue.ReadHead(head, count) && count > 0 && guard < 100; ++guard) {
            drained += head.isWhole ? std::to_string(head.user) : "?";
            EXPECT_TRUE(queue.RemoveHead(head, count));
        }
        return drained;
    }

    TempFolder temp;
    const LPath path = temp.File("bgsend.dat");
    SendQueueFile queue;
};

}  // namespace

TEST_F(SendQueueFileTest, KeepsItsEntriesInOrderInTheFile) {
    for (int i = 1; i <= 3; ++i) ASSERT_TRUE(Append(i));
    EXPECT_EQ(Key("count"), "3");
    EXPECT_EQ(Key("file2"), "C:\\Sent\\3.wav");
    EXPECT_EQ(Key("sendto2"), "C:\\rec3.dat");
    EXPECT_EQ(Key("id2"), "3");

    int32_t count = 0;
    ASSERT_TRUE(queue.RemoveHead(Entry(1), count));
    ASSERT_TRUE(queue.RemoveHead(Entry(1), count)) << "gone already";
    EXPECT_EQ(count, 2);
    EXPECT_EQ(Head(), Entry(2));
    EXPECT_EQ(queue.Contains(Entry(1).dictation), QueueAnswer::No);
    EXPECT_EQ(queue.Contains(LPath("c:\\SENT\\3.WAV")), QueueAnswer::Yes);
    EXPECT_EQ(Key("count"), "2");
    EXPECT_EQ(Key("file2"), "(none)");
    EXPECT_EQ(Key("sendto1"), "C:\\rec3.dat");

    ASSERT_TRUE(queue.Clear());
    EXPECT_EQ(Key("file0"), "C:\\Sent\\2.wav") << "old keys stay until they are overwritten";
    ASSERT_TRUE(Append(7));
    EXPECT_EQ(Drain(), "7");
}

TEST_F(SendQueueFileTest, NeverTrustsTheCountOrTheEntries) {
    static const char* const kCases[][3] = {
        {"negative", "count=-5 file0=a sendto0=r id0=1", ""},
        {"no number", "count=many file0=a sendto0=r id0=1", ""},
        {"emptied", "count=0 file0=a sendto0=r id0=1 file1=b sendto1=r id1=2", ""},
        {"absurd", "count=2000000000 file0=a sendto0=r id0=1 file1=b sendto1=r id1=2", "12"},
        {"largest", "count=2147483647", ""},
        {"one too many", "count=2 file0=a sendto0=r id0=1", "1"},
        {"hole", "count=3 file0=a sendto0=r id0=1 file2=c sendto2=r id2=3", "13"},
        {"no head", "count=2 file1=b sendto1=r id1=2", "2"},
        {"missing keys", "count=3 file0=a id0=1 sendto1=r id1=2 file2=c sendto2=r", "???"},
        {"bad user", "count=2 file0=a sendto0=r id0=x file1=a sendto1=r id1=4294967296", "??"},
        {"far last entry", "count=1000 file0=a sendto0=r id0=1 id999=1", "1?"},
        {"far entry", "count=2000000000 file1999999999=a", ""},
        {"rubbish", "\x01\x02[[[]]]=== count=3", ""},
    };
    for (const auto& [name, lines, drained] : kCases) {
        std::string text = "[bgsend]\n";
        for (const char* p = lines; *p; ++p) text += *p == ' ' ? '\n' : *p;
        Write(text);
        EXPECT_EQ(Drain(), drained) << name;
    }
}

TEST_F(SendQueueFileTest, FinishesARemovalThatWasCutOff) {
    ASSERT_TRUE(Append(1));
    const LPath unfinished = temp.File("bgsend.new");

    // Cut off before the new file was complete: the old one stands.
    ASSERT_TRUE(WriteFileText(unfinished, "[bgse"));
    EXPECT_EQ(Head(), Entry(1));
    EXPECT_FALSE(LFile::Exists(unfinished));

    // Cut off after the old file was gone: the new one is complete.
    LProfile::Flush(path);
    ASSERT_TRUE(LFile::Move(path, unfinished));
    EXPECT_EQ(Head(), Entry(1));
}

TEST_F(SendQueueFileTest, NoEntryIsLostBetweenTwoPrograms) {
    const auto append = [&](int first) {
        SendQueueFile file;  // of another program
        file.SetPath(path);
        // One that did not get its turn changed nothing.
        for (int32_t i = 0, tried = 0, count = 0; i < 20 && tried < 100; ++tried)
            if (file.Append(Entry(first + i), count)) ++i;
    };
    const TestThread one([&] { append(100); }), two([&] { append(200); });
    std::vector<uint32_t> taken;
    SendQueueEntry head;
    const uint32_t begun = LTickMs();
    for (int32_t count = 0; taken.size() < 40 && LTickMs() - begun < 30000;) {
        if (!queue.ReadHead(head, count) || count == 0) continue;
        if (queue.RemoveHead(head, count)) taken.push_back(head.user);
    }
    std::ranges::sort(taken);
    EXPECT_EQ(taken.size(), 40u);
    EXPECT_EQ(std::ranges::adjacent_find(taken), taken.end());
}
