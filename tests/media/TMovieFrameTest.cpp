#include "media/TMovieFrame.h"

#include <gtest/gtest.h>

#include "tests/support/BitmapBuilder.h"

namespace Vantor {

namespace {

using VantorTest::BitmapBuilder;
using VantorTest::Bytes;

constexpr int kWidth = 5;
constexpr int kHeight = 4;
constexpr int kRowSize = 16;

uint32_t PixelOf(int x, int y) { return static_cast<uint32_t>((x + 1) * 0x10000 + (y + 1) * 0x100 + 9); }

// 0xRRGGBB, counted from the upper left corner.
uint32_t PixelOf(const TMovieFrame& frame, int x, int y) {
    const uint8_t* const pixel = frame.GetPixels().data() + (kHeight - 1 - y) * kRowSize + x * 3;
    return uint32_t{pixel[2]} << 16 | uint32_t{pixel[1]} << 8 | pixel[0];
}

void Draw(TMovieFrame& frame, int width, int height, int64_t left, int64_t top, size_t missingBytes = 0) {
    const Bytes bytes = BitmapBuilder(width, height, 24).Build([](int x, int y) { return PixelOf(x, y); });
    frame.Draw(*TDeviceBitmap::Read(bytes.data(), bytes.size() - missingBytes), left, top);
}

}  // namespace

// A picture of any size at any place, also one that hangs over on all sides.
TEST(TMovieFrame, DrawsWhatIsInsideAndNothingElse) {
    struct {
        int fWidth, fHeight;
        int64_t fLeft, fTop;
    } const cases[] = {{2, 2, 1, 1},
                       {5, 4, 0, 0},
                       {9, 9, -2, -3},
                       {3, 2, -1, 3},
                       {2, 1, 4, -1},
                       {2, 2, 5, 0},
                       {2, 2, 0, 4},
                       {2, 2, -2, -2},
                       {1, 9, 4, -8},
                       {7, 1, -6, 3},
                       {2, 2, int64_t{1} << 40, -(int64_t{1} << 40)}};
    for (const auto& [width, height, left, top] : cases) {
        TMovieFrame frame(kWidth, kHeight);
        ASSERT_EQ(frame.GetPixels().size(), static_cast<size_t>(kRowSize * kHeight));
        Draw(frame, width, height, left, top);
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const int64_t column = x - left, row = y - top;
                const bool isInside = column >= 0 && column < width && row >= 0 && row < height;
                const uint32_t expected =
                    isInside ? PixelOf(static_cast<int>(column), static_cast<int>(row)) : 0;
                EXPECT_EQ(PixelOf(frame, x, y), expected) << x << ", " << y << " of " << left << ", " << top;
            }
            EXPECT_EQ(frame.GetPixels()[static_cast<size_t>(y * kRowSize + kWidth * 3)], 0)
                << "what fills up a row";
        }
    }
}

TEST(TMovieFrame, LeavesRowsBlackThatTheBitmapLacks) {
    TMovieFrame frame(kWidth, kHeight);
    Draw(frame, kWidth, kHeight, 0, 0, kRowSize + 1);
    EXPECT_EQ(PixelOf(frame, 0, 0), 0U);
    EXPECT_EQ(PixelOf(frame, 4, 1), 0U);
    EXPECT_EQ(PixelOf(frame, 4, 2), PixelOf(4, 2));
    EXPECT_EQ(PixelOf(frame, 0, 3), PixelOf(0, 3));
}

}  // namespace Vantor
