// What a directory is and where.

#include <string_view>

#include "directory/TFolderDirectory.h"
#include "platform/Ascii.h"
#include "platform/CodePage.h"
#include "platform/File.h"
#include "platform/FileException.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"
#include "platform/Volumes.h"
#include "wrappers/Boundary.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/DirectoryUpdate.h"
#include "wrappers/NativeText.h"

namespace VantorWrappers {

using Vantor::TDicomDirectory;
using Vantor::TFolderDirectory;
using Vantor::Platform::FileException;
using Vantor::Platform::FromHostText;
using Vantor::Platform::PathStyle;
using Vantor::Platform::ToHostText;

namespace {

constexpr std::string_view kDirectoryFileName = "DICOMDIR";
constexpr wchar_t kUnnamedDirectory[] = L"DICOM Directory";
constexpr char kProbeFileName[] = "test.txt";
constexpr char kDownloadFolderName[] = "IC_transfers";

const PathStyle& Style() { return PathStyle::OfPlatform(); }

// The folder of a DICOMDIR; any other path itself.
std::string WithoutDICOMDIR(const std::string& path) {
    const bool isDICOMDIR = Vantor::Platform::UpperCased(Style().LastPart(path)) == kDirectoryFileName;
    return isDICOMDIR ? Style().FolderOf(path) : path;
}

// Makes a file and removes it, or, of a user's file of that name, opens it; through a link to nothing none is
// made. Throws FileException.
void TryToWrite(const std::string& path) {
    if (Vantor::Platform::PathExists(path) || Vantor::Platform::IsLink(path)) {
        Vantor::Platform::OpenDiskFile(path, Vantor::Platform::FileAccess::kReadWrite);
        return;
    }
    Vantor::Platform::CreateDiskFile(path).reset();
    Vantor::Platform::RemoveFile(path);
}

}  // namespace

// ---- What can be done with it ----

bool DicomDirectory::IsWritable() const {
    if (IsCDDVD()) return false;
    if (!IsValid()) return true;
    if (!IsFolder()) return fUmDicomDirectory->IsWritable();
    const std::string root = FromHostText(GetRootPath());
    return !Vantor::Platform::IsReadOnly(root) || CanWriteInto(root);
}

// Network shares and media mark folders as read-only that can be written all the same. Hosts tell the user of
// a denied access themselves, so that passes.
bool DicomDirectory::CanWriteInto(const std::string& folder) {
    try {
        TryToWrite(Style().Join(folder, kProbeFileName));
        return true;
    } catch (const FileException& error) {
        if (error.GetCause() == FileException::Cause::kAccessDenied) throw;
        return false;
    }
}

void DicomDirectory::SetWritable(bool isWritable) {
    if (IsValid()) fUmDicomDirectory->SetWritable(isWritable);
}

bool DicomDirectory::IsRemovable() const { return IsValid() && fUmDicomDirectory->IsRemovable(); }

void DicomDirectory::SetRemovable(bool isRemovable) {
    if (IsValid()) fUmDicomDirectory->SetRemovable(isRemovable);
}

bool DicomDirectory::IsCDDVD() const {
    return fDriveInfo != nullptr && fDriveInfo->GetType() == DriveType::kCdRom;
}

bool DicomDirectory::IsFolder() const {
    return IsValid() && fUmDicomDirectory->GetDirectoryType() == TDicomDirectory::kFolderDirectory;
}

bool DicomDirectory::HasDICOMDIR() const {
    if (!IsValid()) return true;
    const TFolderDirectory* const folder = GetFolder();
    return folder != nullptr && folder->GetHasDICOMDIRflag();
}

bool DicomDirectory::HasLostRecords() const { return IsValid() && fUmDicomDirectory->HasLostRecords(); }

bool DicomDirectory::IsDownloadFolder() const {
    return IsFolder() &&
           Vantor::Platform::IsFolder(Style().Join(FromHostText(GetRootPath()), kDownloadFolderName));
}

// ---- Texts ----

std::optional<HostString> DicomDirectory::GetFolderPath() const {
    if (!IsValid()) return std::nullopt;
    return ToHostText(fUmDicomDirectory->GetFolderPath());
}

void DicomDirectory::SetFolderPath(const HostString& path) {
    if (IsValid()) fUmDicomDirectory->SetFolderpath(FromHostText(path));
}

void DicomDirectory::SetImageFolder(const HostString& path) {
    if (IsValid()) fUmDicomDirectory->SetImageFolder(FromHostText(path));
}

std::optional<HostString> DicomDirectory::GetVolumeName() const {
    if (!IsValid()) return std::nullopt;
    char name[TDicomDirectory::kVolumeNameSize];
    fUmDicomDirectory->GetVolumeName(name);
    return ToHostText(name);
}

void DicomDirectory::SetVolumeName(const HostString& name) {
    if (IsValid()) fUmDicomDirectory->SetVolumeName(FromHostText(name).c_str());
}

HostString DicomDirectory::GetImageFolderFullPath() const {
    return IsFolder() ? ToHostText(GetFolder()->GetImageFolderFullPath()) : HostString();
}

std::optional<HostString> DicomDirectory::GetDirName() const {
    if (!IsValid()) return std::nullopt;
    char name[kTextSize];
    fUmDicomDirectory->GetDirName(name, sizeof(name));
    return ToHostText(name);
}

void DicomDirectory::SetDirName(const HostString& name) {
    if (!IsValid()) return;
    Write([&] {
        WriteNamed(*fUmDicomDirectory, FromHostText(name), [this] { WriteDICOMDIR(*fUmDicomDirectory); });
    });
}

std::optional<HostString> DicomDirectory::GetDirectoryUID() const {
    if (!IsValid()) return std::nullopt;
    return ReadUid(*fUmDicomDirectory, &TDicomDirectory::GetSOPInstanceUID);
}

// ---- Space ----

float DicomDirectory::GetFileSpaceUsed() const {
    return IsValid() ? fUmDicomDirectory->GetFileSpaceUsed() : 0;
}

double DicomDirectory::GetAvailableSpace() const {
    return IsValid() ? fUmDicomDirectory->GetAvailableSpace() : 0;
}

// ---- Paths ----

// As it was given, whether or not the directory is valid: the manager asks for what it is about to drop.
std::string DicomDirectory::GetNativePath() const {
    return fUmDicomDirectory == nullptr ? std::string() : fUmDicomDirectory->GetFullPath();
}

HostString DicomDirectory::GetFullPath() const {
    return IsValid() ? ToHostText(GetNativePath()) : HostString();
}

HostString DicomDirectory::GetDrive() const {
    return ToHostText(Vantor::Platform::Volumes::Current().NameOf(GetNativePath()));
}

HostString DicomDirectory::GetRootPath() const {
    if (fUmDicomDirectory == nullptr) return {};
    if (GetFolder() == nullptr) return ToHostText(Style().FolderOf(GetNativePath()));
    const std::string root = WithoutDICOMDIR(GetNativePath());
    return ToHostText(root.empty() ? fUmDicomDirectory->GetFolderPath() : root);
}

HostString DicomDirectory::GetDisplayName() const {
    constexpr size_t kDriveWithColon = 3;
    if (!IsValid()) return {};
    HostString name = GetDirName().value_or(HostString());
    const bool isNamedAfterFile = name.empty() || name.find(L"DICOMDIR") != HostString::npos;
    if (IsFolder() && isNamedAfterFile) {
        name = ToHostText(Style().LastPart(WithoutDICOMDIR(GetNativePath())));
    } else if (name.empty()) {
        name = kUnnamedDirectory;
    }
    HostString drive = GetDrive();
    if (drive.size() == kDriveWithColon && drive.back() == L'\\') drive.back() = L' ';
    return drive + name;
}

}  // namespace VantorWrappers
