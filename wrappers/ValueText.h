#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

#include "wrappers/HostDateTime.h"

namespace VantorWrappers {

// Turns the texts of DICOM values into what a host computes with.

// A text without the blanks and NULs that fill a value up to its length; they are no part of it.
std::string_view WithoutPadding(std::string_view text);

// A signed decimal integer: blanks and a sign may stand before its digits, and what follows them is not
// looked at. kNoInteger when there are no digits or the number does not fit.
inline constexpr int32_t kNoInteger = -1;
int32_t ParseInteger(std::string_view text);

// A date from its first eight characters, YYYYMMDD; what follows them is not looked at. None for anything
// but eight digits that name a day of the calendar from 0001-01-01 on.
std::optional<HostDateTime> ParseDate(std::string_view text);

// A time of day HH, HHMM or HHMMSS, with or without a fraction, which is not looked at. A part is taken only
// when both its digits are there, else it is 0, so that 143 is 14:00:00. None when the hours are missing or a
// part is no number in its range. A leap second, 60, becomes 59: hosts' clocks have none.
std::optional<std::chrono::seconds> ParseTimeOfDay(std::string_view text);

}  // namespace VantorWrappers
