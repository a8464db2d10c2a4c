// The image control over DICOM files: saved more than once, where what a copy was told stays with the copy;
// and what it shows.

#include "cli/FileImage.h"

#include <gtest/gtest.h>

#include "dicom/TFileRewrite.h"
#include "platform/Clipboard.h"
#include "platform/CodePage.h"
#include "tests/support/FileBuilder.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

TEST(FileImage, ACopyLeavesTheImageAsItsFileHasIt) {
    const TestFolder folder;
    FileBuilder file(Uids::kExplicitVRLittleEndian, FileBuilder::kSecondaryCapture, "1.2.3");
    file.Data()
        .Text(Tags::kSOPInstanceUID, Vr::kUI, "1.2.3")
        .Text(Tags::kPatientName, Vr::kPN, "Old^Name")
        .Value(Tags::kPixelData, Vr::kOB, BytesOf("pixels"));
    const std::string path = folder.WriteFile("image", file.Build());
    const std::wstring wide = Platform::ToHostText(path);
    VantorCli::FileImage image(wide, std::make_shared<VantorWrappers::SavedImages>());
    const auto saveInPlace = [&](const wchar_t* uid) {
        image.SetSCPathName(wide);
        if (uid != nullptr) image.SetInstanceUID(uid);
        image.SetImageNumber(5);
        EXPECT_EQ(image.SaveAs(), 0);
        EXPECT_TRUE(image.WaitUntilSaved());
    };
    const auto saveCopy = [&](const std::string& name, bool isPossible) {
        image.SetSCPathName(Platform::ToHostText(folder.PathOf(name)));
        image.SetInstanceUID(L"1.9");
        image.SetPatientName(L"New^Name");
        image.DeIdentifyImage(1);
        EXPECT_EQ(image.SaveAs() == 0, isPossible);
        EXPECT_EQ(image.WaitUntilSaved(), isPossible);
        EXPECT_EQ(image.GetInstanceUID(), L"1.9") << "a saver asks what it has saved";
    };
    const auto expectFile = [&](const std::string& uid) {
        const TFileRewrite saved(path);
        EXPECT_EQ(saved.GetText(Tags::kPatientName), "Old^Name");
        EXPECT_EQ(saved.GetText(Tags::kSOPInstanceUID), uid);
        EXPECT_EQ(image.GetInstanceUID(), Platform::ToHostText(uid));
    };
    saveCopy("copy", true);
    EXPECT_EQ(TFileRewrite(folder.PathOf("copy")).GetText(Tags::kPatientName), "New^Name");
    saveInPlace(nullptr);
    expectFile("1.2.3");
    saveInPlace(L"1.2.4");
    expectFile("1.2.4");
    saveCopy("no folder/copy", false);
    saveInPlace(nullptr);
    expectFile("1.2.4");
}

// A loop of two pixels a frame, each frame as bright as its number times ten.
std::string WriteLoop(const TestFolder& folder, const char* comment = "") {
    FileBuilder file(Uids::kExplicitVRLittleEndian, FileBuilder::kSecondaryCapture, "1.2.3");
    file.Data()
        .Text(Tags::kSOPInstanceUID, Vr::kUI, "1.2.3")
        .Text(Tags::kPatientName, Vr::kPN, comment)
        .Text(Tags::kFrameTime, Vr::kDS, "20")
        .Numbers16(Tags::kSamplesPerPixel, Vr::kUS, {1})
        .Text(Tags::kPhotometricInterpretation, Vr::kCS, "MONOCHROME2")
        .Text(Tags::kNumberOfFrames, Vr::kIS, "3")
        .Numbers16(Tags::kRows, Vr::kUS, {1})
        .Numbers16(Tags::kColumns, Vr::kUS, {2})
        .Numbers16(Tags::kBitsAllocated, Vr::kUS, {8})
        .Value(Tags::kPixelData, Vr::kOB, {10, 10, 20, 20, 30, 30});
    return folder.WriteFile("loop", file.Build());
}

// The first pixel of what is shown; −1 when nothing is.
int Show(VantorCli::FileImage& image, int32_t frame) {
    Platform::ClearClipboard();
    image.SetCurrentFrame(frame);
    int shown = -1;
    const bool isDone = image.BitmapToClipboard();
    const bool isThere = Platform::UseBitmapOnClipboard([&](const uint8_t* bytes, size_t size) {
        constexpr size_t kHeaderSize = 40;
        if (size > kHeaderSize) shown = bytes[kHeaderSize];
    });
    EXPECT_EQ(isDone, isThere);
    return shown;
}

TEST(FileImage, ShowsItsFrames) {
    const TestFolder folder;
    VantorCli::FileImage image(Platform::ToHostText(WriteLoop(folder)),
                               std::make_shared<VantorWrappers::SavedImages>());
    int listened = 0;
    image.SetFrameListener([&listened] { ++listened; });
    EXPECT_EQ(image.GetNumberOfFrames(), 3);
    EXPECT_EQ(image.GetImageWidth(), 2);
    EXPECT_EQ(image.GetImageHeight(), 1);
    EXPECT_EQ(image.GetCycleLength(), 60);
    for (const int32_t frame : {1, 3, 3, 2, 1}) EXPECT_EQ(Show(image, frame), 10 * frame);
    EXPECT_EQ(image.GetPictureProblem(), "");
    for (const int32_t frame : {0, 4, 5}) EXPECT_EQ(Show(image, frame), -1);
    EXPECT_EQ(image.GetPictureProblem(), "frame 0 is damaged or missing");
    EXPECT_EQ(Show(image, 2), 20);
    EXPECT_EQ(listened, 9);
}

TEST(FileImage, ShowsNothingOfAFileWithoutAPicture) {
    const TestFolder folder;
    for (const std::string& path : {folder.WriteFile("text", "no DICOM file"), folder.PathOf("missing")}) {
        VantorCli::FileImage image(Platform::ToHostText(path),
                                   std::make_shared<VantorWrappers::SavedImages>());
        EXPECT_EQ(image.GetImageWidth(), 0);
        EXPECT_EQ(image.GetImageHeight(), 0);
        EXPECT_EQ(image.GetCycleLength(), 0);
        EXPECT_EQ(Show(image, 1), -1);
    }
}

// Its frames are further behind in the file then.
TEST(FileImage, ShowsTheSameWhenItWasSaved) {
    const TestFolder folder;
    const std::wstring path = Platform::ToHostText(WriteLoop(folder));
    VantorCli::FileImage image(path, std::make_shared<VantorWrappers::SavedImages>());
    EXPECT_EQ(Show(image, 1), 10);
    image.SetPatientName(L"A name that is much longer than the one before");
    EXPECT_EQ(image.SaveAs(), 0);
    EXPECT_EQ(Show(image, 2), 20);
    EXPECT_TRUE(image.WaitUntilSaved());
    EXPECT_EQ(Show(image, 3), 30);
}

// Thousands of images are saved at once; those that nobody looks at are not opened once more. On Windows an
// open file could not be removed.
TEST(FileImage, IsNotReadUntilItIsShown) {
    const TestFolder folder;
    const std::string path = WriteLoop(folder);
    VantorCli::FileImage image(Platform::ToHostText(path), std::make_shared<VantorWrappers::SavedImages>());
    WriteLoop(folder, "Another^Name^Since");
    EXPECT_EQ(Show(image, 3), 30);
    EXPECT_TRUE(std::filesystem::remove(path));
    EXPECT_EQ(Show(image, 3), 30) << "as it was";
    EXPECT_EQ(Show(image, 1), -1);
}

}  // namespace
