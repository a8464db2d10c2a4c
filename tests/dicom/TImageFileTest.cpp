// Finding an image's pixels and frames without reading them: in whole files, behind views and streams that
// end early, and in damaged files.

#include "dicom/TImageFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "platform/MappedFile.h"
#include "tests/support/DicomSupport.h"
#include "tests/support/FileBuilder.h"
#include "tests/support/MemoryStorage.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

constexpr const char* kExplicit = Uids::kExplicitVRLittleEndian;
constexpr const char* kImplicit = Uids::kImplicitVRLittleEndian;
constexpr char kJpeg[] = "1.2.840.10008.1.2.4.50";
constexpr char kNoImage[] = "102 Invalid Dicom Image File";
constexpr Tag kPrivate{0x0029, 0x1000};
constexpr int64_t kSmallView = 0x400;
constexpr int32_t kLoaded = 1;
constexpr int32_t kNotLoaded = -1;

// ---- Files ----

// Bytes that are nowhere an item tag, and in no long part like another.
Bytes Pixels(size_t length) {
    Bytes bytes(length);
    for (size_t i = 0; i < length; ++i) bytes[i] = static_cast<uint8_t>((i * 7 + i / 251) % 251);
    return bytes;
}

ElementBuilder Native(const char* syntax = kExplicit) {
    return ElementBuilder(syntax).Value(Tags::kPixelData, Vr::kOW, Pixels(3000));
}

ElementBuilder Fragments(const std::vector<uint32_t>& table, size_t length = 1000) {
    return ElementBuilder().EncapsulatedPixels(table, {Pixels(length), Pixels(2 * length)});
}

// Three elements, one of them an icon with pixels of its own, then the pixels.
Bytes Image(const char* syntax, const char* frames, const ElementBuilder& pixels, size_t filler = 0) {
    FileBuilder file(syntax);
    const auto icon = ElementBuilder(syntax).Value(Tags::kPixelData, Vr::kOW, Pixels(4)).GetBytes();
    file.Data().Text(Tags::kNumberOfFrames, Vr::kIS, frames).Value(kPrivate, Vr::kUN, Bytes(filler));
    file.Data().Sequence({0x0088, 0x0200}, {icon}).Raw(pixels.GetBytes());
    return file.Build();
}

// The same with the pixels' value starting in the very middle: a view of half the file ends right behind the
// element's header.
Bytes Halved(const char* syntax, const char* frames, const ElementBuilder& pixels) {
    const size_t length = pixels.GetSize() - (std::string_view(syntax) == kImplicit ? 8 : 12);
    return Image(syntax, frames, pixels, 2 * length - Image(syntax, frames, pixels).size());
}

// Three elements, one of them as long as three large palettes, which a small view does not reach past.
Bytes Palettes(std::initializer_list<uint16_t> values, size_t filler = 0, const char* syntax = kExplicit) {
    FileBuilder file(syntax);
    const Tag tag = values.size() == 3 ? Tags::kRedPaletteDescriptor : Tags::kLargeRedPaletteDescriptor;
    file.Data().Numbers16(tag, Vr::kUS, values).Value({0x0028, 0x1201}, Vr::kOW, Bytes(3 * 0x20000));
    file.Data().Value(kPrivate, Vr::kUN, Bytes(filler)).Raw(Native(syntax).GetBytes());
    return file.Build();
}

// ---- What is told of a file ----

// What reading a file gives, or how it fails. "3: 3040/3040 2/5 @16 @1024 16+1008 1024+2008" is 3 elements,
// as many bytes of pixels and to the end of the file, as many frames and Number of Frames, where the
// encapsulated frames are as far as that is told before any is loaded (@0: it is not), and place and length
// of those of the first three frames that can be had. All places are counted from the pixels.
std::string ToldAt(const TFileSpec& spec, const Bytes& bytes) {
    TImageFile file(0, spec, 0);
    const std::string failure = ThrownBy([&] { file.ReadAllButPixels(); });
    if (failure != "nothing") return file.GetMetaDataSet() == nullptr ? failure : "left with " + failure;
    std::ostringstream told;
    const int64_t pixels = file.GetPixelDataOffset();
    told << file.GetDataSet()->CountElements() << ": " << file.GetPixelDataLength() << "/"
         << std::ssize(bytes) - pixels << " " << file.GetFrameCount() << "/" << file.GetNumberOfFrames();
    for (const int64_t at : file.GetFrameOffsets()) told << " @" << std::max<int64_t>(at - pixels, 0);
    for (int32_t frame = 1; frame <= std::min(file.GetFrameCount(), 3); ++frame) {
        if (file.LoadFrame(frame) != kLoaded) continue;
        const Bytes loaded(file.GetFrame(), file.GetFrame() + file.GetFrameLength());
        const auto place = std::search(bytes.begin() + pixels, bytes.end(), loaded.begin(), loaded.end());
        told << " " << place - bytes.begin() - pixels << "+" << loaded.size();
    }
    EXPECT_FALSE(file.IsOpen());
    return told.str();
}

class TImageFileTest : public testing::Test {
  protected:
    ~TImageFileTest() override { Platform::MappedFile::LimitViewSizeForTesting(0); }

    TFileSpec Put(const Bytes& bytes) {
        fStorage.SetContent("IMAGE", bytes);
        return TFileSpec("IMAGE", &fStorage);
    }
    std::string ToldInView(int64_t limit, const Bytes& bytes) {
        Platform::MappedFile::LimitViewSizeForTesting(limit);
        return ToldAt(TFileSpec(fFolder.WriteFile("IMAGE", bytes)), bytes);
    }
    std::string ToldInStream(const Bytes& bytes) { return ToldAt(Put(bytes), bytes); }
    // What is told of a file alike, whether it can be mapped whole, not quite, or not at all.
    std::string Told(const Bytes& bytes) {
        const std::string told = ToldInView(0, bytes);
        EXPECT_EQ(ToldInView(std::ssize(bytes) - 1, bytes), told);
        EXPECT_EQ(ToldInStream(bytes), told);
        return told;
    }

    TestFolder fFolder;
    MemoryStorage fStorage;
};

TEST_F(TImageFileTest, NativeFrames) {
    for (const auto& [syntax, isExplicit, isBigEndian] : kEncodings) {
        EXPECT_EQ(Told(Halved(syntax, "3", Native(syntax))), "3: 3000/3000 3/3 0+1000 1000+1000 2000+1000");
    }
    // The only frame goes to the end of the file, and so do pixels whose length a part does not tell.
    const Bytes padded = Image(kExplicit, "", Native().Text({0xFFFC, 0xFFFC}, Vr::kOB, "pad!"));
    EXPECT_EQ(ToldInView(0, padded), "3: 3000/3016 1/0 0+3016");
    EXPECT_EQ(ToldInView(kSmallView, padded), "3: 3016/3016 1/0 0+3016");
}

TEST_F(TImageFileTest, EncapsulatedFrames) {
    EXPECT_EQ(Told(Halved(kJpeg, "5", Fragments({0, 1008}))), "3: 3040/3040 2/5 @16 @1024 16+1008 1024+2008");
    EXPECT_EQ(Told(Halved(kJpeg, "1", Fragments({0}))), "3: 3036/3036 1/1 @12 12+3016");
    EXPECT_EQ(Told(Halved(kJpeg, "1", Fragments({}))), "3: 3032/3032 1/1 @8 8+3024");
    EXPECT_EQ(Told(Halved(kJpeg, "2", Fragments({}))), "3: 3032/3032 2/2 @8 @0 8+1008 1016+2008");
    // Without a table, frames can only be told when each is one fragment; tables may lead astray.
    EXPECT_EQ(Told(Halved(kJpeg, "3", Fragments({}))), "3: 3032/3032 3/3 @8 @0 @0");
    EXPECT_EQ(Told(Halved(kJpeg, "2", Fragments({1008, ~0u}))), "3: 3040/3040 2/2 @1024 @4294967311");
    // A table without entry, or that the file has no room for, counts as empty and costs no memory.
    for (const uint32_t length : {2u, 1008u, 0x7FFFFFF0u, 0x80000000u, 0xFFFFFFFFu}) {
        ElementBuilder table;
        table.Header(Tags::kPixelData, Vr::kOB, ~0u).ItemHeader(Tags::kItem, length).Raw(Pixels(2000));
        EXPECT_EQ(Told(Halved(kJpeg, "2", table)), "3: 2008/2008 2/2 @8 @0") << length;
    }
}

TEST_F(TImageFileTest, NumberOfFrames) {
    const auto told = [&](const char* number) { return ToldInView(0, Image(kExplicit, number, Native())); };
    EXPECT_EQ(told(" +2 "), "3: 3000/3000 2/2 0+1500 1500+1500");
    EXPECT_EQ(told("-4"), "3: 3000/3000 1/-4 0+3000");
    EXPECT_EQ(told("99999999999"), "3: 3000/3000 1/0 0+3000");
    EXPECT_EQ(told("1000000000"), "3: 3000/3000 1000000000/1000000000");
    // Encapsulated frames need memory: there are no more than the file has room for.
    EXPECT_EQ(ToldInView(0, Image(kJpeg, "999999999", Fragments({}, 3))), "3: 41/41 4/999999999 @8 @0 @0 @0");
}

TEST_F(TImageFileTest, PixelsBehindLargePalettes) {
    // What is read behind the palettes, less the data set's place in the file and the headers.
    const size_t room = 4096 - FileBuilder().GetDataOffset() - (8 + 6 + 3 * 12);
    EXPECT_EQ(ToldInView(kSmallView, Palettes({0, 0, 16}, room)), "3: 3000/3000 1/0 0+3000");
    EXPECT_EQ(ToldInView(kSmallView, Palettes({0, 0, 16}, room + 2)), kNoImage);
    EXPECT_EQ(ToldInView(kSmallView, Palettes({0, 0, 0, 16})), "3: 3000/3000 1/0 0+3000");
    // A long header is taken for granted: in implicit VR the pixels seem to start four bytes later.
    EXPECT_EQ(ToldInView(kSmallView, Palettes({0, 0, 16}, 0, kImplicit)), "3: 2996/2996 1/0 0+2996");
    EXPECT_EQ(ToldInView(kSmallView, Palettes({0, 0, 8})), kNoImage);
    EXPECT_EQ(ToldInView(kSmallView, Palettes({256, 0, 16})), kNoImage);
    EXPECT_EQ(ToldInView(kSmallView, Palettes({0, 1, 16})), kNoImage);
}

TEST_F(TImageFileTest, StreamIsReadByItsFirst6MiB) {
    const size_t filler = TImageFile::kStreamReadSize - (Image(kExplicit, "", Native()).size() - 3000);
    EXPECT_EQ(ToldInStream(Image(kExplicit, "", Native(), filler)), "3: 3000/3000 1/0 0+3000");
    EXPECT_EQ(ToldInStream(Image(kExplicit, "", Native(), filler + 2)), kNoImage);
}

TEST_F(TImageFileTest, WhatIsNoImageIsRefused) {
    const auto told = [&](const ElementBuilder& rest) { return ToldInView(0, Image(kExplicit, "1", rest)); };
    EXPECT_EQ(ToldInView(0, {}), "106 File Too Large");
    EXPECT_EQ(Told(Bytes(500)), "102 Invalid Dicom File");
    EXPECT_EQ(told(ElementBuilder()), kNoImage);
    EXPECT_EQ(told(ElementBuilder().Numbers16(Tags::kPixelData, Vr::kUS, {})), kNoImage);
    EXPECT_EQ(told(ElementBuilder().Header(kPrivate, Vr::kUT, 9999)), "102 Can't Process Dicom File");
}

// A cine loop of 1.5 GiB without content, which costs no room where a volume keeps holes.
TEST_F(TImageFileTest, LargeFileIsReadByItsStartAlone) {
    constexpr int64_t kSize = int64_t{3} << 29;
    TImageFile file(0, TFileSpec(fFolder.WriteFile("IMAGE", Image(kExplicit, "1536", Native()))), 0);
    std::filesystem::resize_file(file.GetFileSpec()->fPath, kSize);
    ASSERT_NE(file.GetDataSet(), nullptr);
    EXPECT_LT(file.GetDataSet()->GetDataSetSize(), 200);
    EXPECT_EQ(file.LoadFrame(1536), kLoaded);
    EXPECT_EQ(file.GetFrameLength(), (kSize - file.GetPixelDataOffset()) / 1536);
}

// ---- Asking again ----

// Viewers ask again and again for the frame that they show.
TEST_F(TImageFileTest, FrameThatCannotBeHadIsNotTriedAgain) {
    const Bytes image = Image(kExplicit, "3", Native());
    TImageFile file(0, Put(image), 0);
    file.OpenFile(Platform::FileAccess::kRead);
    Put(Bytes(image.begin(), image.end() - 1));  // it became shorter since
    for (const int32_t frame : {3, 4, -1, 2147483647}) {
        EXPECT_EQ(file.LoadFrame(frame), kNotLoaded) << frame;
        EXPECT_EQ(file.LoadFrame(frame), kLoaded) << frame;
        EXPECT_EQ(file.GetFrameLength(), 0) << frame;
        EXPECT_EQ(file.LoadFrame(0), kNotLoaded);
        EXPECT_EQ(file.LoadFrame(2), kLoaded);
        EXPECT_EQ(file.GetFrameLength(), 1000);
    }
    EXPECT_TRUE(file.IsOpen());
}

TEST_F(TImageFileTest, FailuresOfTheMediumAreTriedAgain) {
    TImageFile file(0, TFileSpec("IMAGE", &fStorage), 0);
    EXPECT_NE(ThrownBy([&] { file.LoadFrame(1); }), "nothing");
    Put(Image(kExplicit, "3", Native()));
    fStorage.FailOn(MemoryStorage::Fault::kRead);
    EXPECT_EQ(ThrownBy([&] { file.ReadAllButPixels(); }), "102 File System Error");
    fStorage.FailOn(MemoryStorage::Fault::kNone);
    ASSERT_NE(file.GetDataSet(), nullptr);
    fStorage.FailOn(MemoryStorage::Fault::kRead);
    EXPECT_EQ(ThrownBy([&] { file.LoadFrame(1); }).rfind("image data", 0), 0u);
    fStorage.FailOn(MemoryStorage::Fault::kNone);
    EXPECT_EQ(file.LoadFrame(1), kLoaded);
    EXPECT_EQ(file.GetFrameLength(), 1000);
}

// Who asks for the identity only is not to pay for more.
TEST_F(TImageFileTest, NothingIsReadAfterTheMetaInformation) {
    TImageFile file(0, Put(Image(kExplicit, "3", Native())), 0);
    file.OpenFile(Platform::FileAccess::kRead);
    file.ReadMetaHeader();
    EXPECT_EQ(file.GetDataSet(), nullptr);
}

// ---- Damage ----

// Only the library's own exceptions may come out of reading, loading and copying.
TEST_F(TImageFileTest, DamagedFilesFailSafely) {
    const TFileSpec copy("COPY", &fStorage);
    const auto use = [&](const Bytes& bytes) {
        ToldInStream(bytes);
        TImageFile file(0, TFileSpec("IMAGE", &fStorage), 0);
        ThrownBy([&] {
            int64_t frames = 0;
            file.BeginCopy(copy, frames);
            for (int32_t frame = 1; frame <= 4; ++frame) file.CopyNextChunk();
            file.EndCopy(&copy);
        });
    };
    const ElementBuilder native = ElementBuilder().Value(Tags::kPixelData, Vr::kOW, Pixels(60));
    for (const ElementBuilder& pixels : {native, Fragments({0, 18}, 10), Fragments({}, 10)}) {
        const Bytes good = Image(kJpeg, "2", pixels);
        for (size_t at = FileBuilder::kPreambleSize; at < good.size(); ++at) {
            use(Bytes(good.begin(), good.begin() + static_cast<ptrdiff_t>(at)));
            for (const int value : {good[at] ^ 0xFF, 0x00, 0x01, 0x7F, good[at] + 1}) {
                Bytes damaged = good;
                damaged[at] = static_cast<uint8_t>(value);
                use(damaged);
            }
        }
    }
}

}  // namespace
