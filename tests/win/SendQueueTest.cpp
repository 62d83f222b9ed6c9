#include <windows.h>

#include "base/LOwned.h"
#include "send/BGSend.h"
#include "tests/unit/send/SendTest.h"

namespace {

constexpr uint32_t kDeadlineMs = 20000;

struct FileTraits {
    using Type = HANDLE;
    static Type None() { return INVALID_HANDLE_VALUE; }
    static void Close(Type h) { CloseHandle(h); }
};

// The queue file as a virus scanner holds it: nobody else can open it.
class HeldFile {
public:
    explicit HeldFile(const LPath& path)
        : m_file(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {
        EXPECT_TRUE(m_file);
    }
    void LetGo() { m_file.Reset(); }

private:
    LOwned<FileTraits> m_file;
};

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
    EXPECT_TRUE(file.Holds(world.FilesOf(1).audio)) << "what may wait there is not to be deleted";
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
