#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

#include "wrappers/HostDateTime.h"

namespace VantorWrappers {

// Turns the texts of DICOM values into what a host computes with.

// A signed decimal integer: blanks and a sign may stand before its digits, and what follows them is not
// looked at. kNoInteger when there are no digits or the number does not fit.
inline constexpr int32_t kNoInteger = -1;
int32_t ParseInteger(std::string_view text);

// A date from its first eight characters, YYYYMMDD; what follows them is not looked at. None for anything
// but eight digits that name a day of the calendar from 0001-01-01 on.
std::optional<HostDateTime> ParseDate(std::string_view text);

// A time of day HH, HHMM or HHMMSS, with or without a fraction, which is not looked at. A part is taken only
// when the text is long enough for both its digits, else it is 0. None when the hours are missing or a part
// is no number in its range, so also for blanks in its place. A leap second, 60, becomes 59: hosts' clocks
// have none.
std::optional<std::chrono::seconds> ParseTimeOfDay(std::string_view text);

// A moment: a date, and the time of day behind it as above, midnight when it ends with the date. An offset
// from universal time is not looked at. None when either part is none.
std::optional<HostDateTime> ParseDateTime(std::string_view text);

}  // namespace VantorWrappers
