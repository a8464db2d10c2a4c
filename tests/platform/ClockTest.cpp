#include "platform/Clock.h"

#include <gtest/gtest.h>

namespace Vantor::Platform {

TEST(Clock, IsTheSystemsUnlessReplaced) {
    class StoppedClock : public Clock {
      public:
        std::chrono::steady_clock::time_point Now() override { return {}; }
        void Sleep(std::chrono::milliseconds) override {}
    };
    constexpr std::chrono::milliseconds kRest(5);
    const auto before = Clock::Current().Now();
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
    Clock::Current().Sleep(kRest);
    EXPECT_GE(Clock::Current().Now() - before, kRest);
}

}  // namespace Vantor::Platform
