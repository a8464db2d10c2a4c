// Frames that need more room than they are begun with, several times over, and those for which there is none.

#include "cli/JpegCodec.h"

#include <gtest/gtest.h>

#include "tests/cli/ScarceMemory.h"
#include "tests/support/TestFolder.h"

namespace {

using VantorCli::JpegCodec;
using VantorTest::Bytes;

class JpegCodecTest : public testing::Test {
  protected:
    JpegCodecTest() : fNoise(size_t{kSide} * kSide * 3) {
        uint32_t seed = 1;
        for (uint8_t& level : fNoise) {
            seed = seed * 1103515245 + 12345;
            level = static_cast<uint8_t>(seed >> 16);
        }
    }
    void SetUp() override {
        if (!JpegCodec::IsThere()) GTEST_SKIP() << "built without JPEG";
    }
    bool Encode(Bytes& frame) const { return JpegCodec::Encode(fNoise.data(), kSide, kSide, 95, frame); }

    static constexpr int32_t kSide = 600;
    Bytes fNoise;
};

TEST_F(JpegCodecTest, LargeFrames) {
    Bytes frame, again = {1, 2, 3};
    ASSERT_TRUE(Encode(frame));
    ASSERT_TRUE(Encode(again));
    EXPECT_GT(frame.size(), size_t{4} * 0x10000);
    EXPECT_EQ(frame, again) << "nothing of what was there before";
    EXPECT_EQ(Bytes(frame.end() - 2, frame.end()), Bytes({0xFF, 0xD9}));
    Bytes samples;
    EXPECT_TRUE(JpegCodec::Decode(frame, kSide, kSide, 3, false, samples));
}

// Whoever compresses goes on.
TEST_F(JpegCodecTest, FramesWithoutMemory) {
    Bytes frame;
    for (const size_t most : {size_t{1000}, size_t{0x10000}, size_t{0x20000}, size_t{0x40000}}) {
        bool isDone = true;
        {
            const VantorTest::ScarceMemory scarce(most);
            frame = {};
            isDone = Encode(frame);
        }
        EXPECT_FALSE(isDone) << most;
        EXPECT_TRUE(frame.empty()) << most;
    }
    EXPECT_TRUE(Encode(frame));
    EXPECT_FALSE(frame.empty());
}

}  // namespace
