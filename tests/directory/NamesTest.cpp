// The names and folders that a directory gives to new files.

#include <gtest/gtest.h>

#include "dicom/TSRFile.h"
#include "platform/FileSystem.h"
#include "tests/directory/DirectorySupport.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Names = std::vector<std::string>;

class NumberedDirectory : public TDicomDirectory {
  public:
    using TDicomDirectory::SetNextImageNumber;
    using TDicomDirectory::TDicomDirectory;
};

class NamesTest : public testing::Test {
  protected:
    // A medium with a patient and a study; the exam layout when the study has its element.
    void Open(int32_t type) {
        DirectoryBuilder media;
        const int study = media.AddStudy(media.AddPatient(1), 2);
        if (type == TDicomDirectory::kExamLayout) media.Keys(study).Text(Tags::kExamCreator, Vr::kLO, "ANY");
        media.AddInstance(media.AddSeries(study, 3), 4);
        const TFileSpec spec(fFolder.WriteFile("DICOMDIR", media.Build()));
        fDirectory = std::make_unique<NumberedDirectory>(spec, 0);
        ASSERT_EQ(fDirectory->GetDirectoryType(), type);
    }

    // The next name of the standard layout, or how it is refused.
    std::string Next(int32_t kind = 0) {
        char fileID[TFileSpec::kPathSize] = {};
        uint32_t length = 0;
        const std::string thrown = ThrownBy([&] { fDirectory->MakeNextFileName(fileID, length, kind); });
        EXPECT_EQ(length, std::string(fileID).size());
        return thrown == "nothing" ? fileID : thrown;
    }

    // The path for a new image, below the directory's folder.
    std::string Image(const char* subFolder, const char* sopClassUID = "1.2",
                      const char* preferredName = "") {
        char path[TFileSpec::kPathSize] = {};
        int32_t length = 0;
        fDirectory->MakeImageFileName(path, length, subFolder, sopClassUID, preferredName);
        EXPECT_EQ(length, static_cast<int32_t>(std::string(path).size()));
        std::string below = length == 0 ? "" : std::string(path).substr(fFolder.GetPath().size() + 1);
        std::replace(below.begin(), below.end(), '\\', '/');
        return below;
    }

    TStudyDoc* Study() { return *fDirectory->GetStudyDocs()->begin(); }

    TestFolder fFolder;
    std::unique_ptr<NumberedDirectory> fDirectory;
};

TEST_F(NamesTest, StandardNumbersPassByWhatIsThere) {
    for (int number = 0; number < 5; ++number) {
        fFolder.WriteFile(Spelled("Imagesdc/I_00000" + std::to_string(number) + ".dcm"), "x");
    }
    Open(TDicomDirectory::kStandardLayout);
    EXPECT_EQ(Next(), Spelled("Imagesdc\\I_000005.dcm"));
    EXPECT_EQ(Next(), Spelled("Imagesdc\\I_000006.dcm")) << "given once, whether it was used or not";
    EXPECT_EQ(Next(TSRFile::kReportKind), Spelled("Imagesdc\\SR000007.dcm"));
    EXPECT_EQ(Image(""), Spelled("imagesdc/I_000008.dcm"));
    EXPECT_EQ(Image("SUB\\", "1.2", "IGNORED"), Spelled("imagesdc/SUB/I_000009.dcm"));
    EXPECT_EQ(Image(std::string(300, 'X').c_str()), "") << "too long";
    EXPECT_EQ(Next(), Spelled("Imagesdc\\I_000010.dcm")) << "and costs no number";
}

// Also where no such file is there.
TEST_F(NamesTest, TheLastNumberIsNeverGiven) {
    Open(TDicomDirectory::kStandardLayout);
    fDirectory->SetNextImageNumber(999998);
    EXPECT_EQ(Next(), Spelled("Imagesdc\\I_999998.dcm"));
    EXPECT_EQ(Image(""), "");
    EXPECT_EQ(Next(), "102 Exceeded 999999 files!");
}

TEST_F(NamesTest, ExamImagesKeepTwoCharactersOfTheirName) {
    Open(TDicomDirectory::kExamLayout);
    const std::string images = Spelled("Exams/EXAM0000/Images/");
    EXPECT_EQ(Image("EXAM0000\\"), images + Spelled("IMAG0000"));
    EXPECT_EQ(Image("EXAM0000\\", "1.2.840.10008.5.1.1.3.1", "a name of 14ch"),
              Spelled("Exams/EXAM0000/Clips/a name of 14"));
    for (const char* name : {"IMAG0000", "IM000001.dcm", "Loop.dcm"})
        fFolder.WriteFile(images + Spelled(name), "x");
    EXPECT_EQ(Image("EXAM0000\\"), images + Spelled("IM000002.dcm"));
    EXPECT_EQ(Image("EXAM0000\\", "1.2", "Loop.dcm"), images + Spelled("Lo000001.dcm"));
    EXPECT_EQ(Image("..\\X\\") + Image("EXAM0000\\", "1.2", "..\\X"), "") << "leads elsewhere";
}

TEST_F(NamesTest, ExamFoldersAreNumberedAndNamedInTheStudy) {
    Open(TDicomDirectory::kStandardLayout);
    char name[TDicomDoc::kFolderNameSize] = "x";
    fDirectory->CreateExamFolders(name, sizeof(name), 0, Study());
    EXPECT_STREQ(name, "") << "no such folders in this layout";
    Open(TDicomDirectory::kExamLayout);
    fFolder.MakeFolder(Spelled("Exams/EXAM0000"));
    fFolder.MakeFolder(Spelled("Exams/EXAM0001"));
    fDirectory->CreateExamFolders(name, sizeof(name), 0, Study());
    EXPECT_STREQ(name, "EXAM0002");
    for (const char* below : {"Clips", "Images"}) {
        EXPECT_TRUE(Platform::IsFolder(fFolder.PathOf("EXAMS/EXAM0002/" + Spelled(below)))) << below;
    }
    const std::string path = TextOf(*Study()->GetDataSet(), Tags::kExamFolder);
    EXPECT_EQ(path.front(), '\\');
    EXPECT_NE(path.find(Spelled("\\Exams\\EXAM0002")), std::string::npos) << path;
    EXPECT_EQ(TextOf(*Study()->GetDataSet(), Tags::kExamCreator), "ANY ");
    Study()->GetFolderName(name);
    EXPECT_STREQ(name, "EXAM0002");
    fFolder.WriteFile("EXAMS/EXAM0003", "a file in the way");
    EXPECT_EQ(ThrownBy([&] { fDirectory->CreateExamFolders(name, sizeof(name), 0, nullptr); }), "nothing");
    EXPECT_STREQ(name, "EXAM0004");
    std::filesystem::remove_all(fFolder.PathOf("EXAMS"));
    EXPECT_EQ(ThrownBy([&] { fDirectory->CreateExamFolders(name, sizeof(name), 0, nullptr); }),
              "102 Cannot make folder.");
    EXPECT_STREQ(name, "");
}

TEST_F(NamesTest, ExamFoldersGoWithTheirStudyAndNoOthers) {
    Open(TDicomDirectory::kExamLayout);
    const std::string first = Spelled("Exams") + "/EXAM0000/IMAGES/1";
    const std::string second = Spelled("Exams") + "/EXAM0001/2";
    for (const std::string& file : {first, second, std::string("NEIGHBOUR/3")}) fFolder.WriteFile(file, "x");
    for (const char* name : {"", "..", ".", "..\\X", "EXAM0001 "}) {
        Study()->SetFolderName(name, static_cast<uint32_t>(std::string(name).size()));
        fDirectory->DeleteFolders(Study());
    }
    Study()->SetFolderName("EXAM0000", 8);
    fDirectory->DeleteFolders(*fDirectory->GetSeriesDocs()->begin());
    EXPECT_EQ(fFolder.ListFiles(), (Names{"DICOMDIR", first, second, "NEIGHBOUR/3"}));
    fDirectory->DeleteFolders(*fDirectory->GetPatientDocs()->begin());
    EXPECT_EQ(fFolder.ListFiles(), (Names{"DICOMDIR", second, "NEIGHBOUR/3"}));
    // A file of another study lies in the folder of this one.
    Study()->SetFolderName("EXAM0001", 8);
    TStudyDoc* const other = new TStudyDoc(nullptr, fDirectory.get());
    TSeriesDoc* const series = new TSeriesDoc(nullptr, fDirectory.get());
    TImageDoc* const image = new TImageDoc(nullptr, fDirectory.get(), 0);
    constexpr char kFileID[] = "EXAMS\\EXAM0001\\2";
    image->GetDataSet()->PutElement(Tags::kReferencedFileID, Vr::kCS, sizeof(kFileID) - 1, kFileID,
                                    sizeof(kFileID) - 1);
    int32_t error = 0;
    (*fDirectory->GetPatientDocs()->begin())->AddChild(other, nullptr, true, error);
    other->AddChild(series, nullptr, true, error);
    series->AddChild(image, nullptr, true, error);
    fDirectory->DeleteFolders(Study());
    EXPECT_EQ(fFolder.ListFiles(), (Names{"DICOMDIR", second, "NEIGHBOUR/3"}));
    other->Discard();
    fDirectory->DeleteFolders(Study());
    EXPECT_EQ(fFolder.ListFiles(), (Names{"DICOMDIR", "NEIGHBOUR/3"}));
    fFolder.WriteFile(second, "x");
    Open(TDicomDirectory::kStandardLayout);
    Study()->SetFolderName("EXAM0001", 8);
    fDirectory->DeleteFolders(Study());
    EXPECT_EQ(fFolder.ListFiles().size(), 3U);
    fFolder.WriteFile("IMAGES/4", Bytes(2047));
    EXPECT_EQ(fDirectory->GetFileSpaceUsed(), 2.0F);
}

}  // namespace
