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

TEST(Desktop, SaysOnOneLineWhatNoBoxShows) {
    if (VantorTest::kIsWindows) GTEST_SKIP() << "there may be a box, and nobody to close it";
    testing::internal::CaptureStderr();
    ShowMessage(L"Title", L"one\ntwo");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Title: one two\n");
}

}  // namespace Vantor::Platform
