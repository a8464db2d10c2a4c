#include "fuzz/HostileMedium.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>

#include "directory/TDicomDirectory.h"
#include "tests/support/FileBuilder.h"

namespace VantorFuzz {

using namespace Vantor;
using VantorTest::Bytes;
using VantorTest::DirectoryBuilder;
using VantorTest::FileBuilder;
using Lengths = VantorTest::ElementBuilder::Lengths;

namespace {

namespace fs = std::filesystem;

constexpr char kMedium[] = "UP/UP/UP/UP/MEDIUM/";
constexpr char kTarget[] = "UP/UP/UP/UP/TARGET/";
constexpr char kDirectoryName[] = "DICOMDIR";

// Files outside that records may climb to.
constexpr const char* kOutside[] = {"UP/UP/UP/UP/1", "UP/UP/UP/UP/IMAGES/1", "UP/UP/UP/IMAGES/1", "IMAGES/1"};

constexpr std::string_view kContentOutside = "outside";
constexpr const char* kFileIDsOutside[] = {"..\\1", "..\\IMAGES\\1", "IMAGES\\..\\..\\1",
                                           "..\\..\\IMAGES\\1"};

constexpr const char* kSyntaxes[] = {Uids::kExplicitVRLittleEndian, Uids::kImplicitVRLittleEndian,
                                     Uids::kExplicitVRBigEndian};
constexpr const char* kInstanceTypes[] = {"IMAGE ",  "RAW DATA", "SR DOCUMENT ", "PRIVATE ",
                                          "SERIES ", "PAT",      "image ",       "PRESENTATION"};

// Where studies of the exam layout say that their files are.
constexpr const char* kExamFolders[] = {"\\IMAGESDC\\EXAM0000", "\\IMAGESDC\\..", "..\\EXAM0000", "IMAGES"};
constexpr char kFileOfExam[] = "IMAGESDC/EXAM0000/IMAGES/4";

constexpr size_t kMostRecords = 24;
constexpr int kNumbers = 6;  // of patients, studies, series and instances
constexpr int kFilesOnMedium = 4;

constexpr const char* kFileClasses[kFilesOnMedium] = {FileBuilder::kSecondaryCapture, Uids::kBasicTextSR,
                                                      Uids::kRawDataStorage, FileBuilder::kSecondaryCapture};

const VantorTest::TestFolder& Folder() {
    static const VantorTest::TestFolder folder;
    return folder;
}

// Some where records name them, the others where a scan finds them.
std::string NameOf(int file) { return (file % 2 == 0 ? "IMAGES/" : "IMAGESDC/") + std::to_string(file); }

// The instances that DirectoryBuilder numbers alike.
Bytes MakeFile(int number, const char* syntax) {
    const char* const sopClass = kFileClasses[number];
    const std::string uid = "1.2.3.3." + std::to_string(number);
    FileBuilder file(syntax, sopClass, uid);
    file.Data()
        .Text(Tags::kSOPClassUID, Vr::kUI, sopClass)
        .Text(Tags::kSOPInstanceUID, Vr::kUI, uid)
        .Text(Tags::kStudyDate, Vr::kDA, "20240315")
        .Text(Tags::kModality, Vr::kCS, sopClass == Uids::kBasicTextSR ? "SR" : "US")
        .Text(Tags::kPatientName, Vr::kPN, "Patient^1")
        .Text(Tags::kPatientID, Vr::kLO, "ID1")
        .Text(Tags::kStudyInstanceUID, Vr::kUI, "1.2.3.1.1")
        .Text(Tags::kSeriesInstanceUID, Vr::kUI, "1.2.3.2.1")
        .Text(Tags::kInstanceNumber, Vr::kIS, std::to_string(number));
    if (sopClass == FileBuilder::kSecondaryCapture) file.Data().Numbers16(Tags::kPixelData, Vr::kOW, {1, 2});
    return file.Build();
}

void ChangeBytes(Bytes& bytes, Choices& input) {
    constexpr int kMostChanges = 32;
    for (int change = input.Byte() % kMostChanges; change > 0 && input.HasMore(); --change) {
        const size_t place = input.Word() % bytes.size();
        bytes[place] = input.Byte();
    }
}

int AddStudy(DirectoryBuilder& media, int parent, Choices& input) {
    const uint8_t choice = input.Byte();
    const int study = media.AddStudy(parent, choice % kNumbers);
    if (choice >= 0xE0) {
        media.Keys(study)
            .Text(Tags::kExamCreator, Vr::kLO, "VANTOR EXAM LAYOUT")
            .Text(Tags::kExamFolder, Vr::kST, kExamFolders[choice % std::size(kExamFolders)]);
    }
    return study;
}

int AddInstance(DirectoryBuilder& media, int parent, const char* recordType, Choices& input) {
    const uint8_t choice = input.Byte();
    if (choice < 0xE0) return media.AddInstance(parent, choice % kNumbers, recordType);
    const int instance = media.Add(parent, recordType);
    media.Keys(instance)
        .Text(Tags::kReferencedFileID, Vr::kCS, kFileIDsOutside[choice % std::size(kFileIDsOutside)])
        .Text(Tags::kReferencedSOPClassUIDInFile, Vr::kUI, FileBuilder::kSecondaryCapture)
        .Text(Tags::kReferencedSOPInstanceUIDInFile, Vr::kUI, "1.2.3.9");
    return instance;
}

int AddRecord(DirectoryBuilder& media, int number, Choices& input) {
    constexpr size_t kGroupTypes = 3;
    const auto type = input.Below(std::size(kInstanceTypes) + kGroupTypes);
    const int parent = static_cast<int>(input.Below(static_cast<size_t>(number) + 1)) - 1;
    if (type == 1) return AddStudy(media, parent, input);
    if (type >= kGroupTypes) return AddInstance(media, parent, kInstanceTypes[type - kGroupTypes], input);
    const int key = input.Byte() % kNumbers;
    return type == 0 ? media.AddPatient(key) : media.AddSeries(parent, key);
}

void ChangeLink(DirectoryBuilder& media, size_t records, Choices& input) {
    const uint8_t kind = input.Byte();
    const int record = static_cast<int>(input.Below(records));
    const int target = static_cast<int>(input.Below(records));
    const int bytesOff = kind < 0xF0 ? 0 : static_cast<int8_t>(input.Byte());
    switch (kind % 4) {
        case 0:
            return media.PointNext(record, target, bytesOff);
        case 1:
            return media.PointLower(record, target, bytesOff);
        case 2:
            return media.PointRoot(target, bytesOff);
        default:
            return media.SetInUse(record, false);
    }
}

bool IsBelow(const std::string& name, std::string_view folder) { return name.starts_with(folder); }

}  // namespace

HostileMedium::HostileMedium(Choices& input) {
    Clear();
    for (const char* name : kOutside) Folder().WriteFile(name, kContentOutside);
    Folder().MakeFolder(kMedium);
    WriteFiles(input);
    const bool isAllInput = input.Byte() % 2 != 0;
    Folder().WriteFile(std::string(kMedium) + kDirectoryName, isAllInput ? input.TakeRest() : Compose(input));
}

void HostileMedium::Clear() const {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(Folder().GetPath()))
        fs::remove_all(entry.path(), ignored);
}

void HostileMedium::WriteFiles(Choices& input) const {
    const uint8_t choice = input.Byte();
    for (int number = 0; number < kFilesOnMedium; ++number) {
        Bytes file = MakeFile(number, kSyntaxes[choice % std::size(kSyntaxes)]);
        const bool isDamaged = number == 0 && choice >= 0x80;
        if (isDamaged) ChangeBytes(file, input);
        Folder().WriteFile(kMedium + NameOf(number), file);
    }
    Folder().WriteFile(std::string(kMedium) + kFileOfExam, std::string_view("no DICOM file"));
}

Bytes HostileMedium::Compose(Choices& input) const {
    const uint8_t choice = input.Byte();
    DirectoryBuilder media(kSyntaxes[choice % std::size(kSyntaxes)],
                           choice < 0x80 ? Lengths::kDefined : Lengths::kUndefined);
    const size_t records = 1 + input.Below(kMostRecords);
    for (size_t i = 0; i < records; ++i) AddRecord(media, static_cast<int>(i), input);
    constexpr size_t kMostLinks = 16;
    for (size_t links = input.Below(kMostLinks); links > 0; --links) ChangeLink(media, records, input);
    Bytes bytes = media.Build();
    ChangeBytes(bytes, input);
    return bytes;
}

TFileSpec HostileMedium::GetDirectorySpec() const {
    return TFileSpec(Folder().PathOf(std::string(kMedium) + kDirectoryName));
}

std::vector<std::string> HostileMedium::GetPathsToEnter() const {
    std::vector<std::string> paths;
    for (int number = 0; number < kFilesOnMedium; ++number) {
        paths.push_back(Folder().PathOf(kMedium + NameOf(number)));
    }
    return paths;
}

std::string HostileMedium::GetFolder() const {
    return Folder().PathOf(std::string_view(kMedium).substr(0, std::size(kMedium) - 2));
}

TFileSpec HostileMedium::MakeTarget() const {
    return TFileSpec(Folder().WriteFile(std::string(kTarget) + kDirectoryName, DirectoryBuilder().Build()));
}

void HostileMedium::RequireUntouchedSurroundings() const {
    size_t outside = 0;
    for (const std::string& name : Folder().ListFiles()) {
        if (IsBelow(name, kTarget)) continue;
        if (IsBelow(name, kMedium)) {
            const std::string file = name.substr(std::size(kMedium) - 1);
            Require(file == kDirectoryName || file.find('/') != std::string::npos);
        } else {
            Require(std::find(std::begin(kOutside), std::end(kOutside), name) != std::end(kOutside));
            Require(VantorTest::ReadWholeFileAsText(Folder().PathOf(name)) == kContentOutside);
            ++outside;
        }
    }
    Require(outside == std::size(kOutside));
}

// ---- Trees ----

namespace {

// Whatever its type is: code strings in upper case can make it another one.
std::string KeyOf(const TDicomDoc& doc) {
    constexpr Tag kTags[] = {Tags::kPatientID, Tags::kStudyInstanceUID, Tags::kSeriesInstanceUID,
                             Tags::kReferencedSOPInstanceUIDInFile};
    std::string key;
    for (const Tag tag : kTags) {
        char text[TDicomDoc::kLongestText + 1] = {};
        doc.ViewRecord().GetText(tag, text, sizeof(text));
        key.append(text) += '/';
    }
    return key;
}

struct Tree {
    std::string fText;  // the documents with those below in parentheses, behind a bar if they are foreign
    std::vector<std::string> fKeys;
};

void Append(TDicomDoc& doc, Tree& tree) {
    tree.fKeys.push_back(KeyOf(doc));
    tree.fText += std::to_string(doc.GetDocType()) + ":" + tree.fKeys.back() + "(";
    TListOf<TDicomDoc> children;
    doc.GetChildDocs(children, true);
    for (TDicomDoc* child : children) Append(*child, tree);
    tree.fText += "|";
    for (TDicomDoc* child : doc.GetForeignChildren()) Append(*child, tree);
    tree.fText += ")";
}

Tree TreeOf(TDicomDirectory& directory) {
    Tree tree;
    for (TPatientDoc* patient : *directory.GetPatientDocs()) Append(*patient, tree);
    std::sort(tree.fKeys.begin(), tree.fKeys.end());
    return tree;
}

void RequireSame(bool isSame, const Tree& before, const Tree& after) {
    if (isSame) return;
    std::fprintf(stderr, "before:\n%s\nafter:\n%s\n", before.fText.c_str(), after.fText.c_str());
    Require(false);
}

Bytes WriteAgain(TDicomDirectory& directory) {
    Require(directory.OpenForUpdating());
    directory.WriteDICOMDIR();
    return VantorTest::ReadWholeFile(directory.GetFullPath());
}

}  // namespace

void RequireSameWhenReadAgain(TDicomDirectory& directory) {
    const TFileSpec path(directory.GetFullPath());
    const Tree written = TreeOf(directory);
    TDicomDirectory second(path, 0);
    const Tree read = TreeOf(second);
    RequireSame(read.fKeys == written.fKeys, written, read);

    const Bytes bytes = WriteAgain(second);
    TDicomDirectory third(path, 0);
    const Tree readAgain = TreeOf(third);
    RequireSame(readAgain.fText == read.fText, read, readAgain);
    Require(WriteAgain(third) == bytes);
}

}  // namespace VantorFuzz
