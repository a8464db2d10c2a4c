#include "wrappers/DirectoriesMgr.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "dicom/Attempt.h"
#include "dicom/TDicomFile.h"
#include "dicom/TException.h"
#include "directory/TFolderDirectory.h"
#include "platform/Ascii.h"
#include "platform/CodePage.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"
#include "platform/Volumes.h"
#include "wrappers/Boundary.h"
#include "wrappers/DirectoryUpdate.h"

namespace VantorWrappers {

using Vantor::TDicomDirectory;
using Vantor::TDicomFile;
using Vantor::TFileSpec;
using Vantor::TFolderDirectory;
using Vantor::Platform::FromHostText;
using Vantor::Platform::PathStyle;
using Vantor::Platform::ToHostText;

namespace {

constexpr char kDirectoryFileName[] = "DICOMDIR";
constexpr wchar_t kDirectoryFile[] = L"DICOMDIR";
constexpr wchar_t kFloppyDrive[] = L"A:\\";
constexpr wchar_t kNetworkDrive[] = L"\\\\";
constexpr wchar_t kImageFolder[] = L"imagesdc";

const PathStyle& Style() { return PathStyle::OfPlatform(); }

bool IsFolder(const HostString& path) { return Vantor::Platform::IsFolder(FromHostText(path)); }

bool IsFile(const HostString& path) { return Vantor::Platform::IsFile(FromHostText(path)); }

bool Exists(const HostString& path) { return Vantor::Platform::PathExists(FromHostText(path)); }

HostString WithoutLastSeparators(const HostString& path) {
    return ToHostText(Style().WithoutLastSeparators(FromHostText(path)));
}

HostString DirectoryFileIn(const HostString& folder) {
    return ToHostText(Style().Join(FromHostText(folder), kDirectoryFileName));
}

void TraceVerbose(const HostString& text) { VantorWrappers::TraceVerbose(FromHostText(text)); }

using UidGetter = bool (TDicomFile::*)(char*);

// A UID as it is stored; empty when there is none.
std::string UidOf(TDicomFile& file, UidGetter getter) {
    char uid[Vantor::kMaximumUidLength + 1] = {};
    (file.*getter)(uid);
    return uid;
}

// The SOP class or instance UID of a file as it is on disk; none when the file cannot be read.
std::optional<std::string> ReadUidOfFile(const HostString& path, UidGetter getter) {
    const std::string file = FromHostText(path);
    if (!TFileSpec::FitsPath(file)) return std::nullopt;
    TDicomFile dicomFile(0, TFileSpec(file), 0);
    const bool isRead = Vantor::Succeeds([&dicomFile] {
        dicomFile.OpenFile(Vantor::Platform::FileAccess::kRead);
        dicomFile.ReadMetaHeader();
    });
    return isRead ? std::optional(UidOf(dicomFile, getter)) : std::nullopt;
}

// True for a DICOMDIR of whatever name, and for a file of that name, whatever is in it.
bool IsDICOMDIR(const HostString& path) {
    const std::string file = FromHostText(path);
    return Vantor::Platform::UpperCased(Style().LastPart(file)) == kDirectoryFileName ||
           ReadUidOfFile(path, &TDicomFile::GetSOPClassUID) == Vantor::Uids::kMediaStorageDirectory;
}

template <typename Predicate>
std::shared_ptr<DicomDirectory> FindIn(const DirectoriesMgr::DirectoryList& first,
                                       const DirectoriesMgr::DirectoryList& second, Predicate predicate) {
    for (const auto* const list : {&first, &second}) {
        const auto found = std::find_if(list->begin(), list->end(), [&](const auto& directory) {
            return directory->GetUmDirectory() != nullptr && predicate(*directory);
        });
        if (found != list->end()) return *found;
    }
    return nullptr;
}

// What the host may do with a directory on such a drive.
void GiveDrive(DicomDirectory& directory, const std::shared_ptr<const DriveInfo>& drive) {
    const DriveType type = drive->GetType();
    directory.SetDriveInfo(drive);
    if (Vantor::Platform::IsRemovable(type)) directory.SetRemovable(true);
    if (Vantor::Platform::MayBeWritten(type)) directory.SetWritable(true);
}

}  // namespace

DirectoriesMgr::DirectoriesMgr(bool skipFloppy, bool isViewer, const HostString& viewerVolume,
                               bool withCdWriter)
    : Linked(this), fIsViewer(isViewer), fSkipFloppy(skipFloppy), fViewerVolume(viewerVolume) {
    UpdateDirList();
    UpdateFromRegistry();
    if (withCdWriter) MakeWritableCd();
}

void DirectoriesMgr::MakeWritableCd() {
    fWritableCd = std::make_unique<WritableCdDvd>();
    if (!fWritableCd->CanBurnCDs()) return;
    const auto staging = FindOrCreateFolderDirectory(fWritableCd->GetWriteFolderPath());
    if (staging != nullptr) staging->SetMarkedToRemember(false);
}

DirectoriesMgr::~DirectoriesMgr() { Dispose(); }

void DirectoriesMgr::Dispose() {
    if (fIsDisposed) return;
    fIsDisposed = true;
    WriteToRegistry();
    if (fWritableCd != nullptr) fWritableCd->Dispose();
    fDirList.clear();
    fFolderDirList.clear();
    for (auto* const choice :
         {&fCurrentReadDirectory, &fCurrentWriteDirectory, &fNetworkImagesDirectory, &fStagingDirectory}) {
        choice->reset();
    }
}

// ---- Drives ----

std::vector<AvailableDrive> DirectoriesMgr::GetAvailableDriveList() {
    UpdateAvailableDriveList();
    return fAvailableDrivesList;
}

void DirectoriesMgr::UpdateAvailableDriveList() {
    const std::vector<DriveInfo> drives = DriveInfo::GetDrives();
    for (const DriveInfo& drive : drives) {
        if (FindAvailableDrive(drive) || !IsWanted(drive)) continue;
        fAvailableDrivesList.emplace_back(std::make_shared<const DriveInfo>(drive));
    }
    std::erase_if(fAvailableDrivesList, [&drives](const AvailableDrive& listed) {
        return std::find(drives.begin(), drives.end(), *listed.GetDriveInfo()) == drives.end();
    });
}

bool DirectoriesMgr::IsWanted(const DriveInfo& drive) const {
    if (fSkipFloppy && drive.GetName() == kFloppyDrive) return false;
    if (fIsViewer && drive.GetName() != fViewerVolume) return false;
    return drive.IsReady();
}

std::optional<AvailableDrive> DirectoriesMgr::FindAvailableDrive(const HostString& driveLetter) const {
    const auto found =
        std::find_if(fAvailableDrivesList.begin(), fAvailableDrivesList.end(),
                     [&](const AvailableDrive& drive) { return drive.GetDriveLetter() == driveLetter; });
    return found == fAvailableDrivesList.end() ? std::nullopt : std::optional(*found);
}

std::optional<AvailableDrive> DirectoriesMgr::FindAvailableDrive(const DriveInfo& driveInfo) const {
    return FindAvailableDrive(driveInfo.GetName());
}

// ---- DICOMDIRs ----

DirectoriesMgr::DirectoryList DirectoriesMgr::GetDirList() {
    UpdateDirList();
    return fDirList;
}

void DirectoriesMgr::UpdateDirList() {
    TraceVerbose(L"Update drive list - start");
    UpdateAvailableDriveList();
    TraceVerbose(L"Update drive list - end");
    DropChangedDirectories();
    AddFoundDirectories();
}

void DirectoriesMgr::DropChangedDirectories() {
    for (const auto& directory : DirectoryList(fDirList)) {
        const HostString drive = directory->GetDrive();
        TraceVerbose(L"Checking volume " + drive + L" - start");
        if (IsStillThere(*directory)) {
            TraceVerbose(L"Volume " + drive + L" added/retained in list");
        } else {
            Drop(directory);
            TraceVerbose(L"Volume " + drive + L" removed from list");
        }
        TraceVerbose(L"Checking volume " + drive + L" - end");
    }
}

// Another disc may be in the drive, with a DICOMDIR of its own. One that is just being changed here is the
// same.
bool DirectoriesMgr::IsStillThere(const DicomDirectory& directory) const {
    if (!FindAvailableDrive(directory.GetDrive())) return false;
    TDicomDirectory& native = *directory.GetUmDirectory();
    return native.IsOpen() || native.IsUnwritten() ||
           ReadUidOfFile(directory.GetFullPath(), &TDicomFile::GetSOPInstanceUID) ==
               UidOf(native, &TDicomFile::GetSOPInstanceUID);
}

void DirectoriesMgr::AddFoundDirectories() {
    for (const AvailableDrive& drive : std::vector<AvailableDrive>(fAvailableDrivesList)) {
        const HostString path = drive.GetDriveLetter() + kDirectoryFile;
        TraceVerbose(L"Checking DICOM Directory " + path + L" - start");
        if (IsFile(path) && FindManagedDirectory(path) == nullptr && AddToDirList(path) != nullptr) {
            TraceVerbose(L"Added DICOM Directory " + path + L" to list");
        }
        TraceVerbose(L"Checking DICOM Directory " + path + L" - end");
    }
}

std::shared_ptr<DicomDirectory> DirectoriesMgr::AddToDirList(const HostString& path) {
    auto directory = Construct(path, L"", false, true);
    if (directory == nullptr) return nullptr;
    fDirList.push_back(directory);
    directory->SetMarkedToRemember(false);
    if (const auto drive = FindAvailableDrive(directory->GetDrive())) {
        GiveDrive(*directory, drive->GetDriveInfo());
    }
    return directory;
}

// Null when there is nothing to be opened.
std::shared_ptr<DicomDirectory> DirectoriesMgr::Construct(const HostString& path, const HostString& name,
                                                          bool create, bool isDicomdir) {
    TraceVerbose(L"Constructing directory object " + path + L" - start");
    auto directory = std::make_shared<DicomDirectory>(path, *this, name, create, isDicomdir);
    TraceVerbose(L"Constructing directory object - end");
    return directory->GetUmDirectory() == nullptr ? nullptr : directory;
}

// ---- Folders ----

DirectoriesMgr::DirectoryList DirectoriesMgr::GetFolderDirList() {
    UpdateFolderDirList();
    return fFolderDirList;
}

void DirectoriesMgr::UpdateFolderDirList() {
    if (fIsViewer) return;
    TraceVerbose(L"Update drive list - start");
    UpdateAvailableDriveList();
    TraceVerbose(L"Update drive list - end");
    for (const auto& directory : DirectoryList(fFolderDirList)) {
        TraceVerbose(L"Checking folder directory " + directory->GetRootPath() + L" - start");
        if (IsFolderStillThere(*directory)) {
            TraceVerbose(HostString(L"Folder directory added/retained in list"));
        } else {
            Drop(directory);
            TraceVerbose(HostString(L"Folder directory removed from list"));
        }
        TraceVerbose(HostString(L"Checking folder directory - end"));
    }
}

bool DirectoriesMgr::IsFolderStillThere(const DicomDirectory& directory) const {
    const HostString drive = directory.GetDrive();
    return (drive == kNetworkDrive || FindAvailableDrive(drive)) && Exists(directory.GetRootPath());
}

std::shared_ptr<DicomDirectory> DirectoriesMgr::AddToFolderDirList(const HostString& path, bool remember) {
    auto directory = Construct(path, L"", false, false);
    if (directory == nullptr) return nullptr;
    fFolderDirList.push_back(directory);
    directory->SetMarkedToRemember(remember);
    return directory;
}

std::shared_ptr<DicomDirectory> DirectoriesMgr::FindOrCreateFolderDirectory(const HostString& path) {
    const HostString root = WithoutLastSeparators(path);
    const auto hasRoot = [&root](const DicomDirectory& directory) { return directory.GetRootPath() == root; };
    const auto found = FindIn(fDirList, fFolderDirList, hasRoot);
    return found != nullptr ? found : AddToFolderDirList(root, false);
}

// ---- Both ----

std::shared_ptr<DicomDirectory> DirectoriesMgr::FindManagedDirectory(const HostString& path) const {
    return FindIn(fDirList, fFolderDirList,
                  [&path](const DicomDirectory& directory) { return directory.GetFullPath() == path; });
}

std::shared_ptr<DicomDirectory> DirectoriesMgr::FindManagedDirectory(
    const TDicomDirectory* nativeDirectory) const {
    return FindIn(fDirList, fFolderDirList, [nativeDirectory](const DicomDirectory& directory) {
        return directory.GetUmDirectory() == nativeDirectory;
    });
}

std::shared_ptr<DicomDirectory> DirectoriesMgr::OpenDirectory(const HostString& path) {
    const HostString given = WithoutLastSeparators(path);
    const HostString inside = DirectoryFileIn(given);
    const HostString& file = IsFolder(given) && IsFile(inside) ? inside : given;
    if (auto found = FindManagedDirectory(file); found != nullptr) return found;
    if (!IsFile(file) || !IsDICOMDIR(file)) return FindOrCreateFolderDirectory(given);
    auto directory = AddToDirList(file);
    if (directory != nullptr && directory->GetDriveInfo() == nullptr) {
        GiveDrive(*directory, std::make_shared<const DriveInfo>(directory->GetDrive()));
    }
    return directory;
}

std::shared_ptr<DicomDirectory> DirectoriesMgr::CreateOrReplaceDirectory(const HostString& path,
                                                                         const HostString& name,
                                                                         bool isDicomdir) {
    auto old = FindManagedDirectory(path);
    if (old == nullptr && !isDicomdir) old = FindManagedDirectory(DirectoryFileIn(path));
    if (old != nullptr) Drop(old);
    if (isDicomdir) {
        auto directory = Construct(path, name, true, true);
        if (directory != nullptr) fDirList.push_back(directory);
        return directory;
    }
    auto directory = AddToFolderDirList(WithoutLastSeparators(path), false);
    if (directory == nullptr) return nullptr;
    directory->CreateFilledDICOMDIR(name);
    directory->CreateImageFolder(kImageFolder);
    return directory;
}

std::shared_ptr<DicomDirectory> DirectoriesMgr::PrepareDirectory(const HostString& path,
                                                                 const HostString& name) {
    Drop(FindManagedDirectory(path));
    auto directory = std::make_shared<DicomDirectory>(path, *this, name);
    if (directory->GetUmDirectory() == nullptr) return nullptr;
    fDirList.push_back(directory);
    return directory;
}

// Takes a directory out of its list; it is not valid from now on. What is given may be a member of the list,
// or one of the choices.
bool DirectoriesMgr::Drop(const std::shared_ptr<DicomDirectory>& directory) {
    const DicomDirectory* const dropped = directory.get();
    if (dropped == nullptr) return false;
    directory->CloseFile();  // what is not valid cannot be saved
    const auto isDropped = [dropped](const auto& each) { return each.get() == dropped; };
    const bool wasListed =
        std::erase_if(fDirList, isDropped) > 0 || std::erase_if(fFolderDirList, isDropped) > 0;
    for (auto* const choice : {&fCurrentReadDirectory, &fCurrentWriteDirectory}) {
        if (isDropped(*choice)) choice->reset();
    }
    return wasListed;
}

void DirectoriesMgr::DeleteDirectory(const std::shared_ptr<DicomDirectory>& directory) {
    const bool isRemembered = directory != nullptr && directory->IsMarkedToRemember();
    if (Drop(directory) && isRemembered) WriteToRegistry();
}

LuminaError DirectoriesMgr::RepairDirectory(const std::shared_ptr<DicomDirectory>& directory,
                                            const HostString& name) {
    auto kept = directory;  // which may be one of the choices
    TDicomDirectory* const native = kept == nullptr ? nullptr : kept->GetUmDirectory();
    if (native == nullptr) {
        TraceError("Null repair directory passed in");
        return {ErrorSeverity::InternalError, ErrorNumber::RepairFailure};
    }
    kept->ForceRefresh();
    try {
        MakeAnew(*native, FromHostText(name));
    } catch (Vantor::TException* thrown) {
        const std::unique_ptr<Vantor::TException> error(thrown);
        return GiveUpRepair(*native, std::to_string(error->GetErrorNumber()));
    } catch (const std::exception& error) {
        return GiveUpRepair(*native, error.what());
    }
    UpdateDirList();
    UpdateFolderDirList();
    fCurrentReadDirectory = std::move(kept);
    return {};
}

// The lists of the levels below are emptied by reading what was written. A DICOMDIR that has gone is made
// anew.
void DirectoriesMgr::MakeAnew(TDicomDirectory& native, const std::string& name) {
    native.RemoveAllDocs();
    native.UpdateModTime();
    WriteNamed(native, name, [&native] {
        if (auto* const folder = dynamic_cast<TFolderDirectory*>(&native); folder != nullptr) {
            folder->CreateDICOMDIR();
        } else if (Vantor::Platform::PathExists(native.GetFullPath())) {
            native.WriteDICOMDIR();
        } else {
            native.CreateEmptyDICOMDIR();
        }
    });
    native.RefreshDocs();
}

// What is on disk is as it was, and so are the records.
LuminaError DirectoriesMgr::GiveUpRepair(TDicomDirectory& native, const std::string& reason) {
    TraceError("Repair exception caught: " + reason);
    Vantor::Succeeds([&native] { MakeRecordsAnew(native); });
    return {ErrorSeverity::Fatal, ErrorNumber::RepairFailure};
}

// ---- The host's choices ----

void DirectoriesMgr::SetStagingDir(std::shared_ptr<DicomDirectory> directory) {
    fStagingDirectory = std::move(directory);
    fStagingFolderPath =
        fStagingDirectory == nullptr ? HostString() : fStagingDirectory->GetFolderPath().value_or(L"");
}

void DirectoriesMgr::SetNetworkDir(std::shared_ptr<DicomDirectory> directory) {
    fNetworkImagesDirectory = std::move(directory);
    fNetworkFolderPath =
        fNetworkImagesDirectory == nullptr ? HostString() : fNetworkImagesDirectory->GetRootPath();
}

bool DirectoriesMgr::IsStagingFolder(const DicomDirectory& directory) const {
    return fStagingDirectory != nullptr && fStagingDirectory->GetFullPath() == directory.GetFullPath();
}

bool DirectoriesMgr::IsNetworkFolder(const DicomDirectory& directory) const {
    return directory.GetFullPath() == DirectoryFileIn(WithoutLastSeparators(fNetworkFolderPath));
}

}  // namespace VantorWrappers
