// What of an image file a host needs to show its pixels, also of files that tell more than they have.

#include "wrappers/ImageFrames.h"

#include <gtest/gtest.h>

#include <optional>
#include <tuple>
#include <utility>

#include "platform/CodePage.h"
#include "tests/support/DicomSupport.h"
#include "tests/support/FileBuilder.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using VantorWrappers::ImageDescription;
using VantorWrappers::ImageFrames;
using Coding = ImageDescription::Coding;
using Photometric = ImageDescription::Photometric;

class ImageFramesTest : public testing::Test {
  protected:
    std::unique_ptr<ImageFrames> Open(const Bytes& file) {
        return std::make_unique<ImageFrames>(Platform::ToHostText(fFolder.WriteFile("image", file)));
    }

    std::string FailureToOpen(const Bytes& file) {
        return ThrownBy([&] { Open(file); });
    }

    TestFolder fFolder;
};

// The elements before those that a test is about, and the size of the image.
struct Start {
    uint16_t fColumns = 2;
    uint16_t fRows = 2;
    const char* fFrames = "";
    const char* fFrameTime = "";
    const char* fVector = "";
    const char* fCineRate = "";
    const char* fDisplayRate = "";
};

FileBuilder MakeFile(const Start& start, std::string_view syntax = Uids::kExplicitVRLittleEndian) {
    FileBuilder file(syntax);
    const auto text = [&file](Tag tag, VrCode vr, std::string_view value) {
        if (!value.empty()) file.Data().Text(tag, vr, value);
    };
    text(Tags::kRecommendedDisplayFrameRate, Vr::kIS, start.fDisplayRate);
    text(Tags::kCineRate, Vr::kIS, start.fCineRate);
    text(Tags::kFrameTime, Vr::kDS, start.fFrameTime);
    text(Tags::kFrameTimeVector, Vr::kDS, start.fVector);
    text(Tags::kNumberOfFrames, Vr::kIS, start.fFrames);
    file.Data()
        .Numbers16(Tags::kRows, Vr::kUS, {start.fRows})
        .Numbers16(Tags::kColumns, Vr::kUS, {start.fColumns});
    return file;
}

Bytes FrameOf(ImageFrames& image, int32_t frame) {
    if (!image.LoadFrame(frame)) return {};
    return Bytes(image.GetFrame().begin(), image.GetFrame().end());
}

TEST_F(ImageFramesTest, Description) {
    for (const Encoding& encoding : kEncodings) {
        FileBuilder file(encoding.fTransferSyntax);
        file.Data()
            .Text(Tags::kFrameTime, Vr::kDS, " 40.0 ")
            .Numbers16(Tags::kSamplesPerPixel, Vr::kUS, {3})
            .Text(Tags::kPhotometricInterpretation, Vr::kCS, "YBR_FULL_422")
            .Numbers16(Tags::kPlanarConfiguration, Vr::kUS, {1})
            .Text(Tags::kNumberOfFrames, Vr::kIS, "3")
            .Numbers16(Tags::kRows, Vr::kUS, {5})
            .Numbers16(Tags::kColumns, Vr::kUS, {7})
            .Numbers16(Tags::kBitsAllocated, Vr::kUS, {16})
            .Numbers16(Tags::kBitsStored, Vr::kUS, {12})
            .Numbers16(Tags::kHighBit, Vr::kUS, {14})
            .Numbers16(Tags::kPixelRepresentation, Vr::kUS, {1})
            .Text(Tags::kWindowCenter, Vr::kDS, "+40.5\\300")
            .Text(Tags::kWindowWidth, Vr::kDS, "400\\1500")
            .Text(Tags::kRescaleIntercept, Vr::kDS, "-1024")
            .Text(Tags::kRescaleSlope, Vr::kDS, "2.5")
            .Value(Tags::kPixelData, Vr::kOW, Bytes(12));
        const ImageDescription image = Open(file.Build())->GetDescription();
        EXPECT_EQ(image.fTransferSyntaxUID, encoding.fTransferSyntax);
        EXPECT_EQ(image.fCoding, Coding::kNative);
        EXPECT_EQ(image.fRows, 5);
        EXPECT_EQ(image.fColumns, 7);
        EXPECT_EQ(image.fFrames, 3);
        EXPECT_EQ(image.fSamplesPerPixel, 3);
        EXPECT_EQ(image.fPhotometric, Photometric::kYbrFull422);
        EXPECT_TRUE(image.fIsPlanar);
        EXPECT_EQ(image.fBitsAllocated, 16);
        EXPECT_EQ(image.fBitsStored, 12);
        EXPECT_EQ(image.fHighBit, 14);
        EXPECT_TRUE(image.fIsSigned);
        EXPECT_EQ(image.fRescaleSlope, 2.5);
        EXPECT_EQ(image.fRescaleIntercept, -1024);
        ASSERT_TRUE(image.fWindow.has_value());
        EXPECT_EQ(image.fWindow->fCenter, 40.5);
        EXPECT_EQ(image.fWindow->fWidth, 400);
        EXPECT_EQ(image.fCycleLength, 120);
    }
}

TEST_F(ImageFramesTest, WhatIsAbsentHasItsUsualValue) {
    FileBuilder file = MakeFile({});
    file.Data()
        .Numbers16(Tags::kBitsAllocated, Vr::kUS, {8})
        .Text(Tags::kWindowCenter, Vr::kDS, "40")
        .Text(Tags::kWindowWidth, Vr::kDS, "0")
        .Text(Tags::kRescaleSlope, Vr::kDS, "many")
        .Value(Tags::kPixelData, Vr::kOB, {1, 2, 3, 4});
    const ImageDescription image = Open(file.Build())->GetDescription();
    EXPECT_EQ(image.fSamplesPerPixel, 1);
    EXPECT_EQ(image.fPhotometric, Photometric::kOther);
    EXPECT_EQ(image.fBitsStored, 8);
    EXPECT_EQ(image.fHighBit, 7);
    EXPECT_FALSE(image.fWindow.has_value()) << "none is as wide as that";
    EXPECT_EQ(image.fRescaleSlope, 1);
    EXPECT_EQ(image.fFrames, 1);
    EXPECT_EQ(image.fCycleLength, 0);
}

TEST_F(ImageFramesTest, CycleLength) {
    const std::pair<Start, int32_t> cases[] = {
        {{.fFrames = "30", .fFrameTime = "33.33"}, 999},
        {{.fFrames = "30", .fFrameTime = "40", .fCineRate = "50"}, 1200},
        {{.fFrames = "30", .fFrameTime = "0", .fCineRate = "50"}, 600},
        {{.fFrames = "4", .fVector = "0\\30\\50\\40"}, 160},
        {{.fFrames = "4", .fVector = "0", .fDisplayRate = "8"}, 500},
        {{.fFrames = "4", .fCineRate = "25", .fDisplayRate = "8"}, 160},
        {{.fFrames = "15"}, 500},
        {{.fFrames = "15", .fFrameTime = "-3"}, 500},
        {{.fFrames = "15", .fFrameTime = "1e-9"}, 1},
        {{.fFrames = "15", .fFrameTime = "1e300"}, INT32_MAX},
        {{.fFrames = "1", .fFrameTime = "40"}, 0},
        {{.fFrameTime = "40"}, 0},
    };
    for (const auto& [start, length] : cases) {
        FileBuilder file = MakeFile(start);
        file.Data().Value(Tags::kPixelData, Vr::kOB, Bytes(120));
        EXPECT_EQ(Open(file.Build())->GetDescription().fCycleLength, length)
            << start.fFrameTime << " " << start.fVector << " " << start.fCineRate;
    }
}

// Whatever is asked for before, and of a file that becomes shorter since.
TEST_F(ImageFramesTest, FramesInAnyOrder) {
    FileBuilder file = MakeFile({.fFrames = "3"});
    file.Data()
        .Numbers16(Tags::kBitsAllocated, Vr::kUS, {8})
        .Value(Tags::kPixelData, Vr::kOB, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    const Bytes whole = file.Build();
    const auto image = Open(whole);
    const Bytes frames[] = {{}, {1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {}};
    for (const int32_t frame : {2, 2, 1, 0, 4, 3}) EXPECT_EQ(FrameOf(*image, frame), frames[frame]) << frame;
    EXPECT_EQ(FrameOf(*image, -1), Bytes());
    EXPECT_TRUE(image->GetFrame().empty());
    fFolder.WriteFile("image", Bytes(whole.begin(), whole.end() - 6));
    for (const int32_t frame : {1, 2, 3}) {
        EXPECT_EQ(FrameOf(*image, frame), frame == 1 ? frames[1] : Bytes()) << "the last ones are missing";
    }
    fFolder.WriteFile("image", "");
    EXPECT_EQ(FrameOf(*image, 1), Bytes());
}

using Frames = std::vector<Bytes>;

struct Native {
    const char* fName;
    uint16_t fColumns;
    uint16_t fRows;
    uint16_t fBits;
    Bytes fPixels;
    Frames fFrames;
    const char* fColors = "MONOCHROME2";
    uint16_t fSamples = 1;
    VrCode fVr = Vr::kOW;
};

// As many bytes as the description tells, from where the frames before end. In big-endian words the high byte
// comes first, whatever the words hold; bytes stay as they are.
const Native kNative[] = {
    {"frames of an odd size", 3, 1, 8, {1, 2, 3, 4, 5, 6, 7, 8, 9, 0}, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}},
    {"one frame of an odd size", 3, 1, 8, {1, 2, 3, 0}, {{1, 2, 3}}},
    {"more bytes than frames", 2, 1, 8, {1, 2, 3, 4, 99, 99, 99, 99}, {{1, 2}, {3, 4}}},
    {"more bytes than one frame", 2, 1, 8, {1, 2, 99, 99}, {{1, 2}}},
    {"bytes", 2, 1, 8, {1, 2, 3, 4}, {{1, 2}, {3, 4}}, "MONOCHROME2", 1, Vr::kOB},
    {"words", 2, 1, 16, {1, 2, 3, 4}, {{1, 2, 3, 4}}},
    {"words of an odd size and a rest", 1, 1, 16, {1, 2, 3, 4, 5, 6, 7, 8}, {{1, 2}, {3, 4}, {5, 6}}},
    {"shared out: too few", 4, 1, 8, {1, 2, 3, 4, 5, 6}, {{1, 2}, {3, 4}, {5, 6}}},
    {"too few for one", 4, 1, 8, {1, 2}, {{1, 2}}},
    {"no bits", 4, 1, 0, {1, 2, 3, 4}, {{}, {}}},
    {"pairs that share a colour", 2, 1, 8, Bytes{1, 2, 3, 4, 5, 6, 7, 8, 99, 99, 99, 99},
     Frames{{1, 2, 3, 4}, {5, 6, 7, 8}}, "YBR_FULL_422", 3},
    {"an odd number of them", 3, 1, 8, Bytes{1, 2, 3, 4, 5, 6, 7, 8, 99, 99},
     Frames{{1, 2, 3, 4, 5, 6, 7, 8}}, "YBR_FULL_422", 3},
    {"single bits", 8, 1, 1, {0x12, 0x34}, {{0x12}, {0x34}}},
    // 3 bits each: 0b101, 0b100, 0b011 and 0b010 from the lowest on are 0b010'011'100'101.
    {"single bits across bytes", 3, 1, 1, {0xE5, 0x04}, {{0x05}, {0x04}, {0x03}, {0x02}}},
};

Bytes BitsOf(Bytes frame, const Native& native) {
    if (native.fBits != 1 || frame.empty()) return frame;
    const auto count = native.fColumns * native.fRows;
    frame.back() = static_cast<uint8_t>(frame.back() & (0xFF >> (8 - count % 8) % 8));
    return frame;
}

TEST_F(ImageFramesTest, FramesAreAsLongAsTheirPixels) {
    for (const bool isBigEndian : {false, true}) {
        const char* syntax = isBigEndian ? Uids::kExplicitVRBigEndian : Uids::kExplicitVRLittleEndian;
        for (const Native& native : kNative) {
            Bytes pixels = native.fPixels;
            const bool isSwapped = isBigEndian && native.fVr == Vr::kOW;
            for (size_t i = 0; isSwapped && i < pixels.size(); i += 2) std::swap(pixels[i], pixels[i + 1]);
            const std::string frames = std::to_string(native.fFrames.size());
            FileBuilder file(syntax);
            file.Data()
                .Numbers16(Tags::kSamplesPerPixel, Vr::kUS, {native.fSamples})
                .Text(Tags::kPhotometricInterpretation, Vr::kCS, native.fColors)
                .Text(Tags::kNumberOfFrames, Vr::kIS, frames)
                .Numbers16(Tags::kRows, Vr::kUS, {native.fRows})
                .Numbers16(Tags::kColumns, Vr::kUS, {native.fColumns})
                .Numbers16(Tags::kBitsAllocated, Vr::kUS, {native.fBits})
                .Value(Tags::kPixelData, native.fVr, pixels);
            const auto image = Open(file.Build());
            for (size_t i = native.fFrames.size(); i > 0; --i) {
                EXPECT_EQ(BitsOf(FrameOf(*image, static_cast<int32_t>(i)), native), native.fFrames[i - 1])
                    << native.fName << ", frame " << i << ", " << syntax;
            }
            EXPECT_EQ(FrameOf(*image, static_cast<int32_t>(native.fFrames.size()) + 1), Bytes());
        }
    }
}

// The first pair of values that is complete.
TEST_F(ImageFramesTest, Window) {
    const std::tuple<const char*, const char*, std::optional<std::pair<double, double>>> cases[] = {
        {"40\\50", "300\\400", std::pair(40, 300)},
        {"\\50", "300\\400", std::pair(50, 400)},
        {"40\\50", "\\400", std::pair(50, 400)},
        {"40\\50", "0\\400", std::pair(50, 400)},
        {"x\\50", "300\\400", std::pair(50, 400)},
        {"40", "300\\400", std::pair(40, 300)},
        {"\\50", "300", std::nullopt},
        {"\\50", "300\\", std::nullopt},
        {"40", "0.5", std::nullopt},
    };
    for (const auto& [centers, widths, expected] : cases) {
        FileBuilder file = MakeFile({});
        file.Data()
            .Text(Tags::kWindowCenter, Vr::kDS, centers)
            .Text(Tags::kWindowWidth, Vr::kDS, widths)
            .Value(Tags::kPixelData, Vr::kOB, {1, 2, 3, 4});
        const auto window = Open(file.Build())->GetDescription().fWindow;
        ASSERT_EQ(window.has_value(), expected.has_value()) << centers << " " << widths;
        if (!window) continue;
        EXPECT_EQ(std::pair(window->fCenter, window->fWidth), *expected) << centers << " " << widths;
    }
}

TEST_F(ImageFramesTest, RangeOfValues) {
    struct Case {
        std::initializer_list<uint16_t> fSmallest;
        std::initializer_list<uint16_t> fLargest;
        bool fIsSigned;
        std::optional<std::pair<int32_t, int32_t>> fExpected;
    };
    const Case cases[] = {
        {{100}, {4095}, false, std::pair(100, 4095)},
        {{0}, {1}, false, std::pair(0, 1)},
        {{0xFFF0}, {0x7FF}, true, std::pair(-16, 2047)},
        {{0xF800}, {0xFFFF}, true, std::pair(-2048, -1)},
        {{100}, {100}, false, std::nullopt},
        {{101}, {100}, false, std::nullopt},
        {{0}, {4096}, false, std::nullopt},
        {{0xF7FF}, {0}, true, std::nullopt},
        {{0}, {0x800}, true, std::nullopt},
        {{}, {100}, false, std::nullopt},
        {{}, {100}, true, std::nullopt},
        {{100}, {}, false, std::nullopt},
    };
    for (const Case& each : cases) {
        FileBuilder file = MakeFile({});
        file.Data()
            .Numbers16(Tags::kBitsAllocated, Vr::kUS, {16})
            .Numbers16(Tags::kBitsStored, Vr::kUS, {12})
            .Numbers16(Tags::kPixelRepresentation, Vr::kUS, {static_cast<uint16_t>(each.fIsSigned)})
            .Numbers16(Tags::kSmallestImagePixelValue, each.fIsSigned ? Vr::kSS : Vr::kUS, each.fSmallest)
            .Numbers16(Tags::kLargestImagePixelValue, each.fIsSigned ? Vr::kSS : Vr::kUS, each.fLargest)
            .Value(Tags::kPixelData, Vr::kOW, Bytes(8));
        const auto range = Open(file.Build())->GetDescription().fRange;
        ASSERT_EQ(range.has_value(), each.fExpected.has_value()) << &each - cases;
        if (!range) continue;
        EXPECT_EQ(std::pair(range->fSmallest, range->fLargest), *each.fExpected) << &each - cases;
    }
}

TEST_F(ImageFramesTest, CompressedFrames) {
    const std::pair<const char*, Coding> codings[] = {{Uids::kRleLossless, Coding::kRle},
                                                      {Uids::kJpegBaseline, Coding::kJpeg},
                                                      {Uids::kJpegExtended, Coding::kJpeg},
                                                      {"1.2.840.10008.1.2.4.70", Coding::kOther}};
    for (const auto& [syntax, coding] : codings) {
        FileBuilder file = MakeFile({.fFrames = "2"}, syntax);
        file.Data().EncapsulatedPixels({0, 22}, {{1, 2}, {3, 4, 5, 6}, {7, 8}});
        const auto image = Open(file.Build());
        EXPECT_EQ(image->GetDescription().fCoding, coding);
        EXPECT_EQ(FrameOf(*image, 1), Bytes({1, 2, 3, 4, 5, 6}));
        EXPECT_EQ(FrameOf(*image, 2), Bytes({7, 8}));
    }
}

TEST_F(ImageFramesTest, Palettes) {
    for (const Encoding& encoding : kEncodings) {
        FileBuilder file = MakeFile({}, encoding.fTransferSyntax);
        ElementBuilder palette(encoding.fTransferSyntax);
        palette.Text(Tags::kPhotometricInterpretation, Vr::kCS, "PALETTE COLOR")
            .Numbers16(Tags::kRows, Vr::kUS, {2})
            .Numbers16(Tags::kColumns, Vr::kUS, {2})
            .Numbers16(Tags::kPixelRepresentation, Vr::kUS, {1})
            .Numbers16(Tags::kRedPaletteDescriptor, Vr::kSS, {3, 0xFFFE, 16})
            .Numbers16(Tags::kGreenPaletteDescriptor, Vr::kSS, {3, 0, 8})
            .Numbers16(Tags::kBluePaletteDescriptor, Vr::kSS, {3, 0, 8})
            .Numbers16(Tags::kRedPalette, Vr::kOW, {0x1234, 0, 0xFFFF})
            .Numbers16(Tags::kGreenPalette, Vr::kOW, {0x0201, 0x0003})
            .Numbers16(Tags::kBluePalette, Vr::kOW, {1, 2, 3})
            .Value(Tags::kPixelData, Vr::kOW, {1, 2, 3, 4});
        Bytes bytes = FileBuilder(encoding.fTransferSyntax).BuildMeta();
        bytes.insert(bytes.end(), palette.GetBytes().begin(), palette.GetBytes().end());
        const auto image = Open(bytes);
        const auto& [red, green, blue] = image->GetDescription().fPalettes;
        EXPECT_EQ(red.fFirstValue, -2);
        EXPECT_EQ(red.fBits, 16);
        EXPECT_EQ(red.fEntries, std::vector<uint16_t>({0x1234, 0, 0xFFFF}));
        EXPECT_EQ(green.fEntries, std::vector<uint16_t>({1, 2, 3})) << "two in a word";
        EXPECT_EQ(blue.fEntries, std::vector<uint16_t>({1, 2, 3})) << "one in a word";
        EXPECT_FALSE(image->GetDescription().fHasSegmentedPalettes);
    }
}

TEST_F(ImageFramesTest, PalettesThatCannotBeRead) {
    ElementBuilder start;
    start.Text(Tags::kPhotometricInterpretation, Vr::kCS, "PALETTE COLOR")
        .Numbers16(Tags::kRows, Vr::kUS, {2})
        .Numbers16(Tags::kColumns, Vr::kUS, {2})
        .Numbers16(Tags::kRedPaletteDescriptor, Vr::kUS, {0, 7, 16});
    const auto open = [&](const ElementBuilder& palette) {
        Bytes bytes = FileBuilder().BuildMeta();
        bytes.insert(bytes.end(), start.GetBytes().begin(), start.GetBytes().end());
        bytes.insert(bytes.end(), palette.GetBytes().begin(), palette.GetBytes().end());
        return Open(bytes)->GetDescription();
    };
    const ImageDescription segmented = open(ElementBuilder()
                                                .Numbers16(Tags::kSegmentedRedPalette, Vr::kOW, {0, 1, 2})
                                                .Value(Tags::kPixelData, Vr::kOB, {1, 2, 3, 4}));
    EXPECT_TRUE(segmented.fHasSegmentedPalettes);
    // 65,536 entries are told of; only these are there.
    const ImageDescription cut = open(ElementBuilder()
                                          .Numbers16(Tags::kRedPalette, Vr::kOW, {9, 8})
                                          .Value(Tags::kPixelData, Vr::kOB, {1, 2, 3, 4}));
    EXPECT_EQ(cut.fPalettes[0].fEntries, std::vector<uint16_t>({9, 8}));
    EXPECT_EQ(cut.fPalettes[0].fFirstValue, 7);
    EXPECT_TRUE(cut.fPalettes[1].fEntries.empty());
}

TEST_F(ImageFramesTest, NoImage) {
    EXPECT_EQ(FailureToOpen(BytesOf("no DICOM file")), "102 Invalid Dicom File");
    EXPECT_EQ(FailureToOpen(MakeFile({}).Build()), "102 Invalid Dicom Image File");
    for (const Start& start : {Start{.fColumns = 0}, Start{.fRows = 0}}) {
        FileBuilder file = MakeFile(start);
        file.Data().Value(Tags::kPixelData, Vr::kOB, Bytes(12));
        EXPECT_EQ(FailureToOpen(file.Build()), "102 the image has no size");
    }
    for (const Start& start : {Start{.fColumns = 65535, .fRows = 65535}, Start{.fFrames = "2147483646"},
                               Start{.fColumns = 1000, .fRows = 10, .fFrames = "999"}}) {
        FileBuilder file = MakeFile(start);
        file.Data().Value(Tags::kPixelData, Vr::kOB, Bytes(12));
        EXPECT_EQ(FailureToOpen(file.Build()),
                  "102 the file is too small for an image of the size that it tells");
    }
    // RLE and JPEG take some bytes for so many pixels. Of others nobody knows, but no picture is that large.
    constexpr char kLossless[] = "1.2.840.10008.1.2.4.90";
    const std::tuple<const char*, Start, bool> cases[] = {
        {kLossless, {.fColumns = 4096, .fRows = 8192}, true},
        {kLossless, {.fColumns = 640, .fRows = 480, .fFrames = "100000"}, true},
        {kLossless, {.fColumns = 4097, .fRows = 8192}, false},
        {kLossless, {.fColumns = 65535, .fRows = 65535}, false},
        {Uids::kRleLossless, {.fColumns = 640, .fRows = 480}, false},
        {Uids::kJpegBaseline, {.fColumns = 640, .fRows = 480}, false},
        {Uids::kJpegBaseline, {.fColumns = 64, .fRows = 48, .fFrames = "100000"}, false},
    };
    for (const auto& [syntax, start, isImage] : cases) {
        FileBuilder file = MakeFile(start, syntax);
        file.Data().EncapsulatedPixels({}, {Bytes(100)});
        EXPECT_EQ(FailureToOpen(file.Build()),
                  isImage ? "nothing" : "102 the file is too small for an image of the size that it tells")
            << syntax << " " << start.fColumns;
    }
    EXPECT_NE(ThrownBy([] { ImageFrames missing(L"no such file"); }), "nothing");
    EXPECT_NE(ThrownBy([] { ImageFrames tooLong(std::wstring(300, L'x')); }), "nothing");
}

}  // namespace
