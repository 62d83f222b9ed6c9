#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "audio/wave/LWaveFile.h"
#include "base/LFile.h"
#include "bench/Ratios.h"
#include "bench/Silent.h"
#include "send/SendItem.h"
#include "store/SettingsKeys.h"

// The conversion of an hour of dictation into a DCT file of the default format (8 bits), plain and encrypted,
// against a command-line converter that only writes the 8-bit WAV file.

extern char** environ;

namespace {

constexpr char kPlainDctBench[] = "HourToPlainDct";
constexpr char kEncryptedDctBench[] = "HourToEncryptedDct";
constexpr char kSoxBench[] = "HourWithSox";
const BenchRatio kRatios[] = {
    {"plain DCT / sox", kPlainDctBench, kSoxBench},
    {"encrypted DCT / sox", kEncryptedDctBench, kSoxBench},
};

constexpr int32_t kRate = 8000;
constexpr int32_t kHourFrames = 3600 * kRate;
constexpr double kTwoPi = 6.283185307179586;

// A speech-like signal: voiced syllables of changing pitch, four in a second, with a pause every five seconds
// and some noise.
int32_t SpeechLike(int32_t frame) {
    static uint32_t noise = 1;
    noise = noise * 1664525u + 1013904223u;
    const double hiss = static_cast<double>(noise >> 16) / 65536.0 - 0.5;
    const double t = static_cast<double>(frame) / kRate;
    const double syllable = std::fmod(t, 5.0) < 4.2 ? std::pow(std::sin(kTwoPi * 2.0 * t), 2.0) : 0.0;
    const double pitch = kTwoPi * (110.0 * t + 3.0 * std::sin(t));
    const double voice = std::sin(pitch) + 0.5 * std::sin(3.0 * pitch) + 0.3 * std::sin(8.0 * pitch);
    return static_cast<int32_t>(0x7FFF0 * (0.3 * syllable * voice + 0.004 * hiss));
}

// An hour of dictation in a data folder of its own, with two recipients (rec0 plain, rec1 encrypted); removed
// at the end.
class Hour {
public:
    static const Hour& Get() {
        static const Hour hour;
        return hour;
    }
    ~Hour() {
        for (const char* name :
             {"Sent\\00000001.wav", "Sent\\00000001.dat", "Sent\\sox.wav", "rec0.dat", "rec1.dat"})
            LFile::Delete(File(name));
        LFile::DeleteFolder(File("Sent"));
        LFile::DeleteFolder(UserFolderPath(m_folder, 0));
        LFile::DeleteFolder(m_folder);
    }
    const LPath& DataFolderPath() const { return m_folder; }
    // A file below the folder of user 0.
    LPath File(std::string_view name) const { return LPath::Join(UserFolderPath(m_folder, 0).View(), name); }

private:
    Hour() : m_folder(LFile::MakeTemporary("cvb")) {
        LFile::Delete(m_folder);
        LFile::MakeFolder(m_folder);
        m_folder.Append("/");
        LFile::MakeFolder(UserFolderPath(m_folder, 0));
        LFile::MakeFolder(File("Sent"));
        Settings::Write(File("Sent\\00000001.dat"), RecordKeys::kNumber, 1);
        SendToSettings recipient;
        recipient.Save(File("rec0.dat"));
        recipient.flags = SendToSettings::kEncrypt;
        recipient.encryptionPassword = "a pass phrase";
        recipient.Save(File("rec1.dat"));

        const LSoundSink sink = LWaveFile::OpenSinkPCM(File("Sent\\00000001.wav"), 16, 1, kRate);
        std::vector<int32_t> block(kBlockFrames);
        for (int32_t done = 0; done < kHourFrames;) {
            const int32_t frames = std::min(kBlockFrames, kHourFrames - done);
            for (int32_t i = 0; i < frames; ++i) block[static_cast<size_t>(i)] = SpeechLike(done + i);
            sink->Write(block.data(), frames);
            done += frames;
        }
    }

    LPath m_folder;
};

void Convert(benchmark::State& state, const char* recipient) {
    const Hour& hour = Hour::Get();
    const SendQueueEntry entry{hour.File("Sent\\00000001.wav"), hour.File(recipient), 0, true};
    const DataFolder data = DataFolder::FromText(hour.DataFolderPath().View());
    Silent context;
    LPath file;
    for (auto _ : state) {
        if (SendItem(entry, data, nullptr, context).Convert(file) != ProcessResult::Done)
            state.SkipWithError("conversion failed");
    }
    LFile::Delete(file);
}

// A path with the separators of the platform, for another program.
std::string Native(const LPath& path) {
    std::string text(path.View());
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

// -D: without dither, the faster of the converter's two ways.
void ConvertWithSox(benchmark::State& state) {
    const Hour& hour = Hour::Get();
    std::string arguments[] = {"sox", "-D", Native(hour.File("Sent\\00000001.wav")),
                               "-b",  "8",  Native(hour.File("Sent\\sox.wav"))};
    char* argv[std::size(arguments) + 1] = {};
    for (size_t i = 0; i < std::size(arguments); ++i) argv[i] = arguments[i].data();
    for (auto _ : state) {
        pid_t child = 0;
        int status = -1;
        if (posix_spawnp(&child, argv[0], nullptr, nullptr, argv, environ) == 0) waitpid(child, &status, 0);
        if (status != 0) {
            state.SkipWithError("sox is not installed or failed");
            break;
        }
    }
}

void Settle(benchmark::internal::Benchmark* bench) {
    bench->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(1);
}

BENCHMARK(ConvertWithSox)->Name(kSoxBench)->Apply(Settle);
BENCHMARK_CAPTURE(Convert, plain, "rec0.dat")->Name(kPlainDctBench)->Apply(Settle);
BENCHMARK_CAPTURE(Convert, encrypted, "rec1.dat")->Name(kEncryptedDctBench)->Apply(Settle);

}  // namespace
