#include "platform/VideoFile.h"

#include <gtest/gtest.h>

#include "platform/VideoCompression.h"
#include "tests/support/AviReader.h"
#include "tests/support/FileSupport.h"
#include "tests/support/MediumFaults.h"

namespace Vantor::Platform {

namespace {

using VantorTest::AviMovie;
using VantorTest::Bytes;
using VantorTest::ExpectHeaders;
using VantorTest::kIsWindows;
using VantorTest::ReadAviFile;
using VantorTest::SmallStream;

constexpr uint32_t kNobodysHandler = FourCharacterCode('?', 'n', 'o', '!');

Bytes FrameOf(size_t number) {
    Bytes frame(SmallStream(0).GetFrameSize());
    for (size_t place = 0; place < frame.size(); ++place)
        frame[place] = static_cast<uint8_t>(number * 50 + place);
    return frame;
}

bool Write(VideoFile& file, size_t number) {
    Bytes frame = FrameOf(number);
    const size_t size = frame.size();
    const bool isTaken = file.WriteFrame(frame);
    EXPECT_EQ(frame.size(), size);
    return isTaken;
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
        for (size_t frame = 0; frame < 3; ++frame) EXPECT_TRUE(Write(*file, frame));
        EXPECT_EQ(file->Finish(), 3);
        EXPECT_FALSE(Write(*file, 0));
        EXPECT_EQ(file->Finish(), 3);
    }
    const AviMovie movie = ReadAviFile(path);
    EXPECT_EQ(movie.fFrames, std::vector<Bytes>({FrameOf(0), FrameOf(1), FrameOf(2)}));
    ExpectHeaders(movie, SmallStream(kUncompressedHandler));
}

// A frame may be written while the next one is made. That this failed is told with that one at the latest,
// and Finish counts the frames that are there.
TEST_F(VideoFileTest, TellsWhenAFrameCannotBeWritten) {
    if (kIsWindows) GTEST_SKIP() << "the system writes the file";
    constexpr size_t kFrames = 5;
    for (size_t step = 0; step < 2 * kFrames; ++step) {
        SCOPED_TRACE(step);
        const std::string path = fFolder.PathOf("MOVIE" + std::to_string(step) + ".AVI");
        const auto file = VideoFile::Create(path, SmallStream(kUncompressedHandler));
        ASSERT_TRUE(file->StartFrames(nullptr));
        size_t taken = 0;
        {
            using VantorTest::MediumFaults;
            const MediumFaults faults = MediumFaults::RefuseOne(step, MediumFaults::Cause::kDiskFull);
            while (taken < kFrames && Write(*file, taken)) ++taken;
            EXPECT_TRUE(taken < kFrames || !Write(*file, taken)) << "also of the last one";
        }
        const auto written = static_cast<size_t>(file->Finish());
        EXPECT_EQ(written, step / 2) << "each is a header and its pixels";
        EXPECT_LE(taken, written + 1);
        EXPECT_EQ(ReadAviFile(path).fFrames.size(), written);
    }
}

TEST_F(VideoFileTest, IsFinishedWhenItGoes) {
    const std::string path = fFolder.PathOf("MOVIE.AVI");
    {
        const auto file = VideoFile::Create(path, SmallStream(kUncompressedHandler));
        ASSERT_TRUE(file->StartFrames(nullptr));
        EXPECT_TRUE(Write(*file, 1));
    }
    EXPECT_EQ(ReadAviFile(path).fFrames, std::vector<Bytes>({FrameOf(1)}));
}

TEST_F(VideoFileTest, TakesNoFramesWithoutACompressor) {
    const auto file = VideoFile::Create(fFolder.PathOf("MOVIE.AVI"), SmallStream(kNobodysHandler));
    EXPECT_FALSE(Write(*file, 0)) << "not begun";
    EXPECT_FALSE(file->StartFrames(nullptr));
    EXPECT_FALSE(Write(*file, 0));
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
    for (size_t frame = 0; frame < 3; ++frame) EXPECT_TRUE(Write(*file, frame));
    EXPECT_FALSE(Write(*file, 3)) << "an empty frame is none";
    EXPECT_FALSE(Write(*file, 4));
    EXPECT_EQ(calls, 4U);
    EXPECT_EQ(file->Finish(), 3);
    const AviMovie movie = ReadAviFile(path);
    EXPECT_EQ(movie.fFrames, std::vector<Bytes>({Bytes({0}), Bytes({50, 51}), Bytes({100, 101, 102})}));
    ExpectHeaders(movie, SmallStream(kNobodysHandler));
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
    ASSERT_EQ(compressors.has_value(), kIsWindows);
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
