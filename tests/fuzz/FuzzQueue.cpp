#include <cstdlib>

#include "base/LFile.h"
#include "base/LProfile.h"
#include "send/SendQueueFile.h"

static void Check(bool holds) {
    if (!holds) std::abort();
}

struct Scratch {
    ~Scratch() { LFile::Delete(path); }
    LPath path = LFile::MakeTemporary("cvf");
};

// Whatever the queue file holds, a dictation that is added comes out again behind everything else, as it went
// in, after no more removals than there were entries.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Scratch scratch;
    if (!LFile(scratch.path, LFile::Open::CreateNew).WriteAll({data, size})) return 0;
    SendQueueFile queue;
    queue.SetPath(scratch.path);
    Check(queue.Count() >= 0);

    const SendQueueEntry added{LPath("C:\\Sent\\00000042.wav"), LPath("C:\\rec0.dat"), 42, true};
    Check(queue.Append(added));
    for (int32_t left = queue.Count(); left > 1;) {
        Check(queue.RemoveHead());
        const int32_t now = queue.Count();
        Check(now >= 1 && now < left);
        left = now;
    }
    Check(queue.Head() == added);
    Check(queue.RemoveHead() && queue.Count() == 0);
    return 0;
}
