#include "send/RecipientDeletion.h"

#include "base/LLeftOver.h"
#include "send/BGSend.h"
#include "tests/unit/send/SendTest.h"

namespace {

// Four recipients, the third perhaps without a file; dictations wait for the second and the fourth.
struct Recipients : SendWorld {
    explicit Recipients(bool hasGap = true) {
        for (const int index : {0, 1, 2, 3}) {
            if (hasGap && index == 2) continue;
            SendToSettings recipient = ToShare();
            recipient.name = std::string("Typist ") + static_cast<char>('A' + index);
            AddRecipient(index, recipient);
        }
        Settings::Write(userFile, UserKeys::kSendCount, 4);
        file.SetPath(queue);
        int32_t count = 0;
        for (const int32_t index : {1, 3})
            EXPECT_TRUE(file.Append({FilesOf(index).audio, RecipientPath(data, 0, index), 0, true}, count));
    }
    // The names of the recipients, and behind a blank those that the entries in the queue go to; "-": nobody.
    std::string Standing() const {
        std::string standing;
        for (int32_t i = 0; i < RecipientCount(userFile); ++i) standing += Letter(RecipientPath(data, 0, i));
        std::vector<SendQueueEntry> entries;
        EXPECT_TRUE(file.ReadAll(entries));
        standing += ' ';
        for (const SendQueueEntry& entry : entries) standing += Letter(entry.recipient);
        return standing;
    }
    static char Letter(const LPath& path) {
        SendToSettings recipient;
        return recipient.Load(path) ? recipient.name.back() : '-';
    }

    const LPath userFile = UserFilePath(data, 0);
    const DataFolder folder = DataFolder::FromText(data.View());
    const LPath journal = LPath::Join(LFolderOf(userFile.View()), LLeftOver::kDeletion);
    SendQueueFile file;
};

}  // namespace

TEST(RecipientDeletion, WhatWaitsFollowsItsRecipient) {
    const std::pair<int32_t, const char*> kCases[] = {
        {0, "B-D BD"}, {1, "A-D -D"}, {2, "ABD BD"}, {3, "AB- B-"}};
    for (const auto& [index, standing] : kCases) {
        Recipients world;
        ASSERT_EQ(world.Standing(), "AB-D BD");
        EXPECT_TRUE(RecipientDeletion(world.folder, 0, world.file).Begin(index));
        EXPECT_EQ(world.Standing(), standing) << index;
        EXPECT_TRUE(LFile::IsAbsent(world.journal));
    }
    Recipients world;
    EXPECT_FALSE(RecipientDeletion(world.folder, 0, world.file).Begin(4));
    EXPECT_EQ(world.Standing(), "AB-D BD");
}

// A folder of the name beside the queue keeps that from being replaced, so the deletion ends there, however
// often it is tried. In the moves: the last one of three is undone.
TEST(RecipientDeletion, IsFinishedFromWhereverItWasCutOff) {
    for (const bool hasGap : {true, false}) {
        for (const bool isAmongMoves : {true, false}) {
            Recipients world(hasGap);
            const char* const wanted = hasGap ? "B-D BD" : "BCD BD";
            RecipientDeletion deletion(world.folder, 0, world.file);
            const LPath blocked = world.queue.WithExtension(LLeftOver::kQueue);
            LFile::MakeFolder(blocked);
            EXPECT_FALSE(deletion.Begin(0));
            EXPECT_FALSE(deletion.Finish());
            if (isAmongMoves) LFile::Move(RecipientPath(world.data, 0, 2), RecipientPath(world.data, 0, 3));
            EXPECT_FALSE(deletion.Begin(1)) << "the number means another one by now";
            LFile::DeleteFolder(blocked);
            EXPECT_FALSE(deletion.Begin(1));
            const std::string journal = ReadFileText(world.journal);
            EXPECT_TRUE(deletion.Finish());
            EXPECT_EQ(world.Standing(), wanted);
            WriteFileText(world.journal, journal);  // cut off before it was deleted
            EXPECT_TRUE(deletion.Finish());
            EXPECT_EQ(world.Standing(), wanted);
        }
    }
}

TEST(RecipientDeletion, NothingIsQueuedByAnOldNumber) {
    Recipients world;
    BGSend sender;
    sender.SetQueuePath(world.queue);
    LFileLock other;  // another program sends
    ASSERT_EQ(other.TryTake(LPath::Join(world.data.View(), LLeftOver::kSendingLock)),
              LFileLock::Result::Taken);
    WriteFileText(world.journal,
                  "[deletion]\r\nindex=0\r\ncount=4\r\nrecipient1=true\r\nentries=2000000000\r\n");
    EXPECT_FALSE(sender.SettleDeletion(0));
    EXPECT_FALSE(sender.Add(world.FilesOf(7).audio, RecipientPath(world.data, 0, 1), 0))
        << "means another one soon";
    other.Release();
    EXPECT_TRUE(sender.SettleDeletion(0));
    EXPECT_EQ(Recipients::Letter(RecipientPath(world.data, 0, 0)), 'B');
    EXPECT_FALSE(
        sender.Add(world.FilesOf(7).audio, RecipientPath(world.data, 0, 0), 0, [] { return false; }));
    sender.Stop(kWaitForever);
    EXPECT_EQ(sender.DeleteRecipient(0, 0, 1000, [] { return false; }), BGSend::Outcome::Changed);
    EXPECT_EQ(Recipients::Letter(RecipientPath(world.data, 0, 0)), 'B');
    sender.Stop(kWaitForever);
}
