#include "directory/TFolderDirectory.h"

#include <gtest/gtest.h>

#include "dicom/TSRFile.h"
#include "platform/FileSystem.h"
#include "tests/directory/DirectorySupport.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

Bytes Content(const FileKeys& keys) { return FileOf(keys).Build(); }

Bytes Medium(bool isExam = false) {
    DirectoryBuilder media;
    const int study = media.AddStudy(media.AddPatient(1), 2);
    if (isExam) media.Keys(study).Text(Tags::kExamCreator, Vr::kLO, "ANY");
    media.AddInstance(media.AddSeries(study, 3), 4);
    return media.Build();
}

constexpr char kTree[] = "P1(S2(s3(i4)))";

class TFolderDirectoryTest : public testing::Test {
  protected:
    void Open(const std::string& path, int32_t mode = TFolderDirectory::kFolder) {
        fDirectory = std::make_unique<TFolderDirectory>(path, "A NAME", mode);
        EXPECT_EQ(fDirectory->GetDirectoryType(), TDicomDirectory::kFolderDirectory);
        EXPECT_FALSE(fDirectory->IsOpen());
    }
    void Open() { Open(fFolder.GetPath()); }
    std::string Tree() const { return TreesOf(*fDirectory); }

    std::string Name() const {
        char name[TDicomDirectory::kDirectoryNameSize] = {};
        fDirectory->GetDirName(name, sizeof(name));
        return name;
    }

    std::string FullPath(const std::string& fileID) {
        TFileSpec spec;
        fDirectory->MakeFileSpec(fileID, spec);
        return spec.fPath;
    }

    std::string FileID(const std::string& path) {
        char fileID[TFileSpec::kPathSize] = {};
        uint32_t length = 0;
        fDirectory->MakeRelativeFileID(fileID, length, TFileSpec(path));
        return std::string(fileID, length);
    }

    // A folder's time goes on in steps; what changes within one is not seen.
    void ChangeFolder() const {
        while (fDirectory->IsCurrent()) std::filesystem::remove(fFolder.WriteFile("PASSING", "x"));
    }

    void ExpectSoundFiles() {
        TListOf<TDicomFile> files;
        for (TPatientDoc* patient : *fDirectory->GetPatientDocs()) patient->CollectFiles(files);
        EXPECT_GT(files.GetCount(), 0);
        for (TDicomFile* file : files) EXPECT_TRUE(Platform::PathExists(file->GetFileSpec()->fPath));
    }

    TestFolder fFolder;
    std::unique_ptr<TFolderDirectory> fDirectory;
};

TEST_F(TFolderDirectoryTest, ReadsADICOMDIROrElseTheFiles) {
    const std::tuple<const char*, Bytes, const char*> cases[] = {
        {"dicomdir", Medium(), kTree},
        {"DICOMDIR", {}, ""},
        {"DICOMDIR/FOLDER", Content({5}), "P1(S2(s1(i5 i7)))"}};
    for (const auto& [name, content, tree] : cases) {
        const TestFolder folder;
        folder.WriteFile("IMAGE", Content({7}));
        folder.WriteFile(name, content);
        const bool hasDICOMDIR = std::string(name).size() == sizeof("DICOMDIR") - 1;
        for (const std::string& end : {std::string(), kSeparator, kSeparator + kSeparator}) {
            Open(folder.GetPath() + end);
            EXPECT_EQ(fDirectory->GetHasDICOMDIRflag(), hasDICOMDIR);
            EXPECT_EQ(Tree(), tree);
            EXPECT_EQ(Name(), tree == kTree ? "TESTMEDIUM" : "") << "the name that was given does not stay";
            const std::string directoryPath = folder.GetPath() + end + (end.empty() ? kSeparator : "");
            EXPECT_EQ(fDirectory->GetFullPath(), hasDICOMDIR ? directoryPath + "DICOMDIR" : folder.GetPath());
            EXPECT_EQ(fDirectory->GetImageFolderFullPath(), "");
            EXPECT_TRUE(Platform::IsSameFile(FullPath("IMAGE"), folder.PathOf("IMAGE")));
            EXPECT_TRUE(fDirectory->IsCurrent() || tree == std::string());
            EXPECT_EQ(fDirectory->OpenForUpdating(), tree == kTree);
            fDirectory.reset();
        }
    }
}

TEST_F(TFolderDirectoryTest, OpensADICOMDIRByItsFile) {
    TFileSpec spec(fFolder.WriteFile("CD/DICOMDIR", Medium()));
    spec.fWord = 0x12345;
    TFolderDirectory directory(spec);
    EXPECT_EQ(directory.GetDirectoryType(), TDicomDirectory::kFolderDirectory);
    EXPECT_TRUE(directory.GetHasDICOMDIRflag());
    EXPECT_EQ(directory.GetFolderPath(), fFolder.PathOf("CD/"));
    EXPECT_EQ(TreesOf(directory), kTree);
    EXPECT_FALSE(directory.ReloadIfChanged()) << "unlike other directories";
    TFileSpec image;
    directory.MakeFileSpec("IMAGES\\4", image);
    EXPECT_EQ(image.fPath, fFolder.PathOf("CD/IMAGES/4"));
    EXPECT_EQ(image.fWord, 0x2345U);
    fFolder.WriteFile("CD/DICOMDIR", Bytes(2000));
    EXPECT_EQ(ThrownBy([&] { TFolderDirectory damaged(spec); }), "102 Invalid Dicom File");
}

TEST_F(TFolderDirectoryTest, StandsForOneFile) {
    const std::string path = fFolder.WriteFile("SUB/ONE", Content({7}));
    fFolder.WriteFile("SUB/OTHER", Content({8}));
    fFolder.WriteFile("SUB/DICOMDIR", Medium());
    Open(path, TFolderDirectory::kSingleFile);
    EXPECT_EQ(Tree(), "P1(S2(s1(i7)))");
    EXPECT_EQ(fDirectory->GetFullPath(), path);
    for (const char* fileID : {"", "ANY\\THING", "C:\\X", "/etc"}) EXPECT_EQ(FullPath(fileID), path);
    EXPECT_EQ(FileID(fFolder.PathOf("SUB/OTHER")), "OTHER");
    EXPECT_EQ(fDirectory->AddFile(fFolder.PathOf("SUB/OTHER")), nullptr);
    for (const char* const none : {"SUB", "NONE", "SUB/DICOMDIR"}) {
        Open(fFolder.PathOf(none), TFolderDirectory::kSingleFile);
        EXPECT_EQ(Tree(), "") << none;
        EXPECT_FALSE(fDirectory->GetHasDICOMDIRflag());
    }
}

TEST_F(TFolderDirectoryTest, IsEmptyAndUsableWhereThereIsNothing) {
    const std::string tooLong = fFolder.PathOf(std::string(300, 'X'));
    for (const std::string& path : {fFolder.PathOf("MISSING"), fFolder.WriteFile("FILE", "x"), tooLong}) {
        Open(path);
        fDirectory->RemoveAllDocs();
        fDirectory->WriteDICOMDIR();
        fDirectory->CreateImageFolder("X");
        EXPECT_NE(ThrownBy([&] { fDirectory->CreateDICOMDIR(); }), "nothing");
        EXPECT_FALSE(fDirectory->GetHasDICOMDIRflag() || fDirectory->ReloadIfChanged() ||
                     fDirectory->OpenForUpdating());
        EXPECT_EQ(Tree(), "");
        EXPECT_EQ(fDirectory->GetFullPath(), path == tooLong ? "" : path) << "a path is kept whole or not";
    }
    EXPECT_EQ(fFolder.ListFiles(), std::vector<std::string>{"FILE"});
}

TEST_F(TFolderDirectoryTest, EntersFilesInTheOrderOfTheirNames) {
    int number = 0;
    for (const char* name : {"B", "C/Z", "C/SUB/A", "D", "a.dcm"})
        fFolder.WriteFile(name, Content({++number}));
    fFolder.WriteFile("COPY_OF_B", Content({1}));
    fFolder.WriteFile("E/REPORT", Content({6, 4, "", "ID1", kReportClass}));
    fFolder.WriteFile("E/RAW", Content({7, 3, "", "ID1", Uids::kRawDataStorage}));
    fFolder.WriteFile("NO_PATIENT", Content({9, 3, "", ""}));
    fFolder.WriteFile("C/DICOMDIR", Medium());
    fFolder.WriteFile("TEXT.TXT", "no DICOM file");
    Open();
    const std::string tree = "P1(S2(s1(i1 i3 i2 i4 i5 r7) s2(d(absent))))";
    EXPECT_EQ(Tree(), tree);
    ExpectSoundFiles();
    fDirectory->ScanFiles();
    EXPECT_EQ(Tree(), tree) << "nothing comes twice";
}

TEST_F(TFolderDirectoryTest, LinksToFilesCountAndThoseToFoldersDoNot) {
    const TestFolder elsewhere;
    fFolder.WriteFile("SUB/A", Content({1}));
    const std::string other = elsewhere.WriteFile("B", Content({2}));
    std::error_code refused;
    std::filesystem::create_directory_symlink(elsewhere.GetPath(), fFolder.PathOf("OUT"), refused);
    std::filesystem::create_symlink(other, fFolder.PathOf("SUB/LINK"), refused);
    if (refused) GTEST_SKIP() << refused.message();
    elsewhere.WriteFile("C", Content({3}));
    Open();
    EXPECT_EQ(Tree(), "P1(S2(s1(i1 i2)))");
}

// Those without a number, by their place among all series of the study.
TEST_F(TFolderDirectoryTest, NumbersSeriesByTheirPlace) {
    const auto write = [&](const char* name, int series, const char* number) {
        fFolder.WriteFile(name, Content({series, series, number}));
    };
    write("B", 11, "");
    write("C", 12, "7");
    write("D", 13, "");
    Open();
    EXPECT_EQ(Tree(), "P1(S2(s1(i11) s7(i12) s3(i13)))");
    write("A", 10, "");
    ChangeFolder();
    EXPECT_FALSE(fDirectory->ReloadIfChanged());
    EXPECT_EQ(Tree(), "P1(S2(s1(i10) s2(i11) s7(i12) s4(i13)))") << "and anew";
    write("E", 14, "");
    EXPECT_NE(fDirectory->AddFile(fFolder.PathOf("E")), nullptr);
    EXPECT_EQ(Tree(), "P1(S2(s1(i10) s2(i11) s7(i12) s4(i13) s1(i14)))");
}

// Hosts take false for "nothing to show anew": also when there is, and only true for a DICOMDIR read again.
TEST_F(TFolderDirectoryTest, AnswersFalseButForADICOMDIRReadAgain) {
    fFolder.WriteFile("IMAGE", Content({7}));
    Open();
    TSeriesDoc* const series = *fDirectory->GetSeriesDocs()->begin();
    EXPECT_FALSE(fDirectory->ReloadIfChanged());
    EXPECT_EQ(*fDirectory->GetSeriesDocs()->begin(), series) << "unchanged";
    series->Register();
    fFolder.WriteFile("IMAGE2", Content({8}));
    std::filesystem::remove(fFolder.PathOf("IMAGE"));
    ChangeFolder();
    EXPECT_FALSE(fDirectory->ReloadIfChanged());
    EXPECT_EQ(Tree(), "P1(S2(s1(i8)))");
    EXPECT_TRUE(fDirectory->IsCurrent());
    EXPECT_EQ(TreeOf(*series), "s1(i7)") << "held";
    series->Release();
    series->Discard();
    fDirectory->RemoveAllDocs();
    EXPECT_EQ(Tree() + TreesOf(*fDirectory->GetImageDocs()), "");
    fDirectory->ScanFiles();
    EXPECT_EQ(Tree(), "P1(S2(s(absent)(i8)))");

    const std::string path = fFolder.WriteFile("DICOMDIR", Medium());
    Open();
    EXPECT_FALSE(fDirectory->ReloadIfChanged()) << "unchanged";
    const auto rewrite = [&](const Bytes& content) {
        const auto before = std::filesystem::last_write_time(path);
        WriteWholeFile(path, content);
        std::filesystem::last_write_time(path, before + std::chrono::seconds(2));
    };
    rewrite(Bytes(300));
    EXPECT_FALSE(fDirectory->ReloadIfChanged()) << "damaged";
    EXPECT_EQ(Tree(), kTree);
    rewrite(Medium());
    EXPECT_TRUE(fDirectory->ReloadIfChanged());
    EXPECT_EQ(Tree(), kTree);
}

TEST_F(TFolderDirectoryTest, FileIDsCountFromTheFolder) {
    Open();
    const std::string full = fFolder.PathOf("SUB/IMAGE");
    std::string shouted = full;
    for (char& letter : shouted) letter = static_cast<char>(std::toupper(letter));
    EXPECT_EQ(FullPath(shouted), shouted) << "is full already";
    EXPECT_EQ(FileID(shouted), "SUB\\IMAGE");
    EXPECT_EQ(FullPath("SUB\\IMAGE"), full);
    for (const std::string& fileID : {fFolder.GetPath(), std::string(kIsWindows ? "C:\\X" : "/X")}) {
        EXPECT_TRUE(FullPath(fileID).starts_with(fFolder.PathOf(""))) << fileID << " is not below it";
    }
    EXPECT_EQ(FullPath(std::string(300, 'X')), "");
}

TEST_F(TFolderDirectoryTest, StaysAFolderWithTheNamesOfTheStandardLayout) {
    fFolder.WriteFile("DICOMDIR", Medium(true));
    Open();
    EXPECT_EQ(Tree(), kTree);
    fDirectory->RefreshDocs();
    EXPECT_EQ(fDirectory->GetDirectoryType(), TDicomDirectory::kFolderDirectory);
    for (int time = 0; time < 2; ++time) fDirectory->CreateImageFolder("Pictures");
    const std::string pictures = fFolder.PathOf(Spelled("Pictures"));
    EXPECT_TRUE(Platform::IsFolder(pictures));
    EXPECT_EQ(fDirectory->GetImageFolderFullPath(), pictures);
    char path[TFileSpec::kPathSize] = {};
    uint32_t length = 0;
    fDirectory->MakeNextFileName(path, length, TSRFile::kReportKind);
    EXPECT_EQ(path, Spelled("Imagesdc\\SR000000.dcm"));
    fDirectory->CreateExamFolders(path, sizeof(path), 0, nullptr);
    EXPECT_STREQ(path, "");
}

// What was looked through is then read from the DICOMDIR, by whoever opens it.
TEST_F(TFolderDirectoryTest, BecomesAMediumWithADICOMDIR) {
    for (const bool isSingleFile : {false, true}) {
        const TestFolder folder;
        const std::string one = folder.WriteFile("one.dcm", Content({1}));
        folder.WriteFile("SUB/two", Content({2, 4, "", "ID1", kReportClass}));
        folder.WriteFile("SUB/three", Content({3, 3, "", "ID5"}));
        Open(isSingleFile ? one : folder.GetPath(), isSingleFile ? TFolderDirectory::kSingleFile : 0);
        const std::string tree = Tree();
        EXPECT_FALSE(fDirectory->OpenForUpdating());
        fDirectory->WriteDICOMDIR();
        EXPECT_FALSE(Platform::PathExists(folder.PathOf("DICOMDIR")));
        fDirectory->SetDirName("NEWS");
        fDirectory->CreateDICOMDIR();
        EXPECT_TRUE(fDirectory->GetHasDICOMDIRflag());
        EXPECT_FALSE(fDirectory->IsOpen());
        EXPECT_EQ(Tree(), tree);
        const TFileSpec spec(folder.PathOf("DICOMDIR"));
        EXPECT_EQ(TreesOf(*std::make_unique<TDicomDirectory>(spec, 0)), "");
        fDirectory->WriteDICOMDIR();
        EXPECT_EQ(TreesOf(*std::make_unique<TDicomDirectory>(spec, 0)), tree);
        // Later files count from the folder too.
        EXPECT_TRUE(fDirectory->OpenForUpdating());
        EXPECT_NE(fDirectory->AddFile(folder.WriteFile("MORE", Content({9}))), nullptr);
        fDirectory->WriteDICOMDIR();
        const std::string more = Tree();
        Open(folder.GetPath());
        EXPECT_EQ(Tree(), more);
        ExpectSoundFiles();
        EXPECT_EQ(Name(), "NEWS");
        fDirectory.reset();
    }
}

TEST_F(TFolderDirectoryTest, KeepsFailuresOfWritingToItself) {
    const std::string path = fFolder.WriteFile("DICOMDIR", Medium());
    Open();
    std::filesystem::remove(path);
    fFolder.MakeFolder("DICOMDIR");
    fDirectory->WriteDICOMDIR();
    // A record that cannot be completed.
    std::filesystem::remove(path);
    WriteWholeFile(path, Medium());
    EXPECT_TRUE(fDirectory->OpenForUpdating());
    (*fDirectory->GetStudyDocs()->begin())->GetDataSet()->DeleteElement(0x0004, 0x1430);
    (*fDirectory->GetStudyDocs()->begin())->GetDataSet()->DeleteElement(0x0008, 0x0020);
    fDirectory->WriteDICOMDIR();
    EXPECT_FALSE(fDirectory->IsOpen());
    EXPECT_EQ(ReadWholeFile(path), Medium());
    fDirectory->SetHasDICOMDIRflag(false);
    EXPECT_FALSE(fDirectory->OpenForUpdating());
}

// There may be a way to get at its records again.
TEST_F(TFolderDirectoryTest, ADICOMDIRThatIsNotUnderstoodIsNotWrittenOver) {
    FileBuilder noSyntax;
    noSyntax.ReplaceMeta(ElementBuilder().Text(Tags::kMediaStorageSOPClassUID, Vr::kUI, "1.2"));
    noSyntax.Data().Text(Tags::kFileSetID, Vr::kCS, "MEDIUM");
    FileBuilder cut;
    cut.Data().Header(Tags::kFileSetID, Vr::kCS, 100);
    for (const Bytes& content : {noSyntax.Build(), cut.Build(), BytesOf("no DICOM file")}) {
        const std::string path = fFolder.WriteFile("DICOMDIR", content);
        Open();
        EXPECT_FALSE(fDirectory->OpenForUpdating());
        fDirectory->SetDirName("NEW");
        fDirectory->WriteDICOMDIR();
        EXPECT_EQ(ReadWholeFile(path), content);
    }
}

}  // namespace
