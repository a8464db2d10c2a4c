#include "platform/AviWriter.h"

#include <gtest/gtest.h>

#include "platform/FileException.h"
#include "platform/VideoCompression.h"
#include "tests/support/AviReader.h"

namespace Vantor::Platform {

namespace {

using VantorTest::AviMovie;
using VantorTest::Bytes;
using VantorTest::ExpectHeaders;
using VantorTest::ReadAvi;
using VantorTest::SmallStream;

constexpr uint32_t kHandler = FourCharacterCode('T', 'E', 'S', 'T');
constexpr int64_t kHeaders = 224;
constexpr int64_t kMuch = 1'000'000;

// A medium with room for so many bytes. What does not fit is written as far as it goes.
struct Medium {
    Bytes fBytes;
    int64_t fRoom = kMuch;
    bool fIsClosed = false;
};

class MediumFile : public File {
  public:
    explicit MediumFile(Medium& medium) : fMedium(medium) {}

    size_t Read(void*, size_t) override { return 0; }
    void Write(const void* bytes, size_t count) override {
        const int64_t end = fPosition + static_cast<int64_t>(count);
        const int64_t room = std::max(fMedium.fRoom, static_cast<int64_t>(fMedium.fBytes.size()));
        const int64_t written = std::min(end, std::max(room, fPosition)) - fPosition;
        if (fPosition + written > GetLength())
            fMedium.fBytes.resize(static_cast<size_t>(fPosition + written));
        std::copy_n(static_cast<const uint8_t*>(bytes), written, fMedium.fBytes.begin() + fPosition);
        fPosition += written;
        if (fPosition < end) throw FileException(FileException::Cause::kDiskFull, 0, "medium");
    }
    void Seek(int64_t position) override { fPosition = position; }
    int64_t GetPosition() override { return fPosition; }
    int64_t GetLength() override { return static_cast<int64_t>(fMedium.fBytes.size()); }
    void SetLength(int64_t length) override { fMedium.fBytes.resize(static_cast<size_t>(length)); }
    void Flush() override {}
    void Close() override { fMedium.fIsClosed = true; }

  private:
    Medium& fMedium;
    int64_t fPosition = 0;
};

Bytes FrameOf(size_t number, size_t size) { return Bytes(size, static_cast<uint8_t>(number + 1)); }

AviWriter MakeWriter(Medium& medium, int64_t largest = kLargestMovieFile) {
    return {std::make_unique<MediumFile>(medium), SmallStream(kUncompressedHandler), largest};
}

bool WriteFrame(AviWriter& writer, const Bytes& frame) {
    return writer.WriteFrame(frame.data(), frame.size());
}

}  // namespace

TEST(AviWriter, WritesTheHeadersAndAnIndex) {
    Medium medium;
    {
        AviWriter writer = MakeWriter(medium);
        for (size_t frame = 0; frame < 2; ++frame) EXPECT_TRUE(WriteFrame(writer, FrameOf(frame, 48)));
        EXPECT_EQ(writer.Finish(), 2);
        EXPECT_TRUE(medium.fIsClosed);
        EXPECT_EQ(writer.Finish(), 2);
        EXPECT_FALSE(WriteFrame(writer, FrameOf(3, 48)));
    }
    const AviMovie movie = ReadAvi(medium.fBytes);
    ExpectHeaders(movie, SmallStream(kUncompressedHandler));
    EXPECT_EQ(movie.fMicrosecondsPerFrame, 40000U);
    EXPECT_EQ(movie.fFlags, 0x10U);
    EXPECT_EQ(movie.fStreams, 1U);
    EXPECT_EQ(movie.fRectangle, std::vector<int>({0, 0, 5, 3}));
    EXPECT_EQ(movie.fFormatSize, 40U);
    EXPECT_EQ(movie.fPlanes, 1U);
    EXPECT_EQ(movie.fColorsUsed, 0U);
    EXPECT_EQ(movie.fFrames, std::vector<Bytes>({FrameOf(0, 48), FrameOf(1, 48)}));
    EXPECT_TRUE(movie.fHasIndex);
    EXPECT_EQ(movie.fBehind, 0U);
    EXPECT_EQ(std::string(medium.fBytes.begin() + 224, medium.fBytes.begin() + 228), "00db");
}

TEST(AviWriter, FillsUpCompressedFramesOfOddSizes) {
    Medium medium;
    std::vector<Bytes> frames;
    {
        AviWriter writer(std::make_unique<MediumFile>(medium), SmallStream(kHandler));
        for (size_t size = 1; size < 40; size += 3) {
            frames.push_back(FrameOf(size, size));
            EXPECT_TRUE(WriteFrame(writer, frames.back()));
        }
    }
    const AviMovie movie = ReadAvi(medium.fBytes);
    EXPECT_EQ(movie.fFrames, frames);
    ExpectHeaders(movie, SmallStream(kHandler));
    EXPECT_EQ(std::string(medium.fBytes.begin() + 224, medium.fBytes.begin() + 228), "00dc");
}

// Whoever pulls the plug has a movie without frames, not a damaged file.
TEST(AviWriter, IsAMovieFromTheBeginning) {
    Medium medium;
    AviWriter writer = MakeWriter(medium);
    EXPECT_TRUE(ReadAvi(medium.fBytes).fFrames.empty());
    EXPECT_EQ(static_cast<int64_t>(medium.fBytes.size()), kHeaders);
    EXPECT_EQ(writer.Finish(), 0);
    EXPECT_TRUE(ReadAvi(medium.fBytes).fFrames.empty());
}

// Wherever a medium is full, what stays is a movie of as many frames as the writer tells.
TEST(AviWriter, LeavesAShorterMovieOnAFullMedium) {
    constexpr size_t kFrames = 8;
    constexpr size_t kFrameSize = 48;
    size_t withoutIndex = 0;
    int32_t most = 0;
    for (int64_t room = kHeaders; room < kHeaders + 800; ++room) {
        Medium medium;
        medium.fRoom = room;
        AviWriter writer = MakeWriter(medium);
        size_t accepted = 0;
        while (accepted < kFrames && WriteFrame(writer, FrameOf(accepted, kFrameSize))) ++accepted;
        const int32_t finished = writer.Finish();
        const AviMovie movie = ReadAvi(medium.fBytes);
        ASSERT_EQ(movie.fFrames.size(), static_cast<size_t>(finished)) << room;
        ASSERT_EQ(movie.fBehind, 0U) << room;
        ASSERT_LE(movie.fFrames.size(), accepted) << room;
        for (size_t frame = 0; frame < movie.fFrames.size(); ++frame) {
            ASSERT_EQ(movie.fFrames[frame], FrameOf(frame, kFrameSize)) << room;
        }
        ASSERT_EQ(movie.fFlags, movie.fHasIndex ? 0x10U : 0U) << room;
        if (!movie.fHasIndex) ++withoutIndex;
        ASSERT_GE(finished, most) << "no fewer frames with more room";
        ASSERT_GE(finished + 4, static_cast<int32_t>(accepted)) << "no more frames go than have to: " << room;
        most = finished;
    }
    EXPECT_EQ(most, static_cast<int32_t>(kFrames));
    EXPECT_GT(withoutIndex, 0U) << "the only frame is worth more than an index";
    EXPECT_LT(withoutIndex, 100U);
}

TEST(AviWriter, NeverBecomesTooLargeForTheFormat) {
    for (int64_t largest = kHeaders; largest < kHeaders + 400; ++largest) {
        Medium medium;
        AviWriter writer = MakeWriter(medium, largest);
        size_t accepted = 0;
        while (WriteFrame(writer, FrameOf(accepted, 31))) ++accepted;
        EXPECT_EQ(writer.Finish(), static_cast<int32_t>(accepted));
        EXPECT_EQ(ReadAvi(medium.fBytes).fFrames.size(), accepted);
        EXPECT_LE(static_cast<int64_t>(medium.fBytes.size()), std::max(largest, kHeaders + 8));
        EXPECT_EQ(accepted,
                  static_cast<size_t>(std::max<int64_t>(largest - kHeaders - 8, 0) / (8 + 32 + 16)));
    }
}

TEST(AviWriter, RefusesAFrameThatNoFileCanHold) {
    Medium medium;
    AviWriter writer = MakeWriter(medium);
    const uint8_t byte = 0;
    EXPECT_FALSE(writer.WriteFrame(&byte, size_t{0x7FFFFFFF}));
    EXPECT_FALSE(writer.WriteFrame(&byte, std::numeric_limits<size_t>::max()));
    EXPECT_EQ(writer.Finish(), 0);
    EXPECT_TRUE(ReadAvi(medium.fBytes).fFrames.empty());
}

TEST(AviWriter, TellsOfHeadersThatCannotBeWritten) {
    Medium medium;
    medium.fRoom = kHeaders - 1;
    EXPECT_THROW(MakeWriter(medium), FileException);
}

}  // namespace Vantor::Platform
