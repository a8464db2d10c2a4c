#include "wrappers/DirectoriesMgr.h"

#include "platform/File.h"
#include "tests/wrappers/Workstation.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Platform::DriveType;
using Platform::RegistryChange;
using Platform::RegistryKey;

namespace fs = std::filesystem;

constexpr char kKey[] = "Software\\Norvik\\Lumina\\DIR_INFO";

class DirectoriesMgrTest : public Workstation {
  protected:
    // A disc with its own UID.
    void InsertDisc(const std::string& drive, const std::string& uid) const {
        FileBuilder disc(Uids::kExplicitVRLittleEndian, Uids::kMediaStorageDirectory, uid);
        disc.Data().Numbers32(Tags::kFirstRootRecordOffset, Vr::kUL, {0});
        fFolder.WriteFile(drive + "/DICOMDIR", disc.Build());
    }
    Lines Paths(const DirectoriesMgr::DirectoryList& list) const {
        Lines paths;
        for (const auto& directory : list) {
            const fs::path path = Platform::FromHostText(directory->GetFullPath());
            paths.push_back(path.lexically_relative(fFolder.GetPath()).generic_string());
        }
        return paths;
    }
    Lines Drives() {
        Lines names;
        for (const auto& drive : fManager->GetAvailableDriveList()) {
            names.push_back(Platform::FromHostText(drive.GetDriveLetter()));
        }
        return names;
    }
    static std::string Remembered(const std::string& value) {
        const auto key = RegistryKey::Open(kKey);
        const auto text = key ? key->ReadText(value) : std::nullopt;
        return text ? Platform::FromHostText(*text) : "(absent)";
    }
    std::string DriveName(int drive) const { return fVolumes.fDrives[static_cast<size_t>(drive)].fName; }
};

TEST_F(DirectoriesMgrTest, FollowsTheDiscsInTheDrives) {
    InsertDisc("C", "1.1");
    fVolumes.fDrives[0].fType = DriveType::kCdRom;
    fVolumes.fDrives[1].fType = DriveType::kRemovable;
    Start();
    EXPECT_EQ(Paths(fManager->GetDirList()), Lines{"C/DICOMDIR"});
    const auto disc = fManager->GetDirList().at(0);
    EXPECT_TRUE(disc->IsRemovable() && disc->IsCDDVD() && !disc->IsWritable());
    EXPECT_EQ(fManager->GetDirList().at(0), disc) << "the same one while the disc is in";
    InsertDisc("D", "1.2");
    EXPECT_EQ(Paths(fManager->GetDirList()), (Lines{"C/DICOMDIR", "D/DICOMDIR"}));
    const auto stick = fManager->GetDirList().at(1);
    EXPECT_TRUE(stick->IsRemovable() && stick->IsWritable());
    fManager->SetReadDir(disc);
    fManager->SetWriteDir(stick);
    InsertDisc("C", "1.3");
    EXPECT_EQ(Paths(fManager->GetDirList()), (Lines{"D/DICOMDIR", "C/DICOMDIR"}));
    EXPECT_FALSE(disc->IsValid());
    EXPECT_EQ(fManager->GetDirList().at(1)->GetDirectoryUID(), L"1.3");
    EXPECT_EQ(fManager->GetReadDir(), nullptr);
    EXPECT_EQ(fManager->GetWriteDir(), stick);
    fManager->SetReadDir(stick);
    fVolumes.fDrives.pop_back();
    EXPECT_EQ(Paths(fManager->GetDirList()), Lines{"C/DICOMDIR"});
    EXPECT_TRUE(fManager->GetReadDir() == nullptr && fManager->GetWriteDir() == nullptr);
    fs::remove(fFolder.PathOf("C/DICOMDIR"));
    fFolder.MakeFolder("C/DICOMDIR");
    EXPECT_EQ(Paths(fManager->GetDirList()), Lines()) << "a folder is no DICOMDIR";
    EXPECT_EQ(fDamage.size(), 0U);
}

// Foreign writers leave the UID out or fill it with a blank.
TEST_F(DirectoriesMgrTest, KeepsDiscsWithOddUIDs) {
    for (const char* uid : {"", "1.1 "}) {
        InsertDisc("C", uid);
        Start();
        const auto disc = fManager->GetDirList().at(0);
        EXPECT_EQ(fManager->GetDirList().at(0), disc) << uid;
        InsertDisc("C", "1.2");
        EXPECT_NE(fManager->GetDirList().at(0), disc) << uid;
    }
}

// A disc that is being written here stays, whatever its file is just like.
TEST_F(DirectoriesMgrTest, KeepsWhatIsBeingUpdated) {
    InsertDisc("C", "1.1");
    Start();
    const auto disc = fManager->GetDirList().at(0);
    ASSERT_TRUE(disc->OpenForUpdating());
    EXPECT_EQ(fManager->GetDirList().at(0), disc);
    disc->Save();
    EXPECT_EQ(disc->GetError(), kSuccess);
    EXPECT_EQ(fManager->GetDirList().at(0), disc);
    ASSERT_TRUE(disc->OpenForUpdating());
    fManager->DeleteDirectory(disc);
    EXPECT_TRUE(Open("C/DICOMDIR")->OpenForUpdating()) << "one that is dropped holds nothing";
    disc->Dispose();
    EXPECT_NE(fManager->GetDirList().at(0), disc);
}

// Another program that takes long to write a DICOMDIR must not pass for damage, which ends the host.
TEST_F(DirectoriesMgrTest, LeavesOutWhatAnotherProgramIsChanging) {
    InsertDisc("C", "1.1");
    Start();
    auto held = Platform::OpenDiskFile(fFolder.PathOf("C/DICOMDIR"), Platform::FileAccess::kReadWrite);
    const TestClock clock;
    EXPECT_EQ(Paths(fManager->GetDirList()), Lines());
    EXPECT_EQ(Open("C/DICOMDIR"), nullptr);
    held.reset();
    EXPECT_EQ(Paths(fManager->GetDirList()), Lines{"C/DICOMDIR"});
    EXPECT_EQ(fDamage.size(), 0U);
}

TEST_F(DirectoriesMgrTest, LooksAtWantedDrivesThatAreReady) {
    fVolumes.fDrives.insert(fVolumes.fDrives.begin(), {"A:\\", "A:\\"});
    fVolumes.fDrives[2].fIsReady = false;
    const std::string a = DriveName(0), c = DriveName(1), d = DriveName(2);
    Start();
    EXPECT_EQ(Drives(), (Lines{a, c}));
    Start(true);
    EXPECT_EQ(Drives(), Lines{c});
    fVolumes.fDrives[2].fIsReady = true;
    EXPECT_EQ(Drives(), (Lines{c, d}));
    EXPECT_TRUE(fManager->FindAvailableDrive(Wide(d)));
    EXPECT_FALSE(fManager->FindAvailableDrive(Wide(d.substr(0, d.size() - 1))) ||
                 fManager->FindAvailableDrive(VantorWrappers::DriveInfo(L"A:\\")));
    fVolumes.fDrives.pop_back();
    EXPECT_EQ(Drives(), Lines{c});
    InsertDisc("C", "1.1");
    Start(false, true, Wide(a));
    EXPECT_EQ(Drives(), Lines{a});
    EXPECT_EQ(Paths(fManager->GetDirList()), Lines());
}

TEST_F(DirectoriesMgrTest, TracesEachStepOfAnUpdate) {
    InsertDisc("C", "1.1");
    InsertDisc("D", "1.2");
    for (const char* name : {"C/KEPT", "C/GONE"}) fFolder.MakeFolder(name);
    Start();
    Open("C/KEPT");
    Open("C/GONE");
    fs::remove(fFolder.PathOf("C/GONE"));
    InsertDisc("D", "1.3");
    fTrace.SetLevel(VantorHost::TraceLevel::kVerbose);
    const auto traced = [this] {
        std::string text;
        for (const std::string& line : fTrace.Take()) text += line.substr(line.find(' ') + 1) + "\n";
        for (size_t at = 0; (at = text.find(fFolder.GetPath())) != std::string::npos;) {
            text.erase(at, fFolder.GetPath().size() + 1);
        }
        std::replace(text.begin(), text.end(), kSeparator[0], '/');
        return text;
    };
    fManager->GetDirList();
    EXPECT_EQ(traced(),
              "Update drive list - start\nUpdate drive list - end\n"
              "Checking volume C/ - start\nVolume C/ added/retained in list\nChecking volume C/ - end\n"
              "Checking volume D/ - start\nVolume D/ removed from list\nChecking volume D/ - end\n"
              "Checking DICOM Directory C/DICOMDIR - start\nChecking DICOM Directory C/DICOMDIR - end\n"
              "Checking DICOM Directory D/DICOMDIR - start\n"
              "Constructing directory object D/DICOMDIR - start\nConstructing directory object - end\n"
              "Added DICOM Directory D/DICOMDIR to list\nChecking DICOM Directory D/DICOMDIR - end\n");
    fManager->GetFolderDirList();
    EXPECT_EQ(traced(),
              "Update drive list - start\nUpdate drive list - end\n"
              "Checking folder directory C/KEPT - start\nFolder directory added/retained in list\n"
              "Checking folder directory - end\nChecking folder directory C/GONE - start\n"
              "Folder directory removed from list\nChecking folder directory - end\n");
}

TEST_F(DirectoriesMgrTest, FoldersStayWhileTheyAndTheirDrivesAreThere) {
    fVolumes.fDrives.push_back({FakeVolumes::kNetwork, fFolder.MakeFolder("NET") + kSeparator});
    fFolder.WriteFile("C/IMAGE.DCM", FileOf({}).Build());
    for (const char* name : {"C/EXAM", "D/EXAM", "NET/EXAM"}) fFolder.MakeFolder(name);
    Start();
    const Lines all{"C/EXAM", "C/IMAGE.DCM", "D/EXAM", "NET/EXAM"};
    for (const std::string& name : all) Open(name);
    EXPECT_EQ(Paths(fManager->GetFolderDirList()), all);
    const auto onD = fManager->GetFolderDirList().at(2);
    fManager->SetWriteDir(onD);
    fVolumes.fDrives.erase(fVolumes.fDrives.begin() + 1);
    fs::remove(fFolder.PathOf("C/IMAGE.DCM"));
    fManager->SetIsViewer(true);
    EXPECT_EQ(Paths(fManager->GetFolderDirList()), all) << "a viewer does not look";
    fManager->SetIsViewer(false);
    EXPECT_EQ(Paths(fManager->GetFolderDirList()), (Lines{"C/EXAM", "NET/EXAM"}));
    EXPECT_EQ(fManager->GetWriteDir(), nullptr);
    fs::remove(fFolder.PathOf("NET/EXAM"));
    EXPECT_EQ(Paths(fManager->GetFolderDirList()), Lines{"C/EXAM"});
}

TEST_F(DirectoriesMgrTest, RemembersFifteenFolders) {
    Start();
    Lines expected;
    for (int number = 1; number <= 17; ++number) {
        const std::string name = "C/" + std::to_string(number);
        fFolder.MakeFolder(name);
        Open(name)->SetMarkedToRemember(number != 2);
        if (number != 2) expected.push_back(fFolder.PathOf(name));
    }
    for (const char* name : {"D/STAGING", "D/NET"}) fFolder.MakeFolder(name);
    fManager->SetStagingDir(Open("D/STAGING"));
    fManager->SetNetworkDir(Open("D/NET"));
    fManager->Dispose();
    for (int slot = 1; slot <= 15; ++slot) {
        EXPECT_EQ(Remembered("FolderDirPath" + std::to_string(slot)),
                  expected[static_cast<size_t>(slot) - 1]);
    }
    EXPECT_EQ(Remembered("FolderDirPath16"), "(absent)");
    EXPECT_EQ(Remembered("StagingPath"), fFolder.PathOf("D/STAGING"));
    EXPECT_EQ(Remembered("NetFolderPath"), fFolder.PathOf("D/NET"));
    {
        RegistryChange change(kKey);
        change.SetText("FolderDirPath3", PathOf("D/STAGING"));
        change.SetText("FolderDirPath4", PathOf("C/NONE"));
        change.SetText("FolderDirPath5", PathOf("C/17"));
        change.SetText("FolderDirPath6", L"");
        ASSERT_TRUE(change.Commit());
    }
    fManager->Dispose();
    Start();  // which destroys the other
    EXPECT_EQ(Remembered("FolderDirPath5"), fFolder.PathOf("C/17")) << "written once";
    auto folders = fManager->GetFolderDirList();
    ASSERT_EQ(folders.size(), 14U);
    EXPECT_EQ(Paths(folders).at(2) + Paths(folders).at(3), "D/STAGINGC/17");
    EXPECT_TRUE(folders[0]->IsMarkedToRemember() && folders[12]->IsMarkedToRemember());
    EXPECT_FALSE(folders[2]->IsMarkedToRemember() || folders[13]->IsMarkedToRemember());
    EXPECT_TRUE(fManager->IsStagingFolder(*folders[2]) && fManager->GetNetworkDir() == folders[13]);
    fManager->DeleteDirectory(folders[2]);
    EXPECT_EQ(Remembered("FolderDirPath4"), fFolder.PathOf("C/NONE"))
        << "it was not remembered: nothing is written";
    fManager->DeleteDirectory(folders[0]);
    EXPECT_EQ(Remembered("FolderDirPath1"), fFolder.PathOf("C/3"));
    EXPECT_EQ(Remembered("FolderDirPath11"), fFolder.PathOf("C/16"));
    EXPECT_EQ(Remembered("FolderDirPath12") + Remembered("FolderDirPath15"), "");
    EXPECT_EQ(Remembered("StagingPath"), fFolder.PathOf("D/STAGING"));
}

TEST_F(DirectoriesMgrTest, AViewerLeavesTheRegistryAlone) {
    fFolder.MakeFolder("C/EXAM");
    Start();
    Open("C/EXAM")->SetMarkedToRemember(true);
    Start(false, true, Wide(DriveName(0)));
    EXPECT_EQ(fManager->FindManagedDirectory(PathOf("C/EXAM")), nullptr);
    fManager.reset();
    EXPECT_EQ(Remembered("FolderDirPath1"), fFolder.PathOf("C/EXAM"));
}

TEST_F(DirectoriesMgrTest, OpensWhateverThereIsAtAPathAndOnlyOnce) {
    WriteMedium("C/DISC", {1});
    WriteMedium("C/OTHER", {1});
    fs::rename(fFolder.PathOf("C/OTHER/DICOMDIR"), fFolder.PathOf("C/OTHER/DISC.DIR"));
    fFolder.WriteFile("C/EXAM/4", FileOf({}).Build());
    fFolder.MakeFolder("C/EMPTY/DICOMDIR");
    Start();
    const std::tuple<const char*, const char*, bool, const char*> cases[] = {
        {"C/DISC/DICOMDIR", "C/DISC/DICOMDIR", false, "P1(S2(s3(i4 i5) s6(i7)))"},
        {"C/DISC", "C/DISC/DICOMDIR", false, "P1(S2(s3(i4 i5) s6(i7)))"},
        {"C/OTHER/DISC.DIR", "C/OTHER/DISC.DIR", false, "P1(S2(s3(i4 i5) s6(i7)))"},
        {"C/EXAM", "C/EXAM", true, "P1(S2(s1(i4)))"},
        {"C/EXAM/4", "C/EXAM/4", true, "P1(S2(s1(i4)))"},
        {"C/EMPTY", "C/EMPTY", true, ""}};
    for (const auto& [path, fullPath, isFolder, tree] : cases) {
        const auto directory = Open(path);
        ASSERT_TRUE(directory != nullptr && directory->IsValid()) << path;
        EXPECT_EQ(directory->GetFullPath(), PathOf(fullPath));
        EXPECT_EQ(directory->IsFolder(), isFolder);
        EXPECT_EQ(Tree(*directory), tree);
        EXPECT_EQ(directory->IsWritable(), true);
        EXPECT_EQ(Open(path), directory);
        EXPECT_FALSE(directory->IsMarkedToRemember());
        const bool isOnFolder = fs::is_directory(fFolder.PathOf(path));
        EXPECT_EQ(fManager->OpenDirectory(PathOf(path) + Wide(isOnFolder ? kSeparator : "")), directory);
    }
    EXPECT_EQ(Open("C/NONE"), nullptr);
    EXPECT_EQ(fManager->OpenDirectory(L""), nullptr);
    EXPECT_EQ(fManager->FindOrCreateFolderDirectory(PathOf("C/NONE")), nullptr);
    EXPECT_EQ(fManager->FindOrCreateFolderDirectory(PathOf("C/DISC")), Open("C/DISC")) << "of the same root";
    EXPECT_EQ(Paths(fManager->GetDirList()), (Lines{"C/DISC/DICOMDIR", "C/OTHER/DISC.DIR"}));
}

TEST_F(DirectoriesMgrTest, ReplacesDirectories) {
    WriteMedium("C/EXAM", {1});
    Start();
    const auto old = Open("C/EXAM");
    fManager->SetReadDir(old);
    const auto folder = fManager->CreateOrReplaceDirectory(PathOf("C/EXAM"), L"new one", false);
    ASSERT_TRUE(folder != nullptr && folder->GetError().IsSuccess());
    EXPECT_FALSE(old->IsValid());
    EXPECT_EQ(fManager->GetReadDir(), nullptr);
    EXPECT_TRUE(folder->IsFolder() && folder->HasDICOMDIR());
    EXPECT_EQ(folder->GetDirName(), L"new one");
    EXPECT_EQ(folder->GetImageFolderFullPath(), PathOf("C/EXAM/" + Spelled("imagesdc")));
    EXPECT_TRUE(fs::is_directory(Platform::FromHostText(folder->GetImageFolderFullPath())));
    EXPECT_EQ(fManager->GetDirList().size(), 0U);
    EXPECT_EQ(Paths(fManager->GetFolderDirList()), Lines{"C/EXAM/DICOMDIR"});
    const auto disc = fManager->CreateOrReplaceDirectory(folder->GetFullPath(), L"", true);
    EXPECT_FALSE(folder->IsValid());
    EXPECT_EQ(fManager->GetFolderDirList().size(), 0U);
    EXPECT_EQ(TreeOnDisk("C/EXAM/DICOMDIR"), "");
    EXPECT_EQ(fManager->GetDirList(), DirectoriesMgr::DirectoryList{disc});
    EXPECT_EQ(fManager->CreateOrReplaceDirectory(PathOf("C/NONE"), L"", false), nullptr);
    fManager->DeleteDirectory(nullptr);
    fManager->SetNetworkDir(fManager->FindOrCreateFolderDirectory(PathOf("C/EXAM")));
    EXPECT_TRUE(fManager->IsNetworkFolder(*disc));
    EXPECT_FALSE(fManager->IsStagingFolder(*disc));
    fManager->SetStagingDir(disc);
    EXPECT_TRUE(fManager->IsStagingFolder(*disc));
    fManager->SetNetworkDir(nullptr);
    EXPECT_FALSE(fManager->IsNetworkFolder(*disc));
}

TEST_F(DirectoriesMgrTest, RepairsADirectoryByEmptyingIt) {
    WriteMedium("C", {1});
    WriteMedium("D/EXAM", {1});
    Start();
    EXPECT_EQ(fManager->RepairDirectory(nullptr, L"x"),
              LuminaError(ErrorSeverity::InternalError, ErrorNumber::RepairFailure));
    EXPECT_EQ(fTrace.Take(), Lines{"error: Null repair directory passed in"});
    const auto folder = fManager->FindOrCreateFolderDirectory(PathOf("D/EXAM"));
    for (const auto& directory : {Open("C/DICOMDIR"), folder}) {
        const std::string path = Platform::FromHostText(directory->GetFullPath());
        const std::string name = fs::path(path).lexically_relative(fFolder.GetPath()).generic_string();
        const Bytes content = ReadWholeFile(path);
        {
            const TestClock clock;
            const auto held = Platform::OpenDiskFile(path, Platform::FileAccess::kReadWrite);
            EXPECT_EQ(fManager->RepairDirectory(directory, L"x"), Fatal(ErrorNumber::RepairFailure));
            ASSERT_EQ(fTrace.Take().size(), 1U);
            EXPECT_EQ(fManager->GetReadDir(), nullptr);
        }
        EXPECT_EQ(ReadWholeFile(path), content);
        EXPECT_EQ(Tree(*directory), TreeOnDisk(name)) << "what is on disk is as it was";
        EXPECT_EQ(directory->GetDirName(), L"TESTMEDIUM");
        EXPECT_EQ(fManager->RepairDirectory(directory, L"repaired"), kSuccess);
        EXPECT_EQ(TreeOnDisk(name) + Tree(*directory), "");
        EXPECT_EQ(directory->GetDirName(), L"repaired");
        EXPECT_EQ(fManager->GetReadDir(), directory);
        EXPECT_FALSE(directory->IsCurrent());
        directory->UpdateDirRecs();
        EXPECT_EQ(directory->GetSeriesList().size(), 0U);
        EXPECT_TRUE(directory->IsCurrent());
        fs::remove(path);
        EXPECT_EQ(fManager->RepairDirectory(directory, L"made anew"), kSuccess);
        EXPECT_EQ(TreeOnDisk(name), "");
        EXPECT_TRUE(directory->IsValid());
        fManager->SetReadDir(nullptr);
    }
    // A DICOMDIR that lies beside a single file is not the file's.
    fFolder.WriteFile("C/ONE", FileOf({}).Build());
    const Bytes beside = ReadWholeFile(fFolder.PathOf("C/DICOMDIR"));
    EXPECT_EQ(fManager->RepairDirectory(Open("C/ONE"), L"x"), Fatal(ErrorNumber::RepairFailure));
    EXPECT_EQ(ReadWholeFile(fFolder.PathOf("C/DICOMDIR")), beside);
    // Without a DICOMDIR its records are those of the files.
    fFolder.WriteFile("D/PLAIN/I1", FileOf({}).Build());
    const auto plain = Open("D/PLAIN");
    ASSERT_EQ(plain->GetSeriesList().size(), 1U);
    fFolder.MakeFolder("D/PLAIN/DICOMDIR");
    EXPECT_EQ(fManager->RepairDirectory(plain, L"x"), Fatal(ErrorNumber::RepairFailure));
    plain->SyncWithDiskVersion();
    plain->UpdateDirRecs();
    EXPECT_EQ(plain->GetSeriesList().size(), 1U);
    fTrace.Take();
    fs::remove_all(fFolder.PathOf("D/EXAM"));
    EXPECT_EQ(fManager->RepairDirectory(folder, L"x"), Fatal(ErrorNumber::RepairFailure));
    EXPECT_EQ(fTrace.Take().size(), 1U);
    EXPECT_EQ(fs::exists(fFolder.PathOf("C/IMAGES/4")), true) << "the files stay";
}

}  // namespace
