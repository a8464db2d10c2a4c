// Pictures of frames, pixel by pixel as a person works them out from the samples.

#include "cli/FramePicture.h"

#include <gtest/gtest.h>

#include <tuple>

#include "cli/JpegCodec.h"
#include "cli/RleFrame.h"
#include "tests/support/TestFolder.h"

namespace {

using namespace VantorCli;
using VantorTest::Bytes;
using Image = VantorWrappers::ImageDescription;
using Coding = Image::Coding;
using Photometric = Image::Photometric;
using Pixels = std::vector<uint32_t>;  // 0xRRGGBB, row by row from the top

Image Describe(Photometric photometric, int32_t columns, int32_t rows, int32_t bits = 8, int32_t colors = 1) {
    Image image;
    image.fCoding = Coding::kNative;
    image.fPhotometric = photometric;
    image.fColumns = columns;
    image.fRows = rows;
    image.fSamplesPerPixel = colors;
    image.fBitsAllocated = bits == 1 ? 1 : bits > 8 ? 16 : 8;
    image.fBitsStored = bits;
    image.fHighBit = bits - 1;
    return image;
}

Image DescribeColors(Photometric photometric, int32_t columns, int32_t rows, int32_t bits = 8) {
    return Describe(photometric, columns, rows, bits, 3);
}

Bytes Words(const std::vector<int32_t>& values) {
    Bytes bytes(values.size() * sizeof(uint16_t));
    for (size_t i = 0; i < values.size(); ++i) {
        const auto word = static_cast<uint16_t>(values[i]);
        std::memcpy(&bytes[i * sizeof(word)], &word, sizeof(word));
    }
    return bytes;
}

Pixels Grays(std::initializer_list<uint32_t> levels) {
    Pixels pixels;
    for (const uint32_t level : levels) pixels.push_back(level * 0x010101);
    return pixels;
}

// What a program finds in the bitmap that knows nothing of how it was made.
Pixels PixelsOf(const Bytes& dib) {
    const auto number = [&dib](size_t at) { return dib[at] | dib[at + 1] << 8; };
    EXPECT_EQ(number(0), 40);
    EXPECT_EQ(number(12), 1);
    EXPECT_EQ(number(14), 24);
    EXPECT_EQ(number(16), 0);
    const auto width = static_cast<size_t>(number(4)), height = static_cast<size_t>(number(8));
    const size_t stride = (width * 3 + 3) / 4 * 4;
    EXPECT_EQ(dib.size(), 40 + stride * height);
    Pixels pixels;
    for (size_t row = height; row > 0; --row) {
        for (size_t column = 0; column < width; ++column) {
            const uint8_t* bgr = &dib[40 + (row - 1) * stride + column * 3];
            pixels.push_back(static_cast<uint32_t>(bgr[2] << 16 | bgr[1] << 8 | bgr[0]));
        }
    }
    return pixels;
}

// Empty when it cannot be shown.
Pixels Draw(const Image& image, const Bytes& frame) {
    FramePicture picture(image);
    const Bytes exact(frame);
    const DeviceBitmap* drawn = picture.Draw(exact);
    return drawn == nullptr ? Pixels() : PixelsOf(drawn->GetBytes());
}

struct Case {
    const char* fName;
    Image fImage;
    Bytes fFrame;
    Pixels fPixels;
};

void Expect(const std::vector<Case>& cases) {
    for (const Case& each : cases) {
        EXPECT_EQ(Draw(each.fImage, each.fFrame), each.fPixels) << each.fName;
    }
}

template <typename Change>
Image With(Image image, Change change) {
    change(image);
    return image;
}

TEST(FramePicture, Grays) {
    const auto window = [](double center, double width) {
        return [=](Image& image) { image.fWindow = Image::Window{center, width}; };
    };
    const auto range = [](int32_t smallest, int32_t largest) {
        return [=](Image& image) { image.fRange = Image::Range{smallest, largest}; };
    };
    const Image two = Describe(Photometric::kMonochrome2, 3, 2);
    const Image one = Describe(Photometric::kMonochrome1, 3, 2);
    const Image twelve = Describe(Photometric::kMonochrome2, 3, 2, 12);
    const auto isSigned = [](Image& image) { image.fIsSigned = true; };
    const Bytes ramp = {0, 1, 100, 127, 254, 255};
    Expect({
        {"all 8 bits", two, ramp, Grays({0, 1, 100, 127, 254, 255})},
        {"white first", one, ramp, Grays({255, 254, 155, 128, 1, 0})},
        // From 99.5 - 50 = 49.5 on black, above 150.5 - 1 white; the middle at 99.5.
        {"window", With(two, window(100, 101)), Bytes{49, 50, 99, 100, 149, 150},
         Grays({0, 1, 126, 129, 254, 255})},
        {"window, white first", With(one, window(100, 101)), Bytes{49, 50, 99, 100, 149, 150},
         Grays({255, 254, 129, 126, 1, 0})},
        {"window of one value", With(two, window(100, 1)), Bytes{0, 98, 99, 100, 101, 255},
         Grays({0, 0, 0, 255, 255, 255})},
        {"8 bits, signed", With(two, isSigned), Bytes{0x80, 0xFF, 0, 1, 0x7E, 0x7F},
         Grays({0, 127, 128, 129, 254, 255})},
        {"4 bits", Describe(Photometric::kMonochrome2, 3, 2, 4), Bytes{0, 1, 7, 8, 14, 15},
         Grays({0, 17, 119, 136, 238, 255})},
        {"12 bits: all their range", twelve, Words({0, 8, 9, 819, 4086, 4095}),
         Grays({0, 0, 1, 51, 254, 255})},
        {"12 bits: anything in the others", twelve, Words({0xF000, 0x1008, 0x8009, 819, 4086, 0xFFFF}),
         Grays({0, 0, 1, 51, 254, 255})},
        {"12 bits, signed", With(twelve, isSigned), Words({0x800, 0x808, 0x809, 0xB33, 0, 0x7FF}),
         Grays({0, 0, 1, 51, 128, 255})},
        {"12 bits: the range that the file tells", With(twelve, range(100, 355)),
         Words({0, 100, 151, 202, 355, 4095}), Grays({0, 0, 51, 102, 255, 255})},
        {"a range from below 0 on", With(With(twelve, isSigned), range(-200, 55)),
         Words({0x800, 0xF38, 0xF6B, 0xF9E, 0x37, 0x7FF}), Grays({0, 0, 51, 102, 255, 255})},
        {"a range behind the rescaling",
         With(With(twelve, range(100, 355)),
              [](Image& image) {
                  image.fRescaleSlope = -0.5;
                  image.fRescaleIntercept = 7;
              }),
         Words({0, 100, 151, 202, 355, 4095}), Grays({255, 255, 204, 153, 0, 0})},
        {"a window counts more than the range", With(With(twelve, range(100, 355)), window(128.5, 256)),
         Words({0, 1, 100, 151, 255, 355}), Grays({0, 1, 100, 151, 255, 255})},
        {"a range of 8 bits", With(two, range(100, 101)), ramp, Grays({0, 1, 100, 127, 254, 255})},
        {"one value only", twelve, Words({4095, 4095, 4095, 4095, 4095, 4095}),
         Grays({255, 255, 255, 255, 255, 255})},
        {"16 bits, window", With(Describe(Photometric::kMonochrome2, 3, 2, 16), window(32768.5, 65536)),
         Words({0, 257, 0x8000, 0x8080, 0xFEFF, 0xFFFF}), Grays({0, 1, 128, 128, 254, 255})},
        {"16 bits, signed, window",
         With(With(Describe(Photometric::kMonochrome2, 3, 2, 16), isSigned), window(0, 256)),
         Words({-200, -127, 0, 1, 127, 200}), Grays({0, 1, 128, 129, 255, 255})},
        {"bits at the top of the sample", With(twelve, [](Image& image) { image.fHighBit = 15; }),
         Words({0, 0x8F, 0x90, 0x3330, 0xFF60, 0xFFFF}), Grays({0, 0, 1, 51, 254, 255})},
        {"window behind the rescaling",
         With(twelve,
              [](Image& image) {
                  image.fRescaleSlope = 2;
                  image.fRescaleIntercept = -1000;
                  image.fWindow = Image::Window{0.5, 256};
              }),
         Words({0, 436, 499, 500, 564, 4095}), Grays({0, 0, 126, 128, 255, 255})},
        {"falling slope", With(two, [](Image& image) { image.fRescaleSlope = -1; }), ramp,
         Grays({255, 254, 155, 128, 1, 0})},
        {"numbers without end", With(two, [](Image& image) { image.fRescaleSlope = 1e308; }),
         Bytes{0, 0, 0, 0, 0, 0}, Grays({0, 0, 0, 0, 0, 0})},
        {"one bit, the lowest first", Describe(Photometric::kMonochrome2, 5, 2, 1), Bytes{0x31, 0x02},
         Grays({255, 0, 0, 0, 255, 255, 0, 0, 0, 255})},
    });
}

TEST(FramePicture, Colors) {
    const auto planar = [](Image& image) { image.fIsPlanar = true; };
    const Bytes pixels = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    const Pixels expected = {0x010203, 0x040506, 0x070809};
    // Of gray, of the strongest red and blue, and of colours beyond what there is.
    const Bytes ybr = {100, 128, 128, 76, 85, 255, 29, 255, 107, 255, 255, 255};
    const Pixels ofYbr = {0x646464, 0xFE0000, 0x0000FE, 0xFF79FF};
    Expect({
        {"RGB", DescribeColors(Photometric::kRgb, 3, 1), pixels, expected},
        {"RGB, planes", With(DescribeColors(Photometric::kRgb, 3, 1), planar),
         Bytes{1, 4, 7, 2, 5, 8, 3, 6, 9}, expected},
        {"RGB, 16 bits", DescribeColors(Photometric::kRgb, 1, 2, 16),
         Words({0, 257, 0xFFFF, 128, 129, 0x8080}), Pixels{0x0001FF, 0x000180}},
        {"RGB, planes of 16 bits", With(DescribeColors(Photometric::kRgb, 1, 2, 16), planar),
         Words({257, 514, 771, 1028, 1285, 1542}), Pixels{0x010305, 0x020406}},
        {"YBR", DescribeColors(Photometric::kYbrFull, 2, 2), ybr, ofYbr},
        {"YBR, planes", With(DescribeColors(Photometric::kYbrFull, 2, 2), planar),
         Bytes{100, 76, 29, 255, 128, 85, 255, 255, 128, 255, 107, 255}, ofYbr},
        {"YBR, pairs", DescribeColors(Photometric::kYbrFull422, 2, 2),
         Bytes{100, 50, 128, 128, 76, 0, 85, 255}, Pixels{0x646464, 0x323232, 0xFE0000, 0xB20000}},
        {"YBR, pairs, odd width", DescribeColors(Photometric::kYbrFull422, 1, 2),
         Bytes{100, 99, 128, 128, 50, 99, 128, 128}, Pixels{0x646464, 0x323232}},
    });
}

Image DescribePalette(int32_t bits, std::vector<uint16_t> entries, int32_t first = 0,
                      int32_t entryBits = 16) {
    Image image = Describe(Photometric::kPaletteColor, 4, 1, bits);
    for (auto& palette : image.fPalettes) {
        palette = {first, entryBits, entries};
        for (uint16_t& entry : entries) entry = static_cast<uint16_t>(entry >> 1);
    }
    return image;
}

TEST(FramePicture, Palettes) {
    const std::vector<uint16_t> entries = {0xFF00, 0x8000, 0x0400};
    Expect({
        {"16 bits an entry", DescribePalette(8, entries), Bytes{0, 1, 2, 200},
         Pixels{0xFF7F3F, 0x804020, 0x040201, 0x040201}},
        {"8 bits an entry", DescribePalette(8, {0xFF, 0x80, 4}, 0, 8), Bytes{0, 1, 2, 200},
         Pixels{0xFF7F3F, 0x804020, 0x040201, 0x040201}},
        {"from a value on", DescribePalette(8, entries, 10), Bytes{0, 10, 11, 12},
         Pixels{0xFF7F3F, 0xFF7F3F, 0x804020, 0x040201}},
        {"from below 0 on",
         With(DescribePalette(16, entries, -1), [](Image& image) { image.fIsSigned = true; }),
         Words({-32768, -1, 0, 1}), Pixels{0xFF7F3F, 0xFF7F3F, 0x804020, 0x040201}},
        {"values of 16 bits", DescribePalette(16, entries, 0xFFFD), Words({0, 0xFFFD, 0xFFFE, 0xFFFF}),
         Pixels{0xFF7F3F, 0xFF7F3F, 0x804020, 0x040201}},
    });
    // Entries of the first palette and bits that it tells; what is shown of entry 0 of it.
    const std::tuple<const char*, std::vector<uint16_t>, int32_t, uint32_t> cases[] = {
        {"255 is white, whatever is told", {0xFF, 0x80}, 16, 0xFF7F3F},
        {"also of 12 bits", {0xFF, 0x80}, 12, 0xFF7F3F},
        {"12 bits", {0xFFF, 0x80}, 12, 0xFF7F3F},
        {"12 bits at the top of the word", {0xFFF0, 0x80}, 12, 0xFF7F3F},
        {"65,535 is white, whatever is told", {0xFFFF, 0x80}, 8, 0xFF7F3F},
        {"16 bits, dark", {0x100, 0x80}, 16, 0x010000},
    };
    for (const auto& [name, largest, bits, expected] : cases) {
        EXPECT_EQ(Draw(DescribePalette(8, largest, 0, bits), {0, 0, 0, 0}), Pixels(4, expected)) << name;
    }
    // Blue has no entry above 255, and green tells other bits than red.
    const auto dark = With(DescribePalette(8, {0x8000}), [](Image& image) {
        image.fPalettes[1] = {0, 8, {0x40}};
        image.fPalettes[2] = {0, 16, {0xFF}};
    });
    EXPECT_EQ(Draw(dark, {0, 0, 0, 0}), Pixels(4, 0x804000));
    EXPECT_EQ(FramePicture(DescribePalette(8, {})).GetProblem(), "its palettes are missing or damaged");
    const auto segmented =
        With(DescribePalette(8, {}), [](Image& image) { image.fHasSegmentedPalettes = true; });
    EXPECT_EQ(FramePicture(segmented).GetProblem(), "segmented palettes cannot be shown");
}

// A frame of run-length segments, with the table in front.
Bytes Rle(const std::vector<Bytes>& segments) {
    Bytes frame(64);
    const auto put = [&frame](size_t field, size_t number) {
        frame[field * 4] = static_cast<uint8_t>(number);
        frame[field * 4 + 1] = static_cast<uint8_t>(number >> 8);
    };
    put(0, segments.size());
    for (size_t i = 0; i < segments.size(); ++i) {
        put(i + 1, frame.size());
        frame.insert(frame.end(), segments[i].begin(), segments[i].end());
    }
    return frame;
}

TEST(FramePicture, RunLengths) {
    const auto rle = [](Image& image) { image.fCoding = Coding::kRle; };
    const Image gray = With(Describe(Photometric::kMonochrome2, 3, 2), rle);
    const Pixels ramp = Grays({5, 5, 5, 5, 6, 7});
    Expect({
        {"runs and literals", gray, Rle({{0xFD, 5, 1, 6, 7}}), ramp},
        {"filled up", gray, Rle({{0xFD, 5, 1, 6, 7, 0}}), ramp},
        {"with bytes that mean nothing", gray, Rle({{0x80, 0xFD, 5, 0x80, 1, 6, 7}}), ramp},
        {"16 bits: high bytes first", With(Describe(Photometric::kMonochrome2, 2, 2, 16), rle),
         Rle({{3, 0, 0x55, 0xAA, 0xFF}, {0xFD, 0}}), Grays({0, 85, 169, 254})},
        {"colours", With(DescribeColors(Photometric::kRgb, 2, 1), rle),
         Rle({{1, 1, 2}, {0xFF, 3}, {1, 4, 5}}), Pixels{0x010304, 0x020305}},
        {"colours of 16 bits", With(DescribeColors(Photometric::kRgb, 2, 1, 16), rle),
         Rle({{1, 1, 2}, {1, 1, 2}, {0xFF, 3}, {0xFF, 3}, {1, 4, 5}, {1, 4, 5}}), Pixels{0x010304, 0x020305}},
        {"planes, whatever the name says", With(DescribeColors(Photometric::kYbrFull422, 2, 1), rle),
         Rle({{1, 100, 50}, {0xFF, 128}, {0xFF, 128}}), Pixels{0x646464, 0x323232}},
    });
    Bytes outside = Rle({{0xFB, 5}});
    outside[4] = 66;
    Bytes behind = outside;
    behind[4] = 67;
    Bytes inTable = outside;
    inTable[4] = 60;
    const Bytes whole = Rle({{0xFB, 5}});
    EXPECT_EQ(Draw(gray, whole), Grays({5, 5, 5, 5, 5, 5}));
    for (const Bytes& damaged : {Rle({}), Rle({{}}), Rle({{0xFC, 5}}), Rle({{5, 1, 2, 3}}), Rle({{0xFB}}),
                                 Rle({{0xFB, 5}, {0xFB, 5}}), outside, behind, inTable,
                                 Bytes(whole.begin(), whole.begin() + 63), Bytes()}) {
        EXPECT_EQ(Draw(gray, damaged), Pixels());
    }
}

TEST(FramePicture, RunsAreAsLongAsTheyCanBe) {
    const Image image =
        With(Describe(Photometric::kMonochrome2, 128, 3), [](Image& each) { each.fCoding = Coding::kRle; });
    Bytes literal = {0x7F};
    literal.resize(129, 8);
    literal.insert(literal.end(), {0x81, 9, 0x81, 10});
    const Pixels pixels = Draw(image, Rle({literal}));
    ASSERT_EQ(pixels.size(), 3U * 128);
    for (size_t i = 0; i < pixels.size(); ++i) EXPECT_EQ(pixels[i], (8 + i / 128) * 0x010101);
}

// Bottom row first, as movies have it.
Bytes Uniform(int32_t width, int32_t height, uint32_t rgb) {
    const auto stride = (static_cast<size_t>(width) * 3 + 3) / 4 * 4;
    Bytes pixels(stride * static_cast<size_t>(height));
    for (size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = static_cast<uint8_t>(rgb >> (i % stride % 3 * 8));
    }
    return pixels;
}

void ExpectNear(const Pixels& pixels, size_t count, uint32_t rgb) {
    ASSERT_EQ(pixels.size(), count);
    for (const uint32_t pixel : pixels) {
        for (int shift = 0; shift < 24; shift += 8) {
            EXPECT_NEAR(static_cast<int>(pixel >> shift & 0xFF), static_cast<int>(rgb >> shift & 0xFF), 2);
        }
    }
}

TEST(FramePicture, Jpeg) {
    if (!JpegCodec::IsThere()) GTEST_SKIP() << "built without JPEG";
    const auto jpeg = [](Image& image) { image.fCoding = Coding::kJpeg; };
    Bytes frame;
    ASSERT_TRUE(JpegCodec::Encode(Uniform(17, 9, 0xC86432).data(), 17, 9, 95, frame));
    for (const Photometric photometric : {Photometric::kYbrFull422, Photometric::kRgb, Photometric::kOther}) {
        ExpectNear(Draw(With(DescribeColors(photometric, 17, 9), jpeg), frame), size_t{17} * 9, 0xC86432);
    }
    // A picture without the mark that tells what its colours are.
    Bytes bare(frame.begin(), frame.begin() + 2);
    bare.insert(bare.end(), frame.begin() + 20, frame.end());
    ExpectNear(Draw(With(DescribeColors(Photometric::kYbrFull, 17, 9), jpeg), bare), size_t{17} * 9,
               0xC86432);
    const Pixels asRgb = Draw(With(DescribeColors(Photometric::kRgb, 17, 9), jpeg), bare);
    ASSERT_EQ(asRgb.size(), size_t{17} * 9);
    EXPECT_NEAR(static_cast<int>(asRgb[0] >> 16), 124, 2)
        << "its brightness, as nobody turns it into colours";

    for (const size_t size : {size_t{0}, size_t{2}, size_t{100}, frame.size() / 2, frame.size() - 20}) {
        const Bytes cut(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(Draw(With(DescribeColors(Photometric::kYbrFull, 17, 9), jpeg), cut), Pixels()) << size;
    }
    EXPECT_EQ(Draw(With(DescribeColors(Photometric::kYbrFull, 9, 17), jpeg), frame), Pixels())
        << "another size";
    EXPECT_EQ(Draw(With(Describe(Photometric::kMonochrome2, 17, 9), jpeg), frame), Pixels()) << "in colour";
    EXPECT_EQ(FramePicture(With(Describe(Photometric::kMonochrome2, 17, 9, 12), jpeg)).GetProblem(),
              "JPEG of more than 8 bits cannot be shown");
    Bytes none;
    EXPECT_FALSE(JpegCodec::Encode(frame.data(), 70'000, 1, 50, none));
    EXPECT_FALSE(JpegCodec::Encode(frame.data(), 0, 1, 50, none));
}

TEST(FramePicture, WhatCannotBeShown) {
    const std::vector<std::pair<Image, const char*>> images = {
        {Describe(Photometric::kMonochrome2, 1, 1, 8, 3), "its colours cannot be shown"},
        {Describe(Photometric::kRgb, 1, 1), "its colours cannot be shown"},
        {DescribeColors(Photometric::kOther, 1, 1), "its colours cannot be shown"},
        {DescribeColors(Photometric::kYbrFull422, 1, 1, 16), "its colours cannot be shown"},
        {With(Describe(Photometric::kMonochrome2, 1, 1), [](Image& image) { image.fBitsAllocated = 32; }),
         "samples in 32 bits cannot be shown"},
        {With(Describe(Photometric::kMonochrome2, 1, 1), [](Image& image) { image.fBitsStored = 0; }),
         "its bits are not where they can be"},
        {With(Describe(Photometric::kMonochrome2, 1, 1), [](Image& image) { image.fHighBit = 8; }),
         "its bits are not where they can be"},
        {With(Describe(Photometric::kMonochrome2, 1, 1), [](Image& image) { image.fHighBit = 6; }),
         "its bits are not where they can be"},
        {With(Describe(Photometric::kMonochrome2, 1, 1),
              [](Image& image) {
                  image.fCoding = Coding::kOther;
                  image.fTransferSyntaxUID = "1.2.3";
              }),
         "its compression cannot be shown (transfer syntax 1.2.3)"},
    };
    for (const auto& [image, problem] : images) {
        EXPECT_EQ(FramePicture(image).GetProblem(), problem);
        EXPECT_EQ(Draw(image, Bytes(100)), Pixels());
    }
}

// No memory is taken for pixels that a frame cannot have: the largest picture would need 12 GB.
TEST(FramePicture, FramesThatAreTooShort) {
    Image image = Describe(Photometric::kMonochrome2, 65535, 65535);
    EXPECT_EQ(Draw(image, Bytes(1000)), Pixels());
    image.fCoding = Coding::kRle;
    EXPECT_EQ(Draw(image, Rle({Bytes(1000, 0x81)})), Pixels());
    image.fCoding = Coding::kJpeg;
    EXPECT_EQ(Draw(image, Bytes(1000)), Pixels());
    image = Describe(Photometric::kMonochrome2, 65535, 65535, 1);
    EXPECT_EQ(Draw(image, Bytes(1000)), Pixels());
    EXPECT_EQ(Draw(DescribeColors(Photometric::kYbrFull422, 3, 1), Bytes(7)), Pixels());
    EXPECT_EQ(Draw(DescribeColors(Photometric::kRgb, 3, 1, 16), Bytes(17)), Pixels());
}

// Else a loop would flicker.
TEST(FramePicture, AllFramesHaveTheSameShades) {
    FramePicture picture(Describe(Photometric::kMonochrome2, 2, 1, 12));
    EXPECT_EQ(PixelsOf(picture.Draw(Words({0, 819}))->GetBytes()), Grays({0, 51}));
    EXPECT_EQ(PixelsOf(picture.Draw(Words({819, 1638}))->GetBytes()), Grays({51, 102}));
    EXPECT_EQ(picture.Draw(Words({20})), nullptr);
    EXPECT_EQ(PixelsOf(picture.Draw(Words({4095, 4095}))->GetBytes()), Grays({255, 255}));
}

}  // namespace
