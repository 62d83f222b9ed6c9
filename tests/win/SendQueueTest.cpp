#include "send/BGSend.h"
#include "tests/unit/send/SendTest.h"
#include "tests/win/HeldFile.h"

TEST(HeldQueue, IsNotTakenForAnEmptyOneAndTheThreadWaitsForItUnlessItIsStopped) {
    SendWorld world;
    const LPath share = world.AddRecipient(0, world.ToShare());
    SendQueueFile file;
    file.SetPath(world.queue);
    int32_t count = 0;
    for (int32_t number : {1, 2})
        EXPECT_TRUE(file.Append({world.AddDictation(number), share, 0, true}, count));
    HeldFile held(world.queue);
    EXPECT_FALSE(file.Append({world.AddDictation(3), share, 0, true}, count));
    EXPECT_FALSE(file.RemoveHead({world.FilesOf(1).audio, share, 0, true}, count));
    EXPECT_EQ(file.Contains(world.FilesOf(1).audio), QueueAnswer::Unknown);
    BGSend queue;
    queue.SetQueuePath(world.queue);
    queue.StartSending();
    EXPECT_FALSE(queue.WaitForEnd(300));
    EXPECT_TRUE(queue.Stop(1000));
    queue.StartSending();
    held.LetGo();
    EXPECT_TRUE(queue.WaitForEnd(20000));
    EXPECT_EQ(world.Status(1) + "," + world.Status(2) + "," + world.Status(3), "Sent,Sent,");
    EXPECT_EQ(queue.TakeError().text, "");
}
