#pragma once

#include <cstdint>
#include <string>

// Moments in seconds since 1970 as the user's locale writes them, with no time-zone shift.
std::string FormatDate(int64_t seconds);
std::string FormatTimeOfDay(int64_t seconds);
