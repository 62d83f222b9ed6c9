#include "app/window/DateText_win.h"

#include <windows.h>

#include <string_view>

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

// The locale's short date format. A year at its end is cut to two digits, so that the date fits its column.
static std::string ShortDatePicture() {
    char picture[80] = {};
    if (GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SSHORTDATE, picture, sizeof picture) == 0)
        return "dd/MM/yy";
    std::string_view text = picture;
    if (text.size() > 4 && text.ends_with("yyyy")) text.remove_suffix(2);
    return std::string(text);
}

std::string FormatDate(int64_t seconds) {
    const SYSTEMTIME time = ToSystemTime(seconds);
    char text[64] = {};
    GetDateFormatA(LOCALE_USER_DEFAULT, 0, &time, ShortDatePicture().c_str(), text, sizeof text);
    return text;
}

std::string FormatTimeOfDay(int64_t seconds) {
    const SYSTEMTIME time = ToSystemTime(seconds);
    char text[64] = {};
    GetTimeFormatA(LOCALE_USER_DEFAULT, TIME_NOSECONDS, &time, nullptr, text, sizeof text);
    return text;
}

static constexpr int64_t kHour = 3600;
static constexpr int64_t kDay = 24 * kHour;

// Each month, each with several days of the week, which differ in width where they are words.
std::vector<std::string> SampleDates() {
    constexpr int64_t kStep = 5 * kDay;
    std::vector<std::string> dates;
    for (int64_t seconds = 0; seconds < 366 * kDay; seconds += kStep) dates.push_back(FormatDate(seconds));
    return dates;
}

std::vector<std::string> SampleTimesOfDay() {
    std::vector<std::string> times;
    for (int64_t seconds = 0; seconds < kDay; seconds += kHour) times.push_back(FormatTimeOfDay(seconds));
    return times;
}
