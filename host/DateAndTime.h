#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace VantorHost {

// Moments as the host shows them. By default the short date, a blank and the long time.
class DateAndTime {
  public:
    // The text of a moment of local time from 0001-01-01 on.
    static std::wstring Format(std::chrono::local_seconds moment);

    // How the host does it; empty for the default.
    using Formatter = std::function<std::wstring(std::chrono::local_seconds moment)>;
    static void SetFormatter(Formatter formatter);
};

}  // namespace VantorHost
