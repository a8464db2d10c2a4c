#include "wrappers/ValueText.h"

#include <algorithm>
#include <charconv>

namespace VantorWrappers {

namespace {

// Where the parts of YYYYMMDD and HHMMSS stand.
constexpr size_t kYearLength = 4;
constexpr size_t kMonthStart = 4;
constexpr size_t kDayStart = 6;
constexpr size_t kDateLength = 8;
constexpr size_t kHoursStart = 0;
constexpr size_t kMinutesStart = 2;
constexpr size_t kSecondsStart = 4;
constexpr size_t kPartLength = 2;

constexpr int kFirstYear = 1;
constexpr int kHoursInDay = 24;
constexpr int kMinutesInHour = 60;
constexpr int kLeapSecond = 60;

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

bool IsBlank(char character) { return character == ' ' || (character >= '\t' && character <= '\r'); }

// The number that the digits of a part spell; none when a digit is missing or something else stands there.
std::optional<int> ParsePart(std::string_view text, size_t start, size_t length) {
    if (text.size() < start + length) return std::nullopt;
    const std::string_view part = text.substr(start, length);
    if (!std::all_of(part.begin(), part.end(), IsDigit)) return std::nullopt;
    int number = 0;
    std::from_chars(part.data(), part.data() + part.size(), number);
    return number;
}

// The same for a part of a time, which may be left out from the minutes on: it is 0 then.
std::optional<int> ParseTimePart(std::string_view text, size_t start, int limit) {
    const bool isLeftOut = start > kHoursStart && text.size() < start + kPartLength;
    const std::optional<int> part = isLeftOut ? 0 : ParsePart(text, start, kPartLength);
    return part && *part < limit ? part : std::nullopt;
}

}  // namespace

int32_t ParseInteger(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) {
        text.remove_prefix(1);
    }
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return kNoInteger;
    }
    int32_t number = kNoInteger;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() ? number : kNoInteger;
}

std::optional<HostDateTime> ParseDate(std::string_view text) {
    const std::optional<int> year = ParsePart(text, 0, kYearLength);
    const std::optional<int> month = ParsePart(text, kMonthStart, kPartLength);
    const std::optional<int> day = ParsePart(text, kDayStart, kPartLength);
    if (!year || !month || !day || *year < kFirstYear) return std::nullopt;
    const std::chrono::year_month_day date(std::chrono::year(*year),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day)));
    if (!date.ok()) return std::nullopt;
    return std::chrono::local_days(date);
}

std::optional<std::chrono::seconds> ParseTimeOfDay(std::string_view text) {
    const std::optional<int> hours = ParseTimePart(text, kHoursStart, kHoursInDay);
    const std::optional<int> minutes = ParseTimePart(text, kMinutesStart, kMinutesInHour);
    const std::optional<int> seconds = ParseTimePart(text, kSecondsStart, kLeapSecond + 1);
    if (!hours || !minutes || !seconds) return std::nullopt;
    return std::chrono::hours(*hours) + std::chrono::minutes(*minutes) +
           std::chrono::seconds(std::min(*seconds, kLeapSecond - 1));
}

std::optional<HostDateTime> ParseDateTime(std::string_view text) {
    constexpr std::string_view kOffsetSigns = "+-";
    const std::string_view moment = text.substr(0, text.find_first_of(kOffsetSigns));
    const std::optional<HostDateTime> date = ParseDate(moment);
    if (!date || moment.size() == kDateLength) return date;
    const std::optional<std::chrono::seconds> timeOfDay = ParseTimeOfDay(moment.substr(kDateLength));
    return timeOfDay ? std::optional(*date + *timeOfDay) : std::nullopt;
}

}  // namespace VantorWrappers
