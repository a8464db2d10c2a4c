// Building multi-frame files frame by frame: what comes out is compared, byte by byte, with a file of that
// many frames that was composed as a whole.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>

#include "dicom/TImageFile.h"
#include "platform/FileException.h"
#include "tests/dicom/FailureOf.h"
#include "tests/support/FileBuilder.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

constexpr char kJpegBaseline[] = "1.2.840.10008.1.2.4.50";
constexpr char kRleLossless[] = "1.2.840.10008.1.2.5";
constexpr int32_t kAppended = 1;
constexpr int32_t kRefused = -1;

bool IsCompressed(std::string_view syntax) { return syntax == kJpegBaseline || syntax == kRleLossless; }

Bytes Frame(size_t seed, size_t length) {
    Bytes bytes(length);
    for (size_t i = 0; i < length; ++i) bytes[i] = static_cast<uint8_t>((seed * 31 + i * 7) % 251);
    return bytes;
}

// Each native frame has one length, each compressed one its own.
Bytes FrameOf(std::string_view syntax, size_t number) {
    return Frame(number, IsCompressed(syntax) ? 20 + number % 5 : 24);
}

// An image with frames 1 to `frames`; Number of Frames is left out when it is not to be there.
FileBuilder ImageFile(const char* syntax, size_t frames, bool hasNumber = true) {
    FileBuilder file(syntax);
    file.Data().Text(Tags::kModality, Vr::kCS, "US").Numbers16(Tags::kSamplesPerPixel, Vr::kUS, {1});
    if (hasNumber) file.Data().Text(Tags::kNumberOfFrames, Vr::kIS, std::to_string(frames));
    file.Data().Numbers16(Tags::kRows, Vr::kUS, {4}).Numbers16(Tags::kColumns, Vr::kUS, {6});
    file.Data().Numbers16(Tags::kBitsAllocated, Vr::kUS, {8});
    std::vector<uint32_t> offsets;
    std::vector<Bytes> all;
    uint32_t size = 0;
    for (size_t i = 1; i <= frames; ++i) {
        Bytes frame = FrameOf(syntax, i);
        if (frame.size() % 2 != 0) frame.push_back(0);
        offsets.push_back(size);
        size += 8 + static_cast<uint32_t>(frame.size());
        all.push_back(frame);
    }
    if (IsCompressed(syntax)) {
        file.Data().EncapsulatedPixels(offsets, all);
        return file;
    }
    file.Data().Header(Tags::kPixelData, Vr::kOW, static_cast<uint32_t>(frames * 24));
    for (const Bytes& frame : all) file.Data().Raw(frame);
    return file;
}

int32_t Append(TImageFile& file, const Bytes& frame) {
    return file.AppendFrame(frame.data(), static_cast<uint32_t>(frame.size()));
}

class TImageFileCopyTest : public testing::Test {
  protected:
    TFileSpec Write(const char* name, const FileBuilder& file) const {
        return TFileSpec(fFolder.WriteFile(name, file.Build()));
    }
    TFileSpec Spec(const char* name) const { return TFileSpec(fFolder.PathOf(name)); }
    Bytes Read(const char* name) const { return ReadWholeFile(fFolder.PathOf(name)); }

    TestFolder fFolder;
    TFileSpec fCopy = Spec("COPY.DCM");
};

// ---- Numbers of frames ----

struct Change {
    const char* fSyntax;
    size_t fFrom;
    size_t fTo;
    bool fHadNumber;
};

class TImageFileFrameCountChange : public TImageFileCopyTest, public testing::WithParamInterface<Change> {};

std::vector<Change> Changes() {
    std::vector<Change> all;
    for (const char* syntax : {Uids::kImplicitVRLittleEndian, Uids::kExplicitVRLittleEndian,
                               Uids::kExplicitVRBigEndian, static_cast<const char*>(kJpegBaseline)}) {
        for (const auto& [from, to] : {std::pair{3, 3}, {9, 10}, {99, 100}, {100, 99}, {12, 1}, {1, 1}}) {
            all.push_back({syntax, static_cast<size_t>(from), static_cast<size_t>(to), true});
        }
        all.push_back({syntax, 1, 1, false});
        all.push_back({syntax, 1, 12, false});
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(All, TImageFileFrameCountChange, testing::ValuesIn(Changes()));

TEST_P(TImageFileFrameCountChange, CopyIsTheFileOfThatManyFrames) {
    const auto& [syntax, from, to, hadNumber] = GetParam();
    TImageFile file(0, Write("IMAGE.DCM", ImageFile(syntax, from, hadNumber)), 0);
    int64_t frames = 0;
    ASSERT_EQ(file.BeginCopy(fCopy, frames), 0);
    EXPECT_EQ(frames, static_cast<int64_t>(from));
    for (size_t i = 1; i <= std::min(from, to); ++i) {
        EXPECT_EQ(file.CopyNextChunk(), static_cast<int64_t>(from - i));
    }
    for (size_t i = from + 1; i <= to; ++i) EXPECT_EQ(Append(file, FrameOf(syntax, i)), kAppended);
    file.EndCopy(&fCopy);

    EXPECT_EQ(Read("COPY.DCM"), ImageFile(syntax, to, hadNumber || to > 1).Build());
    EXPECT_STREQ(file.GetFileSpec()->fPath, fCopy.fPath);
    EXPECT_EQ(file.GetFrameCount(), static_cast<int32_t>(to));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(file.LoadFrame(static_cast<int32_t>(to)), 1);
    EXPECT_EQ(Read("IMAGE.DCM"), ImageFile(syntax, from, hadNumber).Build());
}

// More than is moved at a time, in both directions.
TEST_F(TImageFileCopyTest, LargeFramesMoveWhenTheTableChanges) {
    constexpr size_t kLength = 900000;
    for (const size_t frames : {2u, 4u}) {
        TImageFile file(0, Write("IMAGE.DCM", ImageFile(kJpegBaseline, 3)), 0);
        int64_t count = 0;
        file.BeginCopy(fCopy, count);
        for (size_t i = 1; i <= frames; ++i) EXPECT_EQ(Append(file, Frame(i, kLength)), kAppended);
        file.EndCopy(&fCopy);
        for (size_t i = 1; i <= frames; ++i) {
            ASSERT_EQ(file.LoadFrame(static_cast<int32_t>(i)), 1);
            EXPECT_TRUE(std::equal(file.GetFrame() + 8, file.GetFrame() + file.GetFrameLength(),
                                   Frame(i, kLength).data()));
        }
    }
}

TEST_F(TImageFileCopyTest, NativePixelsOfOddLengthArePadded) {
    TImageFile file(0, Write("IMAGE.DCM", ImageFile(Uids::kExplicitVRLittleEndian, 3)), 0);
    int64_t frames = 0;
    file.BeginCopy(fCopy, frames);
    for (size_t i = 1; i <= 3; ++i) EXPECT_EQ(Append(file, Frame(i, 333)), kAppended);
    file.EndCopy(&fCopy);
    EXPECT_EQ(file.GetPixelDataLength(), 1000);
    EXPECT_EQ(file.GetFrameSize(), 333);
    EXPECT_EQ(Read("COPY.DCM").size() % 2, 0u);
    EXPECT_EQ(file.LoadFrame(3), 1);
    EXPECT_EQ(Bytes(file.GetFrame(), file.GetFrame() + 333), Frame(3, 333));
}

// ---- What is carried over ----

TEST_F(TImageFileCopyTest, WhatDescribesOrFollowsTheOldPixelsStaysBehind) {
    FileBuilder builder;
    builder.Data().Text(Tags::kModality, Vr::kCS, "US").Text(Tags::kNumberOfFrames, Vr::kIS, "1");
    FileBuilder expected = builder;
    builder.Data().Numbers32({0x7FE0, 0x0000}, Vr::kUL, {36}).Value({0x7FE0, 0x0001}, Vr::kOB, Bytes(8));
    builder.Data().Value(Tags::kPixelData, Vr::kOW, Frame(1, 24)).Value({0xFFFC, 0xFFFC}, Vr::kOB, Bytes(6));
    expected.Data().Value(Tags::kPixelData, Vr::kOW, Frame(1, 24));
    TImageFile file(0, Write("IMAGE.DCM", builder), 0);
    int64_t frames = 0;
    file.BeginCopy(fCopy, frames);
    EXPECT_EQ(file.CopyNextChunk(), 0);
    file.EndCopy(&fCopy);
    EXPECT_EQ(Read("COPY.DCM"), expected.Build());
}

// A frame of 3 x 3 pixels of 8 bits is followed by a pad byte, which is none of the next frame's.
TEST_F(TImageFileCopyTest, PadByteOfAnOnlyFrameIsNotAppended) {
    FileBuilder builder;
    builder.Data().Numbers16(Tags::kSamplesPerPixel, Vr::kUS, {1}).Numbers16(Tags::kRows, Vr::kUS, {3});
    builder.Data().Numbers16(Tags::kColumns, Vr::kUS, {3}).Numbers16(Tags::kBitsAllocated, Vr::kUS, {8});
    builder.Data().Value(Tags::kPixelData, Vr::kOB, Frame(1, 10));
    TImageFile file(0, Write("IMAGE.DCM", builder), 0);
    int64_t frames = 0;
    file.BeginCopy(fCopy, frames);
    file.CopyNextChunk();
    EXPECT_EQ(Append(file, Frame(2, 9)), kAppended);
    file.EndCopy(&fCopy);
    EXPECT_EQ(file.GetFrameSize(), 9);
}

TEST_F(TImageFileCopyTest, FragmentsOfAFrameBecomeOneItem) {
    for (const bool hasTable : {true, false}) {
        FileBuilder builder(kJpegBaseline);
        builder.Data().Text(Tags::kNumberOfFrames, Vr::kIS, "1");
        FileBuilder expected = builder;
        const std::vector<uint32_t> table = hasTable ? std::vector<uint32_t>{0} : std::vector<uint32_t>{};
        builder.Data().EncapsulatedPixels(table, {{1, 2}, {}, {3, 4, 5, 6}});
        expected.Data().EncapsulatedPixels({0}, {{1, 2, 3, 4, 5, 6}});
        TImageFile file(0, Write("IMAGE.DCM", builder), 0);
        int64_t frames = 0;
        file.BeginCopy(fCopy, frames);
        EXPECT_EQ(file.CopyNextChunk(), 0);
        file.EndCopy(&fCopy);
        EXPECT_EQ(Read("COPY.DCM"), expected.Build());
    }
}

TEST_F(TImageFileCopyTest, ChangesMadeBeforeTheCopyAreInIt) {
    TImageFile file(0, Write("IMAGE.DCM", ImageFile(kJpegBaseline, 2)), 0);
    ASSERT_NE(file.GetDataSet(), nullptr);
    file.SetSOPInstanceUID("1.2.3.4.5.6.77");
    int64_t frames = 0;
    file.BeginCopy(fCopy, frames);
    while (file.CopyNextChunk() > 0) continue;
    file.EndCopy(&fCopy);
    TImageFile copy(0, fCopy, 0);
    copy.ReadAllButPixels();
    char uid[kMaximumUidLength + 1] = {};
    EXPECT_TRUE(copy.GetSOPInstanceUID(uid));
    EXPECT_STREQ(uid, "1.2.3.4.5.6.77");
    EXPECT_TRUE(copy.GetDataSet()->FindElement(Tags::kSOPInstanceUID));
    EXPECT_EQ(copy.LoadFrame(2), 1);
}

TEST_F(TImageFileCopyTest, NewFileGetsItsPixels) {
    for (const char* syntax : {Uids::kExplicitVRLittleEndian, static_cast<const char*>(kJpegBaseline)}) {
        auto dataSet = std::make_unique<TDicomDataSet>(true, false, 1000, 1000, 0, 0);
        dataSet->PutElement(Tags::kModality, Vr::kCS, 2, "US", 2);
        const TFileSpec spec = Spec("NEW.DCM");
        TImageFile file(0, spec, 0, std::move(dataSet), "1.2", "1.2.3", syntax, Uids::kImplementationClass,
                        false);
        int64_t frames = 0;
        ASSERT_EQ(file.BeginCopy(spec, frames), 0);
        for (size_t i = 1; i <= 3; ++i) EXPECT_EQ(Append(file, Frame(i, 24)), kAppended);
        file.EndCopy(&spec);
        EXPECT_EQ(file.GetNumberOfFrames(), 3);
        EXPECT_EQ(file.IsEncapsulated(), IsCompressed(syntax));
        EXPECT_EQ(file.GetPixelDataVR(), IsCompressed(syntax) ? Vr::kOB : Vr::kOW);
        EXPECT_EQ(file.LoadFrame(2), 1);
        EXPECT_TRUE(std::equal(file.GetFrame() + (IsCompressed(syntax) ? 8 : 0),
                               file.GetFrame() + file.GetFrameLength(), Frame(2, 24).data()));
    }
}

TEST_F(TImageFileCopyTest, FileOnItsOwnPathIsReplacedOnCommitOnly) {
    const TFileSpec spec = Write("IMAGE.DCM", ImageFile(kJpegBaseline, 2));
    TImageFile file(0, spec, 0);
    int64_t frames = 0;
    file.BeginCopy(spec, frames);
    while (file.CopyNextChunk() > 0) continue;
    EXPECT_EQ(Append(file, FrameOf(kJpegBaseline, 3)), kAppended);
    EXPECT_EQ(Read("IMAGE.DCM"), ImageFile(kJpegBaseline, 2).Build());
    file.EndCopy(&spec);
    EXPECT_EQ(Read("IMAGE.DCM"), ImageFile(kJpegBaseline, 3).Build());
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"IMAGE.DCM"});
}

// ---- Frames of other files ----

TEST_F(TImageFileCopyTest, FramesOfAnotherFileAreAppended) {
    for (const char* syntax : {Uids::kImplicitVRLittleEndian, Uids::kExplicitVRBigEndian,
                               static_cast<const char*>(kJpegBaseline)}) {
        TImageFile file(0, Write("IMAGE.DCM", ImageFile(syntax, 2)), 0);
        TImageFile other(0, Write("OTHER.DCM", ImageFile(syntax, 4)), 0);
        int64_t frames = 0;
        file.BeginCopy(fCopy, frames);
        EXPECT_EQ(file.LoadFrame(2), 1);
        while (file.CopyNextChunk() > 0) continue;
        EXPECT_EQ(file.AppendFrameOf(other, 3), kAppended);
        EXPECT_EQ(file.AppendFrameOf(other, 4), kAppended);
        EXPECT_FALSE(other.IsOpen());
        file.EndCopy(&fCopy);
        EXPECT_EQ(Read("COPY.DCM"), ImageFile(syntax, 4).Build());
    }
}

TEST_F(TImageFileCopyTest, FramesThatDoNotFitAreRefused) {
    const char* const explicitLE = Uids::kExplicitVRLittleEndian;
    struct Case {
        const char* fSyntax;
        const char* fOther;
        int32_t fFrame;
        int32_t fAnswer;
    };
    for (const Case& each :
         {Case{explicitLE, Uids::kImplicitVRLittleEndian, 1, kAppended},
          Case{explicitLE, explicitLE, 3, kRefused},
          Case{explicitLE, Uids::kExplicitVRBigEndian, 1, kRefused},
          Case{explicitLE, kJpegBaseline, 1, kRefused}, Case{kJpegBaseline, explicitLE, 1, kRefused},
          Case{kJpegBaseline, kRleLossless, 1, kRefused}, Case{kJpegBaseline, kJpegBaseline, 0, kRefused}}) {
        TImageFile file(0, Write("IMAGE.DCM", ImageFile(each.fSyntax, 2)), 0);
        TImageFile other(0, Write("OTHER.DCM", ImageFile(each.fOther, 2)), 0);
        EXPECT_EQ(file.AppendFrameOf(other, each.fFrame), kRefused);
        int64_t frames = 0;
        file.BeginCopy(fCopy, frames);
        EXPECT_EQ(file.AppendFrameOf(other, each.fFrame), each.fAnswer) << each.fSyntax << each.fOther;
        EXPECT_EQ(file.AppendFrameOf(other, each.fFrame), each.fAnswer) << each.fSyntax << each.fOther;
        file.EndCopy(nullptr);
        EXPECT_EQ(file.AppendFrameOf(other, each.fFrame), kRefused);
    }
}

TEST_F(TImageFileCopyTest, BytesThatMakeNoFrameAreRefused) {
    TImageFile file(0, Write("IMAGE.DCM", ImageFile(Uids::kExplicitVRLittleEndian, 2)), 0);
    EXPECT_EQ(Append(file, Frame(1, 24)), kRefused);
    EXPECT_EQ(file.CopyNextChunk(), 0);
    int64_t frames = 0;
    file.BeginCopy(fCopy, frames);
    EXPECT_EQ(file.AppendFrame(nullptr, 24), kRefused);
    EXPECT_EQ(file.AppendFrame("", 0), kRefused);
    EXPECT_EQ(Append(file, Frame(1, 24)), kAppended);
    EXPECT_EQ(Append(file, Frame(2, 25)), kRefused);
    EXPECT_EQ(Append(file, Frame(2, 24)), kAppended);
    file.EndCopy(&fCopy);
    EXPECT_EQ(Read("COPY.DCM"), ImageFile(Uids::kExplicitVRLittleEndian, 2).Build());
}

// ---- Copies that come to nothing ----

TEST_F(TImageFileCopyTest, AbandonedCopyLeavesTheFileAsItWas) {
    TImageFile file(0, Write("IMAGE.DCM", ImageFile(kJpegBaseline, 3)), 0);
    const TDicomDataSet* const dataSet = file.GetDataSet();
    int64_t frames = 0;
    for (int32_t i = 0; i < 2; ++i) {
        file.BeginCopy(fCopy, frames);
        file.CopyNextChunk();
        Append(file, Frame(1, 7));
        file.EndCopy(nullptr);
    }
    EXPECT_EQ(file.GetDataSet(), dataSet);
    EXPECT_EQ(file.GetNumberOfFrames(), 3);
    EXPECT_EQ(file.LoadFrame(3), 1);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"IMAGE.DCM"});
    {
        TImageFile destroyed(0, Spec("IMAGE.DCM"), 0);
        destroyed.BeginCopy(fCopy, frames);
        destroyed.BeginCopy(Spec("OTHER.DCM"), frames);
        destroyed.CopyNextChunk();
    }
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"IMAGE.DCM"});
}

TEST_F(TImageFileCopyTest, FrameThatCannotBeHadEndsTheLoop) {
    Bytes bytes = ImageFile(Uids::kExplicitVRLittleEndian, 3).Build();
    bytes.pop_back();
    TImageFile file(0, TFileSpec(fFolder.WriteFile("IMAGE.DCM", bytes)), 0);
    int64_t frames = 0;
    file.BeginCopy(fCopy, frames);
    EXPECT_EQ(FailureOf([&] {
                  while (file.CopyNextChunk() > 0) continue;
              }),
              "102 Invalid Dicom Image File");
    file.EndCopy(nullptr);
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"IMAGE.DCM"});
}

TEST_F(TImageFileCopyTest, FileThatIsNoImageLeavesTheDestinationAlone) {
    FileBuilder noImage;
    noImage.Data().Text(Tags::kModality, Vr::kCS, "SR");
    TImageFile file(0, Write("IMAGE.DCM", noImage), 0);
    Write("COPY.DCM", ImageFile(kJpegBaseline, 1));
    int64_t frames = 7;
    EXPECT_EQ(FailureOf([&] { file.BeginCopy(fCopy, frames); }), "102 Invalid Dicom Image File");
    EXPECT_EQ(frames, 0);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(Read("COPY.DCM"), ImageFile(kJpegBaseline, 1).Build());
}

TEST_F(TImageFileCopyTest, FullMediumLeavesNoHalfFile) {
    MemoryStorage storage;
    storage.SetContent("IMAGE", ImageFile(kJpegBaseline, 3).Build());
    const TFileSpec copy("COPY", &storage);
    enum class Step { kBegin, kAppend, kEnd, kFlush };
    for (const Step step : {Step::kBegin, Step::kAppend, Step::kEnd, Step::kFlush}) {
        TImageFile file(0, TFileSpec("IMAGE", &storage), 0);
        const auto failAt = [&](Step now) {
            if (step == Step::kFlush && now == Step::kEnd) storage.FailOn(MemoryStorage::Fault::kFlush);
            if (step == now) storage.FailOn(MemoryStorage::Fault::kWrite);
        };
        int64_t frames = 0;
        const std::string failure = FailureOf([&] {
            failAt(Step::kBegin);
            file.BeginCopy(copy, frames);
            failAt(Step::kAppend);
            file.CopyNextChunk();
            failAt(Step::kEnd);
            file.EndCopy(&copy);
        });
        EXPECT_NE(failure, "nothing");
        EXPECT_TRUE(step == Step::kFlush || failure.rfind("image file", 0) == 0) << failure;
        storage.FailOn(MemoryStorage::Fault::kNone);
        if (step == Step::kAppend) file.EndCopy(nullptr);
        EXPECT_EQ(storage.ListStreams(), std::vector<std::string>{"IMAGE"});
        EXPECT_EQ(Append(file, Frame(1, 8)), kRefused);
        EXPECT_EQ(file.LoadFrame(3), 1);
    }
}

// ---- Beyond 4 GiB ----

// A storage for one image and one copy that may be huge: of what is written only small pieces are kept.
class HugeStorage : public MemoryStorage {
  public:
    class Stream : public Platform::File {
      public:
        explicit Stream(HugeStorage& storage) : fStorage(storage) {}
        size_t Read(void* buffer, size_t count) override {
            const int64_t rest = std::max<int64_t>(fStorage.fSize - fPosition, 0);
            count = static_cast<size_t>(std::min<int64_t>(rest, static_cast<int64_t>(count)));
            for (const auto& [at, bytes] : fStorage.fPieces) {
                const int64_t start = std::max(at, fPosition);
                const int64_t end = std::min(at + static_cast<int64_t>(bytes.size()),
                                             fPosition + static_cast<int64_t>(count));
                if (start >= end) continue;
                std::copy_n(&bytes[static_cast<size_t>(start - at)], end - start,
                            static_cast<uint8_t*>(buffer) + (start - fPosition));
            }
            fPosition += static_cast<int64_t>(count);
            return count;
        }
        void Write(const void* bytes, size_t count) override {
            const auto* first = static_cast<const uint8_t*>(bytes);
            constexpr size_t kKept = 1000;
            if (count <= kKept) fStorage.fPieces[fPosition] = Bytes(first, first + count);
            fPosition += static_cast<int64_t>(count);
            fStorage.fSize = std::max(fStorage.fSize, fPosition);
        }
        void Seek(int64_t position) override { fPosition = position; }
        int64_t GetPosition() override { return fPosition; }
        int64_t GetLength() override { return fStorage.fSize; }
        void SetLength(int64_t length) override { fStorage.fSize = length; }
        void Flush() override {}
        void Close() override {}

      private:
        HugeStorage& fStorage;
        int64_t fPosition = 0;
    };

    std::unique_ptr<Platform::File> OpenStream(const std::string& name,
                                               Platform::FileAccess access) override {
        if (name == "COPY") return std::make_unique<Stream>(*this);
        return MemoryStorage::OpenStream(name, access);
    }
    std::unique_ptr<Platform::File> CreateStream(const std::string&) override {
        return std::make_unique<Stream>(*this);
    }

    int64_t fSize = 0;
    std::map<int64_t, Bytes> fPieces;
};

// The content of the frames does not matter; it is neither read nor set, so that it costs no memory.
constexpr uint32_t kHugeFrame = 0x30000000;

TEST_F(TImageFileCopyTest, OffsetsBeyond32BitsLeaveTheTableEmpty) {
    const std::unique_ptr<uint8_t[]> frame(new uint8_t[kHugeFrame]);
    for (const int32_t appended : {6, 7}) {
        HugeStorage storage;
        storage.SetContent("IMAGE", ImageFile(kJpegBaseline, 7).Build());
        const TFileSpec copy("COPY", &storage);
        TImageFile file(0, TFileSpec("IMAGE", &storage), 0);
        int64_t frames = 0;
        file.BeginCopy(copy, frames);
        for (int32_t i = 0; i < appended; ++i)
            ASSERT_EQ(file.AppendFrame(frame.get(), kHugeFrame), kAppended);
        file.EndCopy(&copy);
        ASSERT_NE(file.GetDataSet(), nullptr);
        EXPECT_EQ(file.GetFrameCount(), appended);
        const bool hasTable = appended == 6;
        const int64_t tableSize = hasTable ? 8 + 6 * 4 : 8;
        ASSERT_EQ(file.GetFrameOffsets().size(), static_cast<size_t>(appended));
        EXPECT_EQ(file.GetFrameOffsets().front(), file.GetPixelDataOffset() + tableSize);
        EXPECT_EQ(file.GetFrameOffsets().back(),
                  hasTable ? file.GetFrameOffsets().front() + 5 * (int64_t{kHugeFrame} + 8) : 0);
        EXPECT_EQ(storage.fSize,
                  file.GetPixelDataOffset() + tableSize + appended * (int64_t{kHugeFrame} + 8) + 8);
    }
}

TEST_F(TImageFileCopyTest, NativePixelsBeyond32BitsAreRefused) {
    const std::unique_ptr<uint8_t[]> frame(new uint8_t[kHugeFrame]);
    HugeStorage storage;
    storage.SetContent("IMAGE", ImageFile(Uids::kExplicitVRLittleEndian, 2).Build());
    TImageFile file(0, TFileSpec("IMAGE", &storage), 0);
    int64_t frames = 0;
    file.BeginCopy(TFileSpec("COPY", &storage), frames);
    for (int32_t i = 0; i < 5; ++i) ASSERT_EQ(file.AppendFrame(frame.get(), kHugeFrame), kAppended);
    EXPECT_EQ(file.AppendFrame(frame.get(), kHugeFrame), kRefused);
    file.EndCopy(nullptr);
}

}  // namespace
