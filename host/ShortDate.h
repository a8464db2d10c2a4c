#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace VantorHost {

// Dates as the host shows them. By default in the short form that the user has chosen in the system.
class ShortDate {
  public:
    // The text of a date from 0001-01-01 on.
    static std::wstring Format(std::chrono::year_month_day date);

    // How the host does it; empty for the default.
    using Formatter = std::function<std::wstring(std::chrono::year_month_day date)>;
    static void SetFormatter(Formatter formatter);
};

}  // namespace VantorHost
