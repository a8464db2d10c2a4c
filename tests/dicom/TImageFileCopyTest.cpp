// Building multi-frame files frame by frame: what comes out is compared, byte by byte, with a file of that
// many frames that was composed as a whole.

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "dicom/TImageFile.h"
#include "tests/support/DicomSupport.h"
#include "tests/support/FileBuilder.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Fault = MemoryStorage::Fault;
using Syntax = std::string_view;

constexpr Syntax kExplicit = Uids::kExplicitVRLittleEndian;
constexpr Syntax kImplicit = Uids::kImplicitVRLittleEndian;
constexpr Syntax kBigEndian = Uids::kExplicitVRBigEndian;
constexpr Syntax kJpeg = "1.2.840.10008.1.2.4.50";
constexpr Syntax kRle = "1.2.840.10008.1.2.5";
constexpr int32_t kAppended = 1;
constexpr int32_t kRefused = -1;

bool IsCompressed(Syntax syntax) { return syntax == kJpeg || syntax == kRle; }

// Native frames have the 9 pixels that the image has. Compressed ones have each its own length, and are so
// long that several are moved piece by piece.
Bytes Frame(Syntax syntax, int32_t number) {
    Bytes bytes(IsCompressed(syntax) ? size_t(150000 + number % 5) : 9, static_cast<uint8_t>(number));
    for (size_t i = 0; i < bytes.size(); i += 2) bytes[i] = static_cast<uint8_t>(i * 7 % 251);
    return bytes;
}

// An image with frames 1 to `frames`. A foreign one has what does not go into copies: frames of two
// fragments, a single one without offset table, and elements that describe or follow the pixels.
Bytes ImageFile(Syntax syntax, int32_t frames, bool hasNumber = true, bool isForeign = false) {
    FileBuilder file(syntax);
    file.Data().Numbers16(Tags::kSamplesPerPixel, Vr::kUS, {1});
    if (hasNumber) file.Data().Text(Tags::kNumberOfFrames, Vr::kIS, std::to_string(frames));
    file.Data().Numbers16(Tags::kRows, Vr::kUS, {3}).Numbers16(Tags::kColumns, Vr::kUS, {3});
    file.Data().Numbers16(Tags::kBitsAllocated, Vr::kUS, {8});
    if (isForeign) file.Data().Numbers32({0x7FE0, 0x0000}, Vr::kUL, {36});
    std::string native;
    std::vector<uint32_t> table;
    std::vector<Bytes> fragments;
    uint32_t size = 0;
    for (int32_t i = 1; i <= frames; ++i) {
        Bytes frame = Frame(syntax, i);
        native.insert(native.end(), frame.begin(), frame.end());
        frame.resize(frame.size() + frame.size() % 2);
        const auto middle = frame.begin() + (isForeign ? 4 : 0);
        if (isForeign) fragments.emplace_back(frame.begin(), middle);
        fragments.emplace_back(middle, frame.end());
        if (!isForeign || frames > 1) table.push_back(size);
        size += static_cast<uint32_t>(frame.size()) + (isForeign ? 16 : 8);
    }
    if (IsCompressed(syntax)) file.Data().EncapsulatedPixels(table, fragments);
    if (!IsCompressed(syntax)) file.Data().Text(Tags::kPixelData, Vr::kOB, native);
    if (isForeign) file.Data().Value({0xFFFC, 0xFFFC}, Vr::kOB, Bytes(6));
    return file.Build();
}

int32_t Append(TImageFile& file, const Bytes& frame) {
    return file.AppendFrame(frame.data(), static_cast<uint32_t>(frame.size()));
}

class TImageFileCopyTest : public testing::Test {
  protected:
    TFileSpec Write(const char* name, const Bytes& all) { return TFileSpec(fFolder.WriteFile(name, all)); }
    Bytes Read(const char* name) const { return ReadWholeFile(fFolder.PathOf(name)); }

    TestFolder fFolder;
    TFileSpec fCopy{fFolder.PathOf("COPY")};
    int64_t fFrames = 0;
};

TEST_F(TImageFileCopyTest, CopyIsTheFileOfThatManyFrames) {
    using Changes = std::vector<std::pair<int32_t, int32_t>>;
    for (const Syntax syntax : {kImplicit, kExplicit, kBigEndian, kJpeg}) {
        for (const auto& [from, to] : Changes{{3, 3}, {9, 10}, {12, 8}, {12, 1}, {1, 1}, {1, 12}}) {
            TImageFile file(0, Write("IMAGE", ImageFile(syntax, from, from > 1, true)), 0);
            ASSERT_EQ(file.BeginCopy(fCopy, fFrames), 0);
            EXPECT_EQ(fFrames, from);
            for (int32_t i = 1; i <= std::min(from, to); ++i) EXPECT_EQ(file.CopyNextChunk(), from - i);
            for (int32_t i = from + 1; i <= to; ++i) EXPECT_EQ(Append(file, Frame(syntax, i)), kAppended);
            file.EndCopy(&fCopy);
            EXPECT_EQ(Read("COPY"), ImageFile(syntax, to, from + to > 2)) << syntax << from << to;
            EXPECT_EQ(file.GetFrameCount(), to);
        }
    }
}

TEST_F(TImageFileCopyTest, OnlyFramesThatFitAreAppended) {
    for (const auto& [syntax, otherSyntax, fits] :
         {std::tuple{kExplicit, kImplicit, true}, std::tuple{kJpeg, kJpeg, true},
          std::tuple{kJpeg, kRle, false}, std::tuple{kExplicit, kJpeg, false},
          std::tuple{kExplicit, kBigEndian, false}}) {
        TImageFile file(0, Write("IMAGE", ImageFile(syntax, 2)), 0);
        TImageFile other(0, Write("OTHER", ImageFile(otherSyntax, 3, true, true)), 0);
        EXPECT_EQ(file.AppendFrameOf(other, 1), kRefused);
        EXPECT_EQ(file.CopyNextChunk(), 0);
        file.BeginCopy(fCopy, fFrames);
        EXPECT_EQ(file.AppendFrame("", 0xFFFFFFFF), kRefused);
        while (file.CopyNextChunk() > 0) continue;
        EXPECT_EQ(file.AppendFrame(nullptr, 9), kRefused);
        EXPECT_EQ(file.AppendFrame("", 0), kRefused);
        EXPECT_TRUE(IsCompressed(syntax) || Append(file, Bytes(10)) == kRefused);
        EXPECT_EQ(file.AppendFrameOf(other, 4), kRefused);
        EXPECT_EQ(file.AppendFrameOf(other, 3), fits ? kAppended : kRefused);
        file.EndCopy(&fCopy);
        EXPECT_EQ(Read("COPY"), ImageFile(syntax, fits ? 3 : 2)) << syntax << " " << otherSyntax;
    }
}

// Also when the object has read, and begun to copy, another image before.
TEST_F(TImageFileCopyTest, NewFileGetsItsPixels) {
    for (const Syntax syntax : {kExplicit, kJpeg}) {
        TImageFile file(0, Write("IMAGE", ImageFile(syntax == kJpeg ? kExplicit : kJpeg, 3)), 0);
        file.BeginCopy(TFileSpec(fFolder.PathOf("OTHER")), fFrames);
        EXPECT_EQ(file.LoadFrame(2), 1);
        file.InitNewFile(0, fCopy, 0, nullptr, "1.2", "1.2.3", syntax.data(), "1.2.4", false);
        EXPECT_EQ(file.LoadFrame(2), -1);
        EXPECT_EQ(Append(file, Frame(syntax, 1)), kRefused);
        ASSERT_EQ(file.BeginCopy(fCopy, fFrames), 0);
        for (int32_t i = 1; i <= 3; ++i) EXPECT_EQ(Append(file, Frame(syntax, i)), kAppended);
        file.EndCopy(&fCopy);
        EXPECT_EQ(fFolder.ListFiles(), (std::vector<std::string>{"COPY", "IMAGE"}));
        EXPECT_EQ(file.GetNumberOfFrames(), 3);
        EXPECT_EQ(file.GetPixelDataVR(), syntax == kJpeg ? Vr::kOB : Vr::kOW);
        EXPECT_EQ(file.LoadFrame(2), 1);
    }
}

// ---- Copies that come to nothing ----

TEST_F(TImageFileCopyTest, FileIsReplacedOnCommitOnly) {
    const Bytes original = ImageFile(kJpeg, 3);
    const TFileSpec spec = Write("IMAGE", original);
    TImageFile file(0, spec, 0);
    for (const TFileSpec& destination : {fCopy, spec}) {
        file.BeginCopy(TFileSpec(fFolder.PathOf("OTHER")), fFrames);
        file.BeginCopy(destination, fFrames);
        EXPECT_EQ(file.CopyNextChunk(), 2);
        file.EndCopy(nullptr);
        EXPECT_EQ(Read("IMAGE"), original);
        EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"IMAGE"});
        EXPECT_EQ(file.LoadFrame(3), 1);
    }
    file.SetSOPInstanceUID("1.2.77");
    file.BeginCopy(spec, fFrames);
    file.CopyNextChunk();
    file.EndCopy(&spec);
    EXPECT_EQ(TextOf(*file.GetDataSet(), Tags::kSOPInstanceUID), "1.2.77");
    EXPECT_EQ(TextOf(*file.GetMetaDataSet(), Tags::kMediaStorageSOPInstanceUID), "1.2.77");
}

TEST_F(TImageFileCopyTest, DamagedFilesAreNotCopied) {
    Bytes bytes = ImageFile(kExplicit, 3);
    bytes.resize(bytes.size() - 20);
    TImageFile noFrame(0, Write("IMAGE", bytes), 0);
    noFrame.BeginCopy(TFileSpec(fFolder.PathOf("OTHER")), fFrames);
    EXPECT_EQ(ThrownBy([&] { noFrame.CopyNextChunk(); }), "102 Invalid Dicom Image File");
    bytes.resize(bytes.size() - 20);
    Write("COPY", bytes);
    TImageFile noImage(0, Write("NOIMAGE", bytes), 0);
    EXPECT_EQ(ThrownBy([&] { noImage.BeginCopy(fCopy, fFrames); }), "102 Invalid Dicom Image File");
    EXPECT_EQ(Read("COPY"), bytes);
}

TEST_F(TImageFileCopyTest, FailingMediumKeepsTheOriginalAndNoHalfFile) {
    MemoryStorage storage;
    storage.SetContent("IMAGE", ImageFile(kJpeg, 3));
    const TFileSpec copy("COPY", &storage);
    for (const int32_t step : {1, 2, 3, 4}) {
        TImageFile file(0, TFileSpec("IMAGE", &storage), 0);
        const std::string failure = ThrownBy([&] {
            if (step == 1) storage.FailOn(Fault::kWrite);
            file.BeginCopy(copy, fFrames);
            if (step == 2) storage.FailOn(Fault::kWrite);
            file.CopyNextChunk();
            if (step >= 3) storage.FailOn(step == 3 ? Fault::kWrite : Fault::kFlush);
            file.EndCopy(&copy);
        });
        EXPECT_EQ(failure.rfind(step == 4 ? "COPY" : "image file", 0), 0u) << failure;
        storage.FailOn(Fault::kNone);
        if (step == 2) file.EndCopy(nullptr);
        EXPECT_EQ(storage.ListStreams(), std::vector<std::string>{"IMAGE"});
        EXPECT_EQ(storage.GetContent("IMAGE"), ImageFile(kJpeg, 3));
        EXPECT_EQ(file.LoadFrame(3), 1);
    }
}

}  // namespace
