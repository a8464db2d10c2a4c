// Deleting a series with its files.

#include "platform/File.h"
#include "tests/wrappers/Workstation.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

namespace fs = std::filesystem;

class DeleteSeriesTest : public Workstation {
  protected:
    DeleteSeriesTest() {
        WriteMedium("C", {1, 11});
        fFolder.WriteFile("C/IMAGES/README", "the user's own");
        Start();
        fDirectory = Open("C/DICOMDIR");
    }
    SeriesDirRec Series(size_t index) const { return fDirectory->GetSeriesList().at(index); }
    Lines FilesLeft() const {
        Lines files;
        for (const std::string& file : fFolder.ListFiles()) {
            if (file.starts_with("C/IMAGES/")) files.push_back(file.substr(9));
        }
        return files;
    }
    void ExpectTree(const std::string& tree) {
        EXPECT_EQ(Tree(*fDirectory), tree);
        EXPECT_EQ(TreeOnDisk("C/DICOMDIR"), tree);
    }

    std::shared_ptr<DicomDirectory> fDirectory;
};

TEST_F(DeleteSeriesTest, TakesWhatIsEmptyThenAlong) {
    const SeriesDirRec first = Series(0), second = Series(1);
    EXPECT_EQ(fDirectory->DeleteSeries(second), kSuccess);
    EXPECT_FALSE(fDirectory->IsCurrent());
    ExpectTree("P1(S2(s3(i4 i5))) P11(S12(s13(i14 i15) s16(i17)))");
    EXPECT_EQ(FilesLeft(), (Lines{"14", "15", "17", "4", "5", "README"}));
    EXPECT_EQ(fDirectory->DeleteSeries(first), kSuccess);
    ExpectTree("P11(S12(s13(i14 i15) s16(i17)))");
    EXPECT_EQ(FilesLeft(), (Lines{"14", "15", "17", "README"}));
    EXPECT_EQ(fDirectory->DeleteSeries(first), kSuccess) << "there is no such series";
    EXPECT_EQ(fTrace.Take(), Lines());
    fDirectory->UpdateDirRecs();
    EXPECT_EQ(fDirectory->GetPatientList().size() + fDirectory->GetStudyList().size() +
                  fDirectory->GetSeriesList().size(),
              4U);
}

// Each of two series may name one file, spelled in its own way; the last one that is deleted takes it along.
TEST_F(DeleteSeriesTest, LeavesFilesThatOtherSeriesNameAsWell) {
    for (const std::string& spelling :
         {std::string("images\\5"), std::string("IMAGES/5"), fFolder.PathOf("C/IMAGES/5")}) {
        SCOPED_TRACE(spelling);
        for (const bool isDeletedFirst : {true, false}) {
            DirectoryBuilder media;
            const int study = media.AddStudy(media.AddPatient(1), 2);
            const int first = media.AddSeries(study, 3);
            const int second = media.AddSeries(study, 6);
            const int shared = media.Add(isDeletedFirst ? first : second, "PRIVATE ");
            media.Keys(shared).Text(Tags::kReferencedFileID, Vr::kCS, spelling);
            media.AddInstance(isDeletedFirst ? second : first, 5);
            fFolder.WriteFile("C/DICOMDIR", media.Build());
            fFolder.WriteFile("C/IMAGES/5", "x");
            fDirectory->UpdateDirRecs();
            EXPECT_EQ(fDirectory->DeleteSeries(Series(0)), kSuccess);
            EXPECT_EQ(FilesLeft(), (Lines{"14", "15", "17", "4", "5", "7", "README"}));
            fDirectory->UpdateDirRecs();
            EXPECT_EQ(fDirectory->DeleteSeries(Series(0)), kSuccess);
            EXPECT_EQ(FilesLeft(), (Lines{"14", "15", "17", "4", "7", "README"}));
            ExpectTree("");
        }
    }
}

// Nothing is deleted that the DICOMDIR would go on naming.
TEST_F(DeleteSeriesTest, NeedsADICOMDIRThatCanBeChanged) {
    const std::string path = fFolder.PathOf("C/DICOMDIR");
    const Bytes content = ReadWholeFile(path);
    const TestClock clock;
    for (const int way : {0, 1, 2}) {
        std::unique_ptr<Platform::File> held;
        if (way == 0) fs::remove(path);
        if (way == 1) WriteWholeFile(path, "damaged");
        if (way == 2) held = Platform::OpenDiskFile(path, Platform::FileAccess::kReadWrite);
        EXPECT_EQ(fDirectory->DeleteSeries(Series(0)), Fatal(ErrorNumber::DirectoryReadOnly));
        EXPECT_EQ(fTrace.Take(), Lines{"error: Directory open for update failed"});
        EXPECT_EQ(FilesLeft().size(), 7U);
        EXPECT_TRUE(fDirectory->IsSeriesInDirectory(Series(0).GetSeriesUID()));
        held.reset();
        WriteWholeFile(path, content);
    }
    EXPECT_EQ(fDirectory->DeleteSeries(Series(0)), kSuccess);
    ExpectTree("P1(S2(s6(i7))) P11(S12(s13(i14 i15) s16(i17)))");
}

TEST_F(DeleteSeriesTest, CanBeRepeatedWhenTheDICOMDIRWasNotWritten) {
    MakeUnwritable(*fDirectory);
    const LuminaError failed = Fatal(ErrorNumber::DeleteFailed);
    EXPECT_EQ(fDirectory->DeleteSeries(Series(1)), failed);
    EXPECT_EQ(fTrace.Take(), Lines{"error: Exception caught: 102"});
    ExpectTree("P1(S2(s3(i4 i5) s6(i7))) P11(S12(s13(i14 i15) s16(i17)))");
    EXPECT_FALSE(fDirectory->GetUmDirectory()->IsOpen());
    EXPECT_EQ(fDirectory->DeleteSeries(Series(1)), kSuccess);
    ExpectTree("P1(S2(s3(i4 i5))) P11(S12(s13(i14 i15) s16(i17)))");
}

TEST_F(DeleteSeriesTest, TakesIntoAccountWhatOthersHaveChanged) {
    const SeriesDirRec gone = Series(0), changed = Series(1);
    DirectoriesMgr other(false, true, L"");
    const auto second = other.OpenDirectory(PathOf("C/DICOMDIR"));
    EXPECT_EQ(second->DeleteSeries(gone), kSuccess);
    SeriesDirRec renamed = second->GetSeriesList().at(2);
    renamed.SetSeriesDescription(L"changed by the other one, and longer than it was");
    second->Save();
    EXPECT_EQ(fDirectory->DeleteSeries(gone), kSuccess) << "has been deleted already";
    EXPECT_EQ(fDirectory->DeleteSeries(changed), kSuccess);
    ExpectTree("P11(S12(s13(i14 i15) s16(i17)))");
    EXPECT_EQ(FilesLeft(), (Lines{"14", "15", "17", "README"}));
    second->UpdateDirRecs();
    EXPECT_EQ(second->GetSeriesList().at(0).GetSeriesDescription().substr(0, 7), L"changed");
    EXPECT_EQ(fTrace.Take(), Lines());
}

TEST_F(DeleteSeriesTest, WorksInAFolderWithoutADICOMDIR) {
    for (const int number : {4, 5, 6}) {
        const FileKeys keys{number, number < 6 ? 3 : 7};
        fFolder.WriteFile("D/EXAM/" + std::to_string(number), FileOf(keys).Build());
    }
    fFolder.WriteFile("D/EXAM/NOTES", "the user's own");
    fDirectory = Open("D/EXAM");
    ASSERT_EQ(Tree(*fDirectory), "P1(S2(s1(i4 i5) s2(i6)))");
    EXPECT_EQ(fDirectory->DeleteSeries(Series(0)), kSuccess);
    EXPECT_EQ(Tree(*fDirectory), "P1(S2(s2(i6)))");
    EXPECT_EQ(fDirectory->DeleteSeries(Series(1)), kSuccess);
    EXPECT_EQ(Tree(*fDirectory), "");
    EXPECT_EQ(fs::exists(fFolder.PathOf("D/EXAM/6")), false);
    EXPECT_EQ(fs::exists(fFolder.PathOf("D/EXAM/NOTES")), true);
    EXPECT_EQ(fDirectory->DeleteSeries(SeriesDirRec()), kSuccess);
    fDirectory->Dispose();
    EXPECT_EQ(fDirectory->DeleteSeries(SeriesDirRec()),
              LuminaError(ErrorSeverity::InternalError, ErrorNumber::MissingDirectoryObject));
    EXPECT_EQ(fTrace.Take(), Lines{"error: Internal error, no unmanaged DicomDirectory object"});
}

}  // namespace
