#include "base/LTrace.h"

#include <atomic>

static std::atomic<LTraceSink> s_sink{nullptr};

void LTrace(std::string_view line, std::string_view detail) {
    if (LTraceSink sink = s_sink.load()) sink(line, detail);
}

LTraceSink LSetTraceSink(LTraceSink sink) {
    return s_sink.exchange(sink);
}
