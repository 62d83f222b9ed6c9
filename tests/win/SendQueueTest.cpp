#include "send/BGSend.h"
#include "tests/unit/send/SendTest.h"
#include "tests/win/HeldFile.h"

namespace {

constexpr uint32_t kDeadlineMs = 20000;

class HeldQueueTest : public testing::Test {
protected:
    HeldQueueTest() {
        queue.SetQueuePath(world.queue);
        file.SetPath(world.queue);
        for (int32_t number : {1, 2})
            EXPECT_TRUE(file.Append({world.AddDictation(number), share, 0, true}, count));
    }
    LPath Head() {
        SendQueueEntry head;
        EXPECT_TRUE(file.ReadHead(head, count));
        return head.dictation;
    }

    SendWorld world;
    const LPath share = world.AddRecipient(0, world.ToShare());
    SendQueueFile file;
    int32_t count = 0;
    BGSend queue;
};

}  // namespace

TEST_F(HeldQueueTest, AHeldFileIsNotTakenForAnEmptyOne) {
    HeldFile held(world.queue);
    EXPECT_FALSE(file.Append({world.AddDictation(3), share, 0, true}, count));
    EXPECT_FALSE(file.RemoveHead({world.FilesOf(1).audio, share, 0, true}, count));
    EXPECT_EQ(file.Contains(world.FilesOf(1).audio), QueueAnswer::Unknown);
    held.LetGo();
    EXPECT_EQ(Head(), world.FilesOf(1).audio);
    EXPECT_EQ(count, 2);
}

TEST_F(HeldQueueTest, TheThreadWaitsForTheFileAndSendsEverything) {
    HeldFile held(world.queue);
    queue.StartSending();
    EXPECT_FALSE(queue.WaitForEnd(300));
    held.LetGo();
    EXPECT_TRUE(queue.WaitForEnd(kDeadlineMs));
    EXPECT_EQ(world.Status(1) + "," + world.Status(2), "Sent,Sent");
    EXPECT_EQ(queue.TakeError().text, "");
}

TEST_F(HeldQueueTest, AStopDoesNotWaitForTheFile) {
    HeldFile held(world.queue);
    queue.StartSending();
    EXPECT_TRUE(queue.Stop(1000));
    held.LetGo();
    EXPECT_EQ(Head(), world.FilesOf(1).audio);
    EXPECT_EQ(queue.TakeError().text, "");
}
