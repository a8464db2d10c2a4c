#include "host/LongTime.h"

#include <utility>

#include "host/Hook.h"
#include "platform/Desktop.h"

namespace VantorHost {

namespace {

std::wstring FormatAsUserChose(std::chrono::seconds timeOfDay) {
    const std::chrono::hh_mm_ss time(timeOfDay);
    return Vantor::Platform::FormatLongTime(static_cast<int>(time.hours().count()),
                                            static_cast<int>(time.minutes().count()),
                                            static_cast<int>(time.seconds().count()));
}

Hook<std::wstring(std::chrono::seconds)>& TimeHook() {
    static Hook<std::wstring(std::chrono::seconds)>& hook =
        *new Hook<std::wstring(std::chrono::seconds)>(FormatAsUserChose);
    return hook;
}

}  // namespace

std::wstring LongTime::Format(std::chrono::seconds timeOfDay) { return TimeHook()(timeOfDay); }

void LongTime::SetFormatter(Formatter formatter) { TimeHook().Replace(std::move(formatter)); }

}  // namespace VantorHost
