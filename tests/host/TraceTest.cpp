#include "host/Trace.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace VantorHost {

namespace {

void WriteSaveError() { Trace::Write(TraceArea::kSave, TraceLevel::kError, "line"); }

}  // namespace

TEST(Trace, SwitchesOfAreas) {
    std::string lines;
    const auto write = [&] {
        lines.clear();
        for (const TraceArea area : {TraceArea::kDirectory, TraceArea::kSave, TraceArea::kMedia}) {
            for (const TraceLevel level : {TraceLevel::kError, TraceLevel::kWarning, TraceLevel::kVerbose}) {
                const size_t before = lines.size();
                Trace::Write(area, level, "line");
                EXPECT_EQ(Trace::IsOn(area, level), lines.size() > before);
            }
        }
        return lines;
    };
    Trace::SetSink([&](TraceArea area, TraceLevel level, std::string_view text) {
        lines += std::string(NameOf(area)) + " " + NameOf(level) + " " + std::string(text) + "|";
    });
    EXPECT_EQ(write(), "") << "everything is off at first";
    Trace::SetLevel(TraceArea::kSave, TraceLevel::kWarning);
    EXPECT_EQ(write(), "save error line|save warning line|");
    Trace::SetLevelOfAllAreas(TraceLevel::kError);
    Trace::SwitchOff(TraceArea::kSave);
    EXPECT_EQ(write(), "directory error line|media error line|");
    Trace::SetSink(nullptr);
    EXPECT_EQ(write(), "");
}

// A full log disk of the host's must not end a save. A sink may use the library, which then has something to
// say itself, and may replace itself.
TEST(Trace, WhatASinkMayDo) {
    int calls = 0;
    Trace::SetLevelOfAllAreas(TraceLevel::kVerbose);
    Trace::SetSink([&](auto...) {
        WriteSaveError();
        if (++calls == 2) Trace::SetSink(nullptr);
        throw std::runtime_error("log is full " + std::to_string(calls));
    });
    for (int i = 0; i < 3; ++i) EXPECT_NO_THROW(WriteSaveError());
    EXPECT_EQ(calls, 2);
}

}  // namespace VantorHost
