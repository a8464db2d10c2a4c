#include "wrappers/WritableCdDvd.h"

#include <stdexcept>

#include "tests/support/FakeDiscService.h"
#include "tests/wrappers/Workstation.h"

namespace {

using namespace VantorTest;
using VantorWrappers::WritableCdDvd;

class WritableCdDvdTest : public Workstation {
  protected:
    void StartWithWriter(bool isViewer = false) { Start(false, isViewer, L"", true); }

    std::string fArea = fFolder.MakeFolder("C/Burn");
    FakeDiscService fService{fArea};
};

// What is copied into the burning area is staged for the disc.
TEST_F(WritableCdDvdTest, TheBurningAreaIsADirectoryOfTheManager) {
    WriteMedium("D", {1});
    StartWithWriter();
    const WritableCdDvd* const writer = fManager->GetWritableCd();
    ASSERT_NE(writer, nullptr);
    EXPECT_EQ(writer->GetWriteFolderPath(), Wide(fArea));
    ASSERT_EQ(fManager->GetFolderDirList().size(), 1U);
    const auto staging = fManager->GetFolderDirList().at(0);
    EXPECT_EQ(staging->GetRootPath(), Wide(fArea));
    EXPECT_FALSE(staging->IsMarkedToRemember());
    EXPECT_TRUE(writer->CDFolderIsEmpty());
    staging->CreateDICOMDIR();
    EXPECT_EQ(staging->CopySeries(Open("D")->GetSeriesList().at(0)), kSuccess);
    EXPECT_FALSE(writer->CDFolderIsEmpty());
    EXPECT_EQ(TreeOnDisk("C/Burn/DICOMDIR"), Tree(*staging));
    int32_t percent = 0;
    fManager->GetWritableCd()->eBurnProgress.Subscribe([&](int32_t done) { percent = done; });
    EXPECT_TRUE(writer->BurnCD(nullptr));
    EXPECT_EQ(percent, 100);

    staging->SetMarkedToRemember(true);
    StartWithWriter();
    ASSERT_EQ(fManager->GetFolderDirList().size(), 1U);
    EXPECT_EQ(fManager->GetFolderDirList().at(0)->GetSeriesList().size(), 1U);
    EXPECT_FALSE(fManager->GetFolderDirList().at(0)->IsMarkedToRemember()) << "although it was";
}

// As when the user closes the window that shows how far the disc is: it is finished nevertheless.
TEST_F(WritableCdDvdTest, ABurnOutlivesItsSubscribers) {
    StartWithWriter(true);
    WritableCdDvd& writer = *fManager->GetWritableCd();
    writer.eBurnProgress.Subscribe([&](int32_t) { fManager->Dispose(); });
    EXPECT_TRUE(writer.BurnCD(nullptr));
    EXPECT_FALSE(writer.CanBurnCDs());
    StartWithWriter(true);
    WritableCdDvd& other = *fManager->GetWritableCd();
    other.eBurnProgress.Subscribe([](int32_t) { throw std::runtime_error("closed"); });
    EXPECT_THROW(other.BurnCD(nullptr), std::runtime_error);
    EXPECT_EQ(fService.fBurns, 2);
    EXPECT_EQ(fService.fConnections, 0);
}

TEST_F(WritableCdDvdTest, TheManagerHasAWriterWhenItIsAskedFor) {
    Start();
    EXPECT_EQ(fManager->GetWritableCd(), nullptr);
    EXPECT_TRUE(fManager->GetFolderDirList().empty());
    fService.fHasRecorder = false;
    StartWithWriter();
    ASSERT_NE(fManager->GetWritableCd(), nullptr);
    EXPECT_FALSE(fManager->GetWritableCd()->CanBurnCDs());
    EXPECT_TRUE(fManager->GetFolderDirList().empty());
}

// An empty burning area counts as one with a writer only.
TEST_F(WritableCdDvdTest, AnswersNothingWhenDisposedOf) {
    fFolder.WriteFile("Host/ViewerFiles/Viewer/player", "x");
    WritableCdDvd writer;
    EXPECT_TRUE(writer.CanBurnCDs() && writer.CDFolderIsEmpty() && writer.HasViewerFiles(PathOf("Host")));
    writer.Dispose();
    writer.Dispose();
    EXPECT_FALSE(writer.CanBurnCDs() || writer.CDFolderIsEmpty() || writer.HasViewerFiles(PathOf("Host")));
    EXPECT_EQ(writer.GetWriteFolderPath() + writer.GetWriteCDDrive(), L"");
    EXPECT_FALSE(writer.BurnCD(nullptr) || writer.AddViewer(L"", PathOf("Host")) ||
                 writer.DeleteViewer(PathOf("C"), PathOf("Host")) ||
                 writer.RecursiveCopyFolder(PathOf("Host"), PathOf("Copy")) ||
                 writer.RecursiveDeleteFolder(PathOf("Host")));
    EXPECT_TRUE(std::filesystem::exists(fFolder.PathOf("Host/ViewerFiles/Viewer/player")));
    EXPECT_EQ(fService.fBurns, 0);
}

}  // namespace
