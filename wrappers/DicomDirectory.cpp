#include "wrappers/DicomDirectory.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "dicom/TException.h"
#include "dicom/Uids.h"
#include "directory/TFolderDirectory.h"
#include "host/AccessGranting.h"
#include "host/DamagedDirectory.h"
#include "host/Trace.h"
#include "platform/CodePage.h"
#include "platform/FileException.h"
#include "platform/FileSystem.h"
#include "platform/Volumes.h"
#include "records/TDicomUtils.h"
#include "wrappers/Boundary.h"
#include "wrappers/DirectoriesMgr.h"
#include "wrappers/DirectoryUpdate.h"
#include "wrappers/RecordLists.h"
#include "wrappers/SeriesCopy.h"
#include "wrappers/SeriesDeletion.h"

namespace VantorWrappers {

using Vantor::TDicomDirectory;
using Vantor::TFileSpec;
using Vantor::TFolderDirectory;
using Vantor::Platform::FileException;
using Vantor::Platform::FromHostText;
using Vantor::Platform::ToHostText;

namespace {

constexpr char kNotOpened[] = "Directory open for update failed";

// A link that leads elsewhere goes itself: through it the new DICOMDIR would be made there.
void RemoveForeignLink(TDicomDirectory& directory) {
    if (!directory.OwnsDICOMDIR()) Vantor::Platform::RemoveFile(directory.GetFullPath());
}

}  // namespace

// ---- Opening and creating ----

DicomDirectory::DicomDirectory(std::unique_ptr<TDicomDirectory> nativeDirectory, DirectoriesMgr& manager)
    : Linked(this), fUmDicomDirectory(std::move(nativeDirectory)), fDirectoriesMgr(manager.GetLink()) {
    UpdateManagedLists();
}

DicomDirectory::DicomDirectory(const HostString& path, DirectoriesMgr& manager, const HostString& fileSetName,
                               bool create, bool isDicomdir)
    : Linked(this), fDirectoriesMgr(manager.GetLink()) {
    const auto failure = FailureOf([&] {
        Open(FromHostText(path), FromHostText(fileSetName), create, isDicomdir);
        UpdateManagedLists();
    });
    if (failure) ReportDamage(path);
}

DicomDirectory::DicomDirectory(const HostString& path, DirectoriesMgr& manager, const HostString& fileSetName)
    : Linked(this), fDirectoriesMgr(manager.GetLink()) {
    const std::string nativePath = FromHostText(path);
    if (!TFileSpec::FitsPath(nativePath)) return;
    StartNew(nativePath, FromHostText(fileSetName));
    UpdateManagedLists();
}

DicomDirectory::~DicomDirectory() = default;

void DicomDirectory::Dispose() { fUmDicomDirectory.reset(); }

// A damaged DICOMDIR is never worked around: what is shown of it, or written into it, could be wrong.
void DicomDirectory::ReportDamage(const HostString& path) {
    fUmDicomDirectory.reset();
    fWrapperIsCurrent = false;
    const HostString finding = L"Damaged DICOMDIR file found at " + path;
    TraceError(FromHostText(finding));
    VantorHost::DamagedDirectory::Report(finding);
}

void DicomDirectory::Open(const std::string& path, const std::string& fileSetName, bool create,
                          bool isDicomdir) {
    if (!TFileSpec::FitsPath(path)) return;
    try {
        if (!isDicomdir) {
            OpenFolder(path);
        } else if (create) {
            CreateNew(path, fileSetName);
        } else {
            fUmDicomDirectory = std::make_unique<TDicomDirectory>(TFileSpec(path), 0);
        }
    } catch (const FileException& error) {
        // Another program that is just changing the DICOMDIR has not damaged it.
        if (error.GetCause() != FileException::Cause::kSharingViolation) throw;
        fUmDicomDirectory.reset();
        TraceError(error.what());
    }
}

void DicomDirectory::OpenFolder(const std::string& path) {
    const bool isFolder = Vantor::Platform::IsFolder(path);
    if (!isFolder && !Vantor::Platform::PathExists(path)) return;
    const int32_t mode = isFolder ? TFolderDirectory::kFolder : TFolderDirectory::kSingleFile;
    fUmDicomDirectory = std::make_unique<TFolderDirectory>(path, path.c_str(), mode);
    if (isFolder) TakeDrive(path);
}

void DicomDirectory::StartNew(const std::string& path, const std::string& fileSetName) {
    using namespace Vantor;
    fUmDicomDirectory = std::make_unique<TDicomDirectory>(
        TFileSpec(path), fileSetName.c_str(), TDicomDirectory::kStandardLayout, Uids::kMediaStorageDirectory,
        TDicomUtils().CreateNewStudyUID({}).c_str(), Uids::kExplicitVRLittleEndian,
        Uids::kImplementationClass, false);
    TakeDrive(path);
    if (fDriveInfo != nullptr) TakeDriveType();
}

void DicomDirectory::CreateNew(const std::string& path, const std::string& fileSetName) {
    StartNew(path, fileSetName);
    RemoveForeignLink(*fUmDicomDirectory);
    WriteDICOMDIR(*fUmDicomDirectory);
    VantorHost::AccessGranting::SetFileAccess(ToHostText(GetNativePath()));
}

// Only a drive that the manager has found counts.
void DicomDirectory::TakeDrive(const std::string& path) {
    const std::string root = Vantor::Platform::Volumes::Current().NameOf(path);
    fUmDicomDirectory->SetVolumeName(root.c_str());
    const DirectoriesMgr* const manager = *fDirectoriesMgr;
    const auto drive = manager == nullptr ? std::nullopt : manager->FindAvailableDrive(ToHostText(root));
    if (drive) fDriveInfo = drive->GetDriveInfo();
}

void DicomDirectory::TakeDriveType() {
    const DriveType type = fDriveInfo->GetType();
    fUmDicomDirectory->SetDriveType(static_cast<int32_t>(type));
    fUmDicomDirectory->SetRemovable(Vantor::Platform::IsRemovable(type));
    fUmDicomDirectory->SetWritable(Vantor::Platform::MayBeWritten(type));
}

bool DicomDirectory::IsValid() const {
    const DirectoriesMgr* const manager = *fDirectoriesMgr;
    if (manager == nullptr || fUmDicomDirectory == nullptr) return false;
    const auto managed = manager->FindManagedDirectory(fUmDicomDirectory.get());
    return managed != nullptr && Equals(*managed);
}

// ---- Records ----

// Without those that were left over when what they were below was taken out: nothing of them would be
// written.
template <typename Doc>
std::vector<Doc*> DicomDirectory::InTree(const Vantor::TListOf<Doc>& docs) const {
    std::vector<Doc*> present;
    std::copy_if(docs.begin(), docs.end(), std::back_inserter(present),
                 [this](const Doc* doc) { return fUmDicomDirectory->IsInTree(*doc); });
    return present;
}

void DicomDirectory::UpdateManagedLists() {
    if (fUmDicomDirectory == nullptr) return;
    for (Vantor::TStudyDoc* study : *fUmDicomDirectory->GetStudyDocs()) {
        fUmDicomDirectory->SortSeriesByNumber(study);
    }
    for (Vantor::TSeriesDoc* series : *fUmDicomDirectory->GetSeriesDocs()) {
        fUmDicomDirectory->SortImagesByNumber(series);
    }
    const bool hasPatients = FillList(fPatientList, *fUmDicomDirectory->GetPatientDocs(), *this);
    const bool hasStudies = FillList(fStudyList, InTree(*fUmDicomDirectory->GetStudyDocs()), *this);
    const bool hasSeries = FillList(fSeriesList, InTree(*fUmDicomDirectory->GetSeriesDocs()), *this);
    fWrapperIsCurrent = hasPatients && hasStudies && hasSeries;
}

bool DicomDirectory::IsCurrent() const {
    return IsValid() && fUmDicomDirectory->IsCurrent() && fWrapperIsCurrent;
}

void DicomDirectory::UpdateDirRecs() {
    if (!IsValid()) return;
    const auto failure = FailureOf([this] {
        fUmDicomDirectory->ReloadIfChanged();
        UpdateManagedLists();
    });
    if (failure) TraceError(*failure);
}

void DicomDirectory::SyncWithDiskVersion() {
    if (IsValid()) FailureOf([this] { MakeRecordsAnew(*fUmDicomDirectory); });
}

void DicomDirectory::ClearAllDirectoryRecords() {
    if (!IsValid()) return;
    const auto failure = FailureOf([this] {
        fUmDicomDirectory->ClearAllDocs();
        UpdateManagedLists();
    });
    if (failure) TraceError(*failure);
}

Vantor::TPatientDoc* DicomDirectory::GetUmPatient(const HostString& name, const HostString& id) const {
    return IsValid() ? fUmDicomDirectory->FindPatient(FromHostText(name), FromHostText(id)) : nullptr;
}

Vantor::TStudyDoc* DicomDirectory::GetUmStudy(const HostString& uid) const {
    return IsValid() ? fUmDicomDirectory->FindStudy(FromHostText(uid)) : nullptr;
}

Vantor::TSeriesDoc* DicomDirectory::GetUmSeries(const HostString& uid) const {
    return IsValid() ? fUmDicomDirectory->FindSeries(FromHostText(uid)) : nullptr;
}

Vantor::TImageDoc* DicomDirectory::GetUmImage(const HostString& uid) const {
    return IsValid() ? fUmDicomDirectory->FindImage(FromHostText(uid)) : nullptr;
}

Vantor::TSR_Doc* DicomDirectory::GetUmSR(const HostString& uid) const {
    return IsValid() ? fUmDicomDirectory->FindReport(FromHostText(uid)) : nullptr;
}

Vantor::TRawDataDoc* DicomDirectory::GetUmRawData(const HostString& uid) const {
    return IsValid() ? fUmDicomDirectory->FindRawData(FromHostText(uid)) : nullptr;
}

// ---- Changing it ----

TFolderDirectory* DicomDirectory::GetFolder() const {
    return dynamic_cast<TFolderDirectory*>(fUmDicomDirectory.get());
}

// Notes how an operation that writes ended.
void DicomDirectory::Write(const std::function<void()>& operation) {
    const auto kept = weak_from_this().lock();  // who grants access may let go of it
    fError = LuminaError();
    const auto failure = FailureOf(operation);
    if (!failure) return;
    TraceError(*failure);
    fError = LuminaError(ErrorSeverity::Fatal, ErrorNumber::DirectoryWriteError);
}

bool DicomDirectory::OpenForUpdating() {
    return fUmDicomDirectory != nullptr && fUmDicomDirectory->OpenForUpdating();
}

bool DicomDirectory::AddFile(const HostString& path) {
    HostString reason;
    return AddFile(path, reason);
}

bool DicomDirectory::AddFile(const HostString& path, HostString& reason) {
    reason.clear();
    if (!IsValid()) return false;
    Vantor::TDicomDoc* series = nullptr;
    const auto failure = FailureOf([&] { series = fUmDicomDirectory->AddFile(FromHostText(path)); });
    if (series != nullptr) {
        fWrapperIsCurrent = false;
        return true;
    }
    reason = ToHostText(failure.value_or("no DICOM file of this directory"));
    TraceError(FromHostText(path + L": " + reason));
    return false;
}

bool DicomDirectory::IsUnwritten() const {
    return fUmDicomDirectory != nullptr && fUmDicomDirectory->IsUnwritten();
}

void DicomDirectory::Save() {
    if (!IsValid()) {
        fError = LuminaError(ErrorSeverity::Fatal, ErrorNumber::DirectoryInvalid);
    } else if (!OpenForUpdating()) {
        TraceError(kNotOpened);
        fError = LuminaError(ErrorSeverity::Fatal, ErrorNumber::DirectoryReadOnly);
    } else {
        WriteDirectory();
    }
}

void DicomDirectory::WriteDirectory() {
    if (!IsValid()) return;
    Write([this] {
        const bool isNew = fUmDicomDirectory->IsUnwritten();
        if (isNew) RemoveForeignLink(*fUmDicomDirectory);
        WriteDICOMDIR(*fUmDicomDirectory);
        if (isNew) VantorHost::AccessGranting::SetFileAccess(GetFullPath());
    });
}

void DicomDirectory::CloseFile() {
    if (fUmDicomDirectory != nullptr) fUmDicomDirectory->CloseFile();
}

void DicomDirectory::CreateDICOMDIR() {
    if (!IsValid()) return;
    Write([this] {
        if (TFolderDirectory* const folder = GetFolder(); folder != nullptr) {
            folder->CreateDICOMDIR();
        } else {
            fUmDicomDirectory->CreateEmptyDICOMDIR();
        }
        VantorHost::AccessGranting::SetFileAccess(GetFullPath());
    });
}

void DicomDirectory::CreateFilledDICOMDIR(const HostString& name) {
    if (!IsValid() || !IsFolder()) return;
    Write([&] {
        GetFolder()->CreateFilledDICOMDIR(FromHostText(name).c_str());
        VantorHost::AccessGranting::SetFileAccess(GetFullPath());
    });
}

// False for a folder that is a link elsewhere, which would be shared there.
bool DicomDirectory::MayBeWritten(const std::string& path) const {
    return TFileSpec::FitsPath(path) && fUmDicomDirectory->GetFilePlaces()->MayBeWritten(TFileSpec(path));
}

void DicomDirectory::CreateImageFolder(const HostString& name) {
    if (!IsValid() || !IsFolder()) return;
    const auto kept = weak_from_this().lock();
    const auto failure = FailureOf([&] {
        GetFolder()->CreateImageFolder(FromHostText(name));
        const HostString path = GetImageFolderFullPath();
        if (MayBeWritten(FromHostText(path))) VantorHost::AccessGranting::SetDirectoryAccess(path);
    });
    if (failure) TraceError(*failure);
}

void DicomDirectory::AllFilesDeleted() {
    if (!IsValid() || !IsFolder()) return;
    GetFolder()->SetHasDICOMDIRflag(false);
    GetFolder()->RemoveAllDocs();
}

LuminaError DicomDirectory::CopySeries(const SeriesDirRec& series) {
    const auto kept = weak_from_this().lock();  // a subscriber may let go of it
    if (!IsValid()) {
        TraceError("CopySeries Internal error, no unmanaged DicomDirectory object");
        return {ErrorSeverity::InternalError, ErrorNumber::MissingDirectoryObject};
    }
    if (IsSeriesInDirectory(series.GetSeriesUID())) return {};
    Vantor::TSeriesDoc* const source = series.FindDoc();
    if (source == nullptr) {
        TraceError("CopySeries - The series is not in its directory");
        return {ErrorSeverity::Fatal, ErrorNumber::CopySeriesFailure};
    }
    const auto raiseProgress = [this](int32_t copiedKB, int32_t totalKB) {
        fCopySeriesEventArgs.SetBytesCopiedInSeries(copiedKB);
        fCopySeriesEventArgs.SetTotalBytesInSeries(totalKB);
        try {
            eCopySeriesProgress.Raise(fCopySeriesEventArgs);
        } catch (Vantor::TException* thrown) {
            std::unique_ptr<Vantor::TException> error(thrown);
            if (fUmDicomDirectory != nullptr) throw error.release();
        } catch (...) {
            if (fUmDicomDirectory != nullptr) throw;  // else nothing is left that the failure could concern
        }
        return fUmDicomDirectory != nullptr;
    };
    const auto drive = fDriveInfo;
    fWrapperIsCurrent = false;
    return SeriesCopy(*fUmDicomDirectory, drive.get(), raiseProgress).Run(*source);
}

LuminaError DicomDirectory::DeleteSeries(const SeriesDirRec& series) {
    if (!IsValid()) {
        TraceError("Internal error, no unmanaged DicomDirectory object");
        return {ErrorSeverity::InternalError, ErrorNumber::MissingDirectoryObject};
    }
    Vantor::TSeriesDoc* const doc = GetUmSeries(series.GetSeriesUID());
    if (doc == nullptr) return {};
    fWrapperIsCurrent = false;
    return SeriesDeletion(*fUmDicomDirectory).Run(*doc);
}

}  // namespace VantorWrappers
