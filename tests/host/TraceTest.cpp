#include "host/Trace.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace VantorHost {

namespace {

constexpr TraceArea kAreas[] = {TraceArea::kDirectory, TraceArea::kSave, TraceArea::kSaveAs,
                                TraceArea::kStructuredReport, TraceArea::kMedia};
constexpr TraceLevel kLevels[] = {TraceLevel::kError, TraceLevel::kWarning, TraceLevel::kInfo,
                                  TraceLevel::kVerbose};

class TraceTest : public testing::Test {
  protected:
    void SetUp() override {
        Trace::SetSink([this](TraceArea area, TraceLevel level, std::string_view text) {
            fLines.push_back(std::string(NameOf(area)) + "|" + NameOf(level) + "|" + std::string(text));
        });
    }

    void TearDown() override {
        Trace::SetSink(nullptr);
        for (const TraceArea area : kAreas) {
            Trace::SwitchOff(area);
        }
    }

    std::vector<std::string> fLines;
};

}  // namespace

TEST_F(TraceTest, EverythingIsOffAtFirst) {
    for (const TraceArea area : kAreas) {
        EXPECT_FALSE(Trace::IsOn(area, TraceLevel::kError));
        Trace::Write(area, TraceLevel::kError, "line");
    }
    EXPECT_TRUE(fLines.empty());
}

TEST_F(TraceTest, LevelLetsItselfAndWorsePass) {
    for (const TraceLevel limit : kLevels) {
        fLines.clear();
        Trace::SetLevel(TraceArea::kSave, limit);
        for (const TraceLevel level : kLevels) {
            EXPECT_EQ(Trace::IsOn(TraceArea::kSave, level), level <= limit);
            Trace::Write(TraceArea::kSave, level, "line");
        }
        EXPECT_EQ(fLines.size(), static_cast<size_t>(limit) + 1);
    }
}

TEST_F(TraceTest, AreasHaveSwitchesOfTheirOwn) {
    Trace::SetLevel(TraceArea::kStructuredReport, TraceLevel::kInfo);
    Trace::SetLevel(TraceArea::kDirectory, TraceLevel::kError);
    for (const TraceArea area : kAreas) {
        Trace::Write(area, TraceLevel::kWarning, "line");
    }
    EXPECT_EQ(fLines, std::vector<std::string>{"structured report|warning|line"});
    fLines.clear();
    Trace::SetLevelOfAllAreas(TraceLevel::kWarning);
    Trace::SwitchOff(TraceArea::kSaveAs);
    for (const TraceArea area : kAreas) {
        Trace::Write(area, TraceLevel::kWarning, "");
    }
    EXPECT_EQ(fLines, (std::vector<std::string>{"directory|warning|", "save|warning|",
                                                "structured report|warning|", "media|warning|"}));
}

TEST_F(TraceTest, NoSinkIsOff) {
    Trace::SetLevelOfAllAreas(TraceLevel::kVerbose);
    Trace::SetSink(TraceSink());
    EXPECT_FALSE(Trace::IsOn(TraceArea::kDirectory, TraceLevel::kError));
    Trace::Write(TraceArea::kDirectory, TraceLevel::kError, "line");
    EXPECT_TRUE(fLines.empty());
}

// A full log disk of the host's must not end a save.
TEST_F(TraceTest, WhatTheSinkThrowsIsDropped) {
    int calls = 0;
    Trace::SetLevelOfAllAreas(TraceLevel::kVerbose);
    Trace::SetSink([&](TraceArea, TraceLevel, std::string_view) {
        ++calls;
        throw std::runtime_error("log is full");
    });
    EXPECT_NO_THROW(Trace::Write(TraceArea::kSave, TraceLevel::kError, "line"));
    Trace::SetSink([&](TraceArea, TraceLevel, std::string_view) {
        ++calls;
        throw 1;
    });
    EXPECT_NO_THROW(Trace::Write(TraceArea::kSave, TraceLevel::kError, "line"));
    EXPECT_EQ(calls, 2) << "the first failure does not switch tracing off";
}

// A sink may use the library, which then has something to say itself.
TEST_F(TraceTest, SinkThatCausesLinesIsCalledOnce) {
    int calls = 0;
    Trace::SetLevelOfAllAreas(TraceLevel::kVerbose);
    Trace::SetSink([&](TraceArea area, TraceLevel level, std::string_view) {
        ++calls;
        Trace::Write(area, level, "line about a line");
    });
    Trace::Write(TraceArea::kSave, TraceLevel::kError, "line");
    Trace::Write(TraceArea::kSave, TraceLevel::kError, "line");
    EXPECT_EQ(calls, 2);
}

TEST_F(TraceTest, SinkMayReplaceItself) {
    const std::string known = "a text long enough to be allocated";
    Trace::SetLevelOfAllAreas(TraceLevel::kVerbose);
    std::string seen;
    Trace::SetSink([&seen, known](TraceArea, TraceLevel, std::string_view) {
        Trace::SetSink(nullptr);
        seen = known;
    });
    Trace::Write(TraceArea::kSave, TraceLevel::kError, "line");
    EXPECT_EQ(seen, known);
    EXPECT_FALSE(Trace::IsOn(TraceArea::kSave, TraceLevel::kError));
}

}  // namespace VantorHost
