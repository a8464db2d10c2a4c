// Arbitrary bytes as an image file that is saved with other attributes, as a copy or in its own place. What
// is written is a file with these attributes and the same pixel data, which saving once more does not change;
// without success the source stays as it was, and there is no copy.

#include <memory>
#include <optional>
#include <string>

#include "dicom/TFileRewrite.h"
#include "dicom/TImageFile.h"
#include "fuzz/FuzzInput.h"
#include "platform/CodePage.h"
#include "platform/FileSystem.h"
#include "tests/support/TestFolder.h"
#include "wrappers/DicomFileInfo.h"
#include "wrappers/ImageFileEditor.h"

namespace {

using VantorFuzz::Require;
using VantorFuzz::Run;
using VantorTest::Bytes;
using VantorWrappers::ImageFileEditor;
using Attribute = ImageFileEditor::Attribute;

constexpr wchar_t kNumber[] = L"N7";
constexpr wchar_t kInstanceUID[] = L"1.2.3.4.5";

// How an image is saved, by the input's first byte.
struct Order {
    explicit Order(uint8_t choice)
        : fLevel(choice % 3), fSetsTexts((choice & 4) != 0), fIsInPlace((choice & 8) != 0) {}

    int32_t fLevel;
    bool fSetsTexts;
    bool fIsInPlace;
};

void Apply(const Order& order, ImageFileEditor& editor) {
    if (order.fSetsTexts) {
        editor.Set(Attribute::kPatientID, kNumber);
        editor.Set(Attribute::kInstanceUID, kInstanceUID);
        editor.Set(Attribute::kPatientName, L"M\u00FCller^A");
        editor.Set(Attribute::kStudyDescription, L"");
        editor.Set(Attribute::kImageNumber, L"17");
    }
    if (order.fLevel != 0) editor.DeIdentify(order.fLevel);
}

bool Save(const Order& order, const std::string& from, const std::string& to) {
    using Vantor::Platform::ToHostText;
    ImageFileEditor editor(ToHostText(from), std::make_shared<VantorWrappers::SavedImages>());
    Apply(order, editor);
    if (editor.BeginWriting(ToHostText(to)) != 0) return false;
    for (int32_t left = editor.GetFramesLeft(); left > 0; left = editor.GetFramesLeft()) {
        if (editor.WriteNext() != 0) return false;
    }
    return true;
}

// Elements are only found where they stand in the order of their tags.
bool CanFindElements(const std::string& path) {
    bool isInOrder = false;
    Run([&] {
        VantorWrappers::DicomFileInfo(Vantor::Platform::ToHostText(path)).Read();
        const Vantor::TFileRewrite file(path);
        Vantor::ElementReader reader(file.GetElements(), file.GetEncoding());
        std::optional<Vantor::Tag> before;
        while (const auto element = reader.PeekHeader()) {
            if (before && !(*before < element->fTag)) return;
            before = element->fTag;
            reader.Skip(*element);
        }
        isInOrder = true;
    });
    return isInOrder;
}

// None where the file has no pixel data that can be found.
std::optional<Bytes> PixelsOf(const std::string& path) {
    std::optional<Bytes> pixels;
    Run([&] {
        Vantor::TImageFile image(0, Vantor::TFileSpec(path), 0);
        image.ReadAllButPixels();
        Bytes bytes;
        if (image.ReadPixelData(0, image.GetPixelDataLength(), bytes)) pixels = bytes;
    });
    return pixels;
}

void CheckAttributes(const std::string& path) {
    VantorWrappers::DicomFileInfo info(Vantor::Platform::ToHostText(path));
    try {
        info.Read();
        Require(info.GetPatientId() == kNumber && info.GetUID() == kInstanceUID);
        Require(info.GetImageNumber() == 17);
    } catch (Vantor::TException* thrown) {
        delete thrown;
        Require(false);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    static const VantorTest::TestFolder folder;
    const Order order(data[0]);
    const Bytes content(data + 1, data + size);
    const std::string source = folder.WriteFile("source", content);
    const std::string target = order.fIsInPlace ? source : folder.PathOf("copy");
    const std::optional<Bytes> pixels = PixelsOf(source);
    const bool canFind = CanFindElements(source);
    const bool isSaved = Save(order, source, target);
    if (!isSaved || !order.fIsInPlace) Require(VantorTest::ReadWholeFile(source) == content);
    if (isSaved) {
        const Bytes saved = VantorTest::ReadWholeFile(target);
        if (order.fSetsTexts && canFind) CheckAttributes(target);
        if (order.fLevel == 0) Require(PixelsOf(target) == pixels);
        Require(Save(order, target, target));
        if (order.fLevel == 0) Require(VantorTest::ReadWholeFile(target) == saved);
        Vantor::Platform::RemoveFile(target);
    }
    Require(folder.ListFiles().size() <= 1);
    return 0;
}
