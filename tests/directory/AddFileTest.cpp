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
constexpr char kReport[] = "1.2.840.10008.5.1.4.1.1.88.22";
constexpr char kRawData[] = "1.2.840.10008.5.1.4.1.1.66";
constexpr char kPdf[] = "1.2.840.10008.5.1.4.1.1.104.1";
constexpr Platform::LocalTime kNow{2024, 11, 15, 10, 30, 57, 42};

// Every element but the links: "00081030 LO[Heart ];", with '~' for NUL.
std::string Shown(TDicomDoc& doc) {
    std::string shown;
    const TDicomDataSet& record = *doc.GetDataSet();
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
    return shown;
}

class AddFileTest : public testing::Test {
  protected:
    // With everything that goes into records; or, as a sparse one, with what has to be there.
    static FileBuilder File(const char* sopClass, bool isSparse = false, int instance = 1,
                            std::string_view syntax = Uids::kExplicitVRLittleEndian) {
        const std::string uid = "1.2.3." + std::to_string(instance);
        const std::string modality = sopClass == kReport ? "SR" : isSparse ? "" : "US";
        FileBuilder file(syntax, sopClass, uid);
        const std::tuple<Tag, VrCode, std::string> elements[] = {
            {Tags::kSpecificCharacterSet, Vr::kCS, "ISO_IR 100"},
            {Tags::kSOPClassUID, Vr::kUI, sopClass},
            {Tags::kSOPInstanceUID, Vr::kUI, uid},
            {Tags::kStudyDate, Vr::kDA, "20240315"},
            {Tags::kContentDate, Vr::kDA, "20240316"},
            {Tags::kStudyTime, Vr::kTM, "101500"},
            {Tags::kContentTime, Vr::kTM, "1016"},
            {Tags::kAccessionNumber, Vr::kSH, "A7"},
            {Tags::kModality, Vr::kCS, modality},
            {Tags::kReferringPhysicianName, Vr::kPN, "Ref^A"},
            {Tags::kStudyDescription, Vr::kLO, "Heart"},
            {Tags::kSeriesDescription, Vr::kLO, "4CH"},
            {Tags::kPatientName, Vr::kPN, "M\xFCller^A"},
            {Tags::kPatientID, Vr::kLO, "ID1"},
            {Tags::kStudyInstanceUID, Vr::kUI, "1.2.1"},
            {Tags::kSeriesInstanceUID, Vr::kUI, "1.2.2"},
            {Tags::kStudyID, Vr::kSH, isSparse ? "" : "S9"},
            {Tags::kSeriesNumber, Vr::kIS, "4"},
            {Tags::kInstanceNumber, Vr::kIS, "5"}};
        const std::set<Tag> always = {Tags::kPatientID, Tags::kSeriesInstanceUID};
        for (const auto& [tag, vr, value] : elements) {
            const bool isEmptyID = tag == Tags::kStudyID && sopClass == kImage;
            const bool isNeeded =
                always.count(tag) > 0 || isEmptyID || (tag == Tags::kModality && !modality.empty());
            if (!isSparse || isNeeded) file.Data().Text(tag, vr, value);
        }
        if (sopClass == kImage) file.Data().Numbers16(Tags::kPixelData, Vr::kOW, {1, 2});
        return file;
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
    const TestClock clock(kNow);
    const std::string set = "00080005 CS[ISO_IR 100];", rest = "0020000E UI[1.2.2~];00200011 IS[";
    const std::string fileID = "00041500 CS[IN\\FILES];", priv = "00041432 UI[2.16.840.990017.100.98.19.1~];";
    const std::string instance = "];00041511 UI[1.2.3.1~];", raw = std::string("00080016 UI[") + kRawData;
    const std::string patient = "00041430 CS[PATIENT ];", study = "00041430 CS[STUDY ];";
    const std::string name = "00100010 PN[M\xFCller^A];", patientID = "00100020 LO[ID1 ];";
    const struct {
        const char* fClass;
        std::string fTree, fModality, fSparseModality, fType, fUids, fOthers, fSparse;
    } kinds[] = {
        {kImage, "i5", "US", "", "IMAGE ", std::string(kImage) + "~", "00200013 IS[5 ];", "00200013 IS[];"},
        {kReport, "d(absent)", "SR", "SR", "SR DOCUMENT ", std::string(kReport) + "~", "", ""},
        {kRawData, "r5", "US", "", "RAW DATA", kRawData,
         raw + "];00080018 UI[1.2.3.1~];00080023 DA[20240316];00080033 TM[1016];00200013 IS[5 ];",
         "00200013 IS[];"},
        {kPdf, "x(absent)", "US", "", "PRIVATE ", std::string(kPdf) + "~", "", ""}};
    for (const Encoding& encoding : kEncodings) {
        const std::string uid = encoding.fTransferSyntax;
        const std::string syntax = "00041512 UI[" + uid + (uid.size() % 2 == 0 ? "" : "~") + "];";
        for (const auto& kind : kinds) {
            for (const bool isSparse : {false, true}) {
                SCOPED_TRACE(testing::Message()
                             << kind.fType << isSparse << testing::PrintToString(encoding));
                Open();
                TDicomDoc* const series = Add("in/files", File(kind.fClass, isSparse, 1, uid));
                ASSERT_EQ(series, *fDirectory->GetSeriesDocs()->begin());
                TListOf<TDicomDoc> instances;
                series->GetChildDocs(instances, true);
                const std::string type =
                    "00041430 CS[" + kind.fType + "];" + (kind.fClass == kPdf ? priv : "") + fileID;
                const std::string ofImage = kind.fClass == kImage ? syntax : "";
                EXPECT_EQ(Shown(*series->GetParentObj()->GetParentObj()),
                          isSparse ? patient + patientID : patient + set + name + patientID);
                EXPECT_EQ(Shown(*series->GetParentObj()),
                          isSparse ? study +
                                         "00080020 DA[];00080030 TM[];00080050 SH[];00081030 LO[];"
                                         "00200010 SH[241115.103057042];"
                                   : study + set +
                                         "00080020 DA[20240315];00080030 TM[101500];00080050 SH[A7];"
                                         "00080090 SH[Ref^A ];00081030 LO[Heart ];0020000D UI[1.2.1~];"
                                         "00200010 SH[S9];");
                EXPECT_EQ(Shown(*series),
                          "00041430 CS[SERIES];" +
                              (isSparse ? "00080060 CS[" + kind.fSparseModality + "];" + rest + "1 ];"
                                        : set + "00080060 CS[" + kind.fModality + "];0008103E LO[4CH ];" +
                                              rest + "4 ];"));
                EXPECT_EQ(Shown(**instances.begin()), isSparse ? type + ofImage + kind.fSparse
                                                               : type + "00041510 UI[" + kind.fUids +
                                                                     instance + ofImage + set + kind.fOthers);
                if (isSparse) continue;
                Rewrite();
                EXPECT_EQ(TreesOf(*fDirectory), "P1(SS9(s4(" + kind.fTree + ")))");
            }
        }
    }
}

TEST_F(AddFileTest, LeavesOutWhatIsNoneOfItsFiles) {
    const Bytes image = File(kImage).Build();
    const std::string separator(1, static_cast<char>(std::filesystem::path::preferred_separator));
    const std::string deep = fFolder.MakeFolder("CD/" + std::string(100, 'X')) + separator;
    const auto ofLength = [&](size_t length) { return deep + std::string(length - deep.size(), 'Y'); };
    fFolder.MakeFolder("CDX");
    const std::string path = fFolder.WriteFile("CD/DICOMDIR", DirectoryBuilder().Build());
    fDirectory = std::make_unique<TDicomDirectory>(TFileSpec(path), 0);
    const std::pair<std::string, Bytes> files[] = {
        {fFolder.PathOf("CD/TEXT"), BytesOf(std::string(3000, 'x'))},
        {fFolder.PathOf("CD/EMPTY"), {}},
        {fFolder.PathOf("CD/OTHER"), File(Uids::kMediaStorageDirectory).Build()},
        {fFolder.PathOf("OUTSIDE"), image},
        {fFolder.PathOf("CDX/OUTSIDE"), image},
        {fFolder.PathOf("CD") + separator + ".." + separator + "OUTSIDE", image},
        {ofLength(255), image}};
    for (const auto& [name, content] : files) {
        WriteWholeFile(name, content);
        EXPECT_EQ(fDirectory->AddFile(name), nullptr) << name;
    }
    for (const char* const name : {"CD/MISSING", "CD/DICOMDIR", "CD"}) {
        EXPECT_EQ(fDirectory->AddFile(fFolder.PathOf(name)), nullptr) << name;
    }
    EXPECT_EQ(fDirectory->GetPatientDocs()->GetCount(), 0);
    WriteWholeFile(ofLength(254), image);
    EXPECT_NE(fDirectory->AddFile(ofLength(254)), nullptr);
}

// Entered with what is whole, refused for what it lacks, or left out.
TEST_F(AddFileTest, FilesThatBreakOff) {
    const TestClock clock(kNow);
    const Bytes whole = File(kImage).Build();
    std::set<std::string> outcomes;
    for (size_t size = 0; size <= whole.size(); ++size) {
        Open();
        const std::string path = fFolder.WriteFile("CUT", Bytes(whole.data(), whole.data() + size));
        TDicomDoc* series = nullptr;
        const std::string thrown = ThrownBy([&] { series = fDirectory->AddFile(path); });
        if (series == nullptr) {
            outcomes.insert(thrown == "nothing" ? "left out" : thrown);
            continue;
        }
        outcomes.insert(TextOf(*series->GetDataSet(), Tags::kSeriesInstanceUID));
        const std::string tree = TreesOf(*fDirectory);
        outcomes.insert(tree.find('\0') == std::string::npos ? "entered" : "entered with what it lacks");
    }
    EXPECT_EQ(outcomes, (std::set<std::string>{"102 No Patient ID", "102 No Series Instance UID", "left out",
                                               "entered", std::string("1.2.2\0", 6)}));
}

TEST_F(AddFileTest, MissingKeysAreNamedAndNothingIsEntered) {
    for (const char* const sopClass : {kImage, kReport, kRawData, kPdf}) {
        for (const bool hasID : {false, true}) {
            FileBuilder file(Uids::kExplicitVRLittleEndian, sopClass);
            file.Data().Text(hasID ? Tags::kPatientID : Tags::kSeriesInstanceUID, Vr::kUI, "1");
            if (sopClass == kImage) file.Data().Numbers16(Tags::kPixelData, Vr::kOW, {1});
            EXPECT_EQ(ThrownBy([&] {
                          Open();
                          Add("FILE", file);
                      }),
                      hasID ? "102 No Series Instance UID" : "102 No Patient ID");
            EXPECT_EQ(fDirectory->GetPatientDocs()->GetCount(), 0);
        }
    }
}

// Where a system tells case apart, there may be two files for one file ID: it leads to one of them.
TEST_F(AddFileTest, EntersNoFileWhoseIDLeadsToAnother) {
    Open();
    EXPECT_NE(Add("A", File(kImage, false, 2)), nullptr);
    EXPECT_EQ(Add("a", File(kImage)) == nullptr, !kIsWindows);
}

TEST_F(AddFileTest, JoinsWhatIsThereAndEntersNoInstanceTwice) {
    Open();
    TDicomDoc* const series = Add("a", File(kImage));
    const std::tuple<const char*, const char*, int> more[] = {
        {"b", kImage, 2},   {"a", kImage, 1},   {"copy", kImage, 1}, {"d", kReport, 3}, {"d", kReport, 3},
        {"r", kRawData, 3}, {"r", kRawData, 3}, {"x", kPdf, 3},      {"x", kPdf, 3}};
    for (const auto& [name, sopClass, instance] : more) {
        EXPECT_EQ(Add(name, File(sopClass, false, instance)), series) << name;
    }
    const std::string tree = "P1(SS9(s4(i5 i5 d(absent) r5 r5 x(absent) x(absent))))";
    EXPECT_EQ(TreesOf(*fDirectory), tree);
    Rewrite();
    EXPECT_EQ(Add("a", File(kImage)), *fDirectory->GetSeriesDocs()->begin());
    EXPECT_EQ(TreesOf(*fDirectory), tree);
}

// A copy of an instance says nothing about the file that the record names.
TEST_F(AddFileTest, AnotherFileOfTheInstanceLeavesTheRecordAsItIs) {
    DirectoryBuilder media;
    const int series = media.AddSeries(media.AddStudy(media.AddPatient(1), 2), 3);
    media.Keys(media.Add(series, "IMAGE "))
        .Text(Tags::kReferencedFileID, Vr::kCS, "IMAGES\\4")
        .Text(Tags::kReferencedSOPClassUIDInFile, Vr::kUI, kImage)
        .Text(Tags::kReferencedSOPInstanceUIDInFile, Vr::kUI, "1.2.3.1");
    Open(media.Build());
    EXPECT_EQ(Add("COPY", File(kImage, false, 1, Uids::kExplicitVRBigEndian)),
              *fDirectory->GetSeriesDocs()->begin());
    Rewrite();
    TDicomDataSet& record = *(*fDirectory->GetImageDocs()->begin())->GetDataSet();
    EXPECT_EQ(TextOf(record, Tags::kReferencedFileID), "IMAGES\\4");
    EXPECT_EQ(TextOf(record, Tags::kReferencedTransferSyntaxUIDInFile), "(absent)");
}

}  // namespace
