#include "base/LTime.h"

#include <chrono>

#include "base/LArith.h"

constexpr int64_t kYear1601 = -11644473600;     // seconds of 1601-01-01 00:00:00
constexpr int64_t kYear9999End = 253402300799;  // seconds of 9999-12-31 23:59:59

LCalendar LToCalendar(int64_t secondsSince1970) {
    using namespace std::chrono;
    const sys_seconds time{seconds(Clamp(secondsSince1970, kYear1601, kYear9999End))};
    const sys_days day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss inDay(time - day);
    LCalendar calendar;
    calendar.year = static_cast<int>(date.year());
    calendar.month = static_cast<int>(static_cast<unsigned>(date.month()));
    calendar.day = static_cast<int>(static_cast<unsigned>(date.day()));
    calendar.weekday = static_cast<int>(weekday(day).c_encoding());
    calendar.hour = static_cast<int>(inDay.hours().count());
    calendar.minute = static_cast<int>(inDay.minutes().count());
    calendar.second = static_cast<int>(inDay.seconds().count());
    return calendar;
}
