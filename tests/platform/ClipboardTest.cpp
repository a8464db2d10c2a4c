#include "platform/Clipboard.h"

#include <gtest/gtest.h>

#include "tests/support/BitmapBuilder.h"

namespace Vantor::Platform {

namespace {

using VantorTest::Bytes;

Bytes BitmapOf(uint32_t color, int32_t width) {
    return VantorTest::BitmapBuilder(width, 2, 24).Build([color](int, int) { return color; });
}

// The system may round the size up.
Bytes Taken(size_t expectedSize) {
    Bytes taken;
    UseBitmapOnClipboard([&](const uint8_t* bytes, size_t size) {
        EXPECT_GE(size, expectedSize);
        taken.assign(bytes, bytes + std::min(size, expectedSize));
    });
    return taken;
}

}  // namespace

TEST(Clipboard, HasTheBitmapThatWasPutLast) {
    for (const int32_t width : {3, 800, 1}) {
        const Bytes bitmap = BitmapOf(static_cast<uint32_t>(width * 0x10203), width);
        ASSERT_TRUE(PutBitmapOnClipboard(bitmap));
        EXPECT_EQ(Taken(bitmap.size()), bitmap);
        EXPECT_EQ(Taken(bitmap.size()), bitmap) << "it stays there";
    }
}

TEST(Clipboard, HasNothingWhenItWasCleared) {
    ASSERT_TRUE(PutBitmapOnClipboard(BitmapOf(1, 2)));
    ASSERT_TRUE(ClearClipboard());
    EXPECT_FALSE(UseBitmapOnClipboard([](const uint8_t*, size_t) { FAIL() << "there is none"; }));
}

TEST(Clipboard, TakesNoEmptyBitmap) {
    const Bytes bitmap = BitmapOf(7, 2);
    ASSERT_TRUE(PutBitmapOnClipboard(bitmap));
    EXPECT_FALSE(PutBitmapOnClipboard({}));
    EXPECT_EQ(Taken(bitmap.size()), bitmap);
}

}  // namespace Vantor::Platform
