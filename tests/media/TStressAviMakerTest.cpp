#include "media/TStressAviMaker.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "platform/VideoCompression.h"
#include "tests/support/PictureView.h"

namespace Vantor {

namespace {

using VantorTest::Bytes;
using VantorTest::PictureView;

constexpr uint32_t kUncompressed = Platform::kUncompressedHandler;

// Keeps the frames, and refuses those behind the last that it is to take.
class KeptFrames : public Platform::VideoFile {
  public:
    explicit KeptFrames(const TStressAviMaker& maker) : fFrameSize(maker.DescribeStream().GetFrameSize()) {}

    bool StartFrames(Platform::FrameCompressor) override { return fStarts; }
    bool WriteFrame(Bytes& pixels) override {
        ++fCalls;
        EXPECT_EQ(pixels.size(), fFrameSize);
        if (fFrames.size() == fMost) return false;
        fFrames.push_back(pixels);
        pixels.assign(fFrameSize, 0xAA);  // what is painted next starts from there
        return true;
    }
    int32_t Finish() override { return static_cast<int32_t>(fFrames.size()); }

    std::vector<Bytes> fFrames;
    size_t fMost = std::numeric_limits<size_t>::max();
    size_t fCalls = 0;
    bool fStarts = true;

  private:
    size_t fFrameSize;
};

std::vector<Bytes> FramesOf(TStressAviMaker& maker) {
    KeptFrames file(maker);
    TMovieFrame picture(maker.GetLayout().GetWidth(), maker.GetLayout().GetHeight());
    maker.WriteFrames(file, picture);
    return file.fFrames;
}

Bytes PixelAt(const TStressAviMaker& maker, const Bytes& frame, int x, int y) {
    const size_t rowSize = maker.DescribeStream().GetRowSize();
    const size_t row = static_cast<size_t>(maker.GetLayout().GetHeight() - 1 - y);
    const auto pixel = frame.begin() + static_cast<ptrdiff_t>(row * rowSize) + x * 3;
    return {pixel, pixel + 3};
}

const Bytes kBlack(3, 0);

}  // namespace

TEST(TStressAviMaker, MapsFramesByIntegerDivision) {
    constexpr int32_t kMany = 100'000;
    PictureView longest(0, 1, 1, kMany, 0), odd(1, 1, 1, 99'999, 0);
    TStressAviMaker maker({&longest, &odd}, kUncompressed, 100);
    KeptFrames file(maker);
    file.fMost = kMany / 2;
    TMovieFrame picture(2, 1);
    longest.fInstead = odd.fInstead = [](int32_t) { return false; };
    maker.WriteFrames(file, picture);
    ASSERT_EQ(odd.fShown.size(), kMany / 2 + 1U);
    EXPECT_EQ(odd.fShown[1], 1);
    EXPECT_EQ(odd.fShown[2], 2);
    EXPECT_EQ(odd.fShown[kMany / 2], 49'999 + 1) << "the product needs more than 32 bits";
}

TEST(TStressAviMaker, PaintsViewsOfManySizesInTheirCells) {
    const std::pair<int, int> sizes[] = {{9, 3}, {4, 7}, {5, 4}, {1, 1}, {9, 7}, {2, 6}};
    constexpr int kCellWidth = 9, kCellHeight = 7;
    std::vector<std::unique_ptr<PictureView>> views;
    TStressAviMaker::Views all;
    for (const auto& [width, height] : sizes) {
        views.push_back(std::make_unique<PictureView>(static_cast<int>(views.size()), width, height, 2, 100));
        all.push_back(views.back().get());

        TStressAviMaker maker(all, kUncompressed, 100);
        const std::vector<Bytes> frames = FramesOf(maker);
        ASSERT_EQ(frames.size(), 2U);
        const int columns = maker.GetLayout().GetColumns();
        const int cellWidth = maker.GetLayout().GetWidth() / columns;
        const int cellHeight = maker.GetLayout().GetHeight() / maker.GetLayout().GetRows();
        EXPECT_EQ(cellWidth, kCellWidth);
        EXPECT_EQ(cellHeight, views.size() == 1 ? 3 : kCellHeight);
        for (int y = 0; y < maker.GetLayout().GetHeight(); ++y) {
            for (int x = 0; x < maker.GetLayout().GetWidth(); ++x) {
                const auto index = static_cast<size_t>(y / cellHeight * columns + x / cellWidth);
                Bytes expected = kBlack;
                if (index < views.size()) {
                    const int column = x % cellWidth - (cellWidth - sizes[index].first) / 2;
                    const int row = y % cellHeight - (cellHeight - sizes[index].second) / 2;
                    const bool isInside =
                        column >= 0 && column < sizes[index].first && row >= 0 && row < sizes[index].second;
                    if (isInside) expected = views[index]->PixelAt(2, column, row);
                }
                ASSERT_EQ(PixelAt(maker, frames[1], x, y), expected)
                    << x << ", " << y << " of " << all.size();
            }
        }
    }
}

// No view's picture may turn up in another one's cell, or stay from the frame before.
TEST(TStressAviMaker, LeavesTheCellBlackOfAViewWithoutAPicture) {
    PictureView good(0, 4, 4, 4, 100), bad(1, 4, 4, 4, 100);
    for (int kind = 0; kind < 4; ++kind) {
        bad.fInstead = [kind](int32_t frame) -> bool {
            if (frame % 2 == 1) {
                return Platform::PutBitmapOnClipboard(
                    VantorTest::BitmapBuilder(4, 4, 24).Build([](int, int) { return 0x010203U; }));
            }
            if (kind == 0) return false;
            if (kind == 1) return Platform::ClearClipboard();
            if (kind == 2) return Platform::PutBitmapOnClipboard(Bytes(100, 0xFF));
            throw std::runtime_error("no picture");
        };
        TStressAviMaker maker({&good, &bad, nullptr}, kUncompressed, 100);
        const std::vector<Bytes> frames = FramesOf(maker);
        ASSERT_EQ(frames.size(), 4U) << kind;
        for (int frame = 0; frame < 4; ++frame) {
            const Bytes& pixels = frames[static_cast<size_t>(frame)];
            EXPECT_EQ(PixelAt(maker, pixels, 1, 1), good.PixelAt(frame + 1, 1, 1)) << kind;
            EXPECT_EQ(PixelAt(maker, pixels, 5, 1), frame % 2 == 0 ? Bytes({3, 2, 1}) : kBlack) << kind;
            EXPECT_EQ(PixelAt(maker, pixels, 1, 5), kBlack) << "a view that is not there";
        }
    }
}

TEST(TStressAviMaker, EndsWithTheFrameThatCannotBeWritten) {
    PictureView view(0, 4, 4, 10, 100);
    TStressAviMaker maker({&view}, kUncompressed, 100);
    KeptFrames file(maker);
    TMovieFrame picture(4, 4);
    file.fMost = 3;
    maker.WriteFrames(file, picture);
    EXPECT_EQ(file.fCalls, 4U);
    EXPECT_EQ(view.fShown, std::vector<int32_t>({1, 2, 3, 4}));

    file.fStarts = false;
    maker.WriteFrames(file, picture);
    EXPECT_EQ(file.fCalls, 4U) << "no frame without a compressor";
}

TEST(TStressAviMaker, DescribesTheStream) {
    PictureView wide(0, 7, 2, 30, 1000), high(1, 4, 5, 15, 1200);
    const Platform::VideoStream stream = TStressAviMaker({&wide, &high}, kUncompressed, 85).DescribeStream();
    EXPECT_EQ(stream.fHandler, kUncompressed);
    EXPECT_EQ(stream.fRate, 25U) << "30 frames in 1.2 seconds";
    EXPECT_EQ(stream.fLength, 30U);
    EXPECT_EQ(stream.fQuality, 8500U);
    EXPECT_EQ(stream.fWidth, 14);
    EXPECT_EQ(stream.fHeight, 5);
    EXPECT_EQ(stream.fImageSize, 14U * 5 * 3) << "kept without what fills up the rows";
    EXPECT_EQ(stream.GetFrameSize(), 44U * 5);
}

TEST(TStressAviMaker, HasARateOfAtLeastOne) {
    constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
    struct {
        int32_t fFrames, fCycle;
        uint32_t fRate;
    } const cases[] = {{30, 1000, 30}, {30, 1001, 29}, {1, 0, 1},         {30, 0, 1},          {2, 5000, 1},
                       {30, -5, 1},    {50, 1, 50000}, {kMost, 1, kMost}, {kMost, kMost, 1000}};
    for (const auto& [frames, cycle, rate] : cases) {
        PictureView view(0, 1, 1, frames, cycle);
        EXPECT_EQ(TStressAviMaker({&view}, kUncompressed, 1).DescribeStream().fRate, rate) << frames;
    }
}

TEST(TStressAviMaker, KeepsTheQualityInItsBounds) {
    PictureView view(0, 1, 1, 1, 0);
    for (const auto& [quality, stated] :
         {std::pair(-1, 0U), {0, 0U}, {1, 100U}, {100, 10000U}, {1000, 10000U}}) {
        EXPECT_EQ(TStressAviMaker({&view}, kUncompressed, quality).DescribeStream().fQuality, stated);
    }
}

}  // namespace Vantor
