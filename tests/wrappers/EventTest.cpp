#include "wrappers/Event.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using VantorWrappers::Event;

TEST(Event, SubscribersMayComeAndGoWhileItIsRaised) {
    Event<char> event;
    std::string calls;
    Event<char>::Subscription second = 0;
    const auto first = event.Subscribe([&](char raised) {
        calls += {'1', raised};
        event.Unsubscribe(second);
        event.Subscribe([&](char later) { calls += {'3', later}; });
    });
    second = event.Subscribe([&](char raised) { calls += {'2', raised}; });
    event.Raise('a');
    EXPECT_EQ(calls, "1a") << "the second one has gone, the third one comes next time";
    event.Unsubscribe(first);
    event.Unsubscribe(first);
    event.Raise('b');
    EXPECT_EQ(calls, "1a3b");
}

}  // namespace
