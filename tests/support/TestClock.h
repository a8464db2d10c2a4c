#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

#include "platform/Clock.h"

namespace VantorTest {

// While it is alive the date and time stand still, each look at the clock takes a millisecond, and each rest
// a second, for which nobody waits.
class TestClock final : public Vantor::Platform::Clock {
  public:
    explicit TestClock(std::optional<Vantor::Platform::LocalTime> time = {}) : fTime(time) {}
    std::chrono::steady_clock::time_point Now() override { return fNow += std::chrono::milliseconds(1); }
    std::optional<Vantor::Platform::LocalTime> GetLocalTime() override { return fTime; }
    void Sleep(std::chrono::milliseconds duration) override {
        fNow += std::chrono::seconds(1);
        fRests.push_back(static_cast<int32_t>(duration.count()));
        if (fAtRest) fAtRest();
    }

    std::vector<int32_t> fRests;
    std::function<void()> fAtRest;

  private:
    std::optional<Vantor::Platform::LocalTime> fTime;
    std::chrono::steady_clock::time_point fNow;
    Vantor::Platform::ReplacedClock fReplaced{*this};
};

}  // namespace VantorTest
