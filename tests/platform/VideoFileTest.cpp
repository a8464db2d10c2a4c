#include "platform/VideoFile.h"

#include <gtest/gtest.h>

#include "platform/VideoCompression.h"
#include "tests/support/AviReader.h"
#include "tests/support/FileSupport.h"

namespace Vantor::Platform {

namespace {

using VantorTest::AviMovie;
using VantorTest::Bytes;
using VantorTest::ReadAviFile;

constexpr uint32_t kNobodysHandler = FourCharacterCode('?', 'n', 'o', '!');

VideoStream SmallStream(uint32_t handler) {
    VideoStream stream;
    stream.fHandler = handler;
    stream.fRate = 30;
    stream.fLength = 3;
    stream.fQuality = 5000;
    stream.fWidth = 5;
    stream.fHeight = 3;
    stream.fImageSize = 45;
    return stream;
}

Bytes FrameOf(size_t number) {
    Bytes frame(SmallStream(0).GetFrameSize());
    for (size_t place = 0; place < frame.size(); ++place)
        frame[place] = static_cast<uint8_t>(number * 50 + place);
    return frame;
}

}  // namespace

class VideoFileTest : public testing::Test {
  protected:
    VantorTest::TestFolder fFolder;
};

TEST_F(VideoFileTest, HoldsTheFramesThatWereWritten) {
    const std::string path = fFolder.WriteFile("MOVIE.XYZ", "a file that is longer than nothing");
    {
        const auto file = VideoFile::Create(path, SmallStream(kUncompressedHandler));
        ASSERT_TRUE(file->StartFrames(nullptr));
        for (size_t frame = 0; frame < 3; ++frame) EXPECT_TRUE(file->WriteFrame(FrameOf(frame).data()));
        EXPECT_EQ(file->Finish(), 3);
        EXPECT_FALSE(file->WriteFrame(FrameOf(0).data()));
        EXPECT_EQ(file->Finish(), 3);
    }
    const AviMovie movie = ReadAviFile(path);
    EXPECT_EQ(movie.fFrames, std::vector<Bytes>({FrameOf(0), FrameOf(1), FrameOf(2)}));
    EXPECT_EQ(movie.fHandler, kUncompressedHandler);
    EXPECT_EQ(movie.fType, "vids");
    EXPECT_EQ(movie.fScale, 1U);
    EXPECT_EQ(movie.fRate, 30U);
    EXPECT_EQ(movie.fQuality, 5000U);
    EXPECT_EQ(movie.fWidth, 5);
    EXPECT_EQ(movie.fHeight, 3);
    EXPECT_EQ(movie.fBits, 24U);
    EXPECT_EQ(movie.fCompression, 0U);
    EXPECT_EQ(movie.fImageSize, 45U);
    EXPECT_EQ(movie.fPixelsPerMeter, std::vector<uint32_t>({2835, 2835}));
    EXPECT_EQ(movie.fKeyFrames, 3U);
}

TEST_F(VideoFileTest, IsFinishedWhenItGoes) {
    const std::string path = fFolder.PathOf("MOVIE.AVI");
    {
        const auto file = VideoFile::Create(path, SmallStream(kUncompressedHandler));
        ASSERT_TRUE(file->StartFrames(nullptr));
        EXPECT_TRUE(file->WriteFrame(FrameOf(1).data()));
    }
    EXPECT_EQ(ReadAviFile(path).fFrames, std::vector<Bytes>({FrameOf(1)}));
}

TEST_F(VideoFileTest, TakesNoFramesWithoutACompressor) {
    const auto file = VideoFile::Create(fFolder.PathOf("MOVIE.AVI"), SmallStream(kNobodysHandler));
    EXPECT_FALSE(file->WriteFrame(FrameOf(0).data())) << "not begun";
    EXPECT_FALSE(file->StartFrames(nullptr));
    EXPECT_FALSE(file->WriteFrame(FrameOf(0).data()));
    EXPECT_EQ(file->Finish(), 0);
}

TEST_F(VideoFileTest, UsesTheHostsCompressorWhereTheSystemHasNone) {
    if (ListSystemCompressors()) GTEST_SKIP() << "the system has its own";
    const std::string path = fFolder.PathOf("MOVIE.AVI");
    const auto file = VideoFile::Create(path, SmallStream(kNobodysHandler));
    size_t calls = 0;
    const auto compress = [&](const uint8_t* pixels, Bytes& compressed) {
        EXPECT_TRUE(compressed.empty()) << "nothing stays from the frame before";
        if (++calls < 4) compressed.assign(pixels, pixels + calls);
        return true;
    };
    ASSERT_TRUE(file->StartFrames(compress));
    for (size_t frame = 0; frame < 3; ++frame) EXPECT_TRUE(file->WriteFrame(FrameOf(frame).data()));
    EXPECT_FALSE(file->WriteFrame(FrameOf(3).data())) << "an empty frame is none";
    EXPECT_FALSE(file->WriteFrame(FrameOf(4).data()));
    EXPECT_EQ(calls, 4U);
    EXPECT_EQ(file->Finish(), 3);
    const AviMovie movie = ReadAviFile(path);
    EXPECT_EQ(movie.fFrames, std::vector<Bytes>({Bytes({0}), Bytes({50, 51}), Bytes({100, 101, 102})}));
    EXPECT_EQ(movie.fCompression, kNobodysHandler);
}

TEST_F(VideoFileTest, CannotBeMadeInAFolderThatIsNotThere) {
    const auto create = [&] {
        VideoFile::Create(fFolder.PathOf("NO/MOVIE.AVI"), SmallStream(kUncompressedHandler));
    };
    EXPECT_THROW(create(), FileException);
    EXPECT_TRUE(fFolder.ListFiles().empty());
}

TEST_F(VideoFileTest, LeavesAFileAloneThatSomebodyHolds) {
    const std::string path = fFolder.WriteFile("MOVIE.AVI", "held");
    const auto holder = OpenDiskFile(path, FileAccess::kRead);
    EXPECT_THROW(VideoFile::Create(path, SmallStream(kUncompressedHandler)), FileException);
    EXPECT_EQ(VantorTest::ReadRest(*holder), "held");
}

TEST(VideoCompression, DescribesWhatTheSystemHas) {
    const auto compressors = ListSystemCompressors();
    ASSERT_EQ(compressors.has_value(), VantorTest::kIsWindows);
    EXPECT_EQ(DescribeSystemCompressor(kNobodysHandler).value_or(L""), L"");
    EXPECT_EQ(DescribeSystemCompressor(0).value_or(L""), L"") << "not just any";
    if (!compressors) return;
    EXPECT_FALSE(compressors->empty());
    for (const SystemCompressor& compressor : *compressors) {
        EXPECT_FALSE(compressor.fDescription.empty());
        EXPECT_EQ(DescribeSystemCompressor(compressor.fHandler), compressor.fDescription);
    }
}

TEST(VideoCompression, HasCodesWithTheFirstCharacterLowest) {
    EXPECT_EQ(FourCharacterCode('M', 'J', 'P', 'G'), 0x47504A4DU);
    EXPECT_EQ(kUncompressedHandler, 0x20424944U);
}

}  // namespace Vantor::Platform
