#include <windows.h>

#include "platform/Clock.h"

namespace Vantor::Platform {

std::optional<LocalTime> ReadSystemLocalTime() {
    SYSTEMTIME now = {};
    ::GetLocalTime(&now);
    return LocalTime{now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
}

}  // namespace Vantor::Platform
