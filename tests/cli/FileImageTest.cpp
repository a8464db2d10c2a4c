// The image control over DICOM files, saved more than once: what a copy was told stays with the copy.

#include "cli/FileImage.h"

#include <gtest/gtest.h>

#include "dicom/TFileRewrite.h"
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

}  // namespace
