#include "platform/Clock.h"

#include <gtest/gtest.h>

namespace Vantor::Platform {

namespace {

class StoppedClock : public Clock {
  public:
    std::chrono::steady_clock::time_point Now() override { return {}; }
    void Sleep(std::chrono::milliseconds) override {}
};

}  // namespace

TEST(Clock, SystemClockMovesForward) {
    constexpr std::chrono::milliseconds kRest(5);
    const auto before = Clock::Current().Now();
    Clock::Current().Sleep(kRest);
    EXPECT_GE(Clock::Current().Now() - before, kRest);
    Clock::Current().Sleep(std::chrono::milliseconds(0));
    Clock::Current().Sleep(std::chrono::milliseconds(-1));
}

TEST(Clock, ReplacementsEndInReverseOrder) {
    Clock& system = Clock::Current();
    StoppedClock outer;
    StoppedClock inner;
    {
        const ReplacedClock outerReplacement(outer);
        {
            const ReplacedClock innerReplacement(inner);
            EXPECT_EQ(&Clock::Current(), &inner);
        }
        EXPECT_EQ(&Clock::Current(), &outer);
    }
    EXPECT_EQ(&Clock::Current(), &system);
}

}  // namespace Vantor::Platform
