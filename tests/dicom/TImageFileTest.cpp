#include "dicom/TImageFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "platform/MappedFile.h"
#include "tests/dicom/FailureOf.h"
#include "tests/support/FileBuilder.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Offsets = std::vector<int64_t>;

constexpr char kJpegBaseline[] = "1.2.840.10008.1.2.4.50";
constexpr int32_t kLoaded = 1;
constexpr int32_t kNotLoaded = -1;

// A frame's bytes, different for each seed and nowhere an item tag.
Bytes Frame(size_t seed, size_t length) {
    Bytes bytes(length);
    for (size_t i = 0; i < length; ++i) bytes[i] = static_cast<uint8_t>((seed * 31 + i * 7) % 251);
    return bytes;
}

Bytes Slice(const Bytes& bytes, int64_t start, int64_t end) {
    return Bytes(bytes.begin() + static_cast<ptrdiff_t>(start), bytes.begin() + static_cast<ptrdiff_t>(end));
}

Bytes LoadedFrame(const TImageFile& file) {
    return file.GetFrame() == nullptr ? Bytes()
                                      : Bytes(file.GetFrame(), file.GetFrame() + file.GetFrameLength());
}

// Three native frames of 1,000 bytes, behind a sequence.
FileBuilder NativeFile(const char* syntax = Uids::kExplicitVRLittleEndian) {
    FileBuilder file(syntax);
    const Bytes item = ElementBuilder(syntax).Text(Tags::kReferencedSOPClassUID, Vr::kUI, "1.2").GetBytes();
    file.Data()
        .Text(Tags::kModality, Vr::kCS, "US")
        .Sequence(Tags::kSourceImageSequence, {item}, ElementBuilder::Lengths::kUndefined)
        .Text(Tags::kNumberOfFrames, Vr::kIS, "3")
        .Header(Tags::kPixelData, Vr::kOW, 3000);
    for (size_t i = 1; i <= 3; ++i) file.Data().Raw(Frame(i, 1000));
    return file;
}

// Encapsulated pixel data with a basic offset table and fragments, and a text as Number of Frames.
FileBuilder EncapsulatedFile(const std::string& frames, const std::vector<uint32_t>& table,
                             const std::vector<Bytes>& fragments) {
    FileBuilder file(kJpegBaseline);
    file.Data().Text(Tags::kNumberOfFrames, Vr::kIS, frames).EncapsulatedPixels(table, fragments);
    return file;
}

// Where the value of encapsulated pixel data starts, counted back from the end of the file.
int64_t PixelStart(const Bytes& file, size_t tableEntries, const std::vector<Bytes>& fragments) {
    size_t size = 8 + tableEntries * 4 + 8;
    for (const Bytes& fragment : fragments) size += 8 + fragment.size();
    return static_cast<int64_t>(file.size() - size);
}

class TImageFileTest : public testing::Test {
  protected:
    ~TImageFileTest() override { Platform::MappedFile::LimitViewSizeForTesting(0); }

    TFileSpec Write(const FileBuilder& file) { return Write(file.Build()); }
    TFileSpec Write(const Bytes& bytes) { return TFileSpec(fFolder.WriteFile("IMAGE.DCM", bytes)); }

    TestFolder fFolder;
};

class TImageFileInSyntax : public TImageFileTest, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(All, TImageFileInSyntax,
                         testing::Values(Uids::kImplicitVRLittleEndian, Uids::kExplicitVRLittleEndian,
                                         Uids::kExplicitVRBigEndian));

TEST_P(TImageFileInSyntax, EverythingButThePixelsIsRead) {
    const Bytes bytes = NativeFile(GetParam()).Build();
    TImageFile file(0, Write(bytes), 0);
    file.ReadAllButPixels();
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(file.GetPixelDataOffset(), static_cast<int64_t>(bytes.size()) - 3000);
    EXPECT_EQ(file.GetPixelDataLength(), 3000);
    EXPECT_EQ(file.GetFrameCount(), 3);
    EXPECT_EQ(file.GetFrameSize(), 1000);
    EXPECT_TRUE(file.GetFrameOffsets().empty());
    EXPECT_FALSE(file.IsEncapsulated());
    EXPECT_EQ(file.GetNumberOfFrames(), 3);
    TDicomDataSet* dataSet = file.GetDataSet();
    ASSERT_NE(dataSet, nullptr);
    EXPECT_EQ(dataSet->CountElements(), 3);
    EXPECT_FALSE(dataSet->FindElement(Tags::kPixelData));
    for (int32_t i = 3; i >= 1; --i) {
        EXPECT_EQ(file.LoadFrame(i), kLoaded);
        EXPECT_EQ(LoadedFrame(file), Frame(static_cast<size_t>(i), 1000));
    }
    EXPECT_FALSE(file.IsOpen());
}

TEST_F(TImageFileTest, OnlyNativeFrameGoesToTheEndOfTheFile) {
    FileBuilder builder;
    builder.Data().Value(Tags::kPixelData, Vr::kOB, Frame(1, 40)).Text({0xFFFC, 0xFFFC}, Vr::kOB, "pad!");
    const Bytes bytes = builder.Build();
    TImageFile file(0, Write(bytes), 0);
    EXPECT_EQ(file.LoadFrame(1), kLoaded);
    const int64_t start = static_cast<int64_t>(bytes.size()) - 40 - 12 - 4;
    EXPECT_EQ(LoadedFrame(file), Slice(bytes, start, static_cast<int64_t>(bytes.size())));
    EXPECT_EQ(file.GetPixelDataLength(), 40);
    EXPECT_EQ(file.GetNumberOfFrames(), 0);
}

TEST_F(TImageFileTest, OffsetTableTellsWhereFramesAre) {
    const std::vector<Bytes> fragments = {Frame(1, 10), Frame(2, 20), Frame(3, 30)};
    const Bytes bytes = EncapsulatedFile("5", {0, 46}, fragments).Build();
    TImageFile file(0, Write(bytes), 0);
    file.ReadAllButPixels();
    const int64_t first = PixelStart(bytes, 2, fragments) + 16;
    EXPECT_EQ(file.GetFrameOffsets(), (Offsets{first, first + 46}));
    EXPECT_EQ(file.GetFrameCount(), 2);  // whatever Number of Frames says
    EXPECT_EQ(file.GetFrameSize(), 0);
    EXPECT_EQ(file.GetPixelDataLength(), static_cast<int64_t>(bytes.size()) - file.GetPixelDataOffset());
    EXPECT_EQ(file.LoadFrame(1), kLoaded);
    EXPECT_EQ(LoadedFrame(file), Slice(bytes, first, first + 46));
    // The last frame ends before the delimiter.
    EXPECT_EQ(file.LoadFrame(2), kLoaded);
    EXPECT_EQ(LoadedFrame(file), Slice(bytes, first + 46, first + 46 + 38));
}

TEST_F(TImageFileTest, FramesWithoutTableAreFoundWhenEachIsOneFragment) {
    const std::vector<Bytes> fragments = {Frame(1, 10), Frame(2, 20), Frame(3, 30)};
    const Bytes bytes = EncapsulatedFile("3", {}, fragments).Build();
    TImageFile file(0, Write(bytes), 0);
    file.ReadAllButPixels();
    const int64_t first = PixelStart(bytes, 0, fragments) + 8;
    EXPECT_EQ(file.GetFrameOffsets(), (Offsets{first, 0, 0}));
    EXPECT_EQ(file.LoadFrame(2), kLoaded);
    EXPECT_EQ(LoadedFrame(file), Slice(bytes, first + 18, first + 18 + 28));
    EXPECT_EQ(file.GetFrameOffsets(), (Offsets{first, first + 18, first + 46}));
    EXPECT_EQ(file.LoadFrame(3), kLoaded);
    EXPECT_EQ(LoadedFrame(file), Slice(bytes, first + 46, first + 46 + 38));
}

TEST_F(TImageFileTest, FramesOfSeveralFragmentsWithoutTableCannotBeTold) {
    for (const char* frames : {"2", "4"}) {
        TImageFile file(0, Write(EncapsulatedFile(frames, {}, {Frame(1, 10), Frame(2, 20), Frame(3, 30)})),
                        0);
        EXPECT_EQ(file.LoadFrame(1), kNotLoaded) << frames;
        EXPECT_EQ(file.LoadFrame(2), kNotLoaded) << frames;
    }
}

TEST_F(TImageFileTest, OnlyFrameWithoutTableGoesToTheEndOfTheFileAndWithTableToTheDelimiter) {
    const std::vector<Bytes> fragments = {Frame(1, 10), Frame(2, 20)};
    const Bytes without = EncapsulatedFile("1", {}, fragments).Build();
    TImageFile first(0, Write(without), 0);
    EXPECT_EQ(first.LoadFrame(1), kLoaded);
    EXPECT_EQ(first.GetFrameLength(), 18 + 28 + 8);

    const Bytes with = EncapsulatedFile("1", {0}, fragments).Build();
    TImageFile second(0, Write(with), 0);
    EXPECT_EQ(second.LoadFrame(1), kLoaded);
    EXPECT_EQ(second.GetFrameLength(), 18 + 28);
}

// A table that the file has no room for, or that holds no entry, counts as empty and costs no memory.
TEST_F(TImageFileTest, DamagedTableCountsAsEmpty) {
    for (const uint32_t length : {2u, 40u, 0x7FFFFFF0u, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        FileBuilder builder(kJpegBaseline);
        builder.Data()
            .Text(Tags::kNumberOfFrames, Vr::kIS, "2")
            .Header(Tags::kPixelData, Vr::kOB, 0xFFFFFFFF);
        builder.Data().ItemHeader(Tags::kItem, length).Raw(Frame(1, 60));
        TImageFile file(0, Write(builder), 0);
        file.ReadAllButPixels();
        EXPECT_EQ(file.GetFrameOffsets(), (Offsets{file.GetPixelDataOffset() + 8, 0})) << length;
        EXPECT_EQ(file.LoadFrame(2), kNotLoaded) << length;
    }
}

TEST_F(TImageFileTest, TableEntriesThatLeadAstrayGiveNoFrame) {
    const std::vector<Bytes> fragments = {Frame(1, 10), Frame(2, 20), Frame(3, 30)};
    TImageFile file(0, Write(EncapsulatedFile("3", {18, 0, 0xFFFFFFF0}, fragments)), 0);
    for (int32_t frame = 1; frame <= 3; ++frame) EXPECT_EQ(file.LoadFrame(frame), kNotLoaded) << frame;
}

TEST_F(TImageFileTest, NumberOfFramesIsReadAsANumber) {
    struct Case {
        const char* fText;
        int32_t fNumber;
        int32_t fNativeFrames;
        int32_t fEncapsulatedFrames;  // never more than the file has room for
    };
    for (const Case& each : {Case{"3", 3, 3, 3}, Case{" 3 ", 3, 3, 3}, Case{"+3", 3, 3, 3}, Case{"", 0, 1, 1},
                             Case{"0", 0, 1, 1}, Case{"many", 0, 1, 1}, Case{"-4", -4, 1, 1},
                             Case{"99999999999", 0, 1, 1}, Case{"1000000000", 1000000000, 1000000000, 12}}) {
        FileBuilder native;
        native.Data().Text(Tags::kNumberOfFrames, Vr::kIS, each.fText);
        native.Data().Value(Tags::kPixelData, Vr::kOW, Frame(1, 96));
        TImageFile file(0, Write(native), 0);
        EXPECT_EQ(file.GetNumberOfFrames(), each.fNumber) << each.fText;
        EXPECT_EQ(file.GetFrameCount(), each.fNativeFrames) << each.fText;
        EXPECT_EQ(file.GetFrameSize(), 96 / each.fNativeFrames) << each.fText;

        TImageFile encapsulated(0, Write(EncapsulatedFile(each.fText, {}, {Frame(1, 80)})), 0);
        EXPECT_EQ(encapsulated.GetNumberOfFrames(), each.fNumber) << each.fText;
        EXPECT_EQ(encapsulated.GetFrameCount(), each.fEncapsulatedFrames) << each.fText;
        EXPECT_EQ(encapsulated.GetFrameOffsets().size(), static_cast<size_t>(each.fEncapsulatedFrames));
    }
}

TEST_F(TImageFileTest, FrameThatCannotBeHadIsRememberedAsAsked) {
    TImageFile file(0, Write(NativeFile()), 0);
    EXPECT_EQ(file.LoadFrame(1), kLoaded);
    for (const int32_t frame : {4, -1, 2147483647}) {
        EXPECT_EQ(file.LoadFrame(frame), kNotLoaded) << frame;
        EXPECT_EQ(file.LoadFrame(frame), kLoaded) << frame;
        EXPECT_EQ(file.GetFrame(), nullptr) << frame;
        EXPECT_EQ(file.GetFrameLength(), 0) << frame;
    }
    EXPECT_EQ(file.LoadFrame(0), kNotLoaded);
    EXPECT_EQ(file.LoadFrame(1), kLoaded);
    EXPECT_EQ(LoadedFrame(file), Frame(1, 1000));
}

TEST_F(TImageFileTest, FileStaysAsItWasWhenAFrameIsLoaded) {
    TImageFile file(0, Write(NativeFile()), 0);
    EXPECT_EQ(file.LoadFrame(1), kLoaded);
    EXPECT_FALSE(file.IsOpen());
    file.OpenFile(Platform::FileAccess::kRead);
    EXPECT_EQ(file.LoadFrame(2), kLoaded);
    EXPECT_EQ(file.LoadFrame(9), kNotLoaded);
    EXPECT_TRUE(file.IsOpen());
    file.CloseFile();
}

TEST_F(TImageFileTest, TruncatedPixelsCostOnlyTheLastFrame) {
    Bytes bytes = NativeFile().Build();
    bytes.pop_back();
    TImageFile file(0, Write(bytes), 0);
    EXPECT_EQ(file.LoadFrame(2), kLoaded);
    EXPECT_EQ(LoadedFrame(file), Frame(2, 1000));
    EXPECT_EQ(file.LoadFrame(3), kNotLoaded);
}

TEST_F(TImageFileTest, FileThatBecameShorterSinceItWasOpenedGivesNoFrame) {
    const Bytes bytes = NativeFile().Build();
    MemoryStorage storage;
    storage.SetContent("IMAGE", bytes);
    TImageFile file(0, TFileSpec("IMAGE", &storage), 0);
    file.OpenFile(Platform::FileAccess::kRead);
    EXPECT_EQ(file.LoadFrame(2), kLoaded);
    storage.SetContent("IMAGE", Slice(bytes, 0, static_cast<int64_t>(bytes.size()) - 10));
    EXPECT_EQ(file.LoadFrame(3), kNotLoaded);
    EXPECT_EQ(file.GetFrameLength(), 0);
    file.CloseFile();
}

TEST_F(TImageFileTest, MissingFileIsTriedAgain) {
    TImageFile file(0, TFileSpec(fFolder.PathOf("IMAGE.DCM")), 0);
    EXPECT_EQ(file.GetDataSet(), nullptr);
    EXPECT_NE(FailureOf([&] { file.LoadFrame(2); }), "nothing");
    EXPECT_NE(FailureOf([&] { file.ReadAllButPixels(); }), "nothing");
    Write(NativeFile());
    EXPECT_EQ(file.LoadFrame(2), kLoaded);
    EXPECT_EQ(LoadedFrame(file), Frame(2, 1000));
}

// Reading the meta information alone counts as having read the file: who asks for the identity only is not
// to pay for more.
TEST_F(TImageFileTest, NothingIsReadAfterTheMetaInformation) {
    TImageFile file(0, Write(NativeFile()), 0);
    file.OpenFile(Platform::FileAccess::kRead);
    file.ReadMetaHeader();
    file.CloseFile();
    EXPECT_EQ(file.GetDataSet(), nullptr);
    EXPECT_EQ(file.LoadFrame(1), kNotLoaded);
}

TEST_F(TImageFileTest, FilesThatAreNoImagesAreRefused) {
    Bytes noPrefix = NativeFile().Build();
    noPrefix[FileBuilder::kPreambleSize] = 'd';
    ElementBuilder noSyntax;
    noSyntax.Text(Tags::kMediaStorageSOPClassUID, Vr::kUI, "1.2");
    FileBuilder noPixels;
    noPixels.Data().Text(Tags::kModality, Vr::kCS, "SR");
    FileBuilder damaged;
    damaged.Data().Header(Tags::kModality, Vr::kCS, 1000).Value(Tags::kPixelData, Vr::kOW, Frame(1, 8));
    FileBuilder cutHeader;
    cutHeader.Data().Text(Tags::kModality, Vr::kCS, "US").Raw({0xE0, 0x7F, 0x10, 0x00, 'O', 'W', 0, 0, 8, 0});
    FileBuilder shortHeader;
    shortHeader.Data().Numbers16(Tags::kPixelData, Vr::kUS, {});
    struct Case {
        Bytes fBytes;
        const char* fError;
    };
    for (const Case& each : {Case{{}, "106 File Too Large"}, Case{Bytes(100, 0), "102 Invalid Dicom File"},
                             Case{noPrefix, "102 Invalid Dicom File"},
                             Case{NativeFile().ReplaceMeta(noSyntax).Build(), "102 Invalid Dicom File"},
                             Case{NativeFile().BuildMeta(), "102 Invalid Dicom File"},
                             Case{noPixels.Build(), "102 Invalid Dicom Image File"},
                             Case{shortHeader.Build(), "102 Invalid Dicom Image File"},
                             Case{cutHeader.Build(), "102 Invalid Dicom Image File"},
                             Case{damaged.Build(), "102 Can't Process Dicom File"}}) {
        TImageFile file(0, Write(each.fBytes), 0);
        EXPECT_EQ(FailureOf([&] { file.ReadAllButPixels(); }), each.fError);
        EXPECT_EQ(file.GetMetaDataSet(), nullptr) << each.fError;
        EXPECT_EQ(FailureOf([&] { file.ReadAllButPixels(); }), each.fError);
        EXPECT_EQ(file.GetDataSet(), nullptr) << each.fError;
        EXPECT_EQ(file.LoadFrame(1), kNotLoaded) << each.fError;
        EXPECT_FALSE(file.IsOpen()) << each.fError;
    }
}

// ---- Views smaller than the file ----

TEST_F(TImageFileTest, SmallerViewFindsThePixelsToo) {
    const Bytes bytes = NativeFile().Build();
    const auto size = static_cast<int64_t>(bytes.size());
    for (const int64_t limit : {size - 1, size / 2, int64_t{600}}) {
        Platform::MappedFile::LimitViewSizeForTesting(limit);
        TImageFile file(0, Write(bytes), 0);
        file.ReadAllButPixels();
        EXPECT_EQ(file.GetPixelDataOffset(), size - 3000) << limit;
        EXPECT_EQ(file.GetPixelDataLength(), 3000) << limit;
        EXPECT_EQ(file.LoadFrame(3), kLoaded) << limit;
        EXPECT_EQ(LoadedFrame(file), Frame(3, 1000)) << limit;
    }
}

TEST_F(TImageFileTest, PixelLengthOfAFileInPartOnlyGoesToItsEnd) {
    FileBuilder builder = NativeFile();
    builder.Data().Text({0xFFFC, 0xFFFC}, Vr::kOB, "pad!");
    const TFileSpec spec = Write(builder);
    TImageFile whole(0, spec, 0);
    whole.ReadAllButPixels();
    EXPECT_EQ(whole.GetPixelDataLength(), 3000);
    Platform::MappedFile::LimitViewSizeForTesting(1000);
    TImageFile part(0, spec, 0);
    part.ReadAllButPixels();
    EXPECT_EQ(part.GetPixelDataLength(), 3016);
    EXPECT_EQ(part.GetPixelDataOffset(), whole.GetPixelDataOffset());
}

TEST_F(TImageFileTest, FrameTableBehindTheViewIsReadFromTheFile) {
    const std::vector<Bytes> fragments = {Frame(1, 2000), Frame(2, 2000)};
    const Bytes bytes = EncapsulatedFile("2", {0, 2008}, fragments).Build();
    const int64_t start = PixelStart(bytes, 2, fragments);
    // The view is the file's length halved until it fits: pad so that it ends right behind the element.
    Bytes padded = bytes;
    padded.resize(static_cast<size_t>(start) * 16, 0);
    Platform::MappedFile::LimitViewSizeForTesting(start);
    TImageFile file(0, Write(padded), 0);
    file.ReadAllButPixels();
    EXPECT_EQ(file.GetFrameOffsets(), (Offsets{start + 16, start + 16 + 2008}));
}

TEST_F(TImageFileTest, ViewThatEndsBeforeThePixelsFindsNone) {
    FileBuilder builder;
    builder.Data().Text(Tags::kModality, Vr::kCS, "US").Value({0x0029, 0x1000}, Vr::kOB, Bytes(5000));
    builder.Data().Value(Tags::kPixelData, Vr::kOW, Frame(1, 100));
    Platform::MappedFile::LimitViewSizeForTesting(3000);
    TImageFile file(0, Write(builder), 0);
    EXPECT_EQ(FailureOf([&] { file.ReadAllButPixels(); }), "102 Invalid Dicom Image File");
}

// An image with three palettes of 65,536 entries, which a small view does not reach past.
FileBuilder PaletteFile(const char* syntax, Tag descriptor, std::initializer_list<uint16_t> values,
                        size_t paletteSize, size_t fillerSize = 0) {
    FileBuilder file(syntax);
    file.Data().Text(Tags::kModality, Vr::kCS, "US").Numbers16(descriptor, Vr::kUS, values);
    for (uint16_t i = 0; i < 3; ++i) {
        file.Data().Value({0x0028, static_cast<uint16_t>(0x1201 + i)}, Vr::kOW, Bytes(paletteSize, 1));
    }
    if (fillerSize > 0) file.Data().Value({0x0029, 0x1000}, Vr::kOB, Bytes(fillerSize));
    file.Data().Value(Tags::kPixelData, Vr::kOW, Frame(1, 1000));
    return file;
}

TEST_F(TImageFileTest, PixelsBehindLargePalettesAreFound) {
    constexpr uint32_t kPaletteSize = 0x20000;
    struct Case {
        const char* fName;
        FileBuilder fFile;
        bool fIsFound;
        int64_t fShift;
    };
    const Tag red = Tags::kRedPaletteDescriptor;
    const Tag large = Tags::kLargeRedPaletteDescriptor;
    const char* explicitLE = Uids::kExplicitVRLittleEndian;
    const std::vector<Case> cases = {
        {"16 bits", PaletteFile(explicitLE, red, {0, 0, 16}, kPaletteSize), true, 0},
        {"large", PaletteFile(explicitLE, large, {0, 0, 0, 16}, kPaletteSize), true, 0},
        {"big endian", PaletteFile(Uids::kExplicitVRBigEndian, red, {0, 0, 16}, kPaletteSize), true, 0},
        // A long header is taken for granted: in implicit VR the pixels seem to start four bytes later.
        {"implicit", PaletteFile(Uids::kImplicitVRLittleEndian, red, {0, 0, 16}, kPaletteSize), true, 4},
        {"fewer entries", PaletteFile(explicitLE, red, {256, 0, 16}, kPaletteSize), false, 0},
        {"first value mapped", PaletteFile(explicitLE, red, {0, 1, 16}, kPaletteSize), false, 0},
        {"no bits", PaletteFile(explicitLE, red, {0, 0}, kPaletteSize), false, 0},
        {"more than estimated", PaletteFile(explicitLE, red, {0, 0, 8}, kPaletteSize), false, 0},
        {"more bits than the file has", PaletteFile(explicitLE, red, {0, 0, 65535}, kPaletteSize), true, 0},
    };
    Platform::MappedFile::LimitViewSizeForTesting(0x10000);
    for (const Case& each : cases) {
        const Bytes bytes = each.fFile.Build();
        TImageFile file(0, Write(bytes), 0);
        if (!each.fIsFound) {
            EXPECT_EQ(FailureOf([&] { file.ReadAllButPixels(); }), "102 Invalid Dicom Image File")
                << each.fName;
            continue;
        }
        file.ReadAllButPixels();
        const int64_t start = static_cast<int64_t>(bytes.size()) - 1000 + each.fShift;
        EXPECT_EQ(file.GetPixelDataOffset(), start) << each.fName;
        EXPECT_EQ(file.GetPixelDataLength(), 1000 - each.fShift) << each.fName;
        EXPECT_EQ(file.GetDataSet()->CountElements(), 5) << each.fName;
        EXPECT_TRUE(file.GetDataSet()->FindElement(0x0028, 0x1203)) << each.fName;
    }
}

// As far as the estimate goes, but no farther: the palettes, the descriptor's place in the data set (10), and
// 4,096 bytes less the data set's place in the file.
TEST_F(TImageFileTest, PixelsBehindLargePalettesAreFoundWithinTheEstimate) {
    constexpr size_t kPaletteSize = 0x20000;
    constexpr size_t kHeaders =
        10 + 14 + 3 * 12 + 12 + 12;  // all but the palettes, with the pixel data's header
    Platform::MappedFile::LimitViewSizeForTesting(0x10000);
    for (const size_t excess : {0u, 2u}) {
        const size_t filler = 10 + 4096 - FileBuilder().GetDataOffset() - kHeaders + excess;
        TImageFile file(0,
                        Write(PaletteFile(Uids::kExplicitVRLittleEndian, Tags::kRedPaletteDescriptor,
                                          {0, 0, 16}, kPaletteSize, filler)),
                        0);
        EXPECT_EQ(FailureOf([&] { file.ReadAllButPixels(); }),
                  excess == 0 ? "nothing" : "102 Invalid Dicom Image File");
    }
}

// A cine loop of 1.5 GiB without content, which costs no room where a volume keeps holes.
TEST_F(TImageFileTest, LargeFileIsReadByItsStartAlone) {
    constexpr uintmax_t kFileSize = uintmax_t{3} << 29;
    FileBuilder builder;
    builder.Data().Text(Tags::kNumberOfFrames, Vr::kIS, "1536");
    builder.Data().Header(Tags::kPixelData, Vr::kOW, uint32_t{3} << 29);
    const TFileSpec spec = Write(builder);
    const uintmax_t freeBefore = std::filesystem::space(fFolder.GetPath()).available;
    std::error_code error;
    std::filesystem::resize_file(spec.fPath, kFileSize, error);
    if (error || std::filesystem::space(fFolder.GetPath()).available + kFileSize / 2 < freeBefore) {
        GTEST_SKIP() << "the volume keeps no holes in files";
    }
    TImageFile file(0, spec, 0);
    file.ReadAllButPixels();
    const auto start = static_cast<int64_t>(builder.Build().size());
    EXPECT_EQ(file.GetFileSize(), static_cast<int64_t>(kFileSize));
    EXPECT_EQ(file.GetPixelDataOffset(), start);
    EXPECT_EQ(file.GetPixelDataLength(), static_cast<int64_t>(kFileSize) - start);
    EXPECT_LT(file.GetDataSet()->GetDataSetSize(), 100);
    EXPECT_EQ(file.LoadFrame(1536), kLoaded);
    EXPECT_EQ(file.GetFrameLength(), (static_cast<int64_t>(kFileSize) - start) / 1536);
}

// ---- Streams ----

// `before` bytes of a private element, then an image of 100 bytes, then `behind` bytes.
Bytes StreamContent(size_t before, size_t behind) {
    FileBuilder file;
    file.Data().Value({0x0029, 0x1000}, Vr::kOB, Bytes(before));
    file.Data()
        .Value(Tags::kPixelData, Vr::kOW, Frame(1, 100))
        .Value({0xFFFC, 0xFFFC}, Vr::kOB, Bytes(behind));
    return file.Build();
}

void ExpectStreamIsReadByItsStart(Platform::StructuredStorage& storage,
                                  const std::function<void(const Bytes&)>& put) {
    put(StreamContent(TImageFile::kStreamReadSize - 1000, 0x200000));
    TImageFile file(0, TFileSpec("IMAGE", &storage), 0);
    ASSERT_NE(file.GetDataSet(), nullptr);
    EXPECT_EQ(file.GetPixelDataLength(), 100 + 12 + 0x200000);
    EXPECT_EQ(file.LoadFrame(1), kLoaded);
    EXPECT_EQ(Slice(LoadedFrame(file), 0, 100), Frame(1, 100));

    put(StreamContent(TImageFile::kStreamReadSize, 0));
    TImageFile farther(0, TFileSpec("IMAGE", &storage), 0);
    EXPECT_EQ(FailureOf([&] { farther.ReadAllButPixels(); }), "102 Invalid Dicom Image File");
}

TEST_F(TImageFileTest, StreamIsReadByItsStart) {
    MemoryStorage storage;
    ExpectStreamIsReadByItsStart(storage,
                                 [&](const Bytes& content) { storage.SetContent("IMAGE", content); });
}

TEST_F(TImageFileTest, StreamOfACompoundFileIsReadByItsStart) {
    if (!Platform::StructuredStorage::IsAvailable()) GTEST_SKIP() << "the system has no structured storage";
    const auto storage = Platform::StructuredStorage::Create(fFolder.PathOf("STORAGE"));
    ExpectStreamIsReadByItsStart(*storage, [&](const Bytes& content) {
        const auto stream = storage->CreateStream("IMAGE");
        stream->Write(content.data(), content.size());
    });
}

TEST_F(TImageFileTest, FailureHalfWayIsAFileSystemError) {
    MemoryStorage storage;
    storage.SetContent("IMAGE", NativeFile().Build());
    storage.FailOn(MemoryStorage::Fault::kRead);
    TImageFile file(0, TFileSpec("IMAGE", &storage), 0);
    EXPECT_EQ(FailureOf([&] { file.ReadAllButPixels(); }), "102 File System Error");
    EXPECT_EQ(file.GetDataSet(), nullptr);
    storage.FailOn(MemoryStorage::Fault::kNone);
    EXPECT_EQ(file.LoadFrame(1), kLoaded);
    storage.FailOn(MemoryStorage::Fault::kRead);
    EXPECT_EQ(FailureOf([&] { file.LoadFrame(2); }).rfind("image data", 0), 0u);
    EXPECT_FALSE(file.IsOpen());
}

// ---- Damage ----

// Reads, loads and copies what a file offers; only the library's own exceptions may come out.
void UseDamagedFile(MemoryStorage& storage, const Bytes& bytes) {
    storage.SetContent("IMAGE", bytes);
    const TFileSpec copy("COPY", &storage);
    TImageFile file(0, TFileSpec("IMAGE", &storage), 0);
    FailureOf([&] { file.ReadAllButPixels(); });
    FailureOf([&] {
        for (int32_t frame = 1; frame <= 4; ++frame) file.LoadFrame(frame);
    });
    EXPECT_LE(file.GetFrameLength(), static_cast<int64_t>(bytes.size()));
    EXPECT_LE(file.GetFrameOffsets().size(), bytes.size());
    FailureOf([&] {
        int64_t frames = 0;
        if (file.BeginCopy(copy, frames) != 0) return;
        if (frames <= 4) {
            while (file.CopyNextChunk() > 0) continue;
        }
        file.EndCopy(&copy);
    });
}

TEST_F(TImageFileTest, DamagedFilesFailSafely) {
    const Bytes encapsulated = EncapsulatedFile("2", {0, 18}, {Frame(1, 10), Frame(2, 20)}).Build();
    const Bytes withoutTable = EncapsulatedFile("2", {}, {Frame(1, 10), Frame(2, 20)}).Build();
    const Bytes wholeNative = NativeFile().Build();
    const Bytes native = Slice(wholeNative, 0, static_cast<int64_t>(wholeNative.size()) - 2900);
    for (const Bytes& good : {native, encapsulated, withoutTable}) {
        MemoryStorage storage;
        for (size_t at = FileBuilder::kPreambleSize; at < good.size(); ++at) {
            for (const int value : {good[at] ^ 0xFF, 0x00, 0x01, 0x7F, good[at] + 1}) {
                Bytes damaged = good;
                damaged[at] = static_cast<uint8_t>(value);
                UseDamagedFile(storage, damaged);
            }
            UseDamagedFile(storage, Slice(good, 0, static_cast<int64_t>(at)));
        }
    }
}

}  // namespace
