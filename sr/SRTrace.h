#pragma once

#include "host/Trace.h"

namespace VantorWrappers {

using VantorHost::TraceLevel;

// Writes a line of the trace of structured reports. Its text is what `makeLine` gives, which is called only
// when the line is wanted: a report has thousands of them.
template <typename MakeLine>
void TraceReport(TraceLevel level, MakeLine makeLine) {
    constexpr auto kArea = VantorHost::TraceArea::kStructuredReport;
    if (VantorHost::Trace::IsOn(kArea, level)) VantorHost::Trace::Write(kArea, level, makeLine());
}

}  // namespace VantorWrappers
