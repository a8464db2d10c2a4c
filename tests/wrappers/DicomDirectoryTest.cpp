#include "wrappers/DicomDirectory.h"

#include <fstream>
#include <stdexcept>

#include "tests/wrappers/Workstation.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using Platform::DriveType;

namespace fs = std::filesystem;

class DicomDirectoryTest : public Workstation {};

// What a host may do with a new DICOMDIR follows from the drive.
TEST_F(DicomDirectoryTest, CreatesADICOMDIRThatKnowsItsDrive) {
    const std::tuple<DriveType, bool, bool> cases[] = {
        {DriveType::kRemovable, true, true}, {DriveType::kFixed, false, true},
        {DriveType::kNetwork, false, true},  {DriveType::kCdRom, true, false},
        {DriveType::kUnknown, false, false}, {DriveType::kRamDisk, false, true}};
    for (const auto& [type, isRemovable, isWritable] : cases) {
        WriteMedium("C/NEW", {1});
        fVolumes.fDrives[0].fType = type;
        Start();
        const HostString path = PathOf("C/NEW/DICOMDIR");
        const auto directory = fManager->CreateOrReplaceDirectory(path, L"my disc", true);
        ASSERT_TRUE(directory != nullptr && directory->IsValid());
        EXPECT_TRUE(directory->IsRemovable() == isRemovable && directory->IsWritable() == isWritable &&
                    directory->IsCDDVD() == (type == DriveType::kCdRom))
            << static_cast<int>(type);
        EXPECT_EQ(directory->GetUmDirectory()->GetDriveType(), static_cast<int32_t>(type));
        EXPECT_EQ(Wide(fVolumes.fDrives[0].fName).find(directory->GetVolumeName().value()), 0U);
        EXPECT_EQ(directory->GetPatientList().size(), 0U) << "the old ones are gone";
        EXPECT_EQ(fGranted, std::vector<HostString>(fGranted.size(), path));
        EXPECT_TRUE(directory->IsCurrent() && directory->GetFullPath() == path);
        TDicomDirectory found(TFileSpec(fFolder.PathOf("C/NEW/DICOMDIR")), 0);
        char text[kMaximumUidLength + 1];
        found.GetSOPClassUID(text);
        EXPECT_STREQ(text, Uids::kMediaStorageDirectory);
        found.GetSOPInstanceUID(text);
        EXPECT_EQ(directory->GetDirectoryUID(), Wide(text));
        EXPECT_EQ(TextOf(*found.GetDataSet(), Tags::kFileSetID), "MY DISC ");
    }
    EXPECT_EQ(fGranted.size(), 6U);
    fManager->DeleteDirectory(fManager->FindManagedDirectory(PathOf("C/NEW/DICOMDIR")));
    fVolumes.fDrives[0].fIsReady = false;
    const auto apart = Start().CreateOrReplaceDirectory(PathOf("C/NEW/ANY.DIR"), L"", true);
    EXPECT_TRUE(apart->GetDriveInfo() == nullptr && !apart->IsWritable() && !apart->IsRemovable());
    EXPECT_TRUE(fs::exists(fFolder.PathOf("C/NEW/DICOMDIR")));
}

// Everything that hosts ask of a directory which they still hold when it has gone.
TEST_F(DicomDirectoryTest, DoesNothingWhenItIsNotValid) {
    WriteMedium("C/A", {1});
    const std::string path = fFolder.PathOf("C/A/DICOMDIR");
    const Bytes before = ReadWholeFile(path);
    Start();
    const auto other = Open("C/A/DICOMDIR");
    const SeriesDirRec series = other->GetSeriesList().at(0);
    fManager->DeleteDirectory(other);
    const std::string ways[] = {"dropped", "disposed", "without manager", "missing", "null"};
    for (const std::string& way : ways) {
        SCOPED_TRACE(way);
        Start();
        std::shared_ptr<DicomDirectory> directory = Open("C/A/DICOMDIR");
        if (way == "dropped") fManager->DeleteDirectory(directory);
        if (way == "disposed") directory->Dispose();
        if (way == "without manager") fManager.reset();
        if (way == "missing") {
            directory = std::make_shared<DicomDirectory>(PathOf("C/NONE"), *fManager, L"", false, false);
        }
        if (way == "null") directory = std::make_shared<DicomDirectory>(nullptr, *fManager);
        const DicomDirectory& asked = *directory;
        EXPECT_FALSE(asked.IsValid() || asked.IsCurrent() || asked.IsRemovable() || asked.IsFolder() ||
                     asked.IsDownloadFolder() || asked.IsCDDVD() || asked.IsSeriesInDirectory(L"1.2.3.2.3"));
        EXPECT_TRUE(asked.IsWritable() && asked.HasDICOMDIR()) << "as hosts rely on";
        EXPECT_FALSE(asked.GetFolderPath() || asked.GetVolumeName() || asked.GetDirName() ||
                     asked.GetDirectoryUID());
        EXPECT_EQ(asked.GetFullPath() + asked.GetImageFolderFullPath(), L"");
        EXPECT_EQ(asked.GetFileSpaceUsed() + asked.GetAvailableSpace(), 0);
        fTrace.Take();
        for (void (DicomDirectory::*operation)() :
             {&DicomDirectory::UpdateDirRecs, &DicomDirectory::SyncWithDiskVersion,
              &DicomDirectory::CloseFile, &DicomDirectory::ClearAllDirectoryRecords,
              &DicomDirectory::CreateDICOMDIR, &DicomDirectory::AllFilesDeleted,
              &DicomDirectory::WriteDirectory}) {
            (*directory.*operation)();
        }
        for (void (DicomDirectory::*setter)(const HostString&) :
             {&DicomDirectory::SetFolderPath, &DicomDirectory::SetImageFolder, &DicomDirectory::SetVolumeName,
              &DicomDirectory::SetDirName, &DicomDirectory::CreateImageFolder}) {
            (*directory.*setter)(L"x");
        }
        directory->SetWritable(true);
        directory->SetRemovable(true);
        HostString reason = L"x";
        EXPECT_FALSE(directory->AddFile(PathOf("C/A/IMAGES/4"), reason));
        EXPECT_EQ(reason, L"");
        EXPECT_TRUE(directory->GetError().IsSuccess());
        EXPECT_EQ(fTrace.Take(), Lines());
        directory->Save();
        EXPECT_EQ(directory->GetError(), Fatal(ErrorNumber::DirectoryInvalid));
        const LuminaError missing(ErrorSeverity::InternalError, ErrorNumber::MissingDirectoryObject);
        EXPECT_EQ(directory->CopySeries(series), missing);
        EXPECT_EQ(directory->DeleteSeries(series), missing);
        if (directory->GetUmDirectory() == nullptr) {
            EXPECT_FALSE(directory->OpenForUpdating());
            EXPECT_EQ(directory->GetDrive() + directory->GetRootPath(), L"");
        }
        directory->Dispose();
        directory->Dispose();
        EXPECT_EQ(ReadWholeFile(path), before);
    }
}

TEST_F(DicomDirectoryTest, IsNamedAfterItsFileSetOrItsFolder) {
    const std::string exams = fFolder.MakeFolder("E");
    fVolumes.fDrives.push_back({"E:\\", exams + kSeparator});
    WriteMedium("E/NAMED", {1});
    FileBuilder nameless(Uids::kExplicitVRLittleEndian, Uids::kMediaStorageDirectory);
    nameless.Data().Numbers32(Tags::kFirstRootRecordOffset, Vr::kUL, {0});
    fFolder.WriteFile("E/NAMELESS/DICOMDIR", nameless.Build());
    fFolder.WriteFile("E/TWIN/DICOMDIR", ReadWholeFile(fFolder.PathOf("E/NAMED/DICOMDIR")));
    fFolder.WriteFile("E/IMAGE.DCM", FileOf({}).Build());
    fFolder.MakeFolder("E/Exams");
    Start();
    const std::tuple<const char*, bool, const wchar_t*, const char*, const char*> cases[] = {
        {"E/NAMED/DICOMDIR", false, L"E: TESTMEDIUM", "E/NAMED/DICOMDIR", "E/NAMED"},
        {"E/NAMELESS/DICOMDIR", false, L"E: DICOM Directory", "E/NAMELESS/DICOMDIR", "E/NAMELESS"},
        {"E/TWIN", true, L"E: TESTMEDIUM", "E/TWIN/DICOMDIR", "E/TWIN"},
        {"E/NAMELESS", true, L"E: NAMELESS", "E/NAMELESS/DICOMDIR", "E/NAMELESS"},
        {"E/Exams", true, L"E: Exams", "E/Exams", "E/Exams"},
        {"E/IMAGE.DCM", true, L"E: IMAGE.DCM", "E/IMAGE.DCM", "E/IMAGE.DCM"}};
    for (const auto& [path, isFolder, name, fullPath, root] : cases) {
        auto directory = isFolder ? fManager->FindOrCreateFolderDirectory(PathOf(path)) : Open(path);
        ASSERT_TRUE(directory != nullptr) << path;
        EXPECT_EQ(directory->GetDisplayName(), name);
        EXPECT_EQ(directory->GetFullPath(), PathOf(fullPath));
        EXPECT_EQ(directory->GetRootPath(), PathOf(root));
        EXPECT_EQ(directory->GetDrive(), L"E:\\");
        EXPECT_EQ(directory->IsFolder(), isFolder);
        const bool hasDICOMDIR = std::string(fullPath).ends_with("DICOMDIR");
        EXPECT_EQ(directory->HasDICOMDIR(), isFolder && hasDICOMDIR)
            << "not for a DICOMDIR: hosts rely on it";
        fManager->DeleteDirectory(directory);
    }
    const auto twin = fManager->FindOrCreateFolderDirectory(PathOf("E/TWIN"));
    twin->SetDirName(L"MY DICOMDIR");
    EXPECT_EQ(twin->GetDirName(), L"MY DICOMDIR");
    EXPECT_EQ(twin->GetDisplayName(), L"E: TWIN");
    fVolumes.fDrives.back().fName = FakeVolumes::kNetwork;
    EXPECT_EQ(twin->GetDisplayName(), L"\\\\TWIN");
    EXPECT_FALSE(twin->IsDownloadFolder());
    fFolder.MakeFolder("E/TWIN/IC_transfers");
    EXPECT_TRUE(twin->IsDownloadFolder());
}

TEST_F(DicomDirectoryTest, ATriedFolderKeepsTheUsersTestFile) {
    const std::string path = fFolder.MakeFolder("C/EXAM");
    Start();
    const auto directory = fManager->FindOrCreateFolderDirectory(Wide(path));
    EXPECT_TRUE(directory->IsWritable());
    for (const bool hasTestFile : {false, true}) {
        if (hasTestFile) fFolder.WriteFile("C/EXAM/test.txt", "the user's own");
        fs::permissions(path, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                        fs::perm_options::remove);
        const bool isAllowed = std::ofstream(fs::path(path) / "PROBE").good();  // as it is for root
        const std::string failure = ThrownBy([&] { EXPECT_TRUE(directory->IsWritable()); });
        if (isAllowed || hasTestFile) {
            EXPECT_EQ(failure, "nothing");
        } else {
            EXPECT_NE(failure.find("access denied"), std::string::npos) << failure;
        }
        fs::permissions(path, fs::perms::owner_all, fs::perm_options::add);
        fs::remove(fs::path(path) / "PROBE");
    }
    EXPECT_EQ(fFolder.ListFiles(), Lines{"C/EXAM/test.txt"});
    EXPECT_EQ(ReadWholeFileAsText(path + "/test.txt"), "the user's own");
    const auto disc = std::make_shared<VantorWrappers::DriveInfo>(Wide(fVolumes.fDrives[0].fName));
    directory->SetDriveInfo(disc);
    fVolumes.fDrives[0].fType = DriveType::kCdRom;
    EXPECT_FALSE(directory->IsWritable());
    fManager->DeleteDirectory(directory);
    EXPECT_FALSE(directory->IsWritable()) << "a disc stays one";
}

TEST_F(DicomDirectoryTest, TellsHowSavingEnded) {
    WriteMedium("C", {1});
    Start();
    const auto directory = Open("C/DICOMDIR");
    const std::string path = fFolder.PathOf("C/DICOMDIR");
    fFolder.WriteFile("C/NEW/8", FileOf({8}).Build());
    HostString reason;
    EXPECT_FALSE(directory->AddFile(PathOf("C/IMAGES/4"), reason)) << "no DICOM file";
    EXPECT_EQ(reason, L"no DICOM file of this directory");
    EXPECT_TRUE(directory->AddFileToDir(PathOf("C/NEW/8")));
    EXPECT_FALSE(directory->IsCurrent());
    fs::rename(path, path + "2");
    directory->Save();
    EXPECT_EQ(directory->GetError(), Fatal(ErrorNumber::DirectoryReadOnly));
    directory->WriteDirectory();
    EXPECT_EQ(directory->GetError(), Fatal(ErrorNumber::DirectoryWriteError));
    fs::rename(path + "2", path);
    directory->Save();
    EXPECT_EQ(directory->GetError(), kSuccess);
    EXPECT_NE(TreeOnDisk("C/DICOMDIR").find("i8"), std::string::npos);
    MakeUnwritable(*directory);
    directory->Save();
    EXPECT_EQ(directory->GetError(), Fatal(ErrorNumber::DirectoryWriteError));
    directory->SetDirName(L"new name");
    EXPECT_EQ(directory->GetError(), Fatal(ErrorNumber::DirectoryWriteError));
    EXPECT_EQ(directory->GetDirName(), L"TESTMEDIUM") << "on which the next update counts";
    EXPECT_EQ(fTrace.Take().size(), 5U);
    EXPECT_FALSE(directory->GetUmDirectory()->IsOpen());
    directory->SyncWithDiskVersion();
    directory->SetDirName(L"new name");
    EXPECT_EQ(directory->GetError(), kSuccess);
    EXPECT_NE(TreeOnDisk("C/DICOMDIR").find("i8"), std::string::npos);
    directory->CreateDICOMDIR();
    EXPECT_EQ(TreeOnDisk("C/DICOMDIR"), "");
    EXPECT_EQ(fGranted, std::vector<HostString>{Wide(path)});
    EXPECT_NE(Tree(*directory), "") << "the records in memory stay";
}

TEST_F(DicomDirectoryTest, MakesAFolderAMedium) {
    fFolder.WriteFile("C/EXAM/4", FileOf({}).Build());
    Start();
    const auto folder = Open("C/EXAM");
    EXPECT_FALSE(folder->OpenForUpdating());
    folder->CreateDICOMDIR();
    folder->CreateImageFolder(L"imagesdc");
    EXPECT_EQ(folder->GetImageFolderFullPath(), PathOf("C/EXAM/" + Spelled("imagesdc")));
    EXPECT_EQ(fGranted,
              (std::vector<HostString>{PathOf("C/EXAM/DICOMDIR"), folder->GetImageFolderFullPath()}));
    EXPECT_EQ(TreeOnDisk("C/EXAM/DICOMDIR"), "");
    folder->Save();
    EXPECT_EQ(TreeOnDisk("C/EXAM/DICOMDIR"), "P1(S2(s1(i4)))");
    MakeUnwritable(*folder);
    folder->Save();
    EXPECT_EQ(folder->GetError(), Fatal(ErrorNumber::DirectoryWriteError));
    folder->AllFilesDeleted();
    EXPECT_EQ(Tree(*folder), "");
    EXPECT_FALSE(folder->HasDICOMDIR());
}

TEST_F(DicomDirectoryTest, ADamagedOneIsReported) {
    const Bytes contents[] = {Bytes(), BytesOf("damaged"), FileBuilder().Build()};
    for (const Bytes& content : contents) {
        fFolder.WriteFile("C/DICOMDIR", content);
        fDamage.clear();
        Start();
        const HostString found = L"Damaged DICOMDIR file found at " + PathOf("C/DICOMDIR");
        EXPECT_EQ(fDamage, std::vector<HostString>{
                               found + L".  Please contact your system administrator for help in repairing "
                                       L"the damaged directory."});
        EXPECT_EQ(fTrace.Take(), Lines{"error: " + Platform::FromHostText(found)});
        EXPECT_EQ(fManager->FindManagedDirectory(PathOf("C/DICOMDIR")), nullptr);
        EXPECT_EQ(fManager->CreateOrReplaceDirectory(PathOf("C/NONE/DICOMDIR"), L"", true), nullptr);
        EXPECT_EQ(fDamage.size(), 2U) << "in a folder that is missing";
        fTrace.Take();
    }
}

// As a program does that has no user to show a message to.
TEST_F(DicomDirectoryTest, TheHostMayThrowWhenOneIsDamaged) {
    VantorHost::DamagedDirectory::SetHandler([](const HostString&) { throw std::runtime_error("damaged"); });
    Start();
    fFolder.WriteFile("C/DICOMDIR", "damaged");
    EXPECT_THROW(fManager->GetDirList(), std::runtime_error);
    EXPECT_THROW(Open("C/DICOMDIR"), std::runtime_error);
    EXPECT_THROW(DirectoriesMgr(false, false, L""), std::runtime_error);
    WriteMedium("C", {1});
    EXPECT_EQ(fManager->GetDirList().size(), 1U);
}

}  // namespace
