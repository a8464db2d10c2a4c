// How records become a tree, on good media and on those that are damaged or made to harm.

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>

#include "tests/directory/DirectorySupport.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

constexpr int kRoot = DirectoryBuilder::kRoot;

// Patients 1 and 2, records 0 and 6; the first with study 2 (record 1), series 3 (2) and instances 4, 5, 6 (3
// to 5).
DirectoryBuilder SmallMedium(std::string_view syntax = Uids::kExplicitVRLittleEndian,
                             ElementBuilder::Lengths lengths = ElementBuilder::Lengths::kDefined) {
    DirectoryBuilder media(syntax, lengths);
    const int series = media.AddSeries(media.AddStudy(media.AddPatient(1), 2), 3);
    for (int instance = 4; instance <= 6; ++instance) media.AddInstance(series, instance);
    media.AddPatient(2);
    return media;
}
constexpr int kStudy = 1;
constexpr int kSeries = 2;
constexpr int kFirstImage = 3;
constexpr int kSecondImage = 4;
constexpr int kLastImage = 5;
constexpr int kSecondPatient = 6;
const std::string kSmallTree = "P1(S2(s3(i4 i5 i6))) P2";

TEST(RecordLoader, LoadsEveryEncodingInTreeOrder) {
    for (const Encoding& encoding : kEncodings) {
        for (const auto lengths : {ElementBuilder::Lengths::kDefined, ElementBuilder::Lengths::kUndefined}) {
            const TestFolder folder;
            DirectoryBuilder media = SmallMedium(encoding.fTransferSyntax, lengths);
            const int study = media.AddStudy(kSecondPatient, 7);
            media.AddInstance(kSeries, 8, "RAW DATA");
            media.AddInstance(media.AddSeries(study, 9), 10, "SR DOCUMENT ");
            media.AddInstance(kLastImage, 11, "PRIVATE ");
            const auto directory = Load(folder, media.Build());
            EXPECT_EQ(TreesOf(*directory), "P1(S2(s3(i4 i5 i6(x11) r8))) P2(S7(s9(d10)))")
                << testing::PrintToString(encoding);
            EXPECT_EQ(TreesOf(*directory->GetSeriesDocs()), "s3(i4 i5 i6(x11) r8) s9(d10)");
            EXPECT_EQ(TreesOf(*directory->GetStudyDocs()), "S2(s3(i4 i5 i6(x11) r8)) S7(s9(d10))");
            EXPECT_EQ(TreesOf(*directory->GetImageDocs()), "i4 i5 i6(x11)");
            EXPECT_EQ(TreesOf(*directory->GetRawDataDocs()), "r8");
            EXPECT_EQ(TreesOf(*directory->GetSRDocs()), "d10");
            EXPECT_FALSE(directory->HasLostRecords());
        }
    }
}

// Compared over the length that a record's type has.
TEST(RecordLoader, TakesTypesThatBreakOffEarlyForTheFirstThatStartsLikeThem) {
    const std::pair<const char*, int32_t> cases[] = {{"", TDicomDoc::kPatient},
                                                     {"PA", TDicomDoc::kPatient},
                                                     {"P ", TDicomDoc::kPrivate},
                                                     {"S ", TDicomDoc::kPrivate},
                                                     {"ST", TDicomDoc::kStudy},
                                                     {"SE", TDicomDoc::kSeries},
                                                     {"SERIES", TDicomDoc::kSeries},
                                                     {"SERIES  ", TDicomDoc::kPrivate},
                                                     {"RAW ", TDicomDoc::kRawData},
                                                     {"SR DOCUMENT ", TDicomDoc::kSR},
                                                     {"SR DOCUMENT  A", TDicomDoc::kPrivate},
                                                     {"image ", TDicomDoc::kPrivate},
                                                     {"PRESENTATION", TDicomDoc::kPrivate}};
    for (const auto& [type, docType] : cases) {
        const TestFolder folder;
        DirectoryBuilder media;
        // At the top everything is linked, and each parent takes one type at least.
        const int series = media.AddSeries(media.AddStudy(media.AddPatient(1), 1), 1);
        const int parents[] = {kRoot, 0, 1, series, series, series, series};
        media.Add(parents[docType], type);
        const auto directory = Load(folder, media.Build());
        const int32_t counts[] = {directory->GetPatientDocs()->GetCount() - 1,
                                  directory->GetStudyDocs()->GetCount() - 1,
                                  directory->GetSeriesDocs()->GetCount() - 1,
                                  directory->GetImageDocs()->GetCount(),
                                  directory->GetRawDataDocs()->GetCount(),
                                  (*directory->GetSeriesDocs()->begin())->GetPrivateDocs()->GetCount(),
                                  directory->GetSRDocs()->GetCount()};
        EXPECT_EQ(counts[docType], 1) << type;
    }
}

TEST(RecordLoader, ImagesOfThePrivateClassAndWithoutClassArePrivateRecords) {
    const char* const privateClasses[] = {"1.3.12.2.1107.5.9.1", "1.3.12", "", nullptr};
    for (const char* const sopClass : privateClasses) {
        const TestFolder folder;
        DirectoryBuilder media;
        const int series = media.AddSeries(media.AddStudy(media.AddPatient(1), 2), 3);
        ElementBuilder& keys = media.Keys(media.Add(series, "IMAGE "));
        if (sopClass != nullptr) keys.Text(Tags::kReferencedSOPClassUIDInFile, Vr::kUI, sopClass);
        keys.Text(Tags::kInstanceNumber, Vr::kIS, "4");
        EXPECT_EQ(TreesOf(*Load(folder, media.Build())), "P1(S2(s3(x4)))")
            << testing::PrintToString(sopClass);
    }
}

TEST(RecordLoader, GoesOnAroundDamagedLinks) {
    using Damage = std::function<void(DirectoryBuilder&)>;
    const std::tuple<const char*, Damage, std::string> cases[] = {
        {"none", [](auto&) {}, kSmallTree},
        {"next into the middle of a record", [](auto& m) { m.PointNext(kFirstImage, kSecondImage, 2); },
         "P1(S2(s3(i4))) P2"},
        {"lower to nowhere", [](auto& m) { m.PointLower(kSeries, kSecondPatient, 100000); }, "P1(S2(s3)) P2"},
        {"next to itself", [](auto& m) { m.PointNext(kFirstImage, kFirstImage); }, "P1(S2(s3(i4))) P2"},
        {"a ring of siblings", [](auto& m) { m.PointNext(kLastImage, kFirstImage); }, kSmallTree},
        {"a ring through levels", [](auto& m) { m.PointLower(kLastImage, 0); }, kSmallTree},
        {"a study below its own series", [](auto& m) { m.PointLower(kSeries, kStudy); }, "P1(S2(s3)) P2"},
        {"a shared child", [](auto& m) { m.PointLower(kSecondPatient, kStudy); }, kSmallTree},
        {"children of the wrong type", [](auto& m) { m.PointLower(kSecondPatient, kFirstImage); },
         "P1(S2(s3(i4 i5 i6))) P2"},
        {"not in use in a chain", [](auto& m) { m.SetInUse(kSecondImage, false); }, "P1(S2(s3(i4))) P2"},
        {"not in use with children", [](auto& m) { m.SetInUse(kSeries, false); }, "P1(S2) P2"},
        {"root not in use", [](auto& m) { m.SetInUse(0, false); }, ""},
        {"root in the middle", [](auto& m) { m.PointRoot(kSecondPatient); }, "P2"},
        {"root to nowhere", [](auto& m) { m.PointRoot(0, 1); }, ""},
        {"root below the patients, linked but not listed", [](auto& m) { m.PointRoot(kStudy); }, ""}};
    for (const auto& [name, damage, expected] : cases) {
        const TestFolder folder;
        DirectoryBuilder media = SmallMedium();
        damage(media);
        const auto directory = Load(folder, media.Build());
        EXPECT_EQ(TreesOf(*directory), expected) << name;
        const std::string_view damageName = name;
        EXPECT_EQ(directory->HasLostRecords(),
                  damageName.ends_with("nowhere") || damageName.starts_with("next into"))
            << name;
        directory->RefreshDocs();
        EXPECT_EQ(TreesOf(*directory), expected) << name << ", again";
    }
}

// Whatever is cut off, what comes before it loads, or the file is refused as it stands.
TEST(RecordLoader, LoadsWhatIsLeftOfAMediumThatBreaksOff) {
    const TestFolder folder;
    const DirectoryBuilder media = SmallMedium();
    const Bytes whole = media.Build();
    for (size_t size = media.OffsetOf(0); size < whole.size(); ++size) {
        const auto directory =
            Load(folder, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        int32_t wholeRecords = 0;
        while (wholeRecords < 6 && media.OffsetOf(wholeRecords + 1) <= size) ++wholeRecords;
        EXPECT_EQ(directory->GetPatientDocs()->GetCount(), wholeRecords > 0 ? 1 : 0) << size;
        EXPECT_EQ(directory->GetImageDocs()->GetCount(), std::max(wholeRecords - kFirstImage, 0)) << size;
        EXPECT_TRUE(directory->HasLostRecords()) << size;
    }
    std::set<std::string> outcomes;
    for (size_t size = 0; size < media.OffsetOf(0); ++size) {
        std::string tree;
        const auto cut = whole.begin() + static_cast<std::ptrdiff_t>(size);
        const std::string thrown = ThrownBy([&] {
            const auto directory = Load(folder, Bytes(whole.begin(), cut));
            tree = TreesOf(*directory);
            EXPECT_TRUE(directory->HasLostRecords()) << size;
        });
        outcomes.insert(thrown + tree);
    }
    const std::set<std::string> expected = {"nothing", "102 Invalid Dicom File",
                                            "102 Invalid DICOM element length.",
                                            "102 Invalid DICOM element length, longer than the data set."};
    EXPECT_EQ(outcomes, expected);
}

TEST(RecordLoader, RecordsThatCannotBeReadAreLeftOut) {
    const TestFolder folder;
    DirectoryBuilder media = SmallMedium();
    // An element that leads out of its record, and one that has no room for what it holds.
    media.Keys(kSecondImage).Header({0x0040, 0x0001}, Vr::kUT, 0x7FFFFFF0);
    media.PointNext(kFirstImage, kLastImage);
    media.Keys(kSecondPatient)
        .Text({0x0040, 0x0001}, Vr::kLO, std::string(10000, 'x'))
        .Sequence({0x0040, 2}, {{}});
    EXPECT_EQ(TreesOf(*Load(folder, media.Build())), "P1(S2(s3(i4 i6))) P2");
}

// A file ID that is too long for a path names no file rather than another one.
TEST(RecordLoader, FilesAreFoundBesideTheDICOMDIR) {
    const TestFolder folder;
    DirectoryBuilder media;
    const int series = media.AddSeries(media.AddStudy(media.AddPatient(1), 2), 3);
    media.AddInstance(series, 4);
    media.Keys(media.Add(series, "IMAGE "))
        .Text(Tags::kReferencedFileID, Vr::kCS, std::string(10000, 'X'))
        .Text(Tags::kReferencedSOPClassUIDInFile, Vr::kUI, "1.2");
    const std::string path = folder.WriteFile("images/4", Bytes(2047));
    const auto directory = Load(folder, media.Build());
    TImageDoc* image = nullptr;
    directory->GetImageDocs()->FetchItemAt(1, image);
    EXPECT_EQ(image->GetDicomFile()->GetFileSpec()->fPath, folder.PathOf("IMAGES/4"));
    EXPECT_EQ(directory->GetFullPath(), folder.PathOf("DICOMDIR"));
    EXPECT_EQ((*directory->GetPatientDocs()->begin())->GetDiskSpace(), 2);
    directory->GetImageDocs()->FetchItemAt(2, image);
    EXPECT_STREQ(image->GetDicomFile()->GetFileSpec()->fPath, "");
    (*directory->GetPatientDocs()->begin())->DeleteFilesFromDisk();
    EXPECT_EQ(folder.ListFiles(), std::vector<std::string>{"DICOMDIR"});
}

// Levels that no type has, and a chain as long as a medium can be: neither the stack nor the time runs out.
TEST(RecordLoader, DepthAndLengthCostNoMoreThanTheirBytes) {
    const TestFolder folder;
    DirectoryBuilder deep;
    int above = deep.AddPatient(1);
    for (int level = 0; level < 5000; ++level)
        above = deep.Add(above, level % 2 == 0 ? "STUDY " : "PRIVATE ");
    EXPECT_EQ(TreesOf(*Load(folder, deep.Build())), "P1(S(absent)(x(absent)))");
    DirectoryBuilder wide;
    const int study = wide.AddStudy(wide.AddPatient(1), 2);
    constexpr int kSeriesCount = 200000;
    for (int series = 0; series < kSeriesCount; ++series) wide.Add(study, "SERIES");
    const auto directory = Load(folder, wide.Build());
    EXPECT_EQ(directory->GetSeriesDocs()->GetCount(), kSeriesCount);
}

}  // namespace
