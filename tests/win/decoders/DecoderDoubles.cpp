#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "app/import/ForeignLibraries_win.h"

// What they do stands in the first word of the file: "sound" gives a second of it, "closed" does not open,
// "still" does not start, "broken" fails half-way, "late" returns when the file has been deleted.

namespace {

std::string s_word;
int32_t s_given = 0;
constexpr int32_t kFrames = 8000;

void Open(const char* path) {
    char word[16] = {};
    if (std::FILE* const file = std::fopen(path, "rb")) {
        std::fread(word, 1, sizeof word - 1, file);
        std::fclose(file);
    }
    s_word = word;
    s_given = 0;
    while (s_word == "late" && GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES) Sleep(20);
}

int32_t Give(int16_t* samples, int32_t frames) {
    if (s_word == "broken" && s_given > 0) return -1;
    const int32_t count = std::min(frames, std::min(3000, kFrames - s_given));
    std::fill_n(samples, count, int16_t{1000});
    s_given += count;
    return count;
}

struct Engine final : RealAudioEngine {
    int32_t __stdcall Open(const char* url, int32_t* rate, int32_t* channels, int32_t* frames) override {
        if (std::string_view(url).substr(0, 5) != "file:") return -1;
        ::Open(url + 5);
        *rate = kFrames, *channels = 1, *frames = kFrames;
        return s_word == "closed" ? -1 : 0;
    }
    int32_t __stdcall Read(int16_t* samples, int32_t frames) override { return Give(samples, frames); }
};

Engine s_engine;

}  // namespace

extern "C" {

int32_t __stdcall CreateEngine(RealAudioEngine** engine) {
    *engine = &s_engine;
    return 0;
}
void __stdcall CloseEngine(RealAudioEngine*) {}

int32_t __cdecl DSSInitDecoder(const char* path, int32_t* rate, int32_t* channels, int32_t* frames) {
    Open(path);
    *rate = kFrames, *channels = 1, *frames = 0;
    return s_word == "closed" ? 0 : 1;
}
int32_t __cdecl DSSStartDecoding() {
    return s_word == "still" ? 0 : 1;
}
int32_t __cdecl DSSDecodeToPCM(int16_t* samples, int32_t frames) {
    return Give(samples, frames);
}

int32_t __stdcall Convert(const char* path, const char* wave) {
    Open(path);
    const uint32_t bytes = 2 * kFrames;
    const uint32_t head[] = {0x46464952, 36 + bytes, 0x45564157, 0x20746D66, 16,   0x10001,
                             kFrames,    bytes,      0x100002,   0x61746164, bytes};
    std::FILE* const file = std::fopen(wave, "wb");
    if (file == nullptr) return 0;
    std::fwrite(head, 1, sizeof head, file);
    const std::vector<int16_t> samples(s_word == "broken" ? 100 : kFrames, 1000);
    std::fwrite(samples.data(), 2, samples.size(), file);
    return std::fclose(file);
}
}
