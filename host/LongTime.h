#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace VantorHost {

// Times of day as the host shows them, with their seconds. By default in the form that the user has chosen in
// the system.
class LongTime {
  public:
    // The text of a time since midnight, of less than a day.
    static std::wstring Format(std::chrono::seconds timeOfDay);

    // How the host does it; empty for the default.
    using Formatter = std::function<std::wstring(std::chrono::seconds timeOfDay)>;
    static void SetFormatter(Formatter formatter);
};

}  // namespace VantorHost
