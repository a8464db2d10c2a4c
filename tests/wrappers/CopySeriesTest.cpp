// Copying a series from one directory to another, and all that can happen on the way.

#include <stdexcept>

#include "platform/File.h"
#include "tests/wrappers/Workstation.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

namespace fs = std::filesystem;

constexpr char kCopied[] = "P1(S2(s3(i4 i5)))";

class CopySeriesTest : public Workstation {
  protected:
    CopySeriesTest() { Prepare(); }

    // The first series of the medium in drive C is to be copied onto the empty one in D.
    void Prepare() {
        fDestination.reset();
        fSource.reset();
        fManager.reset();
        fs::remove_all(fFolder.PathOf("D"));
        WriteMedium("C", {1});
        fFolder.WriteFile("D/DICOMDIR", DirectoryBuilder().Build());
        Start();
        fSource = Open("C/DICOMDIR");
        fDestination = Open("D/DICOMDIR");
        fSeries = fSource->GetSeriesList().at(0);
        fTrace.Take();
    }

    // Something happens with the first event, when no file is open yet.
    LuminaError CopyWhile(const std::function<void()>& happens) {
        bool isDone = false;
        const auto kept = fDestination;
        const auto subscription = kept->eCopySeriesProgress.Subscribe([&](const auto&) {
            if (!std::exchange(isDone, true)) happens();
        });
        const LuminaError result = kept->CopySeries(fSeries);
        kept->eCopySeriesProgress.Unsubscribe(subscription);
        EXPECT_TRUE(isDone);
        return result;
    }

    LuminaError Copy() { return fDestination->CopySeries(fSeries); }

    // The files of the images in the destination's DICOMDIR as it is on disk, against those in the source.
    void ExpectCopied(const char* tree = kCopied) {
        TDicomDirectory directory(TFileSpec(fFolder.PathOf("D/DICOMDIR")), 0);
        EXPECT_EQ(TreesOf(directory), tree);
        for (TImageDoc* image : *directory.GetImageDocs()) {
            const std::string name = "C/IMAGES/" + std::to_string(image->GetImageNumber());
            const bool isSame = ReadWholeFile(image->GetDicomFile()->GetFileSpec()->fPath) ==
                                ReadWholeFile(fFolder.PathOf(name));
            EXPECT_TRUE(isSame) << name;
        }
    }

    std::shared_ptr<DicomDirectory> fSource;
    std::shared_ptr<DicomDirectory> fDestination;
    SeriesDirRec fSeries;
};

TEST_F(CopySeriesTest, CopiesOnceAndTellsHowFarItIs) {
    std::vector<int32_t> copied;
    const auto subscription = fDestination->eCopySeriesProgress.Subscribe([&](const auto& progress) {
        copied.push_back(progress.GetBytesCopiedInSeries());
        EXPECT_EQ(progress.GetTotalBytesInSeries(), fSeries.GetDiskSpace());
    });
    EXPECT_EQ(Copy(), kSuccess);
    ASSERT_GE(copied.size(), 5U);
    EXPECT_TRUE(std::is_sorted(copied.begin(), copied.end()));
    EXPECT_EQ(copied.front(), 0);
    EXPECT_GE(copied.back(), fSeries.GetDiskSpace() - 4) << "whole kilobytes of each piece";
    EXPECT_FALSE(fDestination->IsCurrent());
    EXPECT_EQ(fDestination->GetSeriesList().size(), 0U);
    fDestination->UpdateDirRecs();
    EXPECT_EQ(fDestination->GetSeriesList().size(), 1U);
    ExpectCopied();
    const auto files = fFolder.ListFiles();
    copied.clear();
    EXPECT_EQ(Copy(), kSuccess);
    EXPECT_EQ(fFolder.ListFiles(), files);
    EXPECT_TRUE(copied.empty() && fDestination->IsCurrent());
    fDestination->eCopySeriesProgress.Unsubscribe(subscription);
    EXPECT_EQ(fDestination->CopySeries(fSource->GetSeriesList().at(1)), kSuccess);
    ExpectCopied("P1(S2(s3(i4 i5) s6(i7)))");
    EXPECT_EQ(fTrace.Take(), Lines());
}

TEST_F(CopySeriesTest, OfNothingOrIntoNothing) {
    const Lines unknown{"error: CopySeries - The series is not in its directory"};
    EXPECT_EQ(fDestination->CopySeries(SeriesDirRec()), Fatal(ErrorNumber::CopySeriesFailure));
    EXPECT_EQ(fTrace.Take(), unknown);
    fManager->DeleteDirectory(fSource);
    EXPECT_EQ(Copy(), Fatal(ErrorNumber::CopySeriesFailure));
    EXPECT_EQ(fTrace.Take(), unknown);
    fManager->DeleteDirectory(fDestination);
    EXPECT_EQ(Copy(), LuminaError(ErrorSeverity::InternalError, ErrorNumber::MissingDirectoryObject));
    EXPECT_EQ(fTrace.Take(), Lines{"error: CopySeries Internal error, no unmanaged DicomDirectory object"});
}

// What befalls the destination, and what the host is told; when it is mended, the copy succeeds.
TEST_F(CopySeriesTest, FailuresOfTheDestinationAreToldApart) {
    struct Case {
        ErrorNumber fNumber;
        Lines fLines;
        std::function<void()> fHappens;
    };
    const std::string directoryFile = fFolder.PathOf("D/DICOMDIR");
    const std::string images = fFolder.PathOf("D/" + Spelled("Imagesdc"));
    const auto putFileInTheWay = [&](const char* format) {
        fVolumes.fDrives[1].fFormat = format;
        fs::remove_all(images);
        WriteWholeFile(images, "a file in the way");
    };
    const std::string error = "error: CopySeries - ";
    const std::string fileFailed =
        error + "File exception caught for file: " + images + kSeparator + Spelled("I_000000.dcm");
    const std::string notOpened = error + "Can not open DICOMDIR for updating.";
    const std::string thrown = error + "Exception caught, likely due to full volume";
    const Case cases[] = {
        {ErrorNumber::CopySeriesDestMissing,
         {fileFailed, "error: Exception caught"},
         [&] { fs::remove_all(fFolder.PathOf("D")); }},
        {ErrorNumber::CopySeriesVolumeFull, {fileFailed}, [&] { putFileInTheWay("NTFS"); }},
        {ErrorNumber::CopySeriesFAT32, {fileFailed}, [&] { putFileInTheWay("FAT32"); }},
        {ErrorNumber::CopySeriesDirUpdateFailure, {notOpened}, [&] { fs::remove(directoryFile); }},
        {ErrorNumber::CopySeriesDirUpdateFailure, {notOpened}, [&] { WriteWholeFile(directoryFile, "x"); }},
        {ErrorNumber::CopySeriesDirUpdateFailure,
         {error + "Exception caught: 102"},
         [&] { MakeUnwritable(*fDestination); }},
        {ErrorNumber::CopySeriesVolumeFull, {thrown}, [] { throw std::runtime_error("of the host"); }},
        {ErrorNumber::CopySeriesVolumeFull, {thrown}, [] { throw 17; }},
    };
    for (const auto& [number, lines, happens] : cases) {
        Prepare();
        EXPECT_EQ(CopyWhile(happens), Fatal(number)) << static_cast<int>(number);
        EXPECT_EQ(fTrace.Take(), lines);
        EXPECT_FALSE(fDestination->IsSeriesInDirectory(fSeries.GetSeriesUID()))
            << "it would not be tried again";
        if (fs::is_regular_file(images)) fs::remove(images);
        fFolder.WriteFile("D/DICOMDIR", DirectoryBuilder().Build());
        fDestination->SyncWithDiskVersion();
        EXPECT_FALSE(fDestination->IsSeriesInDirectory(fSeries.GetSeriesUID()));
        EXPECT_EQ(Copy(), kSuccess);
        ExpectCopied();
        EXPECT_EQ(fTrace.Take(), Lines());
    }
}

// A host's window may be closed while it shows progress.
TEST_F(CopySeriesTest, HandlersMayLetGoOfEverything) {
    const LuminaError failure = Fatal(ErrorNumber::CopySeriesFailure);
    const auto drop = [this](std::shared_ptr<DicomDirectory>& directory) {
        fManager->DeleteDirectory(directory);
        directory.reset();
    };
    const auto disposeAndThrow = [this] {
        fDestination->Dispose();
        throw std::runtime_error("of the host");
    };
    const auto readSourceAgain = [this] {
        fSource->SyncWithDiskVersion();
        fSource->ClearAllDirectoryRecords();
    };
    const auto copyOther = [this] {
        EXPECT_EQ(fDestination->CopySeries(fSource->GetSeriesList().at(1)), kSuccess);
    };
    const std::tuple<std::function<void()>, LuminaError, std::string> cases[] = {
        {[&] { drop(fDestination); }, kSuccess, kCopied},
        {[&] { fDestination->Dispose(); }, failure, ""},
        {disposeAndThrow, failure, ""},
        {[&] { drop(fSource); }, kSuccess, kCopied},
        {readSourceAgain, kSuccess, kCopied},
        {[&] { fManager.reset(); }, kSuccess, kCopied},
        {copyOther, failure, "P1(S2(s6(i7)))"},
        {[&] { EXPECT_EQ(Copy(), kSuccess); }, failure, kCopied},
        {[&] { fDestination->Save(); }, kSuccess, kCopied},
    };
    int number = 0;
    for (const auto& [happens, result, tree] : cases) {
        SCOPED_TRACE(number++);
        Prepare();
        EXPECT_EQ(CopyWhile(happens), result);
        ExpectCopied(tree.c_str());
        if (fDestination == nullptr || !fDestination->IsValid()) continue;
        EXPECT_EQ(Tree(*fDestination), tree) << "in memory";
        EXPECT_FALSE(fDestination->GetUmDirectory()->IsOpen());
    }
}

// What is left over in a directory whose patients were taken out must not pass for being there.
TEST_F(CopySeriesTest, OfAndIntoAClearedDirectory) {
    EXPECT_EQ(Copy(), kSuccess);
    fDestination->ClearAllDirectoryRecords();
    EXPECT_EQ(Copy(), kSuccess);
    ExpectCopied();
    fSource->ClearAllDirectoryRecords();
    EXPECT_EQ(fSource->GetStudyList().size() + fSource->GetSeriesList().size(), 0U);
    const auto files = fFolder.ListFiles();
    EXPECT_EQ(fSource->DeleteSeries(fSeries), kSuccess);
    fDestination->ClearAllDirectoryRecords();
    EXPECT_EQ(Copy(), Fatal(ErrorNumber::CopySeriesFailure));
    EXPECT_EQ(fFolder.ListFiles(), files);
}

TEST_F(CopySeriesTest, IntoAFolder) {
    fFolder.MakeFolder("D/EXPORT");
    const auto folder = Open("D/EXPORT");
    EXPECT_EQ(folder->CopySeries(fSeries), Fatal(ErrorNumber::CopySeriesDirUpdateFailure));
    folder->CreateDICOMDIR();
    EXPECT_EQ(folder->CopySeries(fSeries), kSuccess);
    EXPECT_EQ(TreeOnDisk("D/EXPORT/DICOMDIR"), kCopied);
}

}  // namespace
