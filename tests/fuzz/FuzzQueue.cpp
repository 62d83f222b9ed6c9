#include <cstdlib>

#include "base/LFile.h"
#include "send/SendQueueFile.h"

static void Check(bool holds) {
    if (!holds) std::abort();
}

struct Scratch {
    ~Scratch() { LFile::Delete(path), LFile::Delete(path.WithExtension(".lck")); }
    LPath path = LFile::MakeTemporary("cvf");
};

// Whatever the queue file holds, a dictation that is added comes out again behind everything else, as it went
// in, after no more removals than there were entries.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Scratch scratch;
    if (!LFile(scratch.path, LFile::Open::CreateNew).WriteAll({data, size})) return 0;
    SendQueueFile queue;
    queue.SetPath(scratch.path);
    SendQueueEntry head;
    int32_t count = 0;
    const SendQueueEntry added{LPath("C:\\Sent\\00000042.wav"), LPath("C:\\rec0.dat"), 42, true};
    Check(queue.Append(added, count));
    for (int32_t left = count; left > 0; --left) {
        Check(queue.ReadHead(head, count) && count == left);
        Check((head == added) || left > 1);
        Check(queue.RemoveHead(head, count) && count == left - 1);
    }
    return 0;
}
