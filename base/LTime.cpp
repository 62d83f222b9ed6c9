#include "base/LTime.h"

#include "base/LArith.h"

constexpr int64_t kDaySeconds = 86400;
constexpr int64_t kYear1601 = -11644473600;     // seconds of 1601-01-01 00:00:00
constexpr int64_t kYear9999End = 253402300799;  // seconds of 9999-12-31 23:59:59

LCalendar LToCalendar(int64_t secondsSince1970) {
    const int64_t seconds = Clamp(secondsSince1970, kYear1601, kYear9999End);
    // Days to a date by eras of 400 years (146097 days), the published algorithm of H. Hinnant. Days count
    // from 0000-03-01, a Wednesday, so that the leap day is the last of its year and no term is negative;
    // 1601-01-01 is day 584694.
    const int64_t days = (seconds - kYear1601) / kDaySeconds + 584694;
    const int32_t inDay = static_cast<int32_t>((seconds - kYear1601) % kDaySeconds);
    const int32_t era = static_cast<int32_t>(days / 146097);
    const int32_t dayOfEra = static_cast<int32_t>(days % 146097);
    const int32_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int32_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int32_t monthFromMarch = (5 * dayOfYear + 2) / 153;

    LCalendar calendar;
    calendar.day = dayOfYear - (153 * monthFromMarch + 2) / 5 + 1;
    calendar.month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
    calendar.year = era * 400 + yearOfEra + (calendar.month <= 2 ? 1 : 0);
    calendar.weekday = static_cast<int>((days + 3) % 7);
    calendar.hour = inDay / 3600;
    calendar.minute = inDay / 60 % 60;
    calendar.second = inDay % 60;
    return calendar;
}
