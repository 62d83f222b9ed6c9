#include "app/DateText_win.h"

#include <windows.h>

#include "base/LTime.h"

static SYSTEMTIME ToSystemTime(int64_t seconds) {
    const LCalendar calendar = LToCalendar(seconds);
    SYSTEMTIME time = {};
    time.wYear = static_cast<WORD>(calendar.year);
    time.wMonth = static_cast<WORD>(calendar.month);
    time.wDay = static_cast<WORD>(calendar.day);
    time.wDayOfWeek = static_cast<WORD>(calendar.weekday);
    time.wHour = static_cast<WORD>(calendar.hour);
    time.wMinute = static_cast<WORD>(calendar.minute);
    time.wSecond = static_cast<WORD>(calendar.second);
    return time;
}

std::string FormatDate(int64_t seconds) {
    const SYSTEMTIME time = ToSystemTime(seconds);
    char text[64] = {};
    GetDateFormatA(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, text, sizeof text);
    return text;
}

std::string FormatTimeOfDay(int64_t seconds) {
    const SYSTEMTIME time = ToSystemTime(seconds);
    char text[64] = {};
    GetTimeFormatA(LOCALE_USER_DEFAULT, TIME_NOSECONDS, &time, nullptr, text, sizeof text);
    return text;
}
