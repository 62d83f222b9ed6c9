#include <ctime>

#include "base/LTime.h"

uint64_t LNowFileTime() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return kFileTimeOf1970 + static_cast<uint64_t>(now.tv_sec) * kFileTimeSecond +
           static_cast<uint64_t>(now.tv_nsec) / 100;
}

int64_t LNowSeconds() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec;
}

void LSleep(uint32_t ms) {
    const timespec time{static_cast<time_t>(ms / 1000), static_cast<long>(ms % 1000 * 1000000)};
    nanosleep(&time, nullptr);
}

uint32_t LTickMs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                                 static_cast<uint64_t>(now.tv_nsec) / 1000000);
}

std::optional<LCalendar> LLocalTime() {
    const time_t now = LNowSeconds();
    tm local{};
    if (localtime_r(&now, &local) == nullptr) return std::nullopt;
    return LCalendar{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_wday,
                     local.tm_hour,        local.tm_min,     local.tm_sec};
}
