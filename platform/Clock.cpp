#include "platform/Clock.h"

#include <thread>

namespace Vantor::Platform {

namespace {

class SystemClock : public Clock {
  public:
    std::chrono::steady_clock::time_point Now() override { return std::chrono::steady_clock::now(); }

    std::optional<LocalTime> GetLocalTime() override { return ReadSystemLocalTime(); }

    void Sleep(std::chrono::milliseconds duration) override {
        if (duration.count() > 0) {
            std::this_thread::sleep_for(duration);
        } else {
            std::this_thread::yield();
        }
    }
};

Clock*& CurrentClock() {
    // Never destroyed: a host's own objects may use the library until the process ends.
    static Clock* current = new SystemClock;
    return current;
}

}  // namespace

Clock& Clock::Current() { return *CurrentClock(); }

ReplacedClock::ReplacedClock(Clock& clock) : fPrevious(CurrentClock()) { CurrentClock() = &clock; }

ReplacedClock::~ReplacedClock() { CurrentClock() = fPrevious; }

}  // namespace Vantor::Platform
