// wavetool.exe: WAV files through the product's own sources and sinks. Traces go to standard error.
//   decode <in> <out>                 any WAV file into 16-bit PCM; the length that was told before
//   seek <in> <out> <frame>...        what is read after each seek, up to two blocks, one after the other
//   encode <in> <out> <record>        into the format of a record (hexadecimal)
//   rewrite <file>                    into the layout that recordings continue on
//   info <in>                         what the head tells: tag, channels, rate, frames, milliseconds
//   query <record>                    whether a codec makes that format
//   batch                             commands from the input, one per line, fields divided by tabs; each is
//                                     answered with a last line "= <exit code>"
//   choose <channels> <record>        the platform's format chooser; the record that was chosen

#include <windows.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "audio/convert/LPRSourceToSink.h"
#include "audio/wave/LAcm.h"
#include "audio/wave/LRewriteWave.h"
#include "audio/wave/LWaveFile.h"
#include "base/LTrace.h"
#include "ui/LChooseFormat.h"

namespace {

using Arguments = std::vector<const char*>;

struct Context final : ProcessContext {
    bool CancelRequested() override { return false; }
    void SetProgress(double) override {}
    void SetStatus(std::string_view) override {}
    void SetError(std::string_view text) override { LTrace("error:", text); }
};

void TraceToStderr(std::string_view line, std::string_view detail) {
    std::fprintf(stderr, "%s %s\n", std::string(line).c_str(), std::string(detail).c_str());
}

LWaveFileFormat Record(const char* hex) {
    std::vector<uint8_t> bytes;
    for (; hex[0] && hex[1]; hex += 2)
        bytes.push_back(static_cast<uint8_t>(std::strtoul(std::string(hex, 2).c_str(), nullptr, 16)));
    return LWaveFileFormat(bytes);
}

bool Run(LProcess&& process) {
    Context context;
    return process.Process(context) == ProcessResult::Done;
}

LSoundSink SinkLike(const LSoundSource& source, const char* path) {
    return LWaveFile::OpenSinkPCM(LPath(path), 16, source->GetChannels(), source->GetSampleRate());
}

bool Decode(const Arguments& arguments) {
    const LSoundSource source = LWaveFile::OpenSource(LPath(arguments[0]));
    std::printf("%ld\n", static_cast<long>(source->GetLength()));
    return !source->IsError() && Run(LPRSourceToSink(source, SinkLike(source, arguments[1])));
}

bool Seek(const Arguments& arguments) {
    const LSoundSource source = LWaveFile::OpenSource(LPath(arguments[0]));
    if (source->IsError()) return false;
    const LSoundSink sink = SinkLike(source, arguments[1]);
    std::vector<int32_t> block(size_t{kBlockFrames} * source->GetChannels());
    for (size_t i = 2; i < arguments.size(); ++i) {
        source->Seek(std::atoi(arguments[i]));
        for (int piece = 0; piece < 2; ++piece) {
            source->Read(block.data(), kBlockFrames);
            sink->Write(block.data(), kBlockFrames);
        }
    }
    return !sink->IsError();
}

bool Encode(const Arguments& arguments) {
    const LSoundSource source = LWaveFile::OpenSource(LPath(arguments[0]));
    const LSoundSink sink = LWaveFile::OpenSink(LPath(arguments[1]), Record(arguments[2]));
    return sink && Run(LPRSourceToSink(source, sink));
}

bool Rewrite(const Arguments& arguments) {
    return Run(LRewriteWave(LPath(arguments[0])));
}

bool Info(const Arguments& arguments) {
    LWaveInfo info;
    if (!LWaveFile::ReadInfo(LPath(arguments[0]), info)) return false;
    std::printf("%u %u %lu %ld %ld\n", info.format.Tag(), info.format.Channels(),
                static_cast<unsigned long>(info.format.SampleRate()), static_cast<long>(info.Frames()),
                static_cast<long>(info.LengthMs()));
    return true;
}

bool Query(const Arguments& arguments) {
    return TestSupportedRecord(Record(arguments[0]));
}

bool Choose(const Arguments& arguments) {
    LWaveFileFormat format = Record(arguments[1]);
    const auto channels = static_cast<uint16_t>(std::atoi(arguments[0]));
    if (!LChooseFormat(nullptr, format, channels, TestSupportedRecord)) return false;
    for (const uint8_t byte : format.Record()) std::printf("%02x", byte);
    std::puts("");
    return true;
}

constexpr struct {
    const char* name;
    size_t arguments;
    bool (*run)(const Arguments& arguments);
} kCommands[] = {
    {"choose", 2, Choose}, {"decode", 2, Decode},   {"encode", 3, Encode}, {"info", 1, Info},
    {"query", 1, Query},   {"rewrite", 1, Rewrite}, {"seek", 3, Seek},
};

int Obey(const Arguments& words) {
    const Arguments arguments(words.begin() + 1, words.end());
    for (const auto& command : kCommands) {
        if (std::string_view(words[0]) == command.name && arguments.size() >= command.arguments)
            return command.run(arguments) ? 0 : 1;
    }
    return 2;
}

// Starting a program takes longer than most conversions.
int Batch() {
    std::array<char, 4096> line = {};
    while (std::fgets(line.data(), line.size(), stdin)) {
        Arguments words;
        for (char* word = std::strtok(line.data(), "\t\r\n"); word; word = std::strtok(nullptr, "\t\r\n"))
            words.push_back(word);
        std::printf("= %d\n", words.empty() ? 2 : Obey(words));
        std::fflush(stdout);
    }
    return 0;
}

}  // namespace

int main(int count, char** values) {
    LSetTraceSink(TraceToStderr);
    if (count < 2) return 2;
    return std::string_view(values[1]) == "batch" ? Batch() : Obey(Arguments(values + 1, values + count));
}
