#include "send/RecipientDeletion.h"

#include <gtest/gtest.h>

#include "base/LLeftOver.h"
#include "tests/unit/send/SendTest.h"

namespace {

// Four recipients, the third without a file; dictations wait for the second and the fourth.
struct Recipients : SendWorld {
    Recipients() {
        for (const int index : {0, 1, 3}) {
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
    const struct {
        int32_t index;
        const char* standing;
    } kCases[] = {{0, "B-D BD"}, {1, "A-D -D"}, {2, "ABD BD"}, {3, "AB- B-"}};
    for (const auto& c : kCases) {
        Recipients world;
        ASSERT_EQ(world.Standing(), "AB-D BD");
        EXPECT_TRUE(RecipientDeletion(world.folder, 0, world.file).Begin(c.index));
        EXPECT_EQ(world.Standing(), c.standing) << c.index;
        EXPECT_TRUE(LFile::IsAbsent(world.journal));
    }
    Recipients world;
    EXPECT_FALSE(RecipientDeletion(world.folder, 0, world.file).Begin(4));
    EXPECT_EQ(world.Standing(), "AB-D BD");
}

// A folder of the name beside the queue keeps that from being replaced, so the deletion ends there.
TEST(RecipientDeletion, IsFinishedFromWhereverItWasCutOff) {
    for (const bool isAmongMoves : {true, false}) {
        Recipients world;
        RecipientDeletion deletion(world.folder, 0, world.file);
        const LPath blocked = world.queue.WithExtension(LLeftOver::kQueue);
        LFile::MakeFolder(blocked);
        EXPECT_FALSE(deletion.Begin(0));
        if (isAmongMoves) LFile::Move(RecipientPath(world.data, 0, 2), RecipientPath(world.data, 0, 3));
        EXPECT_FALSE(deletion.Begin(1)) << "one after the other";
        LFile::DeleteFolder(blocked);
        const std::string journal = ReadFileText(world.journal);
        EXPECT_TRUE(deletion.Finish());
        EXPECT_EQ(world.Standing(), "B-D BD");
        WriteFileText(world.journal, journal);  // cut off before it was deleted
        EXPECT_TRUE(deletion.Finish());
        EXPECT_EQ(world.Standing(), "B-D BD");
    }
}
