// How a directory is created, brought up to date, filled with files and written.

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "dicom/Attempt.h"
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

// True for a full path, and for one with separators of another system.
bool IsSpelledOtherwise(const std::string& fileID) {
    return fileID.starts_with('\\') || fileID.find_first_of("/:") != std::string::npos;
}

}  // namespace

// ---- Creating and writing ----

bool TDicomDirectory::OwnsDICOMDIR() { return GetPlaces().MayDirectoryBeWritten(); }

// What is written to a DICOMDIR that is a link goes where it leads: on a stranger's medium, anywhere.
void TDicomDirectory::RequireOwnFile() {
    if (OwnsDICOMDIR()) return;
    throw Platform::FileException(Platform::FileException::Cause::kAccessDenied, 0, fFileSpec.fPath);
}

void TDicomDirectory::CreateEmptyDICOMDIR() { CreateDICOMDIROf({}); }

void TDicomDirectory::CreateFilledDICOMDIR() { CreateDICOMDIROf(GetRootDocs()); }

void TDicomDirectory::CreateDICOMDIROf(const HeldDocs& rootDocs) {
    RequireOwnFile();
    const ClosedAtEnd closing(*this);
    const TUidText oldInstanceUID = fSOPInstanceUID.Get();
    try {
        if (!IsMissing()) OpenFile(Platform::FileAccess::kReadWrite);
        fSOPClassUID.Set(Uids::kMediaStorageDirectory);
        fSOPInstanceUID.Set(TDicomUtils().CreateNewStudyUID({}).c_str());
        TDicomDataSet present(true, false, kNewDataSetSize, kNewDataSetSize, 0, fContext);
        const uint32_t length = TTextUtil().StringLength(fDirectoryName);
        present.PutElement(Tags::kFileSetID, Vr::kCS, length, fDirectoryName, length);
        WriteRecords(&present, rootDocs);
    } catch (...) {
        fSOPInstanceUID.Set(oldInstanceUID);
        throw;
    }
}

void TDicomDirectory::WriteDICOMDIR() {
    const ClosedAtEnd closing(*this);
    RequireOwnFile();
    const bool wasOpen = IsOpen();
    const bool isNew = fIsUnwritten && IsMissing();
    if (!isNew) OpenFile(Platform::FileAccess::kReadWrite);
    // What others have written since would be gone. A stream has no time, and nobody else.
    const bool mayHaveChanged = !isNew && !wasOpen && fFileSpec.fStorage == nullptr;
    if (mayHaveChanged && !IsOfDocs())
        throw new TException(ErrorNumbers::kRecordStructure, "DICOMDIR has changed");
    WriteRecords(fDataSet.get(), GetRootDocs());
}

// True when there is no file that would have to be held while another one takes its place.
bool TDicomDirectory::IsMissing() const {
    return fFileSpec.fStorage == nullptr && !Platform::PathExists(fFileSpec.fPath);
}

// True when the open file is the one that was read or written last, or a new one, or one whose documents were
// all taken out to make it anew. Hosts note its time after they have written it, which may be another's by
// then.
bool TDicomDirectory::IsOfDocs() const {
    const Platform::FileMark mark = fFile->GetMark();
    const bool isAnew = fReadMark == Platform::FileMark() || GetRootDocs().empty();
    return IsCurrent() &&
           (isAnew || (mark.fLastWriteTime == fReadMark.fLastWriteTime && mark.fSize == fReadMark.fSize));
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
        FlushNewFiles();
        using Place = Platform::FileReplacement::Place;
        Platform::FileReplacement replacement(fFileSpec.fPath, IsOpen() ? Place::kAny : Place::kFree);
        WriteContent(replacement.GetFile(), *meta, *dataSet);
        fReadMark = replacement.PutInPlace(fFile.get());
    }
    fIsUnwritten = false;
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
    fHasLostRecords = false;
}

// Whatever happens next, a file that the DICOMDIR names is there.
void TDicomDirectory::FlushNewFiles() {
    Platform::FlushFiles(fNewFiles);
    fNewFiles.clear();
}

// ---- Bringing up to date ----

// What the documents were made of, and what is known of its file, while the file is read again. It is put
// back unless the new documents are there.
class TDicomDirectory::OldContent {
  public:
    explicit OldContent(TDicomDirectory& directory)
        : fDirectory(directory),
          fMeta(std::move(directory.fMetaDataSet)),
          fDataSet(std::move(directory.fDataSet)),
          fRecordShift(directory.fRecordShift),
          fHasLostRecords(directory.fHasLostRecords),
          fMark(directory.fReadMark),
          fTime(directory.fLastWriteTime),
          fUids{directory.fSOPClassUID.Get(), directory.fSOPInstanceUID.Get(),
                directory.fTransferSyntaxUID.Get()},
          fIsExplicit(directory.fIsExplicit),
          fIsBigEndian(directory.fIsBigEndian),
          fDataOffset(directory.fDataOffset),
          fDataLength(directory.fDataLength),
          fFileSize(directory.fFileSize) {}
    ~OldContent() {
        if (fIsReplaced) return;
        fDirectory.fMetaDataSet = std::move(fMeta);
        fDirectory.fDataSet = std::move(fDataSet);
        fDirectory.fRecordShift = fRecordShift;
        fDirectory.fHasLostRecords = fHasLostRecords;
        fDirectory.fReadMark = fMark;
        fDirectory.fLastWriteTime = fTime;
        fDirectory.fSOPClassUID.Set(fUids[0]);
        fDirectory.fSOPInstanceUID.Set(fUids[1]);
        fDirectory.fTransferSyntaxUID.Set(fUids[2]);
        fDirectory.fIsExplicit = fIsExplicit;
        fDirectory.fIsBigEndian = fIsBigEndian;
        fDirectory.fDataOffset = fDataOffset;
        fDirectory.fDataLength = fDataLength;
        fDirectory.fFileSize = fFileSize;
    }
    OldContent(const OldContent&) = delete;
    OldContent& operator=(const OldContent&) = delete;

    void SetReplaced() { fIsReplaced = true; }

  private:
    TDicomDirectory& fDirectory;
    std::unique_ptr<TDicomDataSet> fMeta;
    std::unique_ptr<TDicomDataSet> fDataSet;
    int64_t fRecordShift;
    bool fHasLostRecords;
    Platform::FileMark fMark;
    Platform::FileTime fTime;
    TUidText fUids[3];
    bool fIsExplicit;
    bool fIsBigEndian;
    int64_t fDataOffset;
    int64_t fDataLength;
    int64_t fFileSize;
    bool fIsReplaced = false;
};

bool TDicomDirectory::ReloadIfChanged() {
    if (IsOpen() || IsCurrent()) return true;  // nobody changes it while it is open
    const bool isRead = ReadAgain(Platform::FileAccess::kRead);
    CloseFile();
    return isRead;
}

bool TDicomDirectory::OpenForUpdating() {
    if (!HasDICOMDIR()) return false;
    if (fIsUnwritten ? HoldWhatIsThere() : ReadAgain(Platform::FileAccess::kReadWrite)) return true;
    CloseFile();
    return false;
}

bool TDicomDirectory::HoldWhatIsThere() {
    return IsMissing() || !OwnsDICOMDIR() || Succeeds([this] { OpenFile(Platform::FileAccess::kReadWrite); });
}

// Opens the file, reads it unless it is the one that was read last, and makes the documents anew.
bool TDicomDirectory::ReadAgain(Platform::FileAccess access) {
    return Succeeds([&] {
        if (access == Platform::FileAccess::kReadWrite) RequireOwnFile();
        OpenFile(access);
        if (IsAsRead()) return;
        OldContent old(*this);
        ReadContent();
        if (fDataSet == nullptr) throw new TException(ErrorNumbers::kRecordStructure, "Invalid Dicom File");
        RefreshDocs();
        TakeDirName();  // another program may have changed it
        old.SetReplaced();
    });
}

// Of a file that has another identity but neither another size nor another time, only the content tells: some
// volumes give their files new identities.
bool TDicomDirectory::IsAsRead() {
    Platform::FileMark mark = fFile->GetMark();
    if (!IsCurrent() || fMetaDataSet == nullptr || fDataSet == nullptr) return false;
    if (mark == fReadMark) return true;
    if (mark.fLastWriteTime != fReadMark.fLastWriteTime || mark.fSize != fReadMark.fSize) return false;
    const auto size = static_cast<size_t>(mark.fSize);
    if (mark.fSize != GetHeaderSize() + fDataSet->GetDataSetSize()) return false;
    std::vector<uint8_t> bytes(size);
    SeekTo(*fFile, 0);
    if (ReadNext(bytes.data(), size) != size) return false;
    // The data set ends the file, and the meta information ends where it starts.
    const auto dataSet = bytes.end() - fDataSet->GetDataSetSize();
    const auto meta = dataSet - fMetaDataSet->GetDataSetSize();
    const bool isSame = std::equal(meta, dataSet, fMetaDataSet->GetDataSet()) &&
                        std::equal(dataSet, bytes.end(), fDataSet->GetDataSet());
    if (!isSame) return false;
    fReadMark = mark;
    return true;
}

// ---- Entering files ----

TDicomDoc* TDicomDirectory::AddFile(const std::string& path) {
    return EnterFile(path, SeriesNumbers::kFromRecord);
}

TDicomDoc* TDicomDirectory::EnterFile(const std::string& path, SeriesNumbers numbers) {
    const TFileSpec fileSpec(path);
    if (path.size() >= kPathTooLong || Platform::IsUnfinished(path) || !GetPlaces().IsInside(fileSpec))
        return nullptr;
    // A record keeps the file ID in upper case: of two names that differ in case only one can be entered.
    const std::string fileID = MakeStoredFileID(fileSpec);
    TFileSpec named;
    MakeFileSpec(fileID, named);
    if (!Platform::IsSameFile(path, named.fPath)) return nullptr;
    const std::unique_ptr<FileToEnter> file = FileToEnter::Read(fileSpec);
    if (file == nullptr) return nullptr;
    FileRecords records(*file, fileID);
    if (numbers == SeriesNumbers::kLater) records.LeaveSeriesUnnumbered();
    int32_t error = 0;
    TDicomDoc* const instance = FindOrCreateDoc(&records.GetInstance(), error);
    if (instance == nullptr) return nullptr;
    TUidText transferSyntax;
    TDicomFile* const entered = instance->GetDicomFile();
    // It may be there already, with another file.
    const bool isThisFile =
        entered != nullptr && TTextUtil().EqualStrings(entered->GetFileSpec()->fPath, named.fPath);
    if (!isThisFile) return instance->GetParentObj();
    // As it is spelled on disk, for hosts that hand the path to others.
    std::copy(std::begin(fileSpec.fPath), std::end(fileSpec.fPath), entered->GetFileSpec()->fPath);
    if (file->GetFile().GetTransferSyntaxUID(transferSyntax.fText)) {
        entered->SetTransferSyntaxUID(transferSyntax.fText);
    }
    return instance->GetParentObj();
}

void TDicomDirectory::ScanFiles() { EnterFilesBelow(MakeImageFolderPath(), SeriesNumbers::kFromRecord); }

void TDicomDirectory::EnterFilesBelow(const std::string& folder, SeriesNumbers numbers) {
    const std::unordered_set<std::string> present = CollectFileIDs(nullptr);
    for (const std::string& path : FolderFiles::ListBelow(folder)) {
        if (present.count(MakeStoredFileID(TFileSpec(path))) > 0) continue;
        Succeeds([&] { EnterFile(path, numbers); });
    }
}

std::string TDicomDirectory::MakeStoredFileID(const TFileSpec& fileSpec) {
    char fileID[TFileSpec::kPathSize] = {};
    uint32_t length = 0;
    MakeRelativeFileID(fileID, length, fileSpec);
    return Platform::UpperCased({fileID, length});
}

// Of all files that the records name, but for those of one document and what is below it; as the directory
// itself would store them, however a record spells them.
std::unordered_set<std::string> TDicomDirectory::CollectFileIDs(const TDicomDoc* without) {
    const MediaPaths& paths = GetPaths();
    std::unordered_set<std::string> fileIDs;
    HeldDocs docs = GetRootDocs();
    while (!docs.empty()) {
        TDicomDoc* const doc = docs.back();
        docs.pop_back();
        if (doc == without) continue;
        std::string fileID = FileIDOf(*doc);
        if (IsSpelledOtherwise(fileID))
            fileID = Platform::UpperCased(paths.MakeFileID(paths.MakeFullPath(fileID)));
        fileIDs.insert(std::move(fileID));
        TListOf<TDicomDoc> children;
        doc->GetChildDocs(children, true);
        docs.insert(docs.end(), children.begin(), children.end());
        docs.insert(docs.end(), doc->GetForeignChildren().begin(), doc->GetForeignChildren().end());
    }
    return fileIDs;
}

}  // namespace Vantor
