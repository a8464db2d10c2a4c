#include "media/TDeviceBitmap.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "tests/support/BitmapBuilder.h"

namespace Vantor {

namespace {

using VantorTest::BitmapBuilder;
using VantorTest::Bytes;

constexpr int kWidth = 11;
constexpr int kHeight = 3;

// The bytes in a block of exactly their size, so that the sanitizer sees a read behind them.
class ExactBytes {
  public:
    ExactBytes(const Bytes& bytes, size_t size) : fBytes(new uint8_t[size]), fSize(size) {
        std::copy_n(bytes.begin(), size, fBytes.get());
    }
    explicit ExactBytes(const Bytes& bytes) : ExactBytes(bytes, bytes.size()) {}

    std::optional<TDeviceBitmap> Read() const { return TDeviceBitmap::Read(fBytes.get(), fSize); }

  private:
    std::unique_ptr<uint8_t[]> fBytes;
    size_t fSize;
};

// 0xRRGGBB of each pixel of a row.
std::vector<uint32_t> RowOf(const TDeviceBitmap& bitmap, int row, int first = 0, int count = kWidth) {
    std::vector<uint32_t> colors;
    Bytes pixels(static_cast<size_t>(count) * 3, 0xAB);
    if (!bitmap.CopyPixels(row, first, count, pixels.data())) return {};
    for (size_t place = 0; place < pixels.size(); place += 3) {
        colors.push_back(uint32_t{pixels[place + 2]} << 16 | uint32_t{pixels[place + 1]} << 8 |
                         pixels[place]);
    }
    return colors;
}

uint32_t PixelValue(int x, int y, uint32_t bits) {
    const auto value = static_cast<uint32_t>(x * 0x1357 + y * 0x2468A + 5) * 0x9E3779B1U;
    return bits == 32 ? value : value & ((1U << bits) - 1);
}

std::vector<uint32_t> ManyColors(size_t count) {
    std::vector<uint32_t> colors;
    for (uint32_t color = 0; color < count; ++color) colors.push_back((color + 1) * 0x123457 & 0xFFFFFF);
    return colors;
}

// What five bits are as eight.
uint32_t Widened(uint32_t five) { return five << 3 | five >> 2; }

// The colours that a display shows for the value of a pixel without masks.
uint32_t ColorOf(uint32_t value, uint32_t bits) {
    if (bits <= 8) return ManyColors(size_t{1} << bits)[value];
    if (bits == 16) {
        return Widened(value >> 10 & 31) << 16 | Widened(value >> 5 & 31) << 8 | Widened(value & 31);
    }
    return value & 0xFFFFFF;
}

std::vector<uint32_t> ExpectedRow(int row, uint32_t bits) {
    std::vector<uint32_t> colors;
    for (int x = 0; x < kWidth; ++x) colors.push_back(ColorOf(PixelValue(x, row, bits), bits));
    return colors;
}

}  // namespace

TEST(TDeviceBitmap, ReadsEveryDepthBothWaysUp) {
    for (const uint32_t bits : {1U, 4U, 8U, 16U, 24U, 32U}) {
        for (const bool isTopDown : {false, true}) {
            BitmapBuilder builder(kWidth, kHeight, bits);
            if (bits <= 8) builder.Colors(ManyColors(size_t{1} << bits));
            if (isTopDown) builder.TopDown();
            const ExactBytes bytes(builder.Build([&](int x, int y) { return PixelValue(x, y, bits); }));
            const auto bitmap = bytes.Read();
            ASSERT_TRUE(bitmap) << bits;
            EXPECT_EQ(bitmap->GetWidth(), kWidth);
            EXPECT_EQ(bitmap->GetHeight(), kHeight);
            for (int row = 0; row < kHeight; ++row) {
                const std::vector<uint32_t> expected = ExpectedRow(row, bits);
                EXPECT_EQ(RowOf(*bitmap, row), expected) << bits << " bits, row " << row << isTopDown;
                const std::vector<uint32_t> middle(expected.begin() + 3, expected.begin() + 8);
                EXPECT_EQ(RowOf(*bitmap, row, 3, 5), middle) << bits << " bits, a part of row " << row;
            }
        }
    }
}

TEST(TDeviceBitmap, ReadsColorsByTheirMasks) {
    struct {
        const char* fName;
        uint32_t fBits;
        std::vector<uint32_t> fMasks;  // red, green, blue
        uint32_t fValue;
        uint32_t fColor;
    } const cases[] = {
        {"565", 16, {0xF800, 0x07E0, 0x001F}, 0xFFFF, 0xFFFFFF},
        {"565, green", 16, {0xF800, 0x07E0, 0x001F}, 0x0400, 0x008200},
        {"565, red and blue", 16, {0xF800, 0x07E0, 0x001F}, 0x8010, 0x840084},
        {"the other way round", 32, {0x0000FF, 0x00FF00, 0xFF0000}, 0xAA112233, 0x332211},
        {"as without masks", 32, {0xFF0000, 0x00FF00, 0x0000FF}, 0xAA112233, 0x112233},
        {"ten bits", 32, {0x3FF00000, 0x000FFC00, 0x000003FF}, 0x12345678, 0x48459E},
        {"one bit", 16, {0x4, 0x2, 0x1}, 0x5, 0xFF00FF},
        {"no green", 32, {0xFF0000, 0, 0xFF}, 0xFFFFFFFF, 0xFF00FF},
        {"all bits", 32, {0xFFFFFFFF, 0xFFFFFFFF, 0x80000000}, 0x81234567, 0x8181FF},
    };
    for (const auto& each : cases) {
        for (const uint32_t headerSize : {40U, 52U, 56U, 108U, 124U}) {
            const ExactBytes bytes(BitmapBuilder(kWidth, 1, each.fBits)
                                       .Masks(each.fMasks)
                                       .HeaderSize(headerSize)
                                       .Build([&](int, int) { return each.fValue; }));
            const auto bitmap = bytes.Read();
            ASSERT_TRUE(bitmap) << each.fName;
            EXPECT_EQ(RowOf(*bitmap, 0), std::vector<uint32_t>(kWidth, each.fColor))
                << each.fName << ", header of " << headerSize;
        }
    }
}

TEST(TDeviceBitmap, TakesShortColorTablesAndThoseOfDirectColors) {
    const auto ascending = [](int x, int) { return static_cast<uint32_t>(x); };
    const ExactBytes shortTable(
        BitmapBuilder(kWidth, 1, 8).Colors({0x111111, 0x222222}).ColorsUsed(2).Build(ascending));
    std::vector<uint32_t> expected(kWidth, 0);
    expected[0] = 0x111111;
    expected[1] = 0x222222;
    EXPECT_EQ(RowOf(*shortTable.Read(), 0), expected) << "a colour that is not in the table is black";

    for (const uint32_t bits : {24U, 32U}) {
        const ExactBytes direct(
            BitmapBuilder(kWidth, 1, bits).Colors({1, 2, 3}).ColorsUsed(3).Build(ascending));
        EXPECT_EQ(RowOf(*direct.Read(), 0).at(10), 10U) << bits;
    }
}

TEST(TDeviceBitmap, RefusesWhatIsNotDrawn) {
    const auto build = [](const BitmapBuilder& builder) {
        return builder.Build([](int, int) { return 0U; });
    };
    const Bytes refused[] = {
        build(BitmapBuilder(8, 8, 8).Colors(ManyColors(256)).Compression(BitmapBuilder::kRunLength8)),
        build(BitmapBuilder(8, 8, 24).Compression(4)),
        build(BitmapBuilder(8, 8, 24).Masks({0xFF, 0xFF00, 0xFF0000})),
        build(BitmapBuilder(8, 8, 2)),
        build(BitmapBuilder(8, 8, 64)),
        build(BitmapBuilder(8, 8, 0)),
        build(BitmapBuilder(0, 8, 24)),
        build(BitmapBuilder(8, 0, 24)),
        build(BitmapBuilder(-8, 8, 24)),
        build(BitmapBuilder(8, 8, 24).HeaderSize(12)),
        build(BitmapBuilder(8, 8, 24).ColorsUsed(0xFFFFFFFF)),
        Bytes(39),
        Bytes(40),
        Bytes(),
    };
    for (const Bytes& bytes : refused) {
        EXPECT_FALSE(ExactBytes(bytes).Read()) << &bytes - refused;
    }
    EXPECT_FALSE(TDeviceBitmap::Read(nullptr, 100));
}

// A clipboard is any program's. Whatever it claims, what is there is drawn, and nothing else read.
TEST(TDeviceBitmap, SurvivesBitmapsThatAreCutShort) {
    for (const uint32_t bits : {1U, 4U, 8U, 16U, 24U, 32U}) {
        for (const bool isTopDown : {false, true}) {
            BitmapBuilder builder(kWidth, kHeight, bits);
            if (bits <= 8) builder.Colors(ManyColors(size_t{1} << bits));
            if (isTopDown) builder.TopDown();
            const Bytes whole = builder.Build([&](int x, int y) { return PixelValue(x, y, bits); });
            const size_t rowSize = (kWidth * bits + 31) / 32 * 4;
            for (size_t size = 0; size < whole.size(); ++size) {
                const ExactBytes bytes(whole, size);
                const auto bitmap = bytes.Read();
                const auto missing = static_cast<int>((whole.size() - size + rowSize - 1) / rowSize);
                for (int row = 0; bitmap && row < kHeight; ++row) {
                    const bool isThere = isTopDown ? row < kHeight - missing : row >= missing;
                    EXPECT_EQ(RowOf(*bitmap, row), isThere ? ExpectedRow(row, bits) : std::vector<uint32_t>{})
                        << size << " of " << whole.size() << " bytes, row " << row;
                }
            }
        }
    }
}

TEST(TDeviceBitmap, SurvivesSizesOfAnyNumber) {
    constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
    constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();
    Bytes bytes = BitmapBuilder(4, 4, 32).Build([](int, int) { return 0x010203U; });
    const auto setNumber = [&bytes](size_t place, int32_t number) {
        for (size_t index = 0; index < 4; ++index) {
            bytes[place + index] = static_cast<uint8_t>(static_cast<uint32_t>(number) >> (8 * index));
        }
    };
    setNumber(8, kLeast);
    const auto high = TDeviceBitmap::Read(bytes.data(), bytes.size());
    ASSERT_TRUE(high);
    EXPECT_EQ(high->GetHeight(), int64_t{1} << 31);
    EXPECT_EQ(RowOf(*high, 3, 0, 4), std::vector<uint32_t>(4, 0x010203)) << "what is there is drawn";
    EXPECT_TRUE(RowOf(*high, 4, 0, 4).empty());
    EXPECT_TRUE(RowOf(*high, kMost, 0, 4).empty());

    setNumber(8, kMost);
    const auto deep = TDeviceBitmap::Read(bytes.data(), bytes.size());
    ASSERT_TRUE(deep);
    EXPECT_TRUE(RowOf(*deep, 0, 0, 4).empty());
    EXPECT_FALSE(RowOf(*deep, kMost - 1, 0, 4).empty()) << "the bottom row comes first";

    setNumber(4, kMost);
    const auto large = TDeviceBitmap::Read(bytes.data(), bytes.size());
    ASSERT_TRUE(large);
    EXPECT_TRUE(RowOf(*large, 0, 0, 4).empty());
    EXPECT_TRUE(RowOf(*large, kMost - 1, 0, 4).empty());
}

}  // namespace Vantor
