#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace VantorHost {

template <typename Signature>
class Hook;

// A piece of work that the library does its own way unless the host has another. One for the process; may be
// replaced and called from any thread. Hooks are never destroyed: a host's own objects may use the library
// until the process ends.
template <typename Result, typename... Arguments>
class Hook<Result(Arguments...)> {
  public:
    using Function = std::function<Result(Arguments...)>;

    // What is done without the host.
    explicit Hook(Function standard) : fStandard(std::make_shared<const Function>(std::move(standard))) {}

    // An empty function puts the standard back.
    void Replace(Function function) {
        auto next = function ? std::make_shared<const Function>(std::move(function)) : nullptr;
        const std::lock_guard<std::mutex> guard(fLock);
        fReplacement.swap(next);
    }

    Result operator()(Arguments... arguments) const { return (*Current())(arguments...); }

  private:
    // Kept for as long as the call lasts, also when it replaces itself.
    std::shared_ptr<const Function> Current() const {
        const std::lock_guard<std::mutex> guard(fLock);
        return fReplacement != nullptr ? fReplacement : fStandard;
    }

    mutable std::mutex fLock;
    std::shared_ptr<const Function> fStandard;
    std::shared_ptr<const Function> fReplacement;  // null for none
};

}  // namespace VantorHost
