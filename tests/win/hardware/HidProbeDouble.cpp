#include <windows.h>

#include <cstdio>

// The file that the environment names holds the bits of the pressed pedals, and for how many milliseconds
// GetData keeps its caller. Without the file the watch cannot be started.
static int g_bits = 0;
static unsigned g_lateMs = 0;

extern "C" __declspec(dllexport) int StartWatch() {
    char path[MAX_PATH] = {};
    GetEnvironmentVariableA("CORVANE_TEST_PEDALS", path, sizeof path);
    std::FILE* const file = std::fopen(path, "rb");
    if (file == nullptr) return 0;
    std::fscanf(file, "%d %u", &g_bits, &g_lateMs);
    std::fclose(file);
    return 1;
}

extern "C" __declspec(dllexport) int StopWatch() {
    return 1;
}

#ifndef WITHOUT_DATA
extern "C" __declspec(dllexport) int GetData() {
    StartWatch();
    Sleep(g_lateMs);
    return g_bits;
}
#endif
