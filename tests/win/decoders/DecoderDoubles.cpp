#include <algorithm>
#include <string>

#include "app/import/ForeignLibraries_win.h"

// The name of the file says what goes wrong: "closed" does not open, "still" does not start, "broken" fails
// half-way, "late" returns when the file has been deleted. Others give a second of sound.

namespace {

std::string s_path;
int32_t s_given = 0;

bool Is(const char* word) {
    return s_path.find(word) != std::string::npos;
}

bool Open(const char* path, int32_t& rate, int32_t& channels) {
    s_path = path;
    s_given = 0, rate = 8000, channels = 1;
    while (Is("late") && GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES) Sleep(20);
    return !Is("closed");
}

int32_t Give(int16_t* samples, int32_t frames) {
    if (Is("broken") && s_given > 0) return -1;
    const int32_t count = std::min({frames, 3000, 8000 - s_given});
    std::fill_n(samples, count, int16_t{1000});
    s_given += count;
    return count;
}

struct Engine final : RealAudioEngine {
    int32_t __stdcall Open(const char* url, int32_t* rate, int32_t* channels, int32_t*) override {
        return std::string_view(url).starts_with("file:") && ::Open(url + 5, *rate, *channels) ? 0 : -1;
    }
    int32_t __stdcall Read(int16_t* samples, int32_t frames) override { return Give(samples, frames); }
} s_engine;

}  // namespace

extern "C" {
int32_t __stdcall CreateEngine(RealAudioEngine** engine) {
    return *engine = &s_engine, 0;
}
void __stdcall CloseEngine(RealAudioEngine*) {}

int32_t DSSInitDecoder(const char* path, int32_t* rate, int32_t* channels, int32_t*) {
    return Open(path, *rate, *channels);
}
int32_t DSSStartDecoding() {
    return !Is("still");
}
int32_t DSSDecodeToPCM(int16_t* samples, int32_t frames) {
    return Give(samples, frames);
}

// Their files are WAV files already.
int32_t __stdcall Convert(const char* path, const char* wave) {
    int32_t ignored = 0;
    return Open(path, ignored, ignored) && CopyFileA(path, wave, FALSE);
}
}
