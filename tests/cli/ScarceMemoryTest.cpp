// Frames for which there is no memory: whoever compresses them goes on.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <vector>

#include "cli/JpegCodec.h"

namespace {

size_t gMostBytes = SIZE_MAX;  // that are to be had at once

}  // namespace

// For the whole test program.
void* operator new(size_t size) {
    void* memory = size > gMostBytes ? nullptr : std::malloc(size > 0 ? size : 1);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }

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
    for (const size_t most : {size_t{1000}, size_t{0x10000}, size_t{0x20000}, size_t{0x40000}}) {
        std::vector<uint8_t> compressed;
        gMostBytes = most;
        const bool isDone = JpegCodec::Encode(pixels.data(), kSide, kSide, 95, compressed);
        gMostBytes = SIZE_MAX;
        EXPECT_FALSE(isDone) << most;
        EXPECT_TRUE(compressed.empty()) << most;
    }
    std::vector<uint8_t> compressed;
    EXPECT_TRUE(JpegCodec::Encode(pixels.data(), kSide, kSide, 95, compressed));
    EXPECT_FALSE(compressed.empty());
}

}  // namespace
