// Frames for which there is no memory: whoever compresses them goes on.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "cli/JpegCodec.h"
#include "tests/cli/ScarceMemory.h"

namespace {

using VantorCli::JpegCodec;

TEST(ScarceMemory, JpegFrames) {
    if (!JpegCodec::IsThere()) GTEST_SKIP() << "built without JPEG";
    constexpr int32_t kSide = 600;
    std::vector<uint8_t> pixels(size_t{kSide} * kSide * 3);
    uint32_t seed = 1;
    for (uint8_t& level : pixels) {
        seed = seed * 1103515245 + 12345;
        level = static_cast<uint8_t>(seed >> 16);
    }
    const auto encode = [&](std::vector<uint8_t>& compressed) {
        return JpegCodec::Encode(pixels.data(), kSide, kSide, 95, compressed);
    };
    std::vector<uint8_t> compressed;
    for (const size_t most : {size_t{1000}, size_t{0x10000}, size_t{0x20000}, size_t{0x40000}}) {
        bool isDone = true;
        {
            const VantorTest::ScarceMemory scarce(most);
            compressed = {};
            isDone = encode(compressed);
        }
        EXPECT_FALSE(isDone) << most;
        EXPECT_TRUE(compressed.empty()) << most;
    }
    EXPECT_TRUE(encode(compressed));
    EXPECT_FALSE(compressed.empty());
}

}  // namespace
