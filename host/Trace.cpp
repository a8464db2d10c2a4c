#include "host/Trace.h"

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

namespace VantorHost {

namespace {

constexpr size_t kAreaCount = static_cast<size_t>(TraceArea::kMedia) + 1;
constexpr int kOff = static_cast<int>(TraceLevel::kError) - 1;

// Where lines go and which ones do. Calls share the sink, so that one that replaces itself stays whole
// until it returns.
class Switchboard {
  public:
    static Switchboard& Get() {
        // Never destroyed: a host's own objects may use the library until the process ends.
        static Switchboard& switchboard = *new Switchboard;
        return switchboard;
    }

    void SetSink(TraceSink sink) {
        auto next = sink ? std::make_shared<const TraceSink>(std::move(sink)) : nullptr;
        const std::lock_guard<std::mutex> guard(fLock);
        fSink.swap(next);
    }

    std::shared_ptr<const TraceSink> GetSink() const {
        const std::lock_guard<std::mutex> guard(fLock);
        return fSink;
    }

    std::atomic<int>& LimitOf(TraceArea area) { return fLimits[static_cast<size_t>(area)]; }

    void SetAllLimits(int limit) {
        for (std::atomic<int>& areaLimit : fLimits) {
            areaLimit = limit;
        }
    }

  private:
    Switchboard() { SetAllLimits(kOff); }

    mutable std::mutex fLock;
    std::shared_ptr<const TraceSink> fSink;            // null for none
    std::array<std::atomic<int>, kAreaCount> fLimits;  // the most detailed level that passes, by area
};

// A sink that uses the library causes lines of its own; they are dropped, or they would never end.
class SinkCall {
  public:
    SinkCall() { IsUnderWay() = true; }
    ~SinkCall() { IsUnderWay() = false; }
    SinkCall(const SinkCall&) = delete;
    SinkCall& operator=(const SinkCall&) = delete;

    static bool& IsUnderWay() {
        thread_local bool isUnderWay = false;
        return isUnderWay;
    }
};

bool Passes(TraceArea area, TraceLevel level) {
    return static_cast<int>(level) <= Switchboard::Get().LimitOf(area) && !SinkCall::IsUnderWay();
}

}  // namespace

void Trace::SetSink(TraceSink sink) { Switchboard::Get().SetSink(std::move(sink)); }

void Trace::SetLevel(TraceArea area, TraceLevel level) {
    Switchboard::Get().LimitOf(area) = static_cast<int>(level);
}

void Trace::SetLevelOfAllAreas(TraceLevel level) { Switchboard::Get().SetAllLimits(static_cast<int>(level)); }

void Trace::SwitchOff(TraceArea area) { Switchboard::Get().LimitOf(area) = kOff; }

bool Trace::IsOn(TraceArea area, TraceLevel level) {
    return Passes(area, level) && Switchboard::Get().GetSink() != nullptr;
}

void Trace::Write(TraceArea area, TraceLevel level, std::string_view text) {
    if (!Passes(area, level)) {
        return;
    }
    const std::shared_ptr<const TraceSink> sink = Switchboard::Get().GetSink();
    if (sink == nullptr) {
        return;
    }
    const SinkCall call;
    try {
        (*sink)(area, level, text);
    } catch (...) {
        // What goes wrong in the host's own log must not end what the library does for the host.
    }
}

const char* NameOf(TraceLevel level) {
    switch (level) {
        case TraceLevel::kError:
            return "error";
        case TraceLevel::kWarning:
            return "warning";
        case TraceLevel::kInfo:
            return "info";
        case TraceLevel::kVerbose:
            break;
    }
    return "verbose";
}

const char* NameOf(TraceArea area) {
    switch (area) {
        case TraceArea::kDirectory:
            return "directory";
        case TraceArea::kSave:
            return "save";
        case TraceArea::kSaveAs:
            return "save as";
        case TraceArea::kStructuredReport:
            return "structured report";
        case TraceArea::kMedia:
            break;
    }
    return "media";
}

}  // namespace VantorHost
