#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "base/LFile.h"
#include "base/LOwned.h"
#include "bench/Ratios.h"
#include "bench/Silent.h"
#include "send/DctWriter.h"

// Packing 32 MB of audio into a DCT file, against the platform's calls that copy it in pieces of the same
// size, and that encrypt each piece between reading and writing it.

namespace {

constexpr char kPlainBench[] = "PlainDct";
constexpr char kCopyBench[] = "BareCopy";
constexpr char kEncryptedBench[] = "EncryptedDct";
constexpr char kCipherBench[] = "BareCopyAndBlowfish";
const BenchRatio kRatios[] = {
    {"plain DCT / bare copy", kPlainBench, kCopyBench, 1.11},
    {"encrypted DCT / Blowfish and bare copy", kEncryptedBench, kCipherBench, 1.11},
};

constexpr size_t kAudioBytes = 32u << 20;
constexpr char kPassPhrase[] = "a pass phrase";

// The audio, and the file that it goes into; in memory where that is possible, as a disk would hide the rest.
struct Files {
    Files() {
        if (access("/dev/shm", W_OK) == 0) setenv("TMPDIR", "/dev/shm", 0);
        audio = LFile::MakeTemporary("cvb");
        output = LFile::MakeTemporary("cvb");
        LFile(audio, LFile::Open::CreateNew).WriteAll(std::vector<uint8_t>(kAudioBytes, 0x55));
    }
    ~Files() { LFile::Delete(audio), LFile::Delete(output); }
    LPath audio, output;
};

void Pack(benchmark::State& state, const char* passPhrase) {
    const Files files;
    Silent context;
    for (auto _ : state) {
        LFile audio(files.audio, LFile::Open::Read), out(files.output, LFile::Open::CreateNew);
        if (DctWriter(out, passPhrase, context).Write({}, nullptr, &audio) != ProcessResult::Done)
            state.SkipWithError("writing failed");
    }
}

struct Descriptor {
    using Type = int;
    static Type None() { return -1; }
    static void Close(Type file) { close(file); }
};

void Copy(benchmark::State& state, bool encrypts) {
    const Files files;
    std::vector<uint8_t> chunk(kDctChunkBytes);
    for (auto _ : state) {
        const LOwned<Descriptor> from(open(files.audio.c_str(), O_RDONLY));
        const LOwned<Descriptor> to(open(files.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600));
        LBlowFish cipher;
        if (encrypts) cipher.SetKey(kPassPhrase);
        for (ssize_t count = 0; (count = read(from.Get(), chunk.data(), chunk.size())) > 0;) {
            if (encrypts) cipher.EncryptBuffer(chunk);
            if (write(to.Get(), chunk.data(), static_cast<size_t>(count)) != count)
                state.SkipWithError("copying failed");
        }
    }
}

BENCHMARK_CAPTURE(Pack, plain, "")->Name(kPlainBench);
BENCHMARK_CAPTURE(Copy, plain, false)->Name(kCopyBench);
BENCHMARK_CAPTURE(Pack, encrypted, kPassPhrase)->Name(kEncryptedBench);
BENCHMARK_CAPTURE(Copy, encrypted, true)->Name(kCipherBench);

}  // namespace
