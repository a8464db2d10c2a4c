#include "platform/Desktop.h"

#include <gtest/gtest.h>

#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

// Whatever the user's form is, it shows these numbers. Windows knows no years before 1601.
TEST(Desktop, WritesDatesOfAllYears) {
    const int days[][3] = {{1987, 6, 15}, {2024, 2, 29}, {1, 1, 1}, {3, 2, 28}, {4, 2, 29}, {1600, 12, 31}};
    for (const auto& [year, month, day] : days) {
        const std::wstring text = FormatShortDate(year, month, day);
        for (const int number : {year % 100, month, day}) {
            EXPECT_NE(text.find(std::to_wstring(number)), std::wstring::npos)
                << number << " in " << text.size();
        }
        EXPECT_TRUE(year > 1000 || text.find(L"16") == std::wstring::npos) << "another cycle of the calendar";
    }
}

// Twelve or twenty-four hours of day.
TEST(Desktop, WritesTimesWithTheirSeconds) {
    for (const int hours : {0, 1, 12, 13, 23}) {
        const std::wstring text = FormatLongTime(hours, 48, 59);
        const std::wstring shown = std::to_wstring(hours), half = std::to_wstring((hours + 11) % 12 + 1);
        EXPECT_TRUE(text.find(shown) < 2 || text.find(half) < 2) << hours;
        for (const wchar_t* number : {L"48", L"59"}) EXPECT_NE(text.find(number), std::wstring::npos);
    }
    EXPECT_NE(FormatLongTime(1, 2, 3), FormatLongTime(13, 2, 3));
}

TEST(Desktop, SaysOnOneLineWhatNoBoxShows) {
    if (VantorTest::kIsWindows) GTEST_SKIP() << "there may be a box, and nobody to close it";
    testing::internal::CaptureStderr();
    ShowMessage(L"Title", L"one\ntwo");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Title: one two\n");
}

}  // namespace Vantor::Platform
