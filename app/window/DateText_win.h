#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Date and time of day in the format of the user's locale. Units: seconds since 1970, shown without a
// time-zone shift.
std::string FormatDate(int64_t seconds);
std::string FormatTimeOfDay(int64_t seconds);

// Texts of both kinds among which are the widest.
std::vector<std::string> SampleDates();
std::vector<std::string> SampleTimesOfDay();
