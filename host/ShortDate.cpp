#include "host/ShortDate.h"

#include <utility>

#include "host/Hook.h"
#include "platform/Desktop.h"

namespace VantorHost {

namespace {

std::wstring FormatAsUserChose(std::chrono::year_month_day date) {
    return Vantor::Platform::FormatShortDate(static_cast<int>(date.year()),
                                             static_cast<int>(static_cast<unsigned>(date.month())),
                                             static_cast<int>(static_cast<unsigned>(date.day())));
}

Hook<std::wstring(std::chrono::year_month_day)>& DateHook() {
    static Hook<std::wstring(std::chrono::year_month_day)>& hook =
        *new Hook<std::wstring(std::chrono::year_month_day)>(FormatAsUserChose);
    return hook;
}

}  // namespace

std::wstring ShortDate::Format(std::chrono::year_month_day date) { return DateHook()(date); }

void ShortDate::SetFormatter(Formatter formatter) { DateHook().Replace(std::move(formatter)); }

}  // namespace VantorHost
