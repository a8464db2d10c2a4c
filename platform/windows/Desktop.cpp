#include "platform/Desktop.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <string>

#include "platform/MessageLine.h"

namespace Vantor::Platform {

namespace {

// The system's calendar begins here; the Gregorian one repeats itself after so many years.
constexpr int kFirstYear = 1601;
constexpr int kYearsOfCycle = 400;

constexpr int kLongestText = 256;
constexpr wchar_t kQuote = L'\'';
constexpr wchar_t kYearLetter = L'y';

SYSTEMTIME CalendarDay(int year, int month, int day) {
    SYSTEMTIME date = {};
    date.wYear = static_cast<WORD>(year);
    date.wMonth = static_cast<WORD>(month);
    date.wDay = static_cast<WORD>(day);
    return date;
}

// Without a pattern in the user's own.
std::wstring Format(const SYSTEMTIME& date, const wchar_t* pattern) {
    std::array<wchar_t, kLongestText> text = {};
    const DWORD flags = pattern == nullptr ? DATE_SHORTDATE : 0;
    const int length =
        GetDateFormatEx(LOCALE_NAME_USER_DEFAULT, flags, &date, pattern, text.data(), kLongestText, nullptr);
    return length > 0 ? std::wstring(text.data()) : std::wstring();
}

std::wstring UsersPattern() {
    std::array<wchar_t, kLongestText> pattern = {};
    GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_SSHORTDATE, pattern.data(), kLongestText);
    return pattern.data();
}

// As many digits as the pattern has letters; two are the last ones of the year.
std::wstring YearDigits(int year, size_t letters) {
    constexpr size_t kShort = 2;
    constexpr int kCentury = 100;
    const std::wstring digits = std::to_wstring(letters > kShort ? year : year % kCentury);
    return std::wstring(letters - std::min(letters, digits.size()), L'0') + digits;
}

// The pattern with the year written out; digits stand for themselves there, as does what is quoted.
std::wstring WithYear(const std::wstring& pattern, int year) {
    std::wstring result;
    bool isQuoted = false;
    for (size_t index = 0; index < pattern.size();) {
        isQuoted = isQuoted != (pattern[index] == kQuote);
        if (isQuoted || pattern[index] != kYearLetter) {
            result += pattern[index++];
            continue;
        }
        const size_t end = std::min(pattern.find_first_not_of(kYearLetter, index), pattern.size());
        result += YearDigits(year, end - index);
        index = end;
    }
    return result;
}

// A service has no desktop: its box would wait for ever, unseen.
bool HasVisibleDesktop() {
    USEROBJECTFLAGS flags = {};
    return GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof(flags), nullptr) &&
           (flags.dwFlags & WSF_VISIBLE) != 0;
}

}  // namespace

std::wstring FormatShortDate(int year, int month, int day) {
    if (year >= kFirstYear) {
        return Format(CalendarDay(year, month, day), nullptr);
    }
    const int cycles = (kFirstYear - year + kYearsOfCycle - 1) / kYearsOfCycle;
    const std::wstring pattern = WithYear(UsersPattern(), year);
    return Format(CalendarDay(year + cycles * kYearsOfCycle, month, day), pattern.c_str());
}

std::wstring FormatLongTime(int hours, int minutes, int seconds) {
    constexpr size_t kLongest = 128;
    SYSTEMTIME time = {};
    time.wHour = static_cast<WORD>(hours);
    time.wMinute = static_cast<WORD>(minutes);
    time.wSecond = static_cast<WORD>(seconds);
    std::array<wchar_t, kLongest> text = {};
    GetTimeFormatEx(LOCALE_NAME_USER_DEFAULT, 0, &time, nullptr, text.data(), static_cast<int>(text.size()));
    return text.data();
}

void ShowMessage(const std::wstring& title, const std::wstring& text) {
    constexpr UINT kStyle = MB_OK | MB_ICONERROR | MB_TASKMODAL | MB_SETFOREGROUND;
    if (!HasVisibleDesktop() || MessageBoxW(nullptr, text.c_str(), title.c_str(), kStyle) <= 0) {
        WriteMessageLine(title, text);
    }
}

}  // namespace Vantor::Platform
