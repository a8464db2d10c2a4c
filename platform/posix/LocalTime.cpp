#include <ctime>

#include "platform/Clock.h"

namespace Vantor::Platform {

std::optional<LocalTime> ReadSystemLocalTime() {
    constexpr int kFirstYear = 1900;
    constexpr long kNanosecondsPerMillisecond = 1'000'000;
    timespec now = {};
    tm local = {};
    if (clock_gettime(CLOCK_REALTIME, &now) != 0 || localtime_r(&now.tv_sec, &local) == nullptr) {
        return std::nullopt;
    }
    return LocalTime{local.tm_year + kFirstYear,
                     local.tm_mon + 1,
                     local.tm_mday,
                     local.tm_hour,
                     local.tm_min,
                     local.tm_sec,
                     static_cast<int>(now.tv_nsec / kNanosecondsPerMillisecond)};
}

}  // namespace Vantor::Platform
