#pragma once

#include <cstdint>
#include <string>

// Date and time of day in the format of the user's locale. Units: seconds since 1970, shown without a
// time-zone shift.
std::string FormatDate(int64_t seconds);
std::string FormatTimeOfDay(int64_t seconds);
