#include "send/BGSend.h"

#include <functional>

#include "base/LTime.h"
#include "tests/unit/send/SendTest.h"

namespace {

constexpr uint32_t kDeadlineMs = 20000;

// Runs a step of the test on the send thread, at each progress message.
struct Owner final : BGSendOwner {
    void PostSendProgress() override {
        if (onProgress) onProgress();
    }
    // Keeps the first message, and with it the thread, until goOn is signalled.
    void HangOnce() {
        onProgress = [this] {
            if (reached.IsSignalled()) return;
            reached.Signal();
            goOn.Wait(kDeadlineMs);
        };
    }

    std::function<void()> onProgress;  // set while the thread does not run
    LSignalObject reached, goOn;
};

class BGSendTest : public testing::Test {
protected:
    BGSendTest() { queue.SetOwner(&owner), queue.SetQueuePath(world.queue); }
    ~BGSendTest() override { queue.Stop(kWaitForever); }

    bool Add(int32_t number, const LPath& recipient) {
        return queue.Add(world.FilesOf(number).audio, recipient, 0);
    }
    void StartAndWait() {
        queue.StartSending();
        ASSERT_TRUE(queue.WaitForEnd(kDeadlineMs));
    }
    bool WaitUntilEmpty() {
        const uint32_t start = LTickMs();
        while (queue.GetCount() > 0 && LTickMs() - start < kDeadlineMs) queue.WaitForEnd(1);
        return queue.GetCount() == 0;
    }
    void WriteQueue(int count, const char* entries) {
        ASSERT_TRUE(
            WriteFileText(world.queue, "[bgsend]\r\ncount=" + std::to_string(count) + "\r\n" + entries));
    }
    // As an earlier run left it.
    void LeaveEntries(std::initializer_list<int32_t> numbers, const LPath& recipient) {
        SendQueueFile file;
        file.SetPath(world.queue);
        for (int32_t number : numbers)
            ASSERT_TRUE(file.Append({world.FilesOf(number).audio, recipient, 0, true}));
    }

    SendWorld world;
    Owner owner;
    BGSend queue;
};

}  // namespace

TEST_F(BGSendTest, SendsWhatAnEarlierRunLeftInOrder) {
    for (int32_t number : {3, 1, 2}) world.AddDictation(number, Recording(100000));
    LeaveEntries({3, 1, 2}, world.AddRecipient(0, world.ToShare()));
    std::vector<std::string> states;
    std::vector<double> progress;
    owner.onProgress = [&] {
        const std::string state = world.Status(3) + "," + world.Status(1) + "," + world.Status(2);
        if (states.empty() || states.back() != state) states.push_back(state);
        // Each third of the bar belongs to one of them.
        if (queue.GetProgress() > 0)
            progress.push_back(queue.GetProgress() * 3 - static_cast<double>(states.size() - 1));
    };
    StartAndWait();
    const std::vector<std::string> expected = {",,", "Sent,,", "Sent,Sent,", "Sent,Sent,Sent"};
    EXPECT_EQ(states, expected);
    for (double third : progress) EXPECT_TRUE(third >= -1e-6 && third <= 1.0 + 1e-6) << third;
    EXPECT_EQ(queue.GetProgress(), 0.0);
    EXPECT_EQ(queue.GetCount(), 0);
    EXPECT_EQ(queue.TakeError(), "");
}

TEST_F(BGSendTest, SendsWhatIsAddedWhileItSends) {
    for (int32_t number : {1, 2, 3}) world.AddDictation(number, Recording(20000));
    const LPath recipient = world.AddRecipient(0, world.ToShare());
    bool added = false;
    owner.onProgress = [&] {
        if (std::exchange(added, true)) return;
        EXPECT_TRUE(Add(2, recipient));
        EXPECT_TRUE(Add(3, recipient));
    };
    ASSERT_TRUE(Add(1, recipient));
    ASSERT_TRUE(queue.WaitForEnd(kDeadlineMs));
    for (int32_t number : {1, 2, 3}) EXPECT_EQ(world.Status(number), "Sent") << number;
    EXPECT_EQ(queue.GetCount(), 0);
}

TEST_F(BGSendTest, NoEntryIsLeftAsleepWhenTheThreadIsAboutToEnd) {
    world.AddDictation(1, Recording(10));
    const LPath recipient = world.AddRecipient(0, world.ToShare());
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(Add(1, recipient));
        ASSERT_TRUE(WaitUntilEmpty()) << i;  // the thread may or may not have ended by then
    }
    EXPECT_EQ(queue.TakeError(), "");
}

TEST_F(BGSendTest, AStopInTheMiddleOfAnEncryptedFileLeavesTheEntryAtTheHead) {
    world.AddDictation(1, Recording(200000));
    const LPath recipient = world.AddRecipient(0, world.ToShareEncrypted());
    owner.onProgress = [&] {
        if (queue.GetProgress() >= 0.42) queue.RequestStop();
    };
    ASSERT_TRUE(Add(1, recipient));
    ASSERT_TRUE(queue.WaitForEnd(kDeadlineMs));
    EXPECT_EQ(queue.GetCount(), 1);
    EXPECT_EQ(world.Status(1), "");
    EXPECT_EQ(world.SentFiles().size(), 3u) << "nothing half-made is left";

    owner.onProgress = nullptr;
    StartAndWait();
    EXPECT_EQ(queue.GetCount(), 0);
    EXPECT_EQ(world.Status(1), "Sent");
}

TEST_F(BGSendTest, AFailureIsRemovedAndTheNextEntryIsTriedAtOnce) {
    for (int32_t number : {1, 2}) world.AddDictation(number);
    const LPath recipient = world.AddRecipient(0, world.ToShare());
    LeaveEntries({1}, RecipientPath(world.data, 0, 5));
    LeaveEntries({1}, LPath());
    LeaveEntries({9, 2}, recipient);
    StartAndWait();
    EXPECT_EQ(queue.GetCount(), 0);
    EXPECT_EQ(world.Status(1), "Send Failed");
    EXPECT_EQ(world.Status(2), "Sent");
    const std::string error = queue.TakeError();
    EXPECT_TRUE(error.starts_with("Unable to send \"Letter 1\".")) << "the first failure wins: " << error;
    EXPECT_EQ(queue.TakeError(), "");
}

TEST_F(BGSendTest, CancelEmptiesTheQueueAndGoesOnWithWhatIsAddedLater) {
    for (int32_t number : {1, 2, 3}) world.AddDictation(number, Recording(20000));
    const LPath recipient = world.AddRecipient(0, world.ToShare());
    owner.HangOnce();
    LeaveEntries({1, 2}, recipient);
    queue.StartSending();
    ASSERT_TRUE(owner.reached.Wait(kDeadlineMs));
    queue.ClearQueue(1);  // dictation 1 does not stop in this time
    EXPECT_EQ(queue.GetCount(), 0);
    ASSERT_TRUE(Add(3, recipient));
    owner.goOn.Signal();
    ASSERT_TRUE(queue.WaitForEnd(kDeadlineMs));
    EXPECT_EQ(world.Status(1), "");
    EXPECT_EQ(world.Status(2), "");
    EXPECT_EQ(world.Status(3), "Sent");
    EXPECT_EQ(queue.TakeError(), "");
}

TEST_F(BGSendTest, AStartBeforeTheStopWasNoticedWithdrawsTheStop) {
    for (int32_t number : {1, 2}) world.AddDictation(number, Recording(20000));
    const LPath recipient = world.AddRecipient(0, world.ToShare());
    owner.HangOnce();
    ASSERT_TRUE(Add(1, recipient));
    ASSERT_TRUE(owner.reached.Wait(kDeadlineMs));
    EXPECT_FALSE(queue.Stop(1));
    ASSERT_TRUE(Add(2, recipient));
    owner.goOn.Signal();
    ASSERT_TRUE(queue.WaitForEnd(kDeadlineMs));
    EXPECT_EQ(world.Status(1), "Sent");
    EXPECT_EQ(world.Status(2), "Sent");
}

TEST_F(BGSendTest, AQueueFileThatCannotBeWrittenIsTold) {
    const char kText[] = "Corvane internal files are read only or corrupt.";
    world.AddDictation(1);
    const LPath recipient = world.AddRecipient(0, world.ToShare());
    LeaveEntries({1}, recipient);
    ASSERT_TRUE(LFile::MakeFolder(LPath::Join(world.data.View(), "bgsend.new")));
    StartAndWait();  // ends, instead of sending the same dictation for ever
    EXPECT_EQ(queue.TakeError(), kText);
    EXPECT_EQ(queue.GetCount(), 1);

    queue.SetQueuePath(world.temp.File("missing\\bgsend.dat"));
    EXPECT_FALSE(Add(1, recipient));
    EXPECT_EQ(queue.TakeError(), kText);
}
