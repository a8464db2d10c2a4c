// What of an image file a host needs to show its pixels, also of files that tell more than they have.

#include "wrappers/ImageFrames.h"

#include <gtest/gtest.h>

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

TEST_F(ImageFramesTest, NativeFrames) {
    FileBuilder file = MakeFile({.fFrames = "3"});
    file.Data()
        .Numbers16(Tags::kBitsAllocated, Vr::kUS, {8})
        .Value(Tags::kPixelData, Vr::kOB, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    const auto image = Open(file.Build());
    EXPECT_EQ(FrameOf(*image, 2), Bytes({5, 6, 7, 8}));
    EXPECT_EQ(FrameOf(*image, 2), Bytes({5, 6, 7, 8})) << "again";
    EXPECT_EQ(FrameOf(*image, 1), Bytes({1, 2, 3, 4}));
    for (const int32_t frame : {0, -1, 4}) {
        EXPECT_EQ(FrameOf(*image, frame), Bytes());
        EXPECT_TRUE(image->GetFrame().empty());
    }
    EXPECT_EQ(FrameOf(*image, 3), Bytes({9, 10, 11, 12}));
    fFolder.WriteFile("image", "");
    EXPECT_EQ(FrameOf(*image, 1), Bytes()) << "it is not there any more";
}

// In words of 16 bits the high byte comes first, whatever the words hold.
TEST_F(ImageFramesTest, BigEndianWords) {
    const uint16_t words[] = {0x0201, 0x0403, 0x0605, 0x0807};
    for (const auto& [bits, count] : {std::pair<uint16_t, size_t>{8, 2}, {16, 4}}) {
        FileBuilder file = MakeFile({}, Uids::kExplicitVRBigEndian);
        file.Data()
            .Numbers16(Tags::kBitsAllocated, Vr::kUS, {bits})
            .Header(Tags::kPixelData, Vr::kOW, static_cast<uint32_t>(count * sizeof(uint16_t)));
        for (size_t i = 0; i < count; ++i) {
            file.Data().Raw({static_cast<uint8_t>(words[i] >> 8), static_cast<uint8_t>(words[i] & 0xFF)});
        }
        const auto* expected = reinterpret_cast<const uint8_t*>(words);
        EXPECT_EQ(FrameOf(*Open(file.Build()), 1), Bytes(expected, expected + count * sizeof(uint16_t)));
    }
    FileBuilder bytes = MakeFile({}, Uids::kExplicitVRBigEndian);
    bytes.Data().Numbers16(Tags::kBitsAllocated, Vr::kUS, {8}).Value(Tags::kPixelData, Vr::kOB, {1, 2, 3, 4});
    EXPECT_EQ(FrameOf(*Open(bytes.Build()), 1), Bytes({1, 2, 3, 4}));
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
    EXPECT_NE(ThrownBy([] { ImageFrames missing(L"no such file"); }), "nothing");
    EXPECT_NE(ThrownBy([] { ImageFrames tooLong(std::wstring(300, L'x')); }), "nothing");
}

}  // namespace
