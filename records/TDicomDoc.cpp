#include "records/TDicomDoc.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "dicom/TException.h"
#include "dicom/TTextUtil.h"
#include "platform/Ascii.h"
#include "platform/CodePage.h"
#include "records/ReferencedFile.h"

namespace Vantor {

namespace {

// Room that the data set of a record is given: what it has, and to grow by quarters to ten times as much; a
// new one fixed sizes.
constexpr uint32_t kGrowDivisor = 4;
constexpr int64_t kRoomFactor = 10;
constexpr uint32_t kNewRecordSize = 10240;
constexpr int32_t kNewRecordRoom = 1024000;

constexpr uint32_t kNoOffset = 0;
constexpr uint16_t kInUse = 0xFFFF;

}  // namespace

TDicomDoc::TDicomDoc(int32_t docType) : fDocType(docType) {}

TDicomDoc::TDicomDoc(int32_t docType, const TDicomDataSet* record, TRecordDirectory* directory)
    : TDicomDoc(docType, TStoredRecord(), directory) {
    if (record != nullptr) {
        fDataSet = CopyRecord(*record);
        return;
    }
    fDataSet =
        std::make_unique<TDicomDataSet>(true, false, kNewRecordSize, kNewRecordSize, kNewRecordRoom, 0);
    TDicomDoc::CompleteRecord();
}

TDicomDoc::TDicomDoc(int32_t docType, TStoredRecord record, TRecordDirectory* directory)
    : fStored(std::move(record)), fDocType(docType) {
    SetDirectory(directory);
    if (directory != nullptr) fPlaces = directory->GetFilePlaces();
}

TDicomDoc::~TDicomDoc() { DropForeignChildren(); }

TDicomDataSet* TDicomDoc::Record() const {
    if (!fStored.IsEmpty()) const_cast<TDicomDoc*>(this)->Wake();
    return fDataSet.get();
}

void TDicomDoc::Wake() {
    fDataSet = CopyRecord(fStored.Open());
    fStored.Clear();
    FindFile();
}

void TDicomDoc::FindFile() {
    if (fPlaces != nullptr) MakeFile(*fPlaces);
}

void TDicomDoc::SetSOPClassUID(const char* text) {
    Record();
    TIODSource::SetSOPClassUID(text);
}

void TDicomDoc::SetSOPInstanceUID(const char* text) {
    Record();
    TIODSource::SetSOPInstanceUID(text);
    NoteIdentity();
}

// ---- Place and belongings ----

void TDicomDoc::SetDicomFile(std::unique_ptr<TDicomFile> file) {
    Record();  // which would put the file of the record in its place later
    fDicomFile = std::move(file);
    fIsNew = true;
}

TDicomFile* TDicomDoc::GetDicomFile() {
    Record();
    return fDicomFile.get();
}

std::string TDicomDoc::GetFilePath() {
    if (IsAsStored()) {
        const auto fileID = PeekText(Tags::kReferencedFileID, TFileSpec::kPathSize);
        return fileID ? FindStoredFile(*fileID) : std::string();
    }
    const TDicomFile* const file = GetDicomFile();
    return file == nullptr ? std::string() : file->GetFileSpec()->fPath;
}

std::string TDicomDoc::FindStoredFile(std::string_view fileID) const { return fPlaces->Find(fileID).fPath; }

void TDicomDoc::SetParentObj(TDicomDoc* parent) {
    fParent = parent;
    if (parent != nullptr) fHasOutlivedParent = false;
    if (parent != nullptr) parent->Register();
}

void TDicomDoc::LeaveParent() {
    TDicomDoc* const parent = fParent;
    if (parent == nullptr) return;
    parent->RemoveChild(this);
    if (fParent == nullptr) return;
    // Not among the parent's children: only the count has to go.
    fParent = nullptr;
    parent->Release();
}

void TDicomDoc::OutliveParent() {
    fParent = nullptr;
    fHasOutlivedParent = true;
    fCompanion = nullptr;
}

void TDicomDoc::SetDirectory(TRecordDirectory* directory) {
    fDirectory = directory == nullptr ? nullptr : directory->GetLink();
}

void TDicomDoc::GetFolderName(char* buffer) const {
    std::memcpy(buffer, fFolderName.data(), fFolderName.size());
}

bool TDicomDoc::SetFolderName(const char* text, uint32_t length) {
    fFolderName.fill('\0');
    std::memcpy(fFolderName.data(), text, std::min(length, kFolderNameSize - 1));
    return fFolderName.front() != '\0';
}

bool TDicomDoc::IsInUse() {
    try {
        TListOf<TDicomDoc> children;
        GetChildDocs(children, true);
        return GetRefCount() != static_cast<uint32_t>(children.GetCount());
    } catch (const std::bad_alloc&) {
        return true;  // never destroyed in doubt
    }
}

void TDicomDoc::Discard() {
    LeaveParent();
    if (TRecordDirectory* const directory = GetDirectory(); directory != nullptr) {
        TListOf<TDicomDoc> below;
        GetChildDocs(below, false);
        below.InsertItemAt(below.kAtEnd, this);
        directory->RemoveDocs(below);
    }
    if (!IsInUse()) delete this;
}

TDicomDoc* TDicomDoc::CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                                      int32_t& error) {
    error = 0;
    if (directory == GetDirectory()) return this;
    return PlaceCopy(Record(), directory, parent, deep, error);
}

TDicomDoc* TDicomDoc::PlaceCopy(const TDicomDataSet* record, TRecordDirectory* directory, TDicomDoc* parent,
                                bool deep, int32_t& error) {
    std::unique_ptr<TDicomDoc> made = MakeCopy(record, directory);
    made->fIsNew = true;
    if (directory != nullptr) directory->RegisterDoc(made.get());
    TDicomDoc* const copy = made.release();
    copy->SetParentObj(parent);
    if (!deep) return copy;
    TListOf<TDicomDoc> children;
    GetChildDocs(children, true);
    for (TDicomDoc* child : children) {
        if (error != 0) break;
        copy->AddChild(child, nullptr, true, error);
    }
    return copy;
}

// ---- Foreign children ----

void TDicomDoc::KeepForeignChild(std::unique_ptr<TDicomDoc>& child) {
    if (fForeignChildren == nullptr) fForeignChildren = std::make_unique<std::vector<TDicomDoc*>>();
    fForeignChildren->push_back(child.get());
    child.release()->Register();
}

const std::vector<TDicomDoc*>& TDicomDoc::GetForeignChildren() const {
    static const std::vector<TDicomDoc*> kNone;
    return fForeignChildren == nullptr ? kNone : *fForeignChildren;
}

void TDicomDoc::DropForeignChildren() {
    if (fForeignChildren == nullptr) return;
    for (TDicomDoc* child : *fForeignChildren) {
        child->Release();
        if (!child->IsInUse()) delete child;
    }
}

// ---- Files ----

bool TDicomDoc::OwnsFile() {
    const TDicomFile* const file = GetDicomFile();
    return file != nullptr && (fPlaces == nullptr || fPlaces->MayBeRemoved(*file->GetFileSpec()));
}

void TDicomDoc::CollectFiles(TListOf<TDicomFile>& files) {
    if (OwnsFile()) files.InsertItemAt(files.kAtEnd, GetDicomFile());
    TListOf<TDicomDoc> children;
    GetChildDocs(children, true);
    for (TDicomDoc* child : children) child->CollectFiles(files);
}

void TDicomDoc::DeleteFilesFromDisk(const std::function<bool(TDicomFile&)>& isKept) {
    TListOf<TDicomFile> files;
    try {
        CollectFiles(files);
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        return;
    } catch (const std::bad_alloc&) {
        return;
    }
    for (auto file = files.rbegin(); file != files.rend(); ++file) {
        if (isKept == nullptr || !isKept(**file)) (*file)->DeleteDiskFile();
    }
}

int32_t TDicomDoc::GetDiskSpace() {
    int64_t total = GetDicomFile() == nullptr ? 0 : GetDicomFile()->GetFileSizeKB();
    TListOf<TDicomDoc> children;
    GetChildDocs(children, true);
    for (TDicomDoc* child : children) total += child->GetDiskSpace();
    return static_cast<int32_t>(std::min<int64_t>(total, std::numeric_limits<int32_t>::max()));
}

// ---- The record ----

std::unique_ptr<TDicomDataSet> TDicomDoc::CopyRecord(const TDicomDataSet& record) {
    const auto size = static_cast<uint32_t>(record.GetDataSetSize());
    if (size == 0) {  // which is no measure for what it needs
        return std::make_unique<TDicomDataSet>(record.IsExplicit(), record.IsBigEndian(), kNewRecordSize,
                                               kNewRecordSize, kNewRecordRoom, 0);
    }
    const int64_t room = std::min<int64_t>(size * kRoomFactor, TDicomDataSet::kDefaultMaximumSize);
    return record.ConvertTo(record.IsExplicit(), record.IsBigEndian(), size, size / kGrowDivisor,
                            static_cast<int32_t>(room), 0);
}

TDicomDataSet TDicomDoc::ViewRecord() const {
    if (!fStored.IsEmpty()) return fStored.Open();
    if (fDataSet == nullptr) return {true, false, nullptr, 0, 0};
    const int32_t size = fDataSet->GetDataSetSize();
    return {fDataSet->IsExplicit(), fDataSet->IsBigEndian(), fDataSet->GetDataSet(), size, size};
}

// A record that has its type counts as complete. One that cannot be completed has got it all the same, and
// must be without it when it is to be written again.
void TDicomDoc::PrepareForWriting() {
    if (fDataSet == nullptr) return;
    try {
        if (!HasElement(Tags::kDirectoryRecordType)) CompleteRecord();
    } catch (...) {
        fDataSet->DeleteElement(Tags::kDirectoryRecordType.fGroup, Tags::kDirectoryRecordType.fElement);
        throw;
    }
    if (fIsNew && fDicomFile != nullptr)
        ReferencedFile::CompleteReference(*fDataSet, *fDicomFile, GetDirectory());
}

void TDicomDoc::CompleteRecord() {
    if (Record() == nullptr) return;
    AddIfAbsent(Tags::kNextRecordOffset, Vr::kUL, &kNoOffset, sizeof(kNoOffset));
    AddIfAbsent(Tags::kRecordInUseFlag, Vr::kUS, &kInUse, sizeof(kInUse));
    AddIfAbsent(Tags::kLowerLevelOffset, Vr::kUL, &kNoOffset, sizeof(kNoOffset));
}

void TDicomDoc::AddIfAbsent(Tag tag, VrCode vr, const void* value, uint32_t length) {
    if (!HasElement(tag)) Record()->PutElement(tag, vr, length, value, length);
}

bool TDicomDoc::GetText(Tag tag, char* buffer, uint32_t size) const {
    if (Record() != nullptr) return Record()->GetText(tag, buffer, size);
    if (size > 0) buffer[0] = '\0';
    return false;
}

void TDicomDoc::SetText(Tag tag, VrCode vr, const char* text) {
    if (Record() == nullptr) return;
    const uint32_t length = text == nullptr ? 0 : std::min(TTextUtil().StringLength(text), kLongestText);
    Record()->PutElement(tag, vr, length, text, length);
    NoteIdentity();
}

void TDicomDoc::NoteIdentity() {
    if (TRecordDirectory* const directory = GetDirectory(); directory != nullptr)
        directory->NoteIdentity(this);
}

std::optional<std::string> TDicomDoc::PeekText(Tag tag, uint32_t limit) const {
    char value[TFileSpec::kPathSize];
    TDicomDataSet::Wanted wanted{tag, value, std::min<uint32_t>(limit, sizeof(value))};
    wanted.fIsFound =
        ViewRecord().FindElement(tag, &wanted.fVr, &wanted.fLength, wanted.fValue, wanted.fCapacity);
    if (!wanted.fIsFound) return std::nullopt;
    return std::string(FinishText(wanted));
}

std::string_view TDicomDoc::FinishText(const TDicomDataSet::Wanted& element) {
    if (!element.fIsFound) return {};
    char* const value = static_cast<char*>(element.fValue);
    uint32_t length = std::min(element.fLength, element.fCapacity);
    if (length % 2 != 0 && length < element.fCapacity && element.fVr != Vr::kUI) value[length++] = ' ';
    const std::string_view text(value, length);
    if (element.fVr == Vr::kCS) std::transform(value, value + length, value, Platform::UpperCase);
    return text.substr(0, text.find('\0'));
}

std::string TDicomDoc::PeekHostText(Tag tag) const {
    return Platform::AsHostsSee(PeekText(tag).value_or(""));
}

void TDicomDoc::SetRecordType(const char* recordType) {
    SetText(Tags::kDirectoryRecordType, Vr::kCS, recordType);
}

void TDicomDoc::RequireElement(Tag tag, const char* complaint) const {
    if (!HasElement(tag)) throw new TException(ErrorNumbers::kRecordStructure, complaint);
}

bool TDicomDoc::HasSameText(const TDicomDoc& other, Tag tag) const {
    char mine[kLongestText + 1];
    char others[kLongestText + 1];
    return GetText(tag, mine, sizeof(mine)) && other.GetText(tag, others, sizeof(others)) &&
           TTextUtil().EqualStrings(mine, others);
}

}  // namespace Vantor
