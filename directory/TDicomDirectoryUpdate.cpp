// How a directory is created, brought up to date, filled with files and written.

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "dicom/TException.h"
#include "dicom/TTextUtil.h"
#include "directory/FileRecords.h"
#include "directory/FolderFiles.h"
#include "directory/MediaPlaces.h"
#include "directory/RecordWriter.h"
#include "directory/TDicomDirectory.h"
#include "platform/Ascii.h"
#include "platform/FileException.h"
#include "platform/FileReplacement.h"
#include "platform/FileSystem.h"
#include "records/TDicomUtils.h"

namespace Vantor {

namespace {

constexpr size_t kPathTooLong = 255;
constexpr uint32_t kNewDataSetSize = 1024;

// Every DICOMDIR of this library names itself with these.
constexpr const char* kTransferSyntax = Uids::kExplicitVRLittleEndian;
constexpr const char* kImplementation = Uids::kImplementationClass;

class ClosedAtEnd {
  public:
    explicit ClosedAtEnd(TDicomFile& file) : fFile(file) {}
    ~ClosedAtEnd() { fFile.CloseFile(); }
    ClosedAtEnd(const ClosedAtEnd&) = delete;
    ClosedAtEnd& operator=(const ClosedAtEnd&) = delete;

  private:
    TDicomFile& fFile;
};

// The file ID that a record names its file by, without padding.
std::string FileIDOf(const TDicomDoc& doc) {
    char text[TFileSpec::kPathSize];
    doc.ViewRecord().GetText(Tags::kReferencedFileID, text, sizeof(text));
    const std::string fileID = Platform::UpperCased(text);
    return fileID.substr(0, fileID.find_last_not_of(' ') + 1);
}

}  // namespace

// ---- Creating and writing ----

void TDicomDirectory::CreateEmptyDICOMDIR() {
    const ClosedAtEnd closing(*this);
    const bool isNew = fFileSpec.fStorage == nullptr && !Platform::PathExists(fFileSpec.fPath);
    const TUidText oldInstanceUID = fSOPInstanceUID.Get();
    try {
        if (isNew) CreateEmptyFile(true, false);
        OpenFile(Platform::FileAccess::kReadWrite);
        fSOPClassUID.Set(Uids::kMediaStorageDirectory);
        fSOPInstanceUID.Set(TDicomUtils().CreateNewStudyUID({}).c_str());
        TDicomDataSet present(true, false, kNewDataSetSize, kNewDataSetSize, 0, fContext);
        const uint32_t length = TTextUtil().StringLength(fDirectoryName);
        present.PutElement(Tags::kFileSetID, Vr::kCS, length, fDirectoryName, length);
        WriteRecords(&present, {});
    } catch (...) {
        fSOPInstanceUID.Set(oldInstanceUID);
        CloseFile();
        if (isNew) DeleteDiskFile();
        throw;
    }
}

void TDicomDirectory::WriteDICOMDIR() {
    const ClosedAtEnd closing(*this);
    OpenFile(Platform::FileAccess::kReadWrite);
    WriteRecords(fDataSet.get(), GetRootDocs());
}

TDicomDirectory::HeldDocs TDicomDirectory::GetRootDocs() const {
    HeldDocs rootDocs(fPatientDocs.begin(), fPatientDocs.end());
    // Some may have been put below another one since they were read.
    std::copy_if(fOtherRootDocs.begin(), fOtherRootDocs.end(), std::back_inserter(rootDocs),
                 [](const TDicomDoc* doc) { return doc->GetParentObj() == nullptr; });
    return rootDocs;
}

// Puts a new file in place of the open one. This object stands for it from then on; until then it is what it
// was.
void TDicomDirectory::WriteRecords(TDicomDataSet* present, const HeldDocs& rootDocs) {
    if (fSOPInstanceUID.Get().fLength == 0) {
        fSOPInstanceUID.Set(TDicomUtils().CreateNewStudyUID({}).c_str());
    }
    std::unique_ptr<TDicomDataSet> meta = MakeMetaDataSet(kTransferSyntax, kImplementation);
    const int64_t dataSetStart = GetHeaderSizeWith(*meta);
    std::unique_ptr<TDicomDataSet> dataSet = RecordWriter(dataSetStart).Write(present, rootDocs, fContext);
    if (fFileSpec.fStorage != nullptr) {
        WriteContent(*fFile, *meta, *dataSet);
        fReadMark = fFile->GetMark();
    } else {
        Platform::FileReplacement replacement(fFileSpec.fPath);
        WriteContent(replacement.GetFile(), *meta, *dataSet);
        fReadMark = replacement.PutInPlace(fFile.get());
    }
    fLastWriteTime = fReadMark.fLastWriteTime;
    fTransferSyntaxUID.Set(kTransferSyntax);
    fMetaDataSet = std::move(meta);
    fDataSet = std::move(dataSet);
    fIsExplicit = true;
    fIsBigEndian = false;
    fDataOffset = dataSetStart;
    fDataLength = fDataSet->GetDataSetSize();
    fFileSize = fDataOffset + fDataLength;
    fRecordShift = 0;
}

// ---- Bringing up to date ----

// What the documents were made of, while the file is read again. It is put back, and the file closed, unless
// the new documents are there.
class TDicomDirectory::OldContent {
  public:
    explicit OldContent(TDicomDirectory& directory)
        : fDirectory(directory),
          fMeta(std::move(directory.fMetaDataSet)),
          fDataSet(std::move(directory.fDataSet)),
          fRecordShift(directory.fRecordShift),
          fMark(directory.fReadMark),
          fTime(directory.fLastWriteTime) {}
    ~OldContent() {
        if (fIsReplaced) return;
        fDirectory.CloseFile();
        fDirectory.fMetaDataSet = std::move(fMeta);
        fDirectory.fDataSet = std::move(fDataSet);
        fDirectory.fRecordShift = fRecordShift;
        fDirectory.fReadMark = fMark;
        fDirectory.fLastWriteTime = fTime;
    }
    OldContent(const OldContent&) = delete;
    OldContent& operator=(const OldContent&) = delete;

    void SetReplaced() { fIsReplaced = true; }

  private:
    TDicomDirectory& fDirectory;
    std::unique_ptr<TDicomDataSet> fMeta;
    std::unique_ptr<TDicomDataSet> fDataSet;
    int64_t fRecordShift;
    Platform::FileMark fMark;
    Platform::FileTime fTime;
    bool fIsReplaced = false;
};

bool TDicomDirectory::ReloadIfChanged() {
    if (IsCurrent()) return true;
    try {
        OpenFile(Platform::FileAccess::kRead);
        OldContent old(*this);
        ReadContent();
        RefreshDocs();
        old.SetReplaced();
        CloseFile();
        return true;
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
    } catch (const std::exception&) {
        // The file's own failures, and a lack of memory.
    }
    CloseFile();
    return false;
}

bool TDicomDirectory::OpenForUpdating() {
    if (!HasDICOMDIR()) return false;
    try {
        OpenFile(Platform::FileAccess::kReadWrite);
        if (IsCurrent() && fFile->GetMark() == fReadMark) return true;
        OldContent old(*this);
        ReadContent();
        if (fDataSet == nullptr) return false;
        RefreshDocs();
        old.SetReplaced();
        return true;
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
    } catch (const std::exception&) {
        // The file's own failures, and a lack of memory.
    }
    CloseFile();
    return false;
}

// ---- Entering files ----

TDicomDoc* TDicomDirectory::AddFile(const std::string& path) {
    return EnterFile(path, SeriesNumbers::kFromRecord);
}

TDicomDoc* TDicomDirectory::EnterFile(const std::string& path, SeriesNumbers numbers) {
    const TFileSpec fileSpec(path);
    if (path.size() >= kPathTooLong || !GetPlaces().IsInside(fileSpec)) return nullptr;
    // While it is open for updating, to look into the DICOMDIR would be to wait for ourselves.
    if (IsOpen() && Platform::IsSameFile(path, fFileSpec.fPath)) return nullptr;
    const std::unique_ptr<FileToEnter> file = FileToEnter::Read(fileSpec);
    if (file == nullptr) return nullptr;
    char fileID[TFileSpec::kPathSize] = {};
    uint32_t length = 0;
    MakeRelativeFileID(fileID, length, fileSpec);
    FileRecords records(*file, {fileID, length});
    if (numbers == SeriesNumbers::kLater) records.LeaveSeriesUnnumbered();
    int32_t error = 0;
    TDicomDoc* const instance = FindOrCreateDoc(&records.GetInstance(), error);
    if (instance == nullptr) return nullptr;
    TUidText transferSyntax;
    TDicomFile* const entered = instance->GetDicomFile();
    if (entered != nullptr && file->GetFile().GetTransferSyntaxUID(transferSyntax.fText)) {
        entered->SetTransferSyntaxUID(transferSyntax.fText);
    }
    return instance->GetParentObj();
}

void TDicomDirectory::ScanFiles() { EnterFilesBelow(MakeImageFolderPath(), SeriesNumbers::kFromRecord); }

void TDicomDirectory::EnterFilesBelow(const std::string& folder, SeriesNumbers numbers) {
    const std::unordered_set<std::string> present = CollectFileIDs();
    for (const std::string& path : FolderFiles::ListBelow(folder)) {
        char fileID[TFileSpec::kPathSize] = {};
        uint32_t length = 0;
        MakeRelativeFileID(fileID, length, TFileSpec(path));
        if (present.count(Platform::UpperCased(std::string_view(fileID, length))) > 0) continue;
        try {
            EnterFile(path, numbers);
        } catch (TException* thrown) {
            // It lacks what a record must have.
            const std::unique_ptr<TException> error(thrown);
        }
    }
}

// Of all files that the records name.
std::unordered_set<std::string> TDicomDirectory::CollectFileIDs() const {
    std::unordered_set<std::string> fileIDs;
    for (TDicomDoc* rootDoc : GetRootDocs()) {
        TListOf<TDicomDoc> docs;
        rootDoc->GetChildDocs(docs, false);
        for (const TDicomDoc* doc : docs) fileIDs.insert(FileIDOf(*doc));
    }
    return fileIDs;
}

}  // namespace Vantor
