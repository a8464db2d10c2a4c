#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace VantorWrappers {

// Something that hosts can be told of while an operation is under way. Any number of subscribers are called
// in the order in which they came, on the thread of the operation. A subscriber may take itself or others
// away, and bring in new ones, which are called from the next time on.
template <typename Arguments>
class Event {
  public:
    using Handler = std::function<void(const Arguments& arguments)>;
    using Subscription = uint64_t;

    // Gives what Unsubscribe takes.
    Subscription Subscribe(Handler handler) {
        fSubscribers.emplace_back(++fLast, std::move(handler));
        return fLast;
    }

    // Does nothing for a subscription that has ended.
    void Unsubscribe(Subscription subscription) {
        std::erase_if(fSubscribers, [=](const auto& each) { return each.first == subscription; });
    }

    // For the object that has the event.
    void Raise(const Arguments& arguments) const {
        const auto called = fSubscribers;
        for (const auto& [subscription, handler] : called) {
            if (Has(subscription)) handler(arguments);
        }
    }

  private:
    bool Has(Subscription subscription) const {
        return std::any_of(fSubscribers.begin(), fSubscribers.end(),
                           [=](const auto& each) { return each.first == subscription; });
    }

    std::vector<std::pair<Subscription, Handler>> fSubscribers;
    Subscription fLast = 0;
};

}  // namespace VantorWrappers
