#include "host/DateAndTime.h"

#include <utility>

#include "host/Hook.h"
#include "host/LongTime.h"
#include "host/ShortDate.h"

namespace VantorHost {

namespace {

std::wstring FormatBoth(std::chrono::local_seconds moment) {
    const auto day = std::chrono::floor<std::chrono::days>(moment);
    return ShortDate::Format(std::chrono::year_month_day(day)) + L" " + LongTime::Format(moment - day);
}

Hook<std::wstring(std::chrono::local_seconds)>& MomentHook() {
    static Hook<std::wstring(std::chrono::local_seconds)>& hook =
        *new Hook<std::wstring(std::chrono::local_seconds)>(FormatBoth);
    return hook;
}

}  // namespace

std::wstring DateAndTime::Format(std::chrono::local_seconds moment) { return MomentHook()(moment); }

void DateAndTime::SetFormatter(Formatter formatter) { MomentHook().Replace(std::move(formatter)); }

}  // namespace VantorHost
