#include "media/TWritableCD.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/DirectoryBuilder.h"
#include "tests/support/FakeDiscService.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TraceLines.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Names = std::vector<std::string>;

namespace fs = std::filesystem;

// A host with a player, and a burning area in which a directory is staged.
class TWritableCDTest : public testing::Test {
  protected:
    TWritableCDTest() {
        for (const std::string name :
             {"Open_Studies.exe", "autorun.inf", "extra.dat", "Viewer/player.exe", "Viewer/de/text 1.txt"}) {
            fFolder.WriteFile("Host/ViewerFiles/" + name, "the player's " + name);
        }
        fFolder.MakeFolder("Host/ViewerFiles/Viewer/empty");
        fFolder.WriteFile("Area/DICOMDIR", DirectoryBuilder().Build());
        fFolder.WriteFile("Area/IMAGESDC/I_000000.DCM", "an image");
    }

    // A link, where this user may make one.
    bool Link(const std::string& target, const std::string& link) const {
        std::error_code error;
        const fs::path path = fFolder.PathOf(target);
        if (fs::is_directory(path)) {
            fs::create_directory_symlink(path, fFolder.PathOf(link), error);
        } else {
            fs::create_symlink(path, fFolder.PathOf(link), error);
        }
        return !error;
    }
    Names Files(const std::string& start) const {
        Names names;
        for (const std::string& name : fFolder.ListFiles()) {
            if (name.starts_with(start)) names.push_back(name.substr(start.size()));
        }
        return names;
    }
    std::string Text(const std::string& name) const { return ReadWholeFileAsText(fFolder.PathOf(name)); }

    static inline const Names kStaged = {"DICOMDIR", "IMAGESDC/I_000000.DCM"};
    static inline const Names kStagedWithPlayer = {
        "DICOMDIR",          "IMAGESDC/I_000000.DCM", "Open_Studies.exe", "Viewer/de/text 1.txt",
        "Viewer/player.exe", "autorun.inf",           "extra.dat"};

    TestFolder fFolder;
    std::string fHost = fFolder.PathOf("Host");
    std::string fArea = fFolder.PathOf("Area");
    FakeDiscService fService{fArea};
    TWritableCD fWriter;
};

struct State {
    const char* fName;
    bool fIsThere;
    bool fHasRecorder;
    bool fHasArea;
};

}  // namespace

TEST_F(TWritableCDTest, BurnsWithARecorderOnly) {
    EXPECT_TRUE(fWriter.CanBurnCDs());
    EXPECT_EQ(fWriter.GetWriteCDDrive(), "E:\\");
    EXPECT_EQ(fWriter.GetWriteFolderPath(), fArea);
    const std::string area = fService.fArea;
    constexpr State kStates[] = {{"no service", false, true, true},
                                 {"no recorder", true, false, true},
                                 {"no burning area", true, true, false}};
    for (const State& state : kStates) {
        SCOPED_TRACE(state.fName);
        fService.fIsThere = state.fIsThere;
        fService.fHasRecorder = state.fHasRecorder;
        fService.fArea = state.fHasArea ? area : "";
        EXPECT_FALSE(fWriter.CanBurnCDs());
        EXPECT_EQ(fWriter.GetWriteFolderPath(), "");
        EXPECT_TRUE(fWriter.CDFolderIsEmpty());
        EXPECT_EQ(fWriter.GetWriteCDDrive(),
                  state.fIsThere && state.fHasRecorder && state.fHasArea ? "E:\\" : "");
        EXPECT_FALSE(fWriter.AddViewer("", fHost));
        EXPECT_FALSE(fWriter.DeleteViewer("", fHost)) << "of no folder";
        EXPECT_EQ(fService.fConnections, 0);
    }
    EXPECT_EQ(Files("Area/"), kStaged);
}

TEST_F(TWritableCDTest, NamesTheDiscAfterItsFileSet) {
    TraceLines trace(VantorHost::TraceArea::kMedia, VantorHost::TraceLevel::kError);
    int window = 0;
    int percent = 0;
    EXPECT_TRUE(fWriter.BurnCD(&window, [&](int done) { percent = done; }));
    EXPECT_EQ(fService.fVolumeName, "TESTMEDIUM");
    EXPECT_EQ(fService.fWindow, &window);
    EXPECT_EQ(percent, 100);
    fFolder.WriteFile("Area/DICOMDIR", "no DICOMDIR");
    EXPECT_TRUE(fWriter.BurnCD(nullptr)) << "nobody has to be told";
    EXPECT_EQ(fService.fVolumeName, "");
    EXPECT_EQ(trace.Take(), Names());
    fService.fFails = true;
    EXPECT_FALSE(fWriter.BurnCD(nullptr));
    EXPECT_EQ(trace.Take(), Names{"error: the disc is full"});
    fService.fIsThere = false;
    EXPECT_FALSE(fWriter.BurnCD(nullptr));
    EXPECT_EQ(fService.fBurns, 3);
    EXPECT_EQ(fService.fConnections, 0);
}

// Other files do not make a disc that a viewer opens.
TEST_F(TWritableCDTest, IsEmptyWithoutADicomdir) {
    EXPECT_FALSE(fWriter.CDFolderIsEmpty());
    fs::remove(fFolder.PathOf("Area/DICOMDIR"));
    EXPECT_TRUE(fWriter.CDFolderIsEmpty());
    fFolder.MakeFolder("Area/DICOMDIR");
    EXPECT_TRUE(fWriter.CDFolderIsEmpty());
}

TEST_F(TWritableCDTest, PutsThePlayerBesideTheDataAndTakesItAway) {
    EXPECT_TRUE(fWriter.HasViewerFiles(fHost));
    EXPECT_FALSE(fWriter.HasViewerFiles(fArea) || fWriter.HasViewerFiles(""));
    EXPECT_FALSE(fWriter.AddViewer("", fFolder.PathOf("Nowhere")) || fWriter.AddViewer("", ""));
    EXPECT_TRUE(fWriter.AddViewer("", fHost));
    EXPECT_EQ(Files("Area/"), kStagedWithPlayer);
    EXPECT_TRUE(fs::is_directory(fFolder.PathOf("Area/Viewer/empty")));
    EXPECT_EQ(Text("Area/Viewer/de/text 1.txt"), "the player's Viewer/de/text 1.txt");
    fFolder.WriteFile("Area/autorun.inf", "changed");
    EXPECT_FALSE(fWriter.AddViewer("", fHost)) << "twice";
    EXPECT_EQ(Text("Area/autorun.inf"), "changed");
    // Of another version of the player.
    fFolder.WriteFile("Area/PlayerHelp.chm", "x");
    EXPECT_TRUE(fWriter.DeleteViewer("", fHost));
    EXPECT_EQ(Files("Area/"), kStaged);
    EXPECT_FALSE(fs::exists(fFolder.PathOf("Area/Viewer")));
    EXPECT_TRUE(fWriter.DeleteViewer("", fHost)) << "when there is none";

    fFolder.MakeFolder("Other");
    EXPECT_TRUE(fWriter.AddViewer(fFolder.PathOf("Other/"), fFolder.PathOf("Host/")));
    EXPECT_EQ(Files("Other/").size(), kStagedWithPlayer.size() - kStaged.size());
    EXPECT_TRUE(fWriter.DeleteViewer(fFolder.PathOf("Other"), "")) << "extra.dat cannot be known then";
    EXPECT_EQ(Files("Other/"), Names{"extra.dat"});
}

// Half a player would be taken for a whole one the next time. What was there before is not the player's.
TEST_F(TWritableCDTest, TakesAwayAPlayerThatCannotBeCopied) {
    fFolder.MakeFolder("Area/extra.dat/in the way");
    fFolder.WriteFile("Area/autorun.inf", "mine");
    fFolder.WriteFile("Host/ViewerFiles/Manual/a.txt", "x");
    EXPECT_FALSE(fWriter.AddViewer("", fHost));
    EXPECT_EQ(Files("Area/"), (Names{"DICOMDIR", "IMAGESDC/I_000000.DCM", "autorun.inf"}));
    EXPECT_FALSE(fs::exists(fFolder.PathOf("Area/Viewer")) || fs::exists(fFolder.PathOf("Area/Manual")));
    fs::remove_all(fFolder.PathOf("Area/extra.dat"));
    EXPECT_TRUE(fWriter.AddViewer("", fHost));
    fs::remove(fFolder.PathOf("Area/autorun.inf"));
    fFolder.MakeFolder("Area/autorun.inf/in the way");
    EXPECT_FALSE(fWriter.DeleteViewer("", fHost)) << "for what cannot be removed";
    EXPECT_FALSE(fs::exists(fFolder.PathOf("Area/Viewer"))) << "the rest goes";
}

// A player that comes with pictures of its own must not take the staged ones' place.
TEST_F(TWritableCDTest, NeverTouchesDicomFilesForAPlayer) {
    const std::string staged = Text("Area/DICOMDIR");
    fFolder.WriteFile("Area/IMAGESDC/I_000000.DCM", staged);
    fFolder.WriteFile("Area/extra.dat", staged);
    for (const std::string name : {"dicomdir", "imagesdc/i_000000.dcm"}) {
        SCOPED_TRACE(name);
        const std::string own = fFolder.WriteFile("Host/ViewerFiles/" + name, "the player's");
        EXPECT_FALSE(fWriter.AddViewer("", fHost));
        EXPECT_TRUE(fWriter.DeleteViewer("", fHost));
        EXPECT_EQ(Text("Area/DICOMDIR") + Text("Area/IMAGESDC/I_000000.DCM") + Text("Area/extra.dat"),
                  staged + staged + staged);
        EXPECT_FALSE(fs::exists(fFolder.PathOf("Area/Viewer")));
        fs::remove(own);
    }
    EXPECT_FALSE(fWriter.AddViewer("", fHost)) << "extra.dat is an image here";
    fs::remove(fFolder.PathOf("Area/extra.dat"));
    EXPECT_TRUE(fWriter.AddViewer("", fHost));
}

TEST_F(TWritableCDTest, CopiesFoldersOverWhatIsThere) {
    fFolder.WriteFile("Copy/ViewerFiles/autorun.inf", "old");
    fFolder.WriteFile("Copy/mine.txt", "mine");
    fs::permissions(fFolder.PathOf("Host/ViewerFiles/extra.dat"), fs::perms::owner_write,
                    fs::perm_options::remove);
    EXPECT_TRUE(fWriter.RecursiveCopyFolder(fHost, fFolder.PathOf("Copy")));
    EXPECT_EQ(Text("Copy/ViewerFiles/autorun.inf"), "the player's autorun.inf");
    EXPECT_EQ(Text("Copy/mine.txt"), "mine");
    EXPECT_EQ(Files("Copy/ViewerFiles/"), Files("Host/ViewerFiles/"));
    EXPECT_TRUE(fWriter.RecursiveDeleteFolder(fFolder.PathOf("Copy")))
        << "also what may not be changed at home";
    EXPECT_FALSE(fWriter.RecursiveCopyFolder(fFolder.PathOf("Nowhere"), fFolder.PathOf("Copy")));
    EXPECT_FALSE(fWriter.RecursiveCopyFolder(fHost, fFolder.PathOf("No/where")));
    EXPECT_FALSE(fWriter.RecursiveCopyFolder(fHost, "") || fWriter.RecursiveCopyFolder("", fHost));
    EXPECT_FALSE(fs::exists(fFolder.PathOf("Copy")));
    fs::permissions(fFolder.PathOf("Host/ViewerFiles/extra.dat"), fs::perms::owner_write,
                    fs::perm_options::add);
}

// Neither has an end.
TEST_F(TWritableCDTest, CopiesNoFolderIntoItself) {
    EXPECT_FALSE(fWriter.RecursiveCopyFolder(fHost, fFolder.PathOf("Host/ViewerFiles/Copy")));
    EXPECT_FALSE(fWriter.RecursiveCopyFolder(fHost, fHost));
    EXPECT_FALSE(fs::exists(fFolder.PathOf("Host/ViewerFiles/Copy/ViewerFiles/Copy")));
    if (!Link("Host", "Host/ViewerFiles/Viewer/de/home")) GTEST_SKIP() << "no links here";
    fFolder.MakeFolder("Copy/ViewerFiles/Viewer");
    Link("Copy/ViewerFiles", "Host/ViewerFiles/Viewer/copy");
    EXPECT_FALSE(fWriter.RecursiveCopyFolder(fHost, fFolder.PathOf("Copy")));
    EXPECT_FALSE(fs::exists(fFolder.PathOf("Copy/ViewerFiles/Viewer/copy")));
    EXPECT_EQ(Text("Copy/ViewerFiles/extra.dat"), "the player's extra.dat") << "the rest is copied";
}

TEST_F(TWritableCDTest, FollowsLinksForReadingOnly) {
    fFolder.WriteFile("Outside/kept.txt", "kept");
    if (!Link("Outside", "Host/ViewerFiles/Viewer/folder")) GTEST_SKIP() << "no links here";
    Link("Outside/kept.txt", "Host/ViewerFiles/linked.txt");
    Link("Outside/kept.txt", "Area/autorun.inf");
    EXPECT_TRUE(fWriter.AddViewer("", fHost));
    EXPECT_EQ(Text("Area/Viewer/folder/kept.txt"), "kept");
    EXPECT_FALSE(fs::is_symlink(fFolder.PathOf("Area/linked.txt")) ||
                 fs::is_symlink(fFolder.PathOf("Area/autorun.inf")));
    EXPECT_TRUE(fWriter.DeleteViewer("", fHost));
    EXPECT_EQ(Files("Area/"), kStaged);

    Link("Outside", "Area/Viewer");
    EXPECT_FALSE(fWriter.AddViewer("", fHost)) << "a player elsewhere is one";
    EXPECT_TRUE(fWriter.DeleteViewer("", fHost));
    Link("Outside", "Area/link");
    Link("Nowhere", "Area/dangling");
    EXPECT_FALSE(fWriter.RecursiveCopyFolder(fArea, fFolder.PathOf("Copy")))
        << "what leads nowhere is left out";
    fs::remove_all(fFolder.PathOf("Copy/link"));
    Link("Outside", "Copy/link");
    fFolder.WriteFile("Outside/kept.txt", "newer");
    EXPECT_FALSE(fWriter.RecursiveCopyFolder(fArea, fFolder.PathOf("Copy")));
    EXPECT_TRUE(fWriter.RecursiveDeleteFolder(fArea));
    EXPECT_TRUE(fWriter.RecursiveDeleteFolder(fFolder.PathOf("Copy")));
    EXPECT_EQ(Text("Outside/kept.txt"), "newer");
    EXPECT_FALSE(fs::exists(fArea));
}

// As other programs keep their own there.
TEST_F(TWritableCDTest, LeavesFoldersThatBeginWithAPeriod) {
    fFolder.WriteFile("Area/.Trash/1", "x");
    fFolder.WriteFile("Area/.hidden", "x");
    EXPECT_FALSE(fWriter.RecursiveDeleteFolder(fArea));
    EXPECT_EQ(Files("Area/"), Names{".Trash/1"});
    EXPECT_FALSE(fWriter.RecursiveDeleteFolder(fFolder.PathOf("Host/.")) ||
                 fWriter.RecursiveDeleteFolder(fFolder.PathOf("Host/ViewerFiles/..")));
    EXPECT_FALSE(Files("Host/").empty());
    EXPECT_FALSE(fWriter.RecursiveDeleteFolder("") ||
                 fWriter.RecursiveDeleteFolder(fFolder.PathOf("Nowhere")));
}
