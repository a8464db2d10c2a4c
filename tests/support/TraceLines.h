#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/Trace.h"

namespace VantorTest {

// While it is alive, it collects what is traced of one area, each line with its level: "error: no such file".
class TraceLines {
  public:
    explicit TraceLines(VantorHost::TraceArea area, VantorHost::TraceLevel level) : fArea(area) {
        VantorHost::Trace::SetLevel(area, level);
        VantorHost::Trace::SetSink([this](auto, VantorHost::TraceLevel lineLevel, std::string_view text) {
            fLines.push_back(std::string(NameOf(lineLevel)) + ": " + std::string(text));
        });
    }
    ~TraceLines() {
        VantorHost::Trace::SetSink(nullptr);
        VantorHost::Trace::SwitchOff(fArea);
    }
    TraceLines(const TraceLines&) = delete;
    TraceLines& operator=(const TraceLines&) = delete;

    void SetLevel(VantorHost::TraceLevel level) { VantorHost::Trace::SetLevel(fArea, level); }

    // The lines since it was asked last.
    std::vector<std::string> Take() { return std::exchange(fLines, {}); }

  private:
    VantorHost::TraceArea fArea;
    std::vector<std::string> fLines;
};

}  // namespace VantorTest
