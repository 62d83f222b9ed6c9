#include <benchmark/benchmark.h>

#ifdef CORVANE_HAS_NETTLE
#include <nettle/blowfish.h>
#endif

#include <vector>

#include "bench/Ratios.h"
#include "send/LBlowFish.h"

// Encryption of a megabyte, against the implementation of a general cryptography library.

namespace {

constexpr char kBlowfishBench[] = "Blowfish";
constexpr char kNettleBench[] = "BlowfishOfNettle";
const BenchRatio kRatio("Blowfish / nettle", kBlowfishBench, kNettleBench, 0.55);
const BenchTime kTime("Blowfish, 1 MB", kBlowfishBench, 3.5);

constexpr char kPassPhrase[] = "a pass phrase of 28 letters.";
constexpr size_t kBytes = 1 << 20;

void Blowfish(benchmark::State& state) {
    LBlowFish cipher;
    cipher.SetKey(kPassPhrase);
    std::vector<uint8_t> buffer(kBytes, 1);
    for (auto _ : state) cipher.EncryptBuffer(buffer);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kBytes));
}
BENCHMARK(Blowfish)->Name(kBlowfishBench);

#ifdef CORVANE_HAS_NETTLE
void BlowfishOfNettle(benchmark::State& state) {
    blowfish_ctx cipher;
    blowfish_set_key(&cipher, sizeof kPassPhrase - 1, reinterpret_cast<const uint8_t*>(kPassPhrase));
    std::vector<uint8_t> buffer(kBytes, 1);
    for (auto _ : state) blowfish_encrypt(&cipher, buffer.size(), buffer.data(), buffer.data());
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kBytes));
}
BENCHMARK(BlowfishOfNettle)->Name(kNettleBench);
#endif

}  // namespace
