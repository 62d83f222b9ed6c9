#include "send/SendQueueFile.h"
#include "send/UntoldErrors.h"
#include "tests/fuzz/Fuzz.h"

// Whatever the file of untold errors holds, what it yields fits into a box, and can be answered.
static void CheckUntold(const LPath& file) {
    UntoldErrors errors;
    errors.KeepIn(file);
    const SendError told = errors.All();
    Require(SendErrorBoxText(told).size() < 5000);
    errors.Forget(told);
    Require(!errors.All());
}

// Whatever the queue file holds, a dictation that is added comes out again behind everything else, as it went
// in, after no more removals than there were entries.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Scratch scratch;
    if (!LFile(scratch.path, LFile::Open::CreateNew).WriteAll({data, size})) return 0;
    CheckUntold(scratch.path);
    if (!LFile(scratch.path, LFile::Open::CreateNew).WriteAll({data, size})) return 0;
    SendQueueFile queue;
    queue.SetPath(scratch.path);
    SendQueueEntry head;
    int32_t count = 0;
    const SendQueueEntry added{LPath("C:\\Sent\\00000042.wav"), LPath("C:\\rec0.dat"), 42, true};
    Require(queue.Append(added, count));
    for (int32_t left = count; left > 0; --left) {
        Require(queue.ReadHead(head, count) && count == left);
        Require((head == added) || left > 1);
        Require(queue.RemoveHead(head, count) && count == left - 1);
    }
    return 0;
}
