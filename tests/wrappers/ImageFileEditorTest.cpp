// The files of images written again: what changes, what stays byte for byte, and what is there when it fails.

#include "wrappers/ImageFileEditor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "dicom/TDataSetEdit.h"
#include "dicom/TFileRewrite.h"
#include "platform/CodePage.h"
#include "platform/File.h"
#include "tests/support/FileBuilder.h"
#include "wrappers/DicomFileInfo.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using VantorWrappers::HostString;
using VantorWrappers::ImageFileEditor;
using VantorWrappers::SavedImages;
using Attribute = ImageFileEditor::Attribute;

constexpr char kJpeg[] = "1.2.840.10008.1.2.4.50";
constexpr char kDeflated[] = "1.2.840.10008.1.2.1.99";
constexpr Tag kImplementationVersion = Tags::kImplementationVersionName;
constexpr Tag kPadding{0xFFFC, 0xFFFC};

HostString Wide(const std::string& text) { return Platform::ToHostText(text); }

int32_t WriteAll(ImageFileEditor& editor, const std::string& path) {
    int32_t error = editor.BeginWriting(Wide(path));
    while (error == 0 && editor.GetFramesLeft() > 0) error = editor.WriteNext();
    return error;
}

bool Ends(const Bytes& whole, const Bytes& end) {
    return whole.size() > end.size() && std::equal(end.rbegin(), end.rend(), whole.rbegin());
}

class ImageFileEditorTest : public testing::Test {
  protected:
    // An image with the number as the end of its UID, which refers to others.
    std::string WriteImage(int number, const std::vector<int>& references = {},
                           const char* syntax = Uids::kExplicitVRLittleEndian) {
        const std::string uid = UidOf(number);
        FileBuilder file(syntax, FileBuilder::kSecondaryCapture, uid);
        file.Meta()
            .Text({0x0002, 0x0005}, Vr::kLO, "47-11")
            .Text(kImplementationVersion, Vr::kSH, "ANOTHER 1.0");
        std::vector<Bytes> items;
        items.reserve(references.size());
        for (const int reference : references) {
            items.push_back(ElementBuilder(syntax)
                                .Text(Tags::kReferencedSOPInstanceUID, Vr::kUI, UidOf(reference))
                                .GetBytes());
        }
        file.Data()
            .Text(Tags::kSpecificCharacterSet, Vr::kCS, fCharacterSet)
            .Text(Tags::kSOPClassUID, Vr::kUI, FileBuilder::kSecondaryCapture)
            .Text(Tags::kSOPInstanceUID, Vr::kUI, uid)
            .Text(Tags::kReferringPhysicianName, Vr::kPN, fPhysician);
        if (!items.empty())
            file.Data().Sequence(Tags::kSourceImageSequence, items, ElementBuilder::Lengths::kUndefined);
        file.Data()
            .Text(Tags::kPatientName, Vr::kPN, fName)
            .Text(Tags::kPatientID, Vr::kLO, "47-11-0815")
            .Text(Tags::kStudyInstanceUID, Vr::kUI, "1.2.3.1")
            .Text(Tags::kSeriesInstanceUID, Vr::kUI, "1.2.3.2")
            .Text(Tags::kNumberOfFrames, Vr::kIS, "3");
        ElementBuilder end(syntax);
        if (syntax == kJpeg) {
            end.EncapsulatedPixels({}, {BytesOf("one "), BytesOf("two "), BytesOf("three ")});
        } else {
            end.Value(Tags::kPixelData, Vr::kOB, BytesOf("pixels of three frames"));
        }
        fPixels = end.GetBytes();
        end.Value(kPadding, Vr::kOB, BytesOf("47-11-0815."));
        fPixelsAndRest = end.GetBytes();
        file.Data().Raw(fPixelsAndRest);
        return fFolder.WriteFile(std::to_string(number), file.Build());
    }
    static std::string UidOf(int number) { return "1.2.3.3." + std::to_string(number); }
    static std::string TextIn(const std::string& path, Tag tag) { return TFileRewrite(path).GetText(tag); }

    // The UIDs that an image refers to.
    static std::vector<std::string> ReferencesIn(const std::string& path) {
        std::vector<std::string> uids;
        TDataSetEdit walk;
        walk.SetRule([&](const TDataSetEdit::Element& element) {
            if (element.fTag == Tags::kReferencedSOPInstanceUID) {
                uids.emplace_back(element.fValue.substr(0, element.fValue.find('\0')));
            }
            return TDataSetEdit::Fate::Keep();
        });
        const TFileRewrite file(path);
        walk.Apply(file.GetElements(), file.GetEncoding());
        return uids;
    }

    TestFolder fFolder;
    std::string fCharacterSet = "ISO_IR 6";
    std::string fPhysician = "Dr^No";
    std::string fName = "Old^Name";
    Bytes fPixels;
    Bytes fPixelsAndRest;
    std::shared_ptr<SavedImages> fSaved = std::make_shared<SavedImages>();
};

TEST_F(ImageFileEditorTest, ChangesWhatItIsToldAndNothingElse) {
    for (const char* syntax :
         {Uids::kExplicitVRLittleEndian, Uids::kImplicitVRLittleEndian, Uids::kExplicitVRBigEndian, kJpeg}) {
        const std::string path = WriteImage(1, {9}, syntax);
        const Bytes before = ReadWholeFile(path);
        ImageFileEditor unchanged(Wide(path), fSaved);
        EXPECT_EQ(WriteAll(unchanged, path), 0) << syntax;
        EXPECT_EQ(TFileRewrite(path).GetElements(), [&] {
            const std::string other = fFolder.WriteFile("other", before);
            return TFileRewrite(other).GetElements();
        }()) << syntax;

        ImageFileEditor editor(Wide(path), fSaved);
        EXPECT_EQ(editor.GetNumberOfFrames(), 3);
        EXPECT_EQ(editor.GetClassUID(), Wide(FileBuilder::kSecondaryCapture));
        editor.Set(Attribute::kPatientName, L"New^Name");
        editor.Set(Attribute::kInstanceUID, L"1.2.9");
        editor.Set(Attribute::kAccessionNumber, L"longer than sixteen");
        editor.Set(Attribute::kPatientID, L"");
        EXPECT_EQ(WriteAll(editor, path), 0) << syntax;
        EXPECT_TRUE(Ends(ReadWholeFile(path), fPixelsAndRest)) << syntax;
        const TFileRewrite file(path);
        EXPECT_EQ(file.GetText(Tags::kPatientName), "New^Name");
        EXPECT_EQ(file.GetText(Tags::kPatientID), "");
        EXPECT_EQ(file.GetText(Tags::kAccessionNumber), "longer than sixt");
        EXPECT_EQ(file.GetText(Tags::kReferringPhysicianName), "Dr^No");
        EXPECT_EQ(file.GetText(Tags::kSOPInstanceUID), "1.2.9");
        EXPECT_EQ(file.GetMetaText(Tags::kMediaStorageSOPInstanceUID), "1.2.9");
        EXPECT_EQ(file.GetMetaText(Tags::kTransferSyntaxUID), syntax);
        EXPECT_EQ(file.GetMetaText(Tags::kImplementationClassUID), Uids::kImplementationClass);
        EXPECT_EQ(file.GetMetaText(kImplementationVersion), "") << "of the program that wrote the old file";
        EXPECT_EQ(ReferencesIn(path), (std::vector<std::string>{UidOf(9)}));
    }
}

TEST_F(ImageFileEditorTest, DeIdentifiesWhatIsNotSet) {
    for (const char* syntax : {Uids::kExplicitVRBigEndian, kJpeg}) {
        const std::string path = WriteImage(1, {1}, syntax);
        ImageFileEditor editor(Wide(path), fSaved);
        editor.Set(Attribute::kStudyUID, L"1.2.3.1");
        editor.DeIdentify(2);
        const std::string copy = fFolder.PathOf("copy");
        EXPECT_EQ(WriteAll(editor, copy), 0);
        const Bytes bytes = ReadWholeFile(copy);
        EXPECT_TRUE(Ends(bytes, fPixels)) << "nothing behind the pixels";
        for (const std::string trace : {"47-11", "Old", "No", "1.2.3.2", "1.2.3.3"}) {
            const Bytes text = BytesOf(trace);
            EXPECT_EQ(std::search(bytes.begin(), bytes.end(), text.begin(), text.end()), bytes.end())
                << trace;
        }
        const TFileRewrite file(copy);
        EXPECT_EQ(file.GetText(Tags::kStudyInstanceUID), "1.2.3.1") << "set by the host";
        const std::string uid = file.GetText(Tags::kSOPInstanceUID);
        EXPECT_EQ(ReferencesIn(copy), (std::vector<std::string>{uid})) << "to itself";
        EXPECT_EQ(file.GetMetaText(Tags::kMediaStorageSOPInstanceUID), uid);
        EXPECT_EQ(TextIn(path, Tags::kPatientID), "47-11-0815") << "the source is untouched";
    }
}

// No reader does without them, and writers have given them other VRs.
TEST_F(ImageFileEditorTest, DeIdentifiedFilesKeepWhatTheyAreReadBy) {
    constexpr VrCode kOtherVr = MakeVr('T', 'I');
    FileBuilder file;
    file.ReplaceMeta(ElementBuilder()
                         .Text(Tags::kMediaStorageSOPClassUID, kOtherVr, FileBuilder::kSecondaryCapture)
                         .Text(Tags::kTransferSyntaxUID, Vr::kLO, Uids::kExplicitVRLittleEndian));
    file.Data().Text(Tags::kPatientID, Vr::kLO, "47-11-0815");
    const std::string path = fFolder.WriteFile("image", file.Build());
    ImageFileEditor editor(Wide(path), fSaved);
    editor.Set(Attribute::kPatientID, L"N7");
    editor.DeIdentify(1);
    ASSERT_EQ(WriteAll(editor, path), 0);
    VantorWrappers::DicomFileInfo saved(Wide(path));
    saved.Read();
    EXPECT_EQ(saved.GetPatientId(), L"N7");
    const TFileRewrite rewrite(path);
    EXPECT_EQ(rewrite.GetMetaText(Tags::kMediaStorageSOPClassUID), FileBuilder::kSecondaryCapture);
    EXPECT_EQ(rewrite.GetMetaText(Tags::kTransferSyntaxUID), Uids::kExplicitVRLittleEndian);
}

TEST_F(ImageFileEditorTest, FilesWithoutUidGetOneEverywhere) {
    FileBuilder file;
    file.ReplaceMeta(ElementBuilder()
                         .Text(Tags::kMediaStorageSOPClassUID, Vr::kUI, FileBuilder::kSecondaryCapture)
                         .Text(Tags::kTransferSyntaxUID, Vr::kUI, Uids::kExplicitVRLittleEndian));
    file.Data().Text(Tags::kPatientID, Vr::kLO, "47-11-0815");
    const std::string path = fFolder.WriteFile("image", file.Build());
    ImageFileEditor editor(Wide(path), fSaved);
    editor.Set(Attribute::kInstanceUID, L"1.2.3.4");
    ASSERT_EQ(WriteAll(editor, path), 0);
    const TFileRewrite saved(path);
    EXPECT_EQ(saved.GetText(Tags::kSOPInstanceUID), "1.2.3.4");
    EXPECT_EQ(saved.GetMetaText(Tags::kMediaStorageSOPInstanceUID), "1.2.3.4");
}

// The first image names two that are written later, one of which fails.
TEST_F(ImageFileEditorTest, ReferencesFollowTheImagesThatAreSaved) {
    for (const bool isAnonymous : {false, true}) {
        fSaved = std::make_shared<SavedImages>();
        const std::vector<std::string> paths = {WriteImage(1, {2, 3, 2, 7}), WriteImage(2, {1}),
                                                WriteImage(3)};
        std::vector<std::unique_ptr<ImageFileEditor>> editors;
        for (const std::string& path : paths) {
            editors.push_back(std::make_unique<ImageFileEditor>(Wide(path), fSaved));
            editors.back()->Set(Attribute::kInstanceUID, L"1.9." + std::to_wstring(editors.size()));
            if (isAnonymous) editors.back()->DeIdentify(1);
        }
        EXPECT_EQ(WriteAll(*editors[0], paths[0]), 0);
        EXPECT_EQ(WriteAll(*editors[1], paths[1]), 0);
        std::filesystem::remove(paths[2]);
        EXPECT_NE(WriteAll(*editors[2], paths[2]), 0);
        EXPECT_EQ(fSaved->Finish(), 0);
        EXPECT_EQ(ReferencesIn(paths[1]), (std::vector<std::string>{"1.9.1"}));
        const std::vector<std::string> first = ReferencesIn(paths[0]);
        ASSERT_EQ(first.size(), 4U);
        EXPECT_EQ(first[0] + " " + first[2], "1.9.2 1.9.2");
        EXPECT_EQ(first[1] == UidOf(3), !isAnonymous);
        EXPECT_EQ(first[3] == UidOf(7), !isAnonymous);
        EXPECT_TRUE(Ends(ReadWholeFile(paths[0]), isAnonymous ? fPixels : fPixelsAndRest));
        EXPECT_EQ(fSaved->Finish(), 0) << "nothing is left to do";
    }
}

// As a host does that goes on with the same images: what was saved in place has new UIDs now, and a copy has
// nothing to do with what is saved later.
TEST_F(ImageFileEditorTest, ReferencesFollowWhenImagesAreSavedAgain) {
    const std::vector<std::string> paths = {WriteImage(1, {2}), WriteImage(2, {1})};
    std::vector<std::unique_ptr<ImageFileEditor>> editors(2);
    const auto open = [&](size_t i) { return std::make_unique<ImageFileEditor>(Wide(paths[i]), fSaved); };
    for (const size_t i : {0U, 1U}) editors[i] = open(i);
    for (const std::string series : {"1.9.", "1.8.", "copy", ""}) {
        const bool isCopy = series == "copy";
        for (const size_t i : {0U, 1U}) {
            const std::string number = std::to_string(i + 1);
            if (editors[i] == nullptr) editors[i] = open(i);
            if (!series.empty()) editors[i]->Set(Attribute::kInstanceUID, Wide("1.7." + number));
            if (series.ends_with('.')) editors[i]->Set(Attribute::kInstanceUID, Wide(series + number));
            EXPECT_EQ(WriteAll(*editors[i], isCopy ? fFolder.PathOf(number + "copy") : paths[i]), 0);
            editors[i].reset();
        }
        EXPECT_EQ(fSaved->Finish(), 0);
        const std::string now = series == "1.9." ? series : "1.8.";
        EXPECT_EQ(ReferencesIn(paths[0]), (std::vector<std::string>{now + "2"})) << series;
        EXPECT_EQ(ReferencesIn(paths[1]), (std::vector<std::string>{now + "1"})) << series;
    }
}

TEST_F(ImageFileEditorTest, FindsACharacterSetForItsTexts) {
    constexpr char kCyrillic[] = "\xB6\xE3\xDA^\xB8\xD2";
    const std::string longName = std::string(30, 'A') + "^" + std::string(40, '\xB6');
    struct Case {
        std::string fSet;
        std::string fPhysician;
        std::string fName;
        HostString fText;  // for the name; none when it is set as hosts see it
        HostString fDescription;
        std::string fNewSet;  // none when the file cannot be written
        std::string fNewName;
        std::string fNewDescription;
    };
    const std::string japanese = "ISO 2022 IR 100\\ISO 2022 IR 87";
    const Case cases[] = {
        {"ISO_IR 100", "M\xFCller", "", L"J\xFCrgen", L"", "ISO_IR 100", "J\xFCrgen", ""},
        {"ISO 2022 IR 100", "M\xFCller", "", L"J\xFCrgen", L"", "ISO 2022 IR 100", "J\xFCrgen", ""},
        {japanese, "\x1B$B;3\x1B(B", "", L"J\xFCrgen", L"", japanese, "J\xFCrgen", ""},
        {"ISO_IR 192", "M\xC3\xBCller", "", L"J\xFCrgen", L"", "ISO_IR 192", "J\xC3\xBCrgen", ""},
        {"", "Dr", "", L"J\xFCrgen", L"", "ISO_IR 100", "J\xFCrgen", ""},
        {"", "M\xFCller", "", L"J\xFCrgen", L"", "ISO_IR 100", "J\xFCrgen", ""},
        {"", "M\xC3\xBCller", "", L"J\xFCrgen", L"", "ISO_IR 192", "J\xC3\xBCrgen", ""},
        {"", "\xE6\x97\xA5\xF0\xA0\xAE\xB7", "", L"J\xFCrgen", L"", "ISO_IR 192", "J\xC3\xBCrgen", ""},
        {"", "\xC3\xBC\xE6\x97", "", L"J\xFCrgen", L"", "", "", ""},
        {"", "\x1B$B;3\x1B(B", "", L"J\xFCrgen", L"", "", "", ""},
        {"", "\x8E\x52", "", L"J\xFCrgen", L"", "", "", ""},
        {"ISO_IR 144", "Dr", "", L"\x65E5\x672C", L"", "ISO_IR 192", "\xE6\x97\xA5\xE6\x9C\xAC", ""},
        {"ISO_IR 144", "\xB8\xD2", "", L"J\xFCrgen", L"", "", "", ""},  // the physician needs his
        {"ISO_IR 144", "\xB8\xD2", "", L"Plain", L"", "ISO_IR 144", "Plain", ""},
        // What hosts only hand on.
        {"ISO_IR 144", "Dr", kCyrillic, L"", L"", "ISO_IR 144", kCyrillic, ""},
        {"ISO_IR 144", "\xB8\xD2", "\xB6\xE3\xDA^^", Wide("\xB6\xE3\xDA"), L"", "ISO_IR 144", "\xB6\xE3\xDA",
         ""},
        {"ISO_IR 144", "Dr", longName, Wide(longName.substr(0, 64)), L"", "ISO_IR 144", longName, ""},
        {"", "Dr", "\x8E\x52", L"", L"", "none", "\x8E\x52", ""},
        {"GB18030", "Dr", "Wang=\xCD\xF5", L"", L"Plain", "GB18030", "Wang=\xCD\xF5", "Plain"},
        {"GB18030", "Dr", "Wang=\xCD\xF5", L"", L"J\xFCrgen", "", "", ""},
        {"ISO_IR 100", "Dr", "M\xFCller", L"", L"\xD6l", "ISO_IR 100", "M\xFCller", "\xD6l"},
        {"ISO_IR 100", "Dr", "M\xFCller", L"", L"\x65E5\x672C", "", "", ""},
    };
    for (const Case& each : cases) {
        fCharacterSet = each.fSet;
        fPhysician = each.fPhysician;
        fName = each.fName;
        for (const char* syntax : {Uids::kExplicitVRLittleEndian, Uids::kImplicitVRLittleEndian}) {
            const std::string path = WriteImage(1, {}, syntax);
            const Bytes before = ReadWholeFile(path);
            ImageFileEditor editor(Wide(path), fSaved);
            editor.Set(Attribute::kPatientName, each.fText.empty() ? Wide(each.fName) : each.fText);
            editor.Set(Attribute::kStudyDescription, each.fDescription);
            const bool isWritten = !each.fNewSet.empty();
            ASSERT_EQ(WriteAll(editor, path), isWritten ? 0 : ImageFileEditor::kCharacterSet) << each.fName;
            EXPECT_EQ(TextIn(path, Tags::kReferringPhysicianName), each.fPhysician);
            if (!isWritten) {
                EXPECT_EQ(ReadWholeFile(path), before);
                continue;
            }
            const std::string set = TextIn(path, Tags::kSpecificCharacterSet);
            EXPECT_EQ(set.empty() ? "none" : set, each.fNewSet) << each.fNewName;
            EXPECT_EQ(TextIn(path, Tags::kPatientName), each.fNewName);
            EXPECT_EQ(TextIn(path, Tags::kStudyDescription), each.fNewDescription);
        }
    }
}

TEST_F(ImageFileEditorTest, CountsFramesDown) {
    struct Case {
        int32_t fFrames;
        int32_t fCounts;  // that are seen
        size_t fSize;
    };
    constexpr Case kCases[] = {{10, 10, 1 << 20}, {2, 2, 10 << 20},          {3000, 3000, 1000003},
                               {9, 9, 4},         {2000000000, 70000, 4000}, {2147483647, 70000, 4001}};
    for (const auto& [frames, counts, size] : kCases) {
        FileBuilder file;
        file.Data().Text(Tags::kNumberOfFrames, Vr::kIS, std::to_string(frames));
        Bytes pixels(size);
        for (size_t i = 0; i < size; i += 1000) pixels[i] = static_cast<uint8_t>(i / 1000);
        file.Data().Value(Tags::kPixelData, Vr::kOB, pixels);
        const std::string path = fFolder.WriteFile("loop", file.Build());
        const std::string copy = fFolder.PathOf("copy");
        ImageFileEditor editor(Wide(path), fSaved);
        EXPECT_EQ(editor.GetFramesLeft(), 0);
        EXPECT_EQ(editor.BeginWriting(Wide(copy)), 0);
        std::vector<int32_t> left;
        while (editor.GetFramesLeft() > 0) {
            if (left.empty() || editor.GetFramesLeft() != left.back()) left.push_back(editor.GetFramesLeft());
            ASSERT_EQ(editor.WriteNext(), 0);
        }
        ASSERT_LE(left.size(), static_cast<size_t>(counts));
        EXPECT_EQ(left.front(), frames);
        if (frames == counts && size > static_cast<size_t>(frames)) {
            ASSERT_EQ(left.size(), static_cast<size_t>(frames));
            for (size_t i = 0; i < left.size(); ++i) EXPECT_EQ(left[i], frames - static_cast<int32_t>(i));
        }
        EXPECT_TRUE(Ends(ReadWholeFile(copy), pixels));
    }
}

// What comes behind is known to be no pixels only if their end is known.
TEST_F(ImageFileEditorTest, DeIdentifiesPixelsOfUndefinedLengthByTheirItems) {
    constexpr uint32_t kUndefined = 0xFFFFFFFF;
    for (const bool hasItems : {true, false}) {
        FileBuilder file(kJpeg);
        file.Data().Header(Tags::kPixelData, Vr::kOB, kUndefined);
        if (hasItems) file.Data().ItemHeader(Tags::kItem, 4).Raw(BytesOf("item"));
        // Nobody has to have room for what a damaged delimiter asks for.
        file.Data().ItemHeader(hasItems ? Tags::kSequenceDelimitation : Tag{0x4141, 0x4141}, 0xFFFFFFF0);
        const std::string path = fFolder.WriteFile("image", file.Build());
        const std::string copy = fFolder.PathOf("copy");
        std::filesystem::remove(copy);
        for (const bool isAnonymous : {true, false}) {
            ImageFileEditor editor(Wide(path), fSaved);
            if (isAnonymous) editor.DeIdentify(1);
            const bool isWritten = hasItems || !isAnonymous;
            EXPECT_EQ(WriteAll(editor, copy), isWritten ? 0 : ImageFileEditor::kNoDicomFile);
            EXPECT_EQ(std::filesystem::exists(copy), isWritten);
        }
    }
}

TEST_F(ImageFileEditorTest, LeavesTheOldFileWhenItFails) {
    const std::string good = WriteImage(1);
    const Bytes content = ReadWholeFile(good);
    FileBuilder deflated(kDeflated);
    deflated.Data().Raw(Bytes(300, 0x5A));
    const std::string target = fFolder.WriteFile("target", "of before");
    const std::string files[] = {fFolder.PathOf("nowhere"), fFolder.WriteFile("empty", ""),
                                 fFolder.WriteFile("text", std::string(500, 'x')),
                                 fFolder.WriteFile("short", Bytes(content.begin(), content.begin() + 251)),
                                 fFolder.WriteFile("deflated", deflated.Build())};
    for (const std::string& path : files) {
        ImageFileEditor editor(Wide(path), fSaved);
        EXPECT_EQ(editor.GetNumberOfFrames(), 1);
        const int32_t error = WriteAll(editor, target);
        if (path == files[0]) {
            EXPECT_GT(error, 0);
        } else {
            EXPECT_EQ(error, path == files[4] ? ImageFileEditor::kDeflated : ImageFileEditor::kNoDicomFile);
        }
        EXPECT_EQ(ReadWholeFileAsText(target), "of before");
    }
    ImageFileEditor editor(Wide(good), fSaved);
    EXPECT_GT(editor.BeginWriting(Wide(fFolder.PathOf("no folder/copy"))), 0);
    EXPECT_EQ(editor.GetFramesLeft(), 0);
    EXPECT_EQ(editor.BeginWriting(Wide(target)), 0);
    {
        const auto held = Platform::OpenDiskFile(good, Platform::FileAccess::kRead);
        while (editor.GetFramesLeft() > 0) ASSERT_EQ(editor.WriteNext(), 0) << "others may read meanwhile";
    }
    EXPECT_TRUE(Ends(ReadWholeFile(target), fPixelsAndRest));
    const Bytes written = ReadWholeFile(target);
    ImageFileEditor other(Wide(good), fSaved);
    EXPECT_EQ(other.BeginWriting(Wide(target)), 0);
    std::error_code refused;  // by Windows, as it is open
    std::filesystem::resize_file(good, content.size() - 1, refused);
    int32_t error = 0;
    while (other.GetFramesLeft() > 0) error = other.WriteNext();
    EXPECT_EQ(error, refused ? 0 : ImageFileEditor::kOtherFailure) << "somebody has cut it off meanwhile";
    EXPECT_TRUE(ReadWholeFile(target) == written);
    EXPECT_EQ(fFolder.ListFiles().size(), 6U) << "nothing is left lying about";
}

}  // namespace
