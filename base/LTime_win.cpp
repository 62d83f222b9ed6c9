#include <windows.h>

#include "base/LTime.h"

uint64_t LNowFileTime() {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    return static_cast<uint64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime;
}

int64_t LNowSeconds() {
    return static_cast<int64_t>((LNowFileTime() - kFileTimeOf1970) / kFileTimeSecond);
}

uint32_t LTickMs() {
    return GetTickCount();
}

void LSleep(uint32_t ms) {
    Sleep(ms);
}

std::optional<LCalendar> LLocalTime() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    return LCalendar{now.wYear, now.wMonth, now.wDay, now.wDayOfWeek, now.wHour, now.wMinute, now.wSecond};
}
