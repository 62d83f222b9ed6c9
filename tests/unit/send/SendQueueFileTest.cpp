#include "send/SendQueueFile.h"

#include <gtest/gtest.h>

#include "base/LProfile.h"
#include "tests/unit/TempFolder.h"

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
        queue.SetPath(path);
    }
    std::string Key(const char* key) const { return LProfile::Read(path, "bgsend", key, "(none)"); }
    // Empties the queue; the users' numbers in their order, "?" for an entry that is not whole.
    std::string Drain() {
        std::string drained;
        for (int guard = 0; queue.Count() > 0 && guard < 100; ++guard) {
            const SendQueueEntry head = queue.Head();
            drained += head.isWhole ? std::to_string(head.user) : "?";
            EXPECT_TRUE(queue.RemoveHead());
        }
        return drained;
    }

    TempFolder temp;
    const LPath path = temp.File("bgsend.dat");
    SendQueueFile queue;
};

}  // namespace

TEST_F(SendQueueFileTest, KeepsItsEntriesInOrderInTheFile) {
    EXPECT_EQ(queue.Count(), 0);
    for (int i = 1; i <= 3; ++i) ASSERT_TRUE(queue.Append(Entry(i)));
    EXPECT_EQ(Key("count"), "3");
    EXPECT_EQ(Key("file2"), "C:\\Sent\\3.wav");
    EXPECT_EQ(Key("sendto2"), "C:\\rec3.dat");
    EXPECT_EQ(Key("id2"), "3");

    ASSERT_TRUE(queue.RemoveHead());
    EXPECT_EQ(queue.Head(), Entry(2));
    EXPECT_FALSE(queue.Holds(Entry(1).dictation));
    EXPECT_TRUE(queue.Holds(LPath("c:\\SENT\\3.WAV")));
    EXPECT_EQ(Key("count"), "2");
    EXPECT_EQ(Key("file2"), "(none)");
    EXPECT_EQ(Key("sendto1"), "C:\\rec3.dat");

    SendQueueFile nextRun;
    nextRun.SetPath(path);
    EXPECT_EQ(nextRun.Head(), Entry(2));

    ASSERT_TRUE(queue.SetCount(0));
    EXPECT_EQ(Key("file0"), "C:\\Sent\\2.wav") << "old keys stay until they are overwritten";
    ASSERT_TRUE(queue.Append(Entry(7)));
    EXPECT_EQ(Drain(), "7");
}

TEST_F(SendQueueFileTest, NeverTrustsTheCountOrTheEntries) {
    static const struct {
        const char *name, *lines, *drained;
    } kCases[] = {
        {"negative", "count=-5 file0=a sendto0=r id0=1", ""},
        {"no number", "count=many file0=a sendto0=r id0=1", ""},
        {"emptied", "count=0 file0=a sendto0=r id0=1 file1=b sendto1=r id1=2", ""},
        {"absurd", "count=2000000000 file0=a sendto0=r id0=1 file1=b sendto1=r id1=2", "12"},
        {"largest", "count=2147483647", ""},
        {"one too many", "count=2 file0=a sendto0=r id0=1", "1"},
        {"hole", "count=3 file0=a sendto0=r id0=1 file2=c sendto2=r id2=3", "13"},
        {"no head", "count=2 file1=b sendto1=r id1=2", "?2"},
        {"missing keys", "count=3 file0=a id0=1 sendto1=r id1=2 file2=c sendto2=r", "???"},
        {"bad user", "count=2 file0=a sendto0=r id0=x file1=a sendto1=r id1=4294967296", "??"},
        {"far last entry", "count=1000 file0=a sendto0=r id0=1 id999=1", "1"},
        {"far entry", "count=2000000000 file1999999999=a", ""},
        {"rubbish", "\x01\x02[[[]]]=== count=3", ""},
    };
    for (const auto& c : kCases) {
        std::string text = "[bgsend]\n";
        for (const char* p = c.lines; *p; ++p) text += *p == ' ' ? '\n' : *p;
        Write(text);
        EXPECT_EQ(Drain(), c.drained) << c.name;

        // Whatever the file holds, a new entry goes behind what is there and comes out again.
        Write(text);
        ASSERT_TRUE(queue.Append(Entry(9)));
        EXPECT_EQ(Drain(), std::string(c.drained) + "9") << c.name;
    }
}

TEST_F(SendQueueFileTest, FinishesARemovalThatWasCutOff) {
    ASSERT_TRUE(queue.Append(Entry(1)));
    const LPath unfinished = temp.File("bgsend.new");

    // Cut off before the new file was complete: the old one stands.
    ASSERT_TRUE(WriteFileText(unfinished, "[bgse"));
    queue.SetPath(path);
    EXPECT_EQ(queue.Head(), Entry(1));
    EXPECT_FALSE(LFile::Exists(unfinished));

    // Cut off after the old file was gone: the new one is complete.
    LProfile::Flush(path);
    ASSERT_TRUE(LFile::Move(path, unfinished));
    queue.SetPath(path);
    EXPECT_EQ(queue.Head(), Entry(1));
}

TEST_F(SendQueueFileTest, AFileThatCannotBeChangedKeepsItsEntries) {
    ASSERT_TRUE(queue.Append(Entry(1)));
    ASSERT_TRUE(LFile::MakeFolder(temp.File("bgsend.new")));  // where the new file would be written
    EXPECT_FALSE(queue.RemoveHead());
    EXPECT_EQ(queue.Count(), 1);
    EXPECT_EQ(queue.Head(), Entry(1));

    queue.SetPath(temp.File("missing\\bgsend.dat"));
    EXPECT_FALSE(queue.Append(Entry(2)));
    EXPECT_FALSE(queue.SetCount(1));
}
