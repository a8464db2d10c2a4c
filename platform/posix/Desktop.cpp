#include "platform/Desktop.h"

#include <array>
#include <chrono>
#include <clocale>
#include <ctime>
#include <memory>
#include <type_traits>

#include "platform/CodePage.h"
#include "platform/MessageLine.h"

namespace Vantor::Platform {

namespace {

using Locale = std::unique_ptr<std::remove_pointer_t<locale_t>, decltype(&freelocale)>;

// The user's way to write dates; that of the C language where the system does not have it.
Locale UsersLocale() {
    const locale_t none = nullptr;
    const locale_t chosen = newlocale(LC_TIME_MASK, "", none);
    return {chosen != nullptr ? chosen : newlocale(LC_TIME_MASK, "C", none), freelocale};
}

tm CalendarDay(int year, int month, int day) {
    constexpr int kFirstYear = 1900;
    const std::chrono::sys_days date = std::chrono::year(year) / month / day;
    tm result = {};
    result.tm_year = year - kFirstYear;
    result.tm_mon = month - 1;
    result.tm_mday = day;
    result.tm_wday = static_cast<int>(std::chrono::weekday(date).c_encoding());
    return result;
}

std::wstring Format(const char* pattern, const tm& moment) {
    constexpr size_t kLongest = 256;
    static const Locale& locale = *new Locale(UsersLocale());  // never destroyed: see platform/Clock.cpp
    std::array<char, kLongest> text = {};
    const size_t length = strftime_l(text.data(), text.size(), pattern, &moment, locale.get());
    return ToHostText({text.data(), length});
}

}  // namespace

std::wstring FormatShortDate(int year, int month, int day) {
    return Format("%x", CalendarDay(year, month, day));
}

std::wstring FormatLongTime(int hours, int minutes, int seconds) {
    tm time = {};
    time.tm_hour = hours;
    time.tm_min = minutes;
    time.tm_sec = seconds;
    return Format("%X", time);
}

void ShowMessage(const std::wstring& title, const std::wstring& text) { WriteMessageLine(title, text); }

}  // namespace Vantor::Platform
