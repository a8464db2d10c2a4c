#include "directory/TDicomDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "platform/FileSystem.h"
#include "tests/directory/DirectorySupport.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

namespace fs = std::filesystem;

class TDicomDirectoryTest : public testing::Test {
  protected:
    // Patient 1 with study 2, series 3 and two images; raw data 6.
    static DirectoryBuilder Medium() {
        DirectoryBuilder media;
        const int series = media.AddSeries(media.AddStudy(media.AddPatient(1), 2), 3);
        media.AddInstance(series, 4);
        media.AddInstance(series, 5);
        media.AddInstance(series, 6, "RAW DATA");
        return media;
    }
    const std::string kTree = "P1(S2(s3(i4 i5 r6)))";

    TPatientDoc* FirstPatient() { return *fDirectory->GetPatientDocs()->begin(); }
    TSeriesDoc* FirstSeries() { return *fDirectory->GetSeriesDocs()->begin(); }

    TestFolder fFolder;
    std::unique_ptr<TDicomDirectory> fDirectory;
    int32_t fError = 0;
};

TEST_F(TDicomDirectoryTest, OpensWithItsNameAndMakesTheImageFolder) {
    const std::string imageFolder = fFolder.PathOf("IMAGESDC");
    fDirectory = Load(fFolder, Medium().Build());
    char name[TDicomDirectory::kDirectoryNameSize] = {};
    fDirectory->GetDirName(name, sizeof(name));
    EXPECT_STREQ(name, "TESTMEDIUM");
    EXPECT_EQ(fDirectory->GetDirectoryType(), TDicomDirectory::kStandardLayout);
    EXPECT_TRUE(Platform::IsFolder(imageFolder));
    char text[] = "x";
    EXPECT_EQ(fDirectory->GetExtraInfo(text), TDicomDirectory::kStandardLayout);
    EXPECT_STREQ(text, "");
    EXPECT_GT(fDirectory->GetAvailableSpace(), 0);
    fDirectory->SetDirName("a name of twenty chr");
    fDirectory->GetDirName(name, sizeof(name));
    EXPECT_STREQ(name, "a name of twenty");
    EXPECT_EQ(TextOf(*fDirectory->GetDataSet(), Tags::kFileSetID), "A NAME OF TWENTY CHR");
    fDirectory->RefreshDocs();
    EXPECT_EQ(TreesOf(*fDirectory), kTree) << "the records have moved";
}

TEST_F(TDicomDirectoryTest, EmptyAndUnreadableOnes) {
    EXPECT_EQ(TreesOf(*Load(fFolder, DirectoryBuilder().Build())), "");
    FileBuilder withoutRecords;
    withoutRecords.Data().Text(Tags::kModality, Vr::kCS, "US");
    EXPECT_EQ(TreesOf(*Load(fFolder, withoutRecords.Build())), "");
    EXPECT_EQ(ThrownBy([&] { Load(fFolder, Bytes(2000)); }), "102 Invalid Dicom File");
    EXPECT_NE(ThrownBy([&] { TDicomDirectory(TFileSpec(fFolder.PathOf("MISSING")), 0); }), "nothing");
    // An element in front of the records leads out of the file: nobody can say what the medium holds.
    FileBuilder damaged;
    damaged.Data().Header({0x0004, 0x0001}, Vr::kUT, 0x7FFFFFF0).Raw(Bytes(40));
    EXPECT_EQ(ThrownBy([&] { Load(fFolder, damaged.Build()); }), "102 Invalid DICOM element length.");
}

TEST_F(TDicomDirectoryTest, IsCreatedInEitherLayout) {
    const std::pair<int32_t, const char*> layouts[] = {{TDicomDirectory::kStandardLayout, "IMAGESDC"},
                                                       {TDicomDirectory::kExamLayout, "EXAMS"}};
    for (const auto& [type, imageFolder] : layouts) {
        const TestFolder folder;
        TDicomDirectory directory(TFileSpec(folder.PathOf("DICOMDIR")), "NEW", type, "1.2.840.10008.1.3.10",
                                  "1.2.3", Uids::kExplicitVRLittleEndian, Uids::kImplementationClass, false);
        EXPECT_EQ(directory.GetDirectoryType(), type);
        EXPECT_TRUE(Platform::IsFolder(folder.PathOf(imageFolder)));
        EXPECT_EQ(TextOf(*directory.GetDataSet(), Tags::kFileSetID), "NEW ");
        EXPECT_EQ(directory.GetPatientDocs()->GetCount(), 0);
    }
}

// A first study with a folder of its own makes the exam layout; others do not.
TEST_F(TDicomDirectoryTest, DetectsTheExamLayout) {
    const std::tuple<const char*, const char*> folders[] = {{"\\EXAMS\\EXAM0003", "EXAM0003"},
                                                            {"\\EXAMS\\..", ""},
                                                            {"\\EXAMS\\...", ""},
                                                            {"\\EXAMS\\A NAME OF 16 CHR", ""},
                                                            {"C:", ""}};
    for (const auto& [path, name] : folders) {
        for (const bool isFirst : {true, false}) {
            const TestFolder folder;
            DirectoryBuilder media;
            const int patient = media.AddPatient(1);
            const int studies[] = {media.AddStudy(patient, 1), media.AddStudy(patient, 2)};
            media.Keys(studies[isFirst ? 0 : 1])
                .Text(Tags::kExamCreator, Vr::kLO, "EXAMS")
                .Text(Tags::kExamFolder, Vr::kLO, path);
            const auto directory = Load(folder, media.Build());
            EXPECT_EQ(directory->GetDirectoryType(), isFirst ? 1 : 0);
            EXPECT_EQ(Platform::IsFolder(folder.PathOf("EXAMS")), isFirst);
            char folderName[TDicomDoc::kFolderNameSize] = {};
            (*directory->GetStudyDocs()->begin())->GetFolderName(folderName);
            EXPECT_STREQ(folderName, isFirst ? name : "");
        }
    }
}

// The documents that somebody counts stay, with what is below them and with their files, also when the
// directory has gone; those above them do not. Raw data stay uncounted, as hosts expect, until the directory
// goes.
TEST_F(TDicomDirectoryTest, DocumentsOfHoldersOutliveARefreshAndTheDirectory) {
    fDirectory = Load(fFolder, Medium().Build());
    TSeriesDoc* const series = FirstSeries();
    TRawDataDoc* const rawData = *fDirectory->GetRawDataDocs()->begin();
    series->Register();
    fDirectory->RefreshDocs();
    EXPECT_NE(FirstSeries(), series);
    EXPECT_EQ(TreesOf(*fDirectory), kTree);
    EXPECT_EQ(series->GetStudy(), nullptr);
    EXPECT_EQ(TreeOf(*series), "s3(i4 i5 r6)");
    EXPECT_EQ(rawData->GetRefCount(), 2U) << "the series' count and that of the earlier list";
    EXPECT_EQ(fDirectory->FindDoc(series), FirstSeries());
    fDirectory.reset();
    EXPECT_EQ(series->GetDirectory(), nullptr);
    EXPECT_EQ((*series->GetRawDataDocs()->begin())->GetParentObj(), series);
    EXPECT_EQ((*series->GetImageDocs()->begin())->GetDicomFile()->GetFileSpec()->fPath,
              fFolder.PathOf("IMAGES/4"));
    series->Release();
    ASSERT_FALSE(series->IsInUse());
    delete series;
}

TEST_F(TDicomDirectoryTest, RereadsWhatAnotherProgramHasWritten) {
    fDirectory = Load(fFolder, Medium().Build());
    const std::string path = fFolder.PathOf("DICOMDIR");
    TPatientDoc* const patient = FirstPatient();
    EXPECT_TRUE(fDirectory->ReloadIfChanged());
    EXPECT_EQ(FirstPatient(), patient);
    const auto rewrite = [&](const Bytes& content) {
        const auto before = std::filesystem::last_write_time(path);
        WriteWholeFile(path, content);
        std::filesystem::last_write_time(path, before + std::chrono::seconds(2));
    };
    rewrite(Bytes(3));
    EXPECT_FALSE(fDirectory->ReloadIfChanged());
    EXPECT_EQ(FirstPatient(), patient) << "the old documents stay";
    fDirectory->RefreshDocs();
    EXPECT_EQ(TreesOf(*fDirectory), kTree) << "and can be made anew";
    EXPECT_FALSE(fDirectory->IsOpen());
    DirectoryBuilder media = Medium();
    media.AddPatient(7);
    rewrite(media.Build());
    EXPECT_TRUE(fDirectory->ReloadIfChanged());
    EXPECT_EQ(TreesOf(*fDirectory), kTree + " P7");
    std::filesystem::remove(path);
    EXPECT_FALSE(fDirectory->ReloadIfChanged());
}

TEST_F(TDicomDirectoryTest, ClearsWhatItHolds) {
    fDirectory = Load(fFolder, Medium().Build());
    TStudyDoc* const study = *fDirectory->GetStudyDocs()->begin();
    fDirectory->ClearAllDocs();
    EXPECT_EQ(fDirectory->GetPatientDocs()->GetCount(), 0);
    EXPECT_EQ(TreesOf(*fDirectory->GetStudyDocs()), "S2(s3(i4 i5 r6))") << "the other lists keep theirs";
    EXPECT_EQ(study->GetParentObj(), nullptr);
    fDirectory->RefreshDocs();
    FirstPatient()->Register();
    TPatientDoc* const held = FirstPatient();
    fDirectory->RemoveAllDocs();
    EXPECT_EQ(fDirectory->GetPatientDocs()->GetCount(), 0);
    fDirectory->RefreshDocs();
    EXPECT_EQ(TreeOf(*held), kTree);
    held->Release();
    held->Discard();
}

TEST_F(TDicomDirectoryTest, FindsByTheIdentityOfItsType) {
    fDirectory = Load(fFolder, Medium().Build());
    const TestFolder otherFolder;
    const auto other = Load(otherFolder, Medium().Build());
    EXPECT_EQ(fDirectory->FindDoc(nullptr), nullptr);
    EXPECT_EQ(fDirectory->FindDoc(*other->GetPatientDocs()->begin()), FirstPatient());
    EXPECT_EQ(fDirectory->FindDoc(*other->GetStudyDocs()->begin()), *fDirectory->GetStudyDocs()->begin());
    EXPECT_EQ(fDirectory->FindDoc(*other->GetImageDocs()->rbegin()), *fDirectory->GetImageDocs()->rbegin());
    EXPECT_EQ(fDirectory->FindDoc(*other->GetRawDataDocs()->begin()), nullptr) << "nothing tells raw data";
    TPrivateDoc privateDoc(nullptr, nullptr);
    EXPECT_EQ(fDirectory->FindDoc(&privateDoc), nullptr);
}

// With what is above it, and with the file that was registered for it; never twice.
TEST_F(TDicomDirectoryTest, TakesInDocumentsOfAnotherDirectory) {
    DirectoryBuilder media;
    media.AddPatient(1);
    fDirectory = Load(fFolder, media.Build());
    const TestFolder otherFolder;
    const auto other = Load(otherFolder, Medium().Build());
    TImageDoc* const image = *other->GetImageDocs()->rbegin();
    auto file = std::make_unique<TDicomFile>(0, TFileSpec(fFolder.PathOf("imagesdc/new")), 0);
    file->SetSOPClassUID("1.2.840.10008.5.1.4.1.1.3.1");
    file->SetSOPInstanceUID("1.2.3.3.5");
    EXPECT_FALSE(fDirectory->RegisterDicomFile(nullptr));
    EXPECT_TRUE(fDirectory->RegisterDicomFile(std::move(file)));
    TDicomDoc* const created = fDirectory->FindOrCreateDoc(image, fError);
    EXPECT_EQ(TreesOf(*fDirectory), "P1(S2(s3(i5)))") << "without what else is in the series";
    EXPECT_EQ(TextOf(*created->GetDataSet(), Tags::kReferencedFileID), "IMAGESDC\\NEW");
    EXPECT_EQ(fDirectory->TakeRegisteredFile("1.2.840.10008.5.1.4.1.1.3.1", "1.2.3.3.5"), nullptr) << "taken";
    EXPECT_EQ(fDirectory->FindOrCreateDoc(image, fError), created);
    EXPECT_EQ(fDirectory->FindOrCreateDoc(created, fError), created);
    EXPECT_EQ(fDirectory->GetImageDocs()->GetCount(), 1);
    EXPECT_EQ(created->GetRefCount(), 2U) << "the series' list and the directory's";
    // Raw data cannot be told, so they are entered each time; private records have no list but their
    // parent's.
    TRawDataDoc* const rawData = *other->GetRawDataDocs()->begin();
    EXPECT_NE(fDirectory->FindOrCreateDoc(rawData, fError), fDirectory->FindOrCreateDoc(rawData, fError));
    TPrivateDoc loose(nullptr, nullptr);
    EXPECT_EQ(fDirectory->FindOrCreateDoc(&loose, fError)->GetParentObj(), nullptr);
    EXPECT_EQ(TextOf(*(*fDirectory->GetRawDataDocs()->begin())->GetDataSet(), Tags::kReferencedFileID),
              "NOT_COPIED");
}

// A copy that was made and never put into place would keep its parent for ever.
TEST_F(TDicomDirectoryTest, CopiesWithoutAPlaceGoWithTheDirectory) {
    fDirectory = Load(fFolder, Medium().Build());
    const TestFolder otherFolder;
    const auto other = Load(otherFolder, Medium().Build());
    for (TDicomDoc* doc : {static_cast<TDicomDoc*>(*other->GetImageDocs()->begin()),
                           static_cast<TDicomDoc*>(*other->GetRawDataDocs()->begin())}) {
        EXPECT_EQ(doc->CopyToDirectory(fDirectory.get(), FirstSeries(), true, fError)->GetParentObj(),
                  FirstSeries());
    }
    EXPECT_EQ(fDirectory->GetImageDocs()->GetCount(), 3);
    fDirectory->ClearAllDocs();
}

// A stranger's record may name any file; only the medium's own may be removed.
TEST_F(TDicomDirectoryTest, FilesElsewhereAreNotRemoved) {
    fFolder.MakeFolder("CD");
    const std::string victim = fFolder.WriteFile("VICTIM", Bytes(1023));
    DirectoryBuilder media;
    const int series = media.AddSeries(media.AddStudy(media.AddPatient(1), 2), 3);
    for (const std::string& fileID : {std::string("..\\VICTIM"), std::string("X\\..\\..\\VICTIM"), victim}) {
        media.Keys(media.Add(series, "IMAGE "))
            .Text(Tags::kReferencedFileID, Vr::kCS, fileID)
            .Text(Tags::kReferencedSOPClassUIDInFile, Vr::kUI, "1.2");
    }
    fFolder.WriteFile("CD/DICOMDIR", media.Build());
    TDicomDirectory directory(TFileSpec(fFolder.PathOf("CD/DICOMDIR")), 0);
    TPatientDoc& patient = **directory.GetPatientDocs()->begin();
    EXPECT_GE(patient.GetDiskSpace(), 1) << "reading it is no harm";
    patient.DeleteFilesFromDisk();
    EXPECT_EQ(fFolder.ListFiles(), (std::vector<std::string>{"CD/DICOMDIR", "VICTIM"}));
}

// A host that works in the medium's folder may name the DICOMDIR alone.
TEST_F(TDicomDirectoryTest, AMediumThatIsNamedWithoutAFolderLeadsNowhereElse) {
    fFolder.WriteFile("CD/DICOMDIR", Medium().Build());
    fFolder.WriteFile("CD/IMAGES/1", "an image");
    fFolder.WriteFile("OTHER/1", "a stranger's");
    std::error_code refused;  // by Windows, which then has none
    fs::create_directory_symlink(fFolder.PathOf("OTHER"), fFolder.PathOf("CD/OUT"), refused);
    fs::create_directory_symlink(fFolder.PathOf("CD/IMAGES"), fFolder.PathOf("CD/IN"), refused);
    fs::create_symlink(fFolder.PathOf("CD/DICOMDIR"), fFolder.PathOf("OTHER/DICOMDIR"), refused);
    const fs::path before = fs::current_path();
    fs::current_path(fFolder.PathOf("CD"));
    {
        TDicomDirectory directory(TFileSpec("DICOMDIR"), 0);
        EXPECT_TRUE(directory.OwnsDICOMDIR());
        const auto places = directory.GetFilePlaces();
        const auto mayBeWritten = [&](const char* fileID) {
            return places->MayBeWritten(places->Find(fileID));
        };
        EXPECT_TRUE(mayBeWritten("IMAGES\\1") && mayBeWritten("IN\\1"));
        EXPECT_FALSE(mayBeWritten("..\\OTHER\\1") || mayBeWritten("DICOMDIR"));
        EXPECT_EQ(mayBeWritten("OUT\\1"), static_cast<bool>(refused));
    }
    fs::current_path(fFolder.PathOf("OTHER"));
    if (!refused) {
        EXPECT_FALSE(TDicomDirectory(TFileSpec("DICOMDIR"), 0).OwnsDICOMDIR());
    }
    fs::current_path(before);
}

// Against the passes that hosts know, in which a pair without numbers is left as it is.
TEST_F(TDicomDirectoryTest, SortsAsTheStatedPassesDo) {
    fDirectory = Load(fFolder, DirectoryBuilder().Build());
    std::mt19937 random(17);
    constexpr const char* kNumbers[] = {nullptr, "", "9", "10", " 3", "-4", "x", "10", "2"};
    for (int round = 0; round < 200; ++round) {
        TStudyDoc study(nullptr, nullptr);
        std::vector<std::pair<const char*, TSeriesDoc*>> expected;
        for (int index = 0; index < 12; ++index) {
            auto* const series = new TSeriesDoc(nullptr, nullptr);
            const char* const number = kNumbers[random() % std::size(kNumbers)];
            if (number != nullptr) series->SetSeriesNumber(number);
            study.AddChild(series, nullptr, true, fError);
            expected.emplace_back(number, series);
        }
        for (bool hasSwapped = true; hasSwapped;) {
            hasSwapped = false;
            for (size_t index = 1; index < expected.size(); ++index) {
                auto& [before, first] = expected[index - 1];
                auto& [after, second] = expected[index];
                if (before == nullptr || after == nullptr || std::atoi(after) >= std::atoi(before)) continue;
                std::swap(expected[index - 1], expected[index]);
                hasSwapped = true;
            }
        }
        fDirectory->SortSeriesByNumber(&study);
        const TListOf<TSeriesDoc>& sorted = *study.GetSeriesDocs();
        EXPECT_TRUE(std::equal(sorted.begin(), sorted.end(), expected.begin(), expected.end(),
                               [](TSeriesDoc* series, const auto& entry) { return series == entry.second; }));
    }
    fDirectory->SortSeriesByNumber(nullptr);
    fDirectory->SortImagesByNumber(nullptr);
}

TEST_F(TDicomDirectoryTest, SortsImagesByNumberAndKeepsEqualOnes) {
    DirectoryBuilder media;
    const int series = media.AddSeries(media.AddStudy(media.AddPatient(1), 2), 3);
    for (const int number : {12, 9, 10, 9, -1}) {
        media.AddInstance(series, number);
        media.AddInstance(series, number, "PRIVATE ");
    }
    fDirectory = Load(fFolder, media.Build());
    const auto images = *FirstSeries()->GetImageDocs()->begin();
    fDirectory->SortImagesByNumber(FirstSeries());
    EXPECT_EQ(TreeOf(*FirstSeries()), "s3(i-1 i9 i9 i10 i12 x12 x9 x10 x9 x-1)");
    EXPECT_EQ(*FirstSeries()->GetImageDocs()->rbegin(), images);
    EXPECT_EQ(TreesOf(*fDirectory->GetImageDocs()), "i12 i9 i10 i9 i-1")
        << "the directory's list keeps its order";
}

}  // namespace
