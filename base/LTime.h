#pragma once

#include <cstdint>
#include <optional>
#include <string>

// The platform's file times count units of 100 ns since 1601-01-01 UTC.
inline constexpr uint64_t kFileTimeOf1970 = 116444736000000000;
inline constexpr uint64_t kFileTimeSecond = 10000000;

// Seconds since 1970-01-01 00:00 UTC.
int64_t LNowSeconds();

// The current time as a file time.
uint64_t LNowFileTime();

// Milliseconds since the machine started; wraps after 49.7 days, so only unsigned differences mean anything.
uint32_t LTickMs();

// Lets the calling thread wait.
void LSleep(uint32_t ms);

// A moment as calendar fields, without a time-zone shift: seconds in UTC give fields in UTC.
struct LCalendar {
    int year = 1970;
    int month = 1;    // 1 to 12
    int day = 1;      // 1 to 31
    int weekday = 4;  // 0 is Sunday
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// Calendar fields of a moment, in the proleptic Gregorian calendar. Seconds outside the years 1601 to 9999
// count as the nearest limit.
LCalendar LToCalendar(int64_t secondsSince1970);

// The present moment in the time zone of this machine, daylight saving included; nothing when the platform
// cannot convert it.
std::optional<LCalendar> LLocalTime();
