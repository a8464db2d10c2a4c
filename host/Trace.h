#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace VantorHost {

enum class TraceLevel { kError, kWarning, kInfo, kVerbose };

// The parts of the library that can be traced on their own.
enum class TraceArea { kDirectory, kSave, kSaveAs, kStructuredReport, kMedia };

// What the host sees of a trace line. The text is 8-bit text without a line end.
using TraceSink = std::function<void(TraceArea, TraceLevel, std::string_view text)>;

// The trace facility: the library writes lines, the host application receives them. Each area has a switch,
// the most detailed level that passes; at first everything is off and there is no sink. Meant to be set up
// once, before the library is used; lines are written on the caller's thread.
class Trace {
  public:
    // An empty sink drops all lines.
    static void SetSink(TraceSink sink);

    // Lets lines of an area pass up to and with a level.
    static void SetLevel(TraceArea area, TraceLevel level);
    static void SetLevelOfAllAreas(TraceLevel level);

    // Stops all lines of an area.
    static void SwitchOff(TraceArea area);

    // True when a line would reach the sink; for callers whose text is costly to make.
    static bool IsOn(TraceArea area, TraceLevel level);

    // Hands a line to the sink if its area's switch lets it pass. Never throws: what the sink throws is
    // dropped.
    static void Write(TraceArea area, TraceLevel level, std::string_view text);
};

// The name of a level as users write it: "error", "warning", "info", "verbose".
const char* NameOf(TraceLevel level);

// The name of an area as it appears in front of a line, such as "directory".
const char* NameOf(TraceArea area);

}  // namespace VantorHost
