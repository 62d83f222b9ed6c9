#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "base/LFile.h"
#include "base/LText.h"
#include "bench/Ratios.h"
#include "send/SendQueueFile.h"

// What one entry costs the queue file: each change writes the file as a whole, beside itself, and swaps it
// in, as its format and its safety demand. So the peer is a bare read and write of the same bytes.

namespace {

// A queue of so many entries, in a folder of its own.
class FilledQueue {
public:
    explicit FilledQueue(int64_t entries) : m_folder(LFile::MakeTemporary("cvb")) {
        LFile::Delete(m_folder);
        LFile::MakeFolder(m_folder);
        path = LPath::Join(m_folder.View(), "bgsend.dat");
        std::string text = LFormat("[bgsend]\r\ncount=%d\r\n", static_cast<int>(entries));
        for (int i = 0; i < entries; ++i)
            text += LFormat(
                "file%d=C:\\Corvane\\Data\\00000000\\Sent\\%.8d.wav\r\n"
                "sendto%d=C:\\Corvane\\Data\\00000000\\rec0.dat\r\nid%d=0\r\n",
                i, i, i, i);
        LFile(path, LFile::Open::CreateNew)
            .WriteAll({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
        queue.SetPath(path);
    }
    ~FilledQueue() {
        for (const char* extension : {".dat", ".lck", ".new"}) LFile::Delete(path.WithExtension(extension));
        LFile::DeleteFolder(m_folder);
    }
    FilledQueue(const FilledQueue&) = delete;
    FilledQueue& operator=(const FilledQueue&) = delete;

    LPath path;
    SendQueueFile queue;

private:
    LPath m_folder;
};

// Costs what the removal of the head does, and leaves as many entries.
void Move(benchmark::State& state) {
    FilledQueue filled(state.range(0));
    for (auto _ : state) {
        SendQueueEntry head;
        int32_t count = 0;
        if (!filled.queue.ReadHead(head, count) || !filled.queue.MoveHeadToEnd(head, count))
            state.SkipWithError("the queue file cannot be changed");
    }
}

void Rewrite(benchmark::State& state) {
    const FilledQueue filled(state.range(0));
    std::vector<uint8_t> bytes;
    for (auto _ : state) {
        for (int read = 0; read < 2; ++read) LFile::ReadWhole(filled.path, 1u << 20, bytes);
        if (!LFile::WriteWhole(filled.path, filled.path.WithExtension(".new"), bytes))
            state.SkipWithError("the queue file cannot be written");
    }
}

void IsQueued(benchmark::State& state) {
    const FilledQueue filled(state.range(0));
    const LPath wanted("C:\\Corvane\\Data\\00000000\\Sent\\99999999.wav");
    for (auto _ : state) benchmark::DoNotOptimize(filled.queue.Contains(wanted));
}

BENCHMARK(Move)->Name("QueueMove500")->Arg(500);
BENCHMARK(Move)->Name("QueueMove1000")->Arg(1000);
BENCHMARK(Rewrite)->Name("QueueRewrite1000")->Arg(1000);
BENCHMARK(IsQueued)->Name("QueueIsQueued1000")->Arg(1000);

const BenchRatio kRatios[] = {
    {"queue, a change among 1000 / among 500", "QueueMove1000", "QueueMove500", 2.5},
    {"queue, a change among 1000 / two bare reads and a write", "QueueMove1000", "QueueRewrite1000"},
};
const BenchTime kTimes[] = {{"queue, a change among 1000", "QueueMove1000", 20.0},
                            {"queue, is one of 1000 queued", "QueueIsQueued1000", 5.0}};

}  // namespace
