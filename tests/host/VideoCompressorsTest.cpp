#include "host/VideoCompressors.h"

#include <gtest/gtest.h>

#include "tests/support/TestCompressor.h"

namespace VantorHost {

namespace {

class Numbered : public VantorTest::TestCompressor {
  public:
    explicit Numbered(uint32_t handler) : fHandler(handler) {}
    uint32_t GetHandler() const override { return fHandler; }

  private:
    uint32_t fHandler;
};

}  // namespace

TEST(VideoCompressors, AreFoundByTheirHandlers) {
    const auto first = std::make_shared<Numbered>(1U), second = std::make_shared<Numbered>(2U);
    const size_t before = VideoCompressors::GetAll().size();
    EXPECT_EQ(VideoCompressors::Find(1), nullptr);
    VideoCompressors::Register(first);
    VideoCompressors::Register(second);
    VideoCompressors::Register(nullptr);
    EXPECT_EQ(VideoCompressors::Find(1), first);
    EXPECT_EQ(VideoCompressors::Find(2), second);
    EXPECT_EQ(VideoCompressors::Find(3), nullptr);
    EXPECT_EQ(VideoCompressors::GetAll().size(), before + 2);

    const auto better = std::make_shared<Numbered>(1U);
    VideoCompressors::Register(better);
    EXPECT_EQ(VideoCompressors::Find(1), better) << "the last one counts";
    const auto all = VideoCompressors::GetAll();
    ASSERT_EQ(all.size(), before + 2);
    EXPECT_EQ(all[before], second);
    EXPECT_EQ(all[before + 1], better);
    EXPECT_EQ(first.use_count(), 1) << "the one before is given back";
}

}  // namespace VantorHost
