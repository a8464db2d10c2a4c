#include "media/TMovieLayout.h"

#include <gtest/gtest.h>

#include <limits>

namespace Vantor {

TEST(TMovieLayout, HasAGridForOneToSixViews) {
    struct {
        size_t fViews;
        int32_t fColumns, fRows;
    } const cases[] = {{0, 0, 0}, {1, 1, 1}, {2, 2, 1}, {3, 2, 2},
                       {4, 2, 2}, {5, 3, 2}, {6, 3, 2}, {7, 0, 0}};
    for (const auto& [views, columns, rows] : cases) {
        const TMovieLayout layout(views, 7, 5);
        EXPECT_EQ(layout.GetColumns(), columns) << views;
        EXPECT_EQ(layout.GetRows(), rows) << views;
        EXPECT_EQ(layout.GetWidth(), columns * 7) << views;
        EXPECT_EQ(layout.GetHeight(), rows * 5) << views;
        EXPECT_EQ(layout.IsEmpty(), columns == 0) << views;
    }
}

TEST(TMovieLayout, PutsPicturesInTheMiddleOfTheirCells) {
    const TMovieLayout layout(5, 9, 6);
    EXPECT_EQ(layout.GetLeft(0, 9), 0);
    EXPECT_EQ(layout.GetLeft(2, 4), 18 + 2);
    EXPECT_EQ(layout.GetLeft(3, 4), 2);
    EXPECT_EQ(layout.GetTop(3, 3), 6 + 1);
    EXPECT_EQ(layout.GetTop(0, 10), -2);
    EXPECT_EQ(layout.GetLeft(1, int64_t{1} << 31), 9 + (9 - (int64_t{1} << 31)) / 2);
}

TEST(TMovieLayout, IsEmptyWithNothingToShowOrTooMuch) {
    constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
    EXPECT_TRUE(TMovieLayout(2, 0, 5).IsEmpty());
    EXPECT_TRUE(TMovieLayout(2, 5, -1).IsEmpty());
    for (const auto& [width, height] :
         {std::pair<int32_t, int32_t>{kMost, 1}, {1, kMost}, {kMost, kMost}, {30000, 30000}}) {
        const TMovieLayout layout(6, width, height);
        EXPECT_TRUE(layout.IsEmpty());
        EXPECT_EQ(layout.GetWidth(), 0);
        EXPECT_EQ(layout.GetHeight(), 0);
    }
}

}  // namespace Vantor
