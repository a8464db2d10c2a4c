#pragma once

#include <chrono>
#include <optional>

namespace Vantor::Platform {

// A date and time as a person in this place reads it: month 1 to 12, day 1 to 31.
struct LocalTime {
    int fYear = 0;
    int fMonth = 0;
    int fDay = 0;
    int fHour = 0;
    int fMinute = 0;
    int fSecond = 0;
    int fMillisecond = 0;
};

// The system's own local date and time, which the port gives; none when it cannot tell. Ask the current clock
// instead.
std::optional<LocalTime> ReadSystemLocalTime();

// Time as the library sees it. Everything that waits, times out or stamps asks the current clock, so that a
// test can put its own in place.
class Clock {
  public:
    virtual ~Clock() = default;

    // Time that only moves forward, for durations.
    virtual std::chrono::steady_clock::time_point Now() = 0;

    // The local date and time, for names and UIDs; none when the system cannot tell.
    virtual std::optional<LocalTime> GetLocalTime() = 0;

    // Lets the thread rest. A duration of 0 gives the processor to whoever waits for it.
    virtual void Sleep(std::chrono::milliseconds duration) = 0;

    // The clock in use: the system's, unless a ReplacedClock is alive.
    static Clock& Current();
};

// Puts another clock in place until destroyed; nested replacements end in reverse order.
class ReplacedClock {
  public:
    // `clock` is not owned and must outlive this object.
    explicit ReplacedClock(Clock& clock);
    ~ReplacedClock();
    ReplacedClock(const ReplacedClock&) = delete;
    ReplacedClock& operator=(const ReplacedClock&) = delete;

  private:
    Clock* fPrevious;
};

}  // namespace Vantor::Platform
