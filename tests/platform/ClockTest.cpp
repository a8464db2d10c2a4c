#include "platform/Clock.h"

#include <gtest/gtest.h>

#include <ctime>

#include "tests/support/TestClock.h"

namespace Vantor::Platform {

TEST(Clock, IsTheSystemsUnlessReplaced) {
    constexpr std::chrono::milliseconds kRest(5);
    const auto before = Clock::Current().Now();
    {
        VantorTest::TestClock outer;
        {
            VantorTest::TestClock inner;
            EXPECT_EQ(&Clock::Current(), &inner);
        }
        EXPECT_EQ(&Clock::Current(), &outer);
    }
    Clock::Current().Sleep(kRest);
    EXPECT_GE(Clock::Current().Now() - before, kRest);
}

// The system's own, held against the C library's.
TEST(Clock, TellsTheLocalTime) {
    const std::time_t before = std::time(nullptr);
    const auto now = Clock::Current().GetLocalTime();
    ASSERT_TRUE(now);
    std::tm local = {};
    local.tm_year = now->fYear - 1900;
    local.tm_mon = now->fMonth - 1;
    local.tm_mday = now->fDay;
    local.tm_hour = now->fHour;
    local.tm_min = now->fMinute;
    local.tm_sec = now->fSecond;
    local.tm_isdst = -1;
    EXPECT_NEAR(std::difftime(std::mktime(&local), before), 0, 2);
    EXPECT_TRUE(now->fMillisecond >= 0 && now->fMillisecond < 1000);
}

}  // namespace Vantor::Platform
