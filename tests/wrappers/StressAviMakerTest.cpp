#include "wrappers/StressAviMaker.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/CodePage.h"
#include "platform/File.h"
#include "platform/VideoCompression.h"
#include "tests/support/AviReader.h"
#include "tests/support/PictureView.h"
#include "tests/support/TestCompressor.h"
#include "tests/support/TraceLines.h"

namespace VantorWrappers {

namespace {

using VantorTest::AviMovie;
using VantorTest::Bytes;
using VantorTest::PictureView;
using VantorTest::ReadAviFile;
using VantorTest::TestCompressor;

constexpr uint32_t kUncompressed = Vantor::Platform::kUncompressedHandler;
constexpr uint32_t kNobodys = Vantor::Platform::FourCharacterCode('?', 'n', 'o', '!');
constexpr int32_t kQuality = 75;

using Lines = std::vector<std::string>;

class StressAviMakerTest : public testing::Test {
  protected:
    void Make(uint32_t handler, const StressAviMaker::ImageViews& views, const char* name = "MOVIE.AVI") {
        fWidth = fHeight = -1;
        fMaker.MakeStressAviFile(Vantor::Platform::ToHostText(fFolder.PathOf(name)), handler, kQuality, views,
                                 fWidth, fHeight);
    }

    AviMovie ReadMovie() const { return ReadAviFile(fFolder.PathOf("MOVIE.AVI")); }

    // The line of a movie that is shorter than it was to be.
    static Lines Shorter(int written, int wanted) {
        return {"warning: MakeStressAviFile: " + std::to_string(written) + " of " + std::to_string(wanted) +
                " frames written"};
    }

    VantorTest::TestFolder fFolder;
    VantorTest::TraceLines fTrace{VantorHost::TraceArea::kMedia, VantorHost::TraceLevel::kVerbose};
    StressAviMaker fMaker;
    int32_t fWidth = 0;
    int32_t fHeight = 0;
    PictureView fLonger{0, 9, 5, 30, 1000};
    PictureView fShorter{1, 4, 7, 15, 500};
    PictureView fStill{2, 7, 3, 1, 0};
};

// As when the user gives it up: what there is by then is a movie, and the next one is not given up.
TEST_F(StressAviMakerTest, EndsAMovieThatIsCancelled) {
    fMaker.Cancel();
    fShorter.fInstead = [this](int32_t frame) {
        if (frame == 4) fMaker.Cancel();
        return false;
    };
    Make(kUncompressed, {&fShorter});
    EXPECT_EQ(fMaker.GetFramesWritten(), 3);
    EXPECT_EQ(ReadMovie().fFrames.size(), 3U);
    EXPECT_EQ(fTrace.Take(), Shorter(3, 15));
    EXPECT_EQ(fShorter.fShown.size(), 4U);
    Make(kUncompressed, {&fStill});
    EXPECT_EQ(fMaker.GetFramesWritten(), 1);
}

// Hosts show the loops of a stress examination side by side, each beat in step, however many frames it has:
// three views in four cells of 9 x 7, each at its own size in the middle, pixel by pixel through the file.
TEST_F(StressAviMakerTest, MakesAMovieOfThreeViews) {
    Make(kUncompressed, {&fLonger, &fShorter, &fStill});
    EXPECT_EQ(fWidth, 18);
    EXPECT_EQ(fHeight, 14);
    EXPECT_EQ(fMaker.GetFramesWritten(), 30);
    EXPECT_EQ(fMaker.GetFramesWanted(), 30);
    EXPECT_EQ(fMaker.GetRate(), 30);
    EXPECT_EQ(fTrace.Take(), Lines());

    const AviMovie movie = ReadMovie();
    EXPECT_EQ(movie.fHandler, kUncompressed);
    EXPECT_EQ(movie.fRate, 30U);
    EXPECT_EQ(movie.fQuality, 7500U);
    EXPECT_EQ(movie.fImageSize, 18U * 14 * 3);
    ASSERT_EQ(movie.fFrames.size(), 30U);
    ASSERT_EQ(movie.fWidth, 18);
    ASSERT_EQ(movie.fHeight, 14);
    for (int frame = 0; frame < 30; ++frame) {
        ASSERT_EQ(movie.fFrames[static_cast<size_t>(frame)].size(), 56U * 14) << "rows are filled up";
        for (int y = 0; y < 14; ++y) {
            for (int x = 0; x < 18; ++x) {
                Bytes expected(3, 0);
                if (x < 9 && y >= 1 && y < 6) expected = fLonger.PixelAt(frame + 1, x, y - 1);
                if (x >= 11 && x < 15 && y < 7) expected = fShorter.PixelAt(frame / 2 + 1, x - 11, y);
                if (x >= 1 && x < 8 && y >= 9 && y < 12) expected = fStill.PixelAt(1, x - 1, y - 9);
                ASSERT_EQ(movie.GetPixel(static_cast<size_t>(frame), x, y), expected)
                    << "frame " << frame << " at " << x << ", " << y;
            }
        }
    }
}

TEST_F(StressAviMakerTest, ReplacesTheMovieBefore) {
    Make(kUncompressed, {&fLonger, &fShorter});
    Make(kUncompressed, {&fStill});
    const AviMovie movie = ReadMovie();
    EXPECT_EQ(movie.fFrames.size(), 1U);
    EXPECT_EQ(movie.fWidth, 7) << "an odd width";
    EXPECT_EQ(movie.fImageSize, 7U * 3 * 3);
    EXPECT_EQ(movie.fFrames[0].size(), 24U * 3);
    EXPECT_EQ(movie.GetPixel(0, 6, 2), fStill.PixelAt(1, 6, 2));
    EXPECT_EQ(fMaker.GetFramesWritten(), 1);
    EXPECT_EQ(fMaker.GetRate(), 1) << "a still takes no time";
    EXPECT_EQ(movie.fRate, 1U);
}

TEST_F(StressAviMakerTest, MakesNoMovieOfNoViewsOrMoreThanSix) {
    for (const size_t count : {size_t{0}, size_t{7}}) {
        Make(kUncompressed, StressAviMaker::ImageViews(count, &fStill));
        EXPECT_EQ(fWidth, 0);
        EXPECT_EQ(fHeight, 0);
        EXPECT_EQ(fMaker.GetFramesWanted(), 0);
    }
    Make(kUncompressed, StressAviMaker::ImageViews(3, nullptr));
    EXPECT_EQ(fWidth, 0) << "views that are not there have no size";
    EXPECT_TRUE(fFolder.ListFiles().empty());
}

TEST_F(StressAviMakerTest, MakesAStreamWithoutFramesForAHandlerOfZero) {
    Make(0, {&fLonger, &fStill});
    EXPECT_EQ(fWidth, 18);
    EXPECT_EQ(fMaker.GetFramesWritten(), 0);
    EXPECT_TRUE(fLonger.fShown.empty()) << "no view is asked for a picture";
    const AviMovie movie = ReadMovie();
    EXPECT_TRUE(movie.fFrames.empty());
    EXPECT_EQ(movie.fType, "vids");
    EXPECT_EQ(movie.fHandler, 0U);
    EXPECT_EQ(movie.fRate, 30U);
    EXPECT_EQ(fTrace.Take(), Lines());
}

TEST_F(StressAviMakerTest, LeavesNothingWhereAMovieGotNoFrames) {
    Make(kNobodys, {&fLonger});
    EXPECT_EQ(fWidth, 9);
    EXPECT_EQ(fMaker.GetFramesWritten(), 0);
    EXPECT_EQ(fMaker.GetFramesWanted(), 30);
    EXPECT_TRUE(fFolder.ListFiles().empty());
    EXPECT_EQ(fTrace.Take(), Shorter(0, 30));

    Make(kUncompressed, {&fLonger}, "NO/MOVIE.AVI");
    EXPECT_EQ(fHeight, 5);
    EXPECT_EQ(fMaker.GetFramesWritten(), 0);
    ASSERT_EQ(fTrace.Take().size(), 1U);
    EXPECT_TRUE(fFolder.ListFiles().empty());
}

TEST_F(StressAviMakerTest, LetsNothingOutThatAViewThrows) {
    class Gone : public PictureView {
      public:
        Gone() : PictureView(0, 1, 1, 1, 1) {}
        int32_t GetNumberOfFrames() const override { throw std::runtime_error("the control is gone"); }
    } gone;
    Make(kUncompressed, {&fStill, &gone});
    EXPECT_EQ(fTrace.Take(), Lines({"error: MakeStressAviFile: the control is gone"}));
    EXPECT_EQ(fMaker.GetFramesWritten(), 0);
    EXPECT_TRUE(fFolder.ListFiles().empty());
}

TEST_F(StressAviMakerTest, CompressesWithWhatTheHostBrings) {
    if (VantorTest::kIsWindows) GTEST_SKIP() << "the system has compressors of its own";
    const auto compressor = std::make_shared<TestCompressor>();
    VantorHost::VideoCompressors::Register(compressor);
    Make(TestCompressor::kHandler, {&fLonger, &fShorter});
    EXPECT_EQ(compressor->fWidth, 18);
    EXPECT_EQ(compressor->fHeight, 7);
    EXPECT_EQ(compressor->fQuality, 7500);
    const AviMovie movie = ReadMovie();
    EXPECT_EQ(movie.fHandler, TestCompressor::kHandler);
    EXPECT_EQ(movie.fCompression, TestCompressor::kHandler);
    ASSERT_EQ(movie.fFrames.size(), 30U);
    EXPECT_EQ(movie.fFrames[7].size(), TestCompressor::kKept);

    for (const bool isThrown : {false, true}) {
        compressor->fCalls = 0;
        compressor->fInstead = [&](Bytes& compressed) {
            compressed.assign(5, 1);
            if (compressor->fCalls > 12 && isThrown) throw std::runtime_error("no memory");
            return compressor->fCalls <= 12;
        };
        Make(TestCompressor::kHandler, {&fLonger, &fShorter});
        EXPECT_EQ(fMaker.GetFramesWritten(), 12);
        EXPECT_EQ(fMaker.GetFramesWanted(), 30);
        EXPECT_EQ(ReadMovie().fFrames.size(), 12U) << "a shorter movie";
        EXPECT_EQ(fTrace.Take(), Shorter(12, 30));
    }
}

}  // namespace

}  // namespace VantorWrappers
