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

    // Dictations 1 to count in Sent.
    void MakeDictations(int32_t count, size_t frames) {
        for (int32_t number = 1; number <= count; ++number) world.AddDictation(number, Recording(frames));
    }
    bool Add(int32_t number) { return queue.Add(world.FilesOf(number).audio, recipient, 0); }
    void WaitForEnd() { ASSERT_TRUE(queue.WaitForEnd(kDeadlineMs)); }
    std::string States() const { return world.Status(1) + "," + world.Status(2) + "," + world.Status(3); }
    // As an earlier run left it.
    void LeaveEntries(std::initializer_list<int32_t> numbers, const LPath& to) {
        int32_t count = 0;
        for (int32_t number : numbers)
            ASSERT_TRUE(File().Append({world.FilesOf(number).audio, to, 0, true}, count));
    }
    SendQueueFile File() const {
        SendQueueFile file;
        file.SetPath(world.queue);
        return file;
    }
    int32_t Count() const {
        SendQueueEntry head;
        int32_t count = -1;
        return File().ReadHead(head, count) ? count : -1;
    }
    std::string WaitForError() {
        const uint32_t start = LTickMs();
        SendError error;
        while (!error && LTickMs() - start < kDeadlineMs) queue.WaitForEnd(20), error = queue.TakeError();
        return error.text;
    }

    SendWorld world;
    const LPath recipient = world.AddRecipient(0, world.ToShare());
    Owner owner;
    BGSend queue;
};

}  // namespace

TEST_F(BGSendTest, SendsWhatAnEarlierRunLeftInOrder) {
    MakeDictations(3, 100000);
    LeaveEntries({3, 1, 2}, recipient);
    std::vector<std::string> states;
    owner.onProgress = [&] {
        if (states.empty() || states.back() != States()) states.push_back(States());
        // Each third of the bar belongs to one of them.
        const double third = queue.GetProgress() * 3 - static_cast<double>(states.size() - 1);
        EXPECT_TRUE(queue.GetProgress() <= 0 || (third >= -1e-6 && third <= 1.0 + 1e-6)) << third;
    };
    queue.StartSending();
    WaitForEnd();
    EXPECT_EQ(states, (std::vector<std::string>{",,", ",,Sent", "Sent,,Sent", "Sent,Sent,Sent"}));
    EXPECT_EQ(queue.GetProgress(), 0.0);
    EXPECT_EQ(Count(), 0);
    EXPECT_EQ(queue.TakeError().text, "");
}

TEST_F(BGSendTest, NoEntryIsLeftAsleepWhenTheThreadIsAboutToEnd) {
    MakeDictations(1, 10);
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(Add(1));
        const uint32_t start = LTickMs();
        while (Count() > 0 && LTickMs() - start < kDeadlineMs) queue.WaitForEnd(1);
        ASSERT_EQ(Count(), 0) << i;  // the thread may or may not have ended by then
    }
    EXPECT_EQ(queue.TakeError().text, "");
}

TEST_F(BGSendTest, AFailureIsRemovedAndTheNextEntryIsTriedAtOnce) {
    MakeDictations(3, 4000);
    LeaveEntries({1}, RecipientPath(world.data, 0, 5));
    LeaveEntries({3}, LPath());  // an entry that is not whole
    LeaveEntries({9, 2}, recipient);
    queue.StartSending();
    WaitForEnd();
    EXPECT_EQ(Count(), 0);
    EXPECT_EQ(States(), "Send Failed,Sent,Send Failed");
    const SendError error = queue.TakeError();
    EXPECT_TRUE(error.text.starts_with("Unable to send the dictation.")) << error.text;
    EXPECT_EQ(error.dictation, "Letter 1") << "the first failure wins";
    EXPECT_EQ(error.others.size(), 2u) << "the others are named below it";
    EXPECT_EQ(queue.TakeError().text, "");
}

TEST_F(BGSendTest, AnErrorWaitsForTheUserWhoseDictationFailed) {
    MakeDictations(1, 4000);
    LFile::MakeFolder(UserFolderPath(world.data, 7));
    queue.KeepErrorsIn(UserFolderPath(world.data, 7));  // who is logged on
    LeaveEntries({1}, RecipientPath(world.data, 0, 5));
    queue.StartSending();
    WaitForEnd();
    EXPECT_FALSE(queue.PendingError());
    queue.LeaveErrors();
    queue.KeepErrorsIn(UserFolderPath(world.data, 0));
    EXPECT_EQ(queue.PendingError().dictation, "Letter 1");
    queue.LeaveErrors();
    EXPECT_FALSE(queue.PendingError());
}

// A folder of the file's name can no more be read than a file that another program holds.
TEST_F(BGSendTest, ADictationThatCannotBeReadKeepsNoOtherWaitingAndIsSentLater) {
    MakeDictations(3, 10);
    LFile::Delete(world.FilesOf(1).notes);
    LFile::MakeFolder(world.FilesOf(1).notes);
    ASSERT_TRUE(Add(1) && Add(2));
    EXPECT_NE(WaitForError().find("One of its files is open in another program."), std::string::npos);
    const uint32_t start = LTickMs();
    while (Count() > 1 && LTickMs() - start < kDeadlineMs) queue.WaitForEnd(20);
    EXPECT_EQ(States(), ",Sent,");
    LFile::DeleteFolder(world.FilesOf(1).notes);
    ASSERT_TRUE(Add(3));
    WaitForEnd();
    EXPECT_EQ(States(), "Sent,Sent,Sent");
    EXPECT_EQ(queue.TakeError().text, "");
}

TEST_F(BGSendTest, CancelEmptiesTheQueueAndGoesOnWithWhatIsAddedLater) {
    MakeDictations(3, 20000);
    owner.HangOnce();
    LeaveEntries({1, 2}, recipient);
    queue.StartSending();
    ASSERT_TRUE(owner.reached.Wait(kDeadlineMs));
    queue.ClearQueue(1);  // dictation 1 does not stop in this time
    EXPECT_EQ(Count(), 0);
    ASSERT_TRUE(Add(3));
    owner.goOn.Signal();
    WaitForEnd();
    EXPECT_EQ(States(), ",,Sent");
    EXPECT_EQ(queue.TakeError().text, "");
}

TEST_F(BGSendTest, AStartBeforeTheStopWasNoticedWithdrawsTheStop) {
    MakeDictations(3, 20000);
    owner.HangOnce();
    ASSERT_TRUE(Add(1));
    ASSERT_TRUE(owner.reached.Wait(kDeadlineMs));
    EXPECT_FALSE(queue.Stop(1));
    ASSERT_TRUE(Add(2) && Add(3));
    owner.goOn.Signal();
    WaitForEnd();
    EXPECT_EQ(States(), "Sent,Sent,Sent");
}

TEST_F(BGSendTest, AQueueFileThatCannotBeChangedIsToldOnceAndNothingIsSentTwice) {
    const char kText[] = "Corvane internal files are read only or corrupt.";
    MakeDictations(1, 4000);
    LeaveEntries({1}, recipient);
    const LPath obstacle = LPath::Join(world.data.View(), "bgsend.new");
    const LPath delivered = LPath::Join(world.share.View(), "dct00000-00001.dct");
    ASSERT_TRUE(LFile::MakeFolder(obstacle));
    queue.StartSending();
    EXPECT_EQ(WaitForError(), kText);
    EXPECT_EQ(Count(), 1);
    ASSERT_TRUE(LFile::Delete(delivered));
    queue.StartSending();  // as the box's OK does
    EXPECT_FALSE(queue.WaitForEnd(1500));
    EXPECT_EQ(queue.TakeError().text, "") << "one cause, one box";

    ASSERT_TRUE(LFile::DeleteFolder(obstacle));
    WaitForEnd();
    EXPECT_EQ(Count(), 0);
    EXPECT_FALSE(LFile::Exists(delivered)) << "it is removed, not sent once more";
    ASSERT_TRUE(Add(1));
    WaitForEnd();
    EXPECT_FALSE(LFile::Exists(delivered)) << "nor by a later run, whose record says so";
    Settings::Write(world.FilesOf(1).record, RecordKeys::kSendStatus, RecordKeys::kStatusSending);
    ASSERT_TRUE(Add(1));
    WaitForEnd();
    EXPECT_TRUE(LFile::Exists(delivered)) << "unless the user sends it again";

    queue.SetQueuePath(world.temp.File("missing\\bgsend.dat"));
    EXPECT_FALSE(Add(1));
}

TEST_F(BGSendTest, OfTwoProgramsOneSendsAndTheOtherTakesOver) {
    MakeDictations(3, 20000);
    BGSend other;
    other.SetQueuePath(world.queue);
    owner.HangOnce();
    ASSERT_TRUE(Add(1));
    ASSERT_TRUE(owner.reached.Wait(kDeadlineMs));
    ASSERT_TRUE(other.Add(world.FilesOf(2).audio, recipient, 0));
    EXPECT_FALSE(other.WaitForEnd(1500));
    EXPECT_EQ(States(), ",,");
    ASSERT_TRUE(other.Stop(500));
    other.StartSending();

    queue.RequestStop();  // as if it ended in the middle
    owner.goOn.Signal();
    WaitForEnd();
    ASSERT_TRUE(other.WaitForEnd(kDeadlineMs));
    EXPECT_EQ(States(), "Sent,Sent,");
    EXPECT_EQ(Count(), 0);
    ASSERT_TRUE(Add(3));
    WaitForEnd();
    EXPECT_EQ(States(), "Sent,Sent,Sent");
    EXPECT_EQ(queue.TakeError().text + other.TakeError().text, "");
}
