// What is entered into a directory for a file.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <set>

#include "tests/directory/DirectorySupport.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

constexpr const char* kImage = FileBuilder::kSecondaryCapture;
constexpr char kRawData[] = "1.2.840.10008.5.1.4.1.1.66";
constexpr char kPdf[] = "1.2.840.10008.5.1.4.1.1.104.1";
constexpr Platform::LocalTime kNow{2024, 11, 15, 10, 30, 57, 42};

// Of a document and those above it, every element but the links: "00081030 LO[Heart ];", with '~' for NUL.
std::string Shown(TDicomDoc* doc) {
    if (doc == nullptr) return {};
    std::string shown;
    const TDicomDataSet& record = *doc->GetDataSet();
    Tag tag;
    VrCode vr = 0;
    int32_t offset = TDicomDataSet::kFromStart;
    while (record.GetNextElement(offset, &tag.fGroup, &tag.fElement, &vr, nullptr, nullptr, 0, &offset)) {
        if (tag.fElement == 0 || tag <= Tags::kLowerLevelOffset) continue;
        char name[16];
        std::snprintf(name, sizeof(name), "%04X%04X %c%c[", tag.fGroup, tag.fElement, vr >> 8, vr & 0xFF);
        shown += name + TextOf(record, tag) + "];";
    }
    std::replace(shown.begin(), shown.end(), '\0', '~');
    return Shown(doc->GetParentObj()) + shown + "\n";
}

class AddFileTest : public testing::Test {
  protected:
    static FileBuilder File(const char* sopClass, int instance = 4, bool isSparse = false,
                            const char* syntax = Uids::kExplicitVRLittleEndian) {
        return FileOf({instance, 3, "7", "ID1", sopClass, isSparse, syntax});
    }
    TDicomDoc* Add(const std::string& name, const FileBuilder& file) {
        return fDirectory->AddFile(fFolder.WriteFile(name, file.Build()));
    }
    void Open(const Bytes& content = DirectoryBuilder().Build()) { fDirectory = Load(fFolder, content); }
    void Rewrite() {
        fDirectory->WriteDICOMDIR();
        Open(ReadWholeFile(fFolder.PathOf("DICOMDIR")));
    }

    TestFolder fFolder;
    std::unique_ptr<TDicomDirectory> fDirectory;
};

TEST_F(AddFileTest, EntersTheElementsOfEachKind) {
    const std::string set = "00080005 CS[ISO_IR 100];", fileID = "00041500 CS[IN\\FILES];";
    const std::string patient = "00041430 CS[PATIENT ];", study = "00041430 CS[STUDY ];";
    const std::string series = "00041430 CS[SERIES];", instance = "00041511 UI[1.2.3.3.4~];";
    const auto above = [&](const char* modality) {
        return patient + set + "00100010 PN[M\xFCller^A];00100020 LO[ID1 ];\n" + study + set +
               "00080020 DA[20240315];00080030 TM[101500];00080050 SH[A7];00080090 SH[Ref^A ];"
               "00081030 LO[Heart ];0020000D UI[1.2.3.1.2~];00200010 SH[2 ];\n" +
               series + set + "00080060 CS[" + modality +
               "];0008103E LO[4CH ];0020000E UI[1.2.3.2.3~];00200011 IS[7 ];\n";
    };
    const std::string aboveSparse =
        patient + "00100020 LO[ID1 ];\n" + study +
        "00080020 DA[];00080030 TM[];00080050 SH[];00081030 LO[];00200010 SH[241115.103057042];\n" + series +
        "00080060 CS[];0020000E UI[1.2.3.2.3~];00200011 IS[1 ];\n";
    const std::string image = "00041430 CS[IMAGE ];" + fileID, raw = "00041430 CS[RAW DATA];" + fileID;
    const std::string report = "00041430 CS[SR DOCUMENT ];" + fileID;
    const std::string other = "00041430 CS[PRIVATE ];00041432 UI[2.16.840.990017.100.98.19.1~];" + fileID;
    const std::tuple<const char*, bool, const char*, std::string> cases[] = {
        {kImage, false, Uids::kExplicitVRBigEndian,
         above("US") + image + "00041510 UI[1.2.840.10008.5.1.4.1.1.7~];" + instance +
             "00041512 UI[1.2.840.10008.1.2.2~];" + set + "00200013 IS[4 ];\n"},
        {kImage, true, Uids::kImplicitVRLittleEndian,
         aboveSparse + image + "00041512 UI[1.2.840.10008.1.2~];00200013 IS[];\n"},
        {kReportClass, false, Uids::kImplicitVRLittleEndian,
         above("SR") + report + "00041510 UI[1.2.840.10008.5.1.4.1.1.88.22~];" + instance + set + "\n"},
        {kRawData, false, Uids::kExplicitVRLittleEndian,
         above("US") + raw + "00041510 UI[1.2.840.10008.5.1.4.1.1.66];" + instance + set +
             "00080016 UI[1.2.840.10008.5.1.4.1.1.66];00080018 UI[1.2.3.3.4~];00080023 DA[20240316];"
             "00080033 TM[1016];00200013 IS[4 ];\n"},
        {kRawData, true, Uids::kExplicitVRBigEndian, aboveSparse + raw + "00200013 IS[];\n"},
        {kPdf, false, Uids::kExplicitVRLittleEndian,
         above("US") + other + "00041510 UI[1.2.840.10008.5.1.4.1.1.104.1~];" + instance + set + "\n"}};
    const TestClock clock(kNow);
    for (const auto& [sopClass, isSparse, syntax, expected] : cases) {
        Open();
        TDicomDoc* const found = Add("in/files", File(sopClass, 4, isSparse, syntax));
        ASSERT_EQ(found, *fDirectory->GetSeriesDocs()->begin());
        TListOf<TDicomDoc> instances;
        found->GetChildDocs(instances, true);
        EXPECT_EQ(Shown(*instances.begin()), expected);
    }
}

TEST_F(AddFileTest, LeavesOutWhatIsNoneOfItsFiles) {
    const std::string path = fFolder.WriteFile("CD/DICOMDIR", DirectoryBuilder().Build());
    fDirectory = std::make_unique<TDicomDirectory>(TFileSpec(path), 0);
    fFolder.MakeFolder("CDX");
    const std::pair<const char*, Bytes> files[] = {{"CD/TEXT", BytesOf(std::string(3000, 'x'))},
                                                   {"CD/EMPTY", {}},
                                                   {"CD/OTHER", File(Uids::kMediaStorageDirectory).Build()},
                                                   {"CD/VNT1A2B.tmp", File(kImage).Build()},
                                                   {"CDX/OUTSIDE", File(kImage).Build()},
                                                   {"CD/../OUTSIDE", File(kImage).Build()}};
    for (const auto& [name, content] : files) fFolder.WriteFile(name, content);
    for (const char* const name : {"CD/TEXT", "CD/EMPTY", "CD/OTHER", "CD/VNT1A2B.tmp", "CDX/OUTSIDE",
                                   "OUTSIDE", "CD/../OUTSIDE", "CD/MISSING", "CD/DICOMDIR", "CD"}) {
        EXPECT_EQ(fDirectory->AddFile(fFolder.PathOf(name)), nullptr) << name;
    }
    EXPECT_EQ(fDirectory->GetPatientDocs()->GetCount(), 0);
}

// Entered with what is whole, refused for what it lacks, or left out.
TEST_F(AddFileTest, FilesThatBreakOff) {
    const Bytes whole = File(kImage).Build();
    std::set<std::string> outcomes;
    for (size_t size = 0; size <= whole.size(); ++size) {
        Open();
        const std::string path = fFolder.WriteFile("CUT", Bytes(whole.data(), whole.data() + size));
        TDicomDoc* series = nullptr;
        const std::string thrown = ThrownBy([&] { series = fDirectory->AddFile(path); });
        const bool isLeftOut = series == nullptr && thrown == "nothing";
        outcomes.insert(isLeftOut ? "left out" : thrown);
        if (series == nullptr) {
            EXPECT_EQ(fDirectory->GetPatientDocs()->GetCount(), 0);
            continue;
        }
        EXPECT_EQ(TextOf(*series->GetDataSet(), Tags::kSeriesInstanceUID), std::string("1.2.3.2.3\0", 10));
        EXPECT_EQ(TreesOf(*fDirectory).find('\0'), std::string::npos);
    }
    EXPECT_EQ(outcomes, (std::set<std::string>{"102 No Patient ID", "102 No Series Instance UID", "left out",
                                               "nothing"}));
}

TEST_F(AddFileTest, JoinsWhatIsThereAndEntersNoInstanceTwice) {
    Open();
    TDicomDoc* const series = Add("a", File(kImage));
    const std::tuple<const char*, const char*, int> more[] = {
        {"b", kImage, 5},       {"a", kImage, 4},       {"copy", kImage, 4},
        {"d", kReportClass, 6}, {"d", kReportClass, 6}, {"r", kRawData, 7},
        {"r", kRawData, 7},     {"x", kPdf, 8},         {"x", kPdf, 8}};
    for (const auto& [name, sopClass, instance] : more) {
        EXPECT_EQ(Add(name, File(sopClass, instance)), series) << name;
    }
    const std::string tree = "P1(S2(s7(i4 i5 d(absent) r7 r7 x(absent) x(absent))))";
    EXPECT_EQ(TreesOf(*fDirectory), tree);
    Rewrite();
    EXPECT_EQ(Add("a", File(kImage)), *fDirectory->GetSeriesDocs()->begin());
    EXPECT_EQ(TreesOf(*fDirectory), tree);
}

// In the order of their names, those below a folder where that stands, and not what is elsewhere.
TEST_F(AddFileTest, ScansTheImageFolderForWhatIsNotThereYet) {
    Open();
    const std::string folder = Spelled("imagesdc") + "/";
    Add(folder + "C", File(kImage, 9));
    const std::pair<std::string, int> files[] = {
        {folder + "D", 7}, {folder + "A", 4}, {folder + "B/X", 5}, {folder + "B/Y", 6}, {"IMAGES/A", 8}};
    for (const auto& [name, instance] : files) fFolder.WriteFile(name, File(kImage, instance).Build());
    fFolder.WriteFile(folder + "B/README", "the user's own");
    for (int times = 0; times < 2; ++times) {
        fDirectory->ScanFiles();
        EXPECT_EQ(TreesOf(*fDirectory), "P1(S2(s7(i9 i4 i5 i6 i7)))");
    }
}

// A copy of an instance says nothing about the file that the record names.
TEST_F(AddFileTest, AnotherFileOfTheInstanceLeavesTheRecordAsItIs) {
    DirectoryBuilder media;
    const int series = media.AddSeries(media.AddStudy(media.AddPatient(1), 2), 3);
    media.Keys(media.Add(series, "IMAGE "))
        .Text(Tags::kReferencedFileID, Vr::kCS, "IMAGES\\4")
        .Text(Tags::kReferencedSOPClassUIDInFile, Vr::kUI, kImage)
        .Text(Tags::kReferencedSOPInstanceUIDInFile, Vr::kUI, "1.2.3.3.4");
    Open(media.Build());
    EXPECT_EQ(Add("COPY", File(kImage)), *fDirectory->GetSeriesDocs()->begin());
    Rewrite();
    TDicomDataSet& record = *(*fDirectory->GetImageDocs()->begin())->GetDataSet();
    EXPECT_EQ(TextOf(record, Tags::kReferencedFileID), "IMAGES\\4");
    EXPECT_EQ(TextOf(record, Tags::kReferencedTransferSyntaxUIDInFile), "(absent)");
}

}  // namespace
