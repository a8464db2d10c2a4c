#include "directory/TDicomDirectory.h"

#include <algorithm>
#include <cstring>
#include <unordered_set>
#include <utility>

#include "dicom/Attempt.h"
#include "dicom/TException.h"
#include "dicom/TTextUtil.h"
#include "directory/DocIndex.h"
#include "directory/ExamFolder.h"
#include "directory/MediaPaths.h"
#include "directory/MediaPlaces.h"
#include "directory/RecordLoader.h"
#include "directory/TSeriesTransfer.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"

namespace Vantor {

namespace {

// Kept beside the file for whoever asks for them.
constexpr uintptr_t kFirstSize = 25600;
constexpr uintptr_t kSecondSize = 31457280;

constexpr uint32_t kTransferBufferSize = 65536;

constexpr char kStandardImageFolder[] = "\\imagesdc";
constexpr char kExamImageFolder[] = "\\Exams";

constexpr int32_t kListedTypes[] = {TDicomDoc::kPatient, TDicomDoc::kStudy,   TDicomDoc::kSeries,
                                    TDicomDoc::kImage,   TDicomDoc::kRawData, TDicomDoc::kSR};

constexpr double kBytesPerKilobyte = 1024.0;
constexpr uint32_t kLongestSeriesNumber = 64;

// Empty for a document that is the same as itself only. Types do not share their identities.
std::string IdentityOf(const TDicomDoc& doc) {
    const std::string identity = doc.GetIdentity();
    return identity.empty() ? identity : std::to_string(doc.GetDocType()) + identity;
}

void DestroyUnlessHeld(TDicomDoc* doc) {
    if (!doc->IsInUse()) delete doc;
}

// An item of a list with the number it is sorted by.
template <typename T>
struct Numbered {
    int32_t fNumber;
    T* fDoc;
};

template <typename Iterator>
void SortByNumber(Iterator first, Iterator last) {
    std::stable_sort(first, last, [](const auto& a, const auto& b) { return a.fNumber < b.fNumber; });
}

template <typename T>
void PutBack(TListOf<T>& list, const std::vector<Numbered<T>>& docs) {
    list.RemoveAllItems();
    for (const Numbered<T>& doc : docs) list.InsertItemAt(TListOf<T>::kAtEnd, doc.fDoc);
}

}  // namespace

TDicomDirectory::TDicomDirectory(const TFileSpec& fileSpec, uint32_t imageDocFlag)
    : TDicomDirectory(fileSpec, imageDocFlag, kStandardLayout) {
    TDicomDirectory::ReadDirectory();
}

TDicomDirectory::TDicomDirectory(const TFileSpec& fileSpec, uint32_t imageDocFlag, int32_t directoryType)
    : TDicomFile(0, fileSpec, 0, kFirstSize, kSecondSize),
      fDirectoryType(directoryType),
      fImageDocFlag(imageDocFlag),
      fTransfer(std::make_unique<TSeriesTransfer>(*this, kTransferBufferSize)) {
    SetIsReplaced(true);
}

TDicomDirectory::TDicomDirectory(const TFileSpec& fileSpec, const char* directoryName, int32_t directoryType,
                                 const char* sopClassUID, const char* sopInstanceUID,
                                 const char* transferSyntaxUID, const char* implementationClassUID,
                                 bool isBigEndian)
    : TDicomFile(0, fileSpec, 0),
      fDirectoryType(directoryType),
      fTransfer(std::make_unique<TSeriesTransfer>(*this, kTransferBufferSize)) {
    const auto init =
        fileSpec.fStorage == nullptr ? &TDicomDirectory::InitUnwrittenFile : &TDicomDirectory::InitNewFile;
    fIsUnwritten = true;
    (this->*init)(0, fileSpec, 0, nullptr, sopClassUID, sopInstanceUID, transferSyntaxUID,
                  implementationClassUID, isBigEndian);
    SetIsReplaced(true);
    UpdateModTime();
    SetDirName(directoryName);
    const auto places = TDicomDirectory::MakePlaces();
    if (directoryType == kExamLayout) MakeImageFolder(kExamImageFolder, places->GetPaths());
    if (directoryType == kStandardLayout) MakeImageFolder(kStandardImageFolder, places->GetPaths());
}

TDicomDirectory::~TDicomDirectory() {
    ClearDocsToMove();
    ClearLists();
    Drop(fRetiredDocs);
}

void TDicomDirectory::ReadDirectory() {
    OpenFile(Platform::FileAccess::kRead);
    ReadContent();
    CloseFile();
    TakeDirName();
    SetImageFolderName(kStandardImageFolder);
    RefreshDocs();
}

void TDicomDirectory::TakeDirName() {
    fDirectoryName[0] = '\0';
    if (fDataSet != nullptr) fDataSet->GetText(Tags::kFileSetID, fDirectoryName, kDirectoryNameSize);
}

// What is noted of the file is taken from it while it is open: by its path another one may be there by now.
void TDicomDirectory::ReadContent() {
    ReadFile();
    if (fDataSet == nullptr) return ForgetContent();
    fRecordShift = 0;
    fReadMark = fFile->GetMark();
    fLastWriteTime = fReadMark.fLastWriteTime;
}

// What could not be understood is not written over: it counts as changed until somebody makes it anew.
void TDicomDirectory::ForgetContent() {
    fMetaDataSet.reset();
    fDataSet.reset();
    fHasLostRecords = false;
    fRecordShift = 0;
    fReadMark = {};
    fLastWriteTime = {};
}

// ---- Making the documents ----

void TDicomDirectory::RefreshDocs() {
    fPlaces.reset();
    if (fDataSet == nullptr) return ClearLists();
    // Without meta information, which a file that has become unreadable leaves behind, as it was read.
    const int64_t dataSetStart = fMetaDataSet == nullptr ? fDataOffset : GetHeaderSize();
    RecordLoader loader(*fDataSet, dataSetStart - fRecordShift, *this);
    fReportAnswers.emplace();
    try {
        loader.Load();  // before the documents that are there go
    } catch (...) {
        fReportAnswers.reset();
        throw;
    }
    fReportAnswers.reset();
    fHasLostRecords = loader.HasLostRecords();
    ClearLists();
    for (auto& stray : loader.TakeStrayDocs()) TDicomDirectory::KeepDoc(stray.release());
    FillLists(loader.TakeRootDocs());
    DetectExamLayout();
}

// A medium may name one file in each of its records.
void TDicomDirectory::CheckReport(TSRFile& file) {
    if (!fReportAnswers) {
        file.CheckForQuantixReport();
        return;
    }
    const auto [answer, isNew] = fReportAnswers->emplace(file.GetFileSpec()->fPath, false);
    if (isNew) answer->second = file.CheckForQuantixReport();
    file.SetHasQuantixReport(answer->second);
}

void TDicomDirectory::FillLists(std::vector<std::unique_ptr<TDicomDoc>> rootDocs) {
    for (auto& rootDoc : rootDocs) {
        TDicomDoc* const doc = rootDoc.release();
        doc->Register();
        if (doc->GetDocType() == TDicomDoc::kPatient) {
            fPatientDocs.InsertItemAt(fPatientDocs.kAtEnd, static_cast<TPatientDoc*>(doc));
        } else {
            fOtherRootDocs.push_back(doc);
        }
    }
    const auto append = []<typename T>(TListOf<T>& list, const TListOf<T>& children) {
        list.AppendList(&children);
        for (T* child : children) child->Register();
    };
    for (TPatientDoc* patient : fPatientDocs) append(fStudyDocs, *patient->GetStudyDocs());
    for (TStudyDoc* study : fStudyDocs) append(fSeriesDocs, *study->GetSeriesDocs());
    for (TSeriesDoc* series : fSeriesDocs) {
        append(fImageDocs, *series->GetImageDocs());
        append(fRawDataDocs, *series->GetRawDataDocs());
        append(fSRDocs, *series->GetSR_Docs());
    }
}

void TDicomDirectory::DetectExamLayout() {
    if (fDirectoryType == kFolderDirectory || fStudyDocs.GetCount() == 0) return;
    const TListOf<TStudyDoc>& studies = *(*fPatientDocs.begin())->GetStudyDocs();
    if (studies.GetCount() == 0 || !ExamFolder::IsNamedIn(*(*studies.begin())->GetDataSet())) return;
    fDirectoryType = kExamLayout;
    SetImageFolderName(kExamImageFolder);
    for (TStudyDoc* study : fStudyDocs) {
        const auto name = ExamFolder::ReadName(*study->GetDataSet());
        if (name) study->SetFolderName(name->c_str(), static_cast<uint32_t>(name->size()));
    }
}

// ---- Clearing ----

// A copy that was made for a parent but never put below it would keep that parent in use. It is held by its
// list here and by nobody else. From the lowest level up, as the parent may be such a copy itself.
void TDicomDirectory::LeaveFalseParents() {
    const auto leave = [](const auto& list) {
        for (TDicomDoc* doc : list) {
            TListOf<TDicomDoc> children;
            if (doc->GetParentObj() != nullptr) doc->GetChildDocs(children, true);
            const auto listedOnlyHere = static_cast<uint32_t>(children.GetCount()) + 1;
            if (doc->GetRefCount() == listedOnlyHere) doc->LeaveParent();
        }
    };
    for (auto docType = std::rbegin(kListedTypes); docType != std::rend(kListedTypes); ++docType) {
        WithListOf(*docType, leave);
    }
}

template <typename T>
void TDicomDirectory::ClearList(TListOf<T>& list, HeldDocs& withoutParent) {
    for (auto doc = list.rbegin(); doc != list.rend(); ++doc) {
        (*doc)->Release();
        if ((*doc)->GetParentObj() == nullptr && !(*doc)->IsInUse()) withoutParent.push_back(*doc);
    }
    list.RemoveAllItems();
}

// What is below a patient goes with it; documents that are below none have to be looked after one by one.
void TDicomDirectory::ClearLists() {
    ForgetIndexes();
    LeaveFalseParents();
    HeldDocs withoutParent;
    ClearList(fStudyDocs, withoutParent);
    ClearList(fSeriesDocs, withoutParent);
    ClearList(fImageDocs, withoutParent);
    // Raw data keep the list's count, and so live on until the directory goes: hosts hold on to raw data
    // across a refresh without counting them.
    fRetiredDocs.insert(fRetiredDocs.end(), fRawDataDocs.begin(), fRawDataDocs.end());
    fRawDataDocs.RemoveAllItems();
    ClearList(fSRDocs, withoutParent);
    HeldDocs patients(fPatientDocs.rbegin(), fPatientDocs.rend());
    fPatientDocs.RemoveAllItems();
    Drop(patients);
    for (TDicomDoc* doc : withoutParent) delete doc;
    Drop(fOtherRootDocs);
    Drop(fPlacelessDocs);
}

// Gives the counts back and destroys what nobody else holds.
void TDicomDirectory::Drop(HeldDocs& docs) {
    for (TDicomDoc* doc : std::exchange(docs, {})) {
        doc->Release();
        DestroyUnlessHeld(doc);
    }
}

void TDicomDirectory::ClearAllDocs() {
    LeaveFalseParents();
    for (TDicomDoc* patient : HeldDocs(fPatientDocs.rbegin(), fPatientDocs.rend())) {
        RemoveDoc(patient);
        DestroyUnlessHeld(patient);
    }
}

void TDicomDirectory::RemoveAllDocs() {
    for (TDicomDoc* patient : HeldDocs(fPatientDocs.rbegin(), fPatientDocs.rend())) {
        KeepDoc(patient);
        RemoveDoc(patient);
    }
    Drop(fOtherRootDocs);
}

// ---- Lists ----

template <typename Action>
void TDicomDirectory::WithListOf(int32_t docType, Action action) {
    switch (docType) {
        case TDicomDoc::kPatient:
            return action(fPatientDocs);
        case TDicomDoc::kStudy:
            return action(fStudyDocs);
        case TDicomDoc::kSeries:
            return action(fSeriesDocs);
        case TDicomDoc::kImage:
            return action(fImageDocs);
        case TDicomDoc::kRawData:
            return action(fRawDataDocs);
        case TDicomDoc::kSR:
            return action(fSRDocs);
        default:
            return;
    }
}

void TDicomDirectory::RegisterDoc(TDicomDoc* doc) {
    WithListOf(doc->GetDocType(), [this, doc]<typename T>(TListOf<T>& list) {
        if (list.HasItem(static_cast<T*>(doc))) return;
        list.InsertItemAt(list.kAtEnd, static_cast<T*>(doc));
        doc->Register();
        if (!Succeeds([&] { ForIndexesOf(doc->GetDocType(), [doc](DocIndex& index) { index.Add(doc); }); }))
            ForgetIndexes();
    });
}

void TDicomDirectory::RemoveDoc(TDicomDoc* doc) {
    ForIndexesOf(doc->GetDocType(), [doc](DocIndex& index) { index.Remove(doc); });
    WithListOf(doc->GetDocType(), [doc]<typename T>(TListOf<T>& list) {
        if (!list.HasItem(static_cast<T*>(doc))) return;
        list.RemoveItem(static_cast<T*>(doc));
        doc->Release();
    });
}

void TDicomDirectory::RemoveDocs(const TListOf<TDicomDoc>& docs) {
    const std::unordered_set<const TDicomDoc*> removed(docs.begin(), docs.end());
    for (const TDicomDoc* doc : removed) {
        ForIndexesOf(doc->GetDocType(), [doc](DocIndex& index) { index.Remove(doc); });
    }
    for (const int32_t docType : kListedTypes) {
        WithListOf(docType, [&removed]<typename T>(TListOf<T>& list) {
            list.RemoveItemsIf([&removed](T* doc) {
                if (removed.count(doc) == 0) return false;
                doc->Release();
                return true;
            });
        });
    }
    std::erase_if(fOtherRootDocs, [&removed](TDicomDoc* doc) {
        if (removed.count(doc) == 0) return false;
        doc->Release();
        return true;
    });
}

void TDicomDirectory::KeepDoc(TDicomDoc* doc) {
    doc->Register();
    fPlacelessDocs.push_back(doc);
}

TDicomDoc* TDicomDirectory::FindDoc(TDicomDoc* doc) {
    if (doc == nullptr) return nullptr;
    DocIndex& index = GetIndex();
    index.Update(doc);
    const auto isSame = [this, doc](TDicomDoc& member) {
        return member.GetDocType() == doc->GetDocType() && member.IsSameRecord(doc) && IsInTree(member);
    };
    const std::string identity = IdentityOf(*doc);
    TDicomDoc* const found = identity.empty() ? nullptr : index.Find(identity, isSame);
    if (found != nullptr) return found;
    return HasDoc(doc) && IsInTree(*doc) && doc->IsSameRecord(doc) ? doc : nullptr;
}

DocIndex& TDicomDirectory::GetIndex() {
    if (fIndex != nullptr) return *fIndex;
    auto index = std::make_unique<DocIndex>(IdentityOf);
    for (const int32_t docType : kListedTypes) {
        WithListOf(docType, [&index](const auto& list) {
            for (TDicomDoc* doc : list) index->Add(doc);
        });
    }
    fIndex = std::move(index);
    return *fIndex;
}

void TDicomDirectory::NoteIdentity(TDicomDoc* doc) {
    ForIndexesOf(doc->GetDocType(), [doc](DocIndex& index) { index.Update(doc); });
}

template <typename Action>
void TDicomDirectory::ForIndexesOf(int32_t docType, Action action) {
    if (fIndex != nullptr) action(*fIndex);
    const auto& hostIndex = fHostIndexes[static_cast<size_t>(docType)];
    if (hostIndex != nullptr) action(*hostIndex);
}

void TDicomDirectory::ForgetIndexes() {
    fIndex.reset();
    for (auto& index : fHostIndexes) index.reset();
}

// ---- Documents as hosts name them ----

DocIndex& TDicomDirectory::GetHostIndex(int32_t docType) {
    std::unique_ptr<DocIndex>& kept = fHostIndexes[static_cast<size_t>(docType)];
    if (kept != nullptr) return *kept;
    auto index = std::make_unique<DocIndex>([](const TDicomDoc& doc) { return doc.GetHostKey(); });
    WithListOf(docType, [&index](const auto& list) {
        for (TDicomDoc* doc : list) index->Add(doc);
    });
    kept = std::move(index);
    return *kept;
}

template <typename T>
T* TDicomDirectory::FindByHostKey(const std::string& key) {
    const auto hasKey = [&](const TDicomDoc& doc) { return doc.GetHostKey() == key && IsInTree(doc); };
    return static_cast<T*>(GetHostIndex(T::kDocType).Find(key, hasKey));
}

TPatientDoc* TDicomDirectory::FindPatient(std::string_view name, std::string_view number) {
    return FindByHostKey<TPatientDoc>(TPatientDoc::MakeHostKey(name, number));
}

TStudyDoc* TDicomDirectory::FindStudy(std::string_view uid) {
    return FindByHostKey<TStudyDoc>(std::string(uid));
}

TSeriesDoc* TDicomDirectory::FindSeries(std::string_view uid) {
    return FindByHostKey<TSeriesDoc>(std::string(uid));
}

TImageDoc* TDicomDirectory::FindImage(std::string_view instanceUID) {
    return FindByHostKey<TImageDoc>(std::string(instanceUID));
}

TRawDataDoc* TDicomDirectory::FindRawData(std::string_view instanceUID) {
    return FindByHostKey<TRawDataDoc>(std::string(instanceUID));
}

TSR_Doc* TDicomDirectory::FindReport(std::string_view instanceUID) {
    return FindByHostKey<TSR_Doc>(std::string(instanceUID));
}

// False for what is left in a list after what it was below has been taken out or destroyed.
bool TDicomDirectory::IsInTree(const TDicomDoc& doc) {
    const TDicomDoc* top = &doc;
    while (top->GetParentObj() != nullptr) top = top->GetParentObj();
    return HasDoc(top) && !top->HasOutlivedParent();
}

bool TDicomDirectory::HasDoc(const TDicomDoc* doc) {
    bool hasDoc = false;
    WithListOf(doc->GetDocType(), [doc, &hasDoc]<typename T>(const TListOf<T>& list) {
        hasDoc = list.HasItem(static_cast<const T*>(doc));
    });
    return hasDoc;
}

TDicomDoc* TDicomDirectory::FindOrCreateDoc(TDicomDoc* doc, int32_t& error) {
    error = 0;
    if (TDicomDoc* const found = FindDoc(doc); doc == nullptr || found != nullptr) return found;
    TDicomDoc* const parent =
        doc->GetParentObj() == nullptr ? nullptr : FindOrCreateDoc(doc->GetParentObj(), error);
    TDicomDoc* const created = doc->CopyToDirectory(this, parent, false, error);
    if (created == nullptr) return nullptr;
    RegisterDoc(created);
    if (parent != nullptr && !parent->AddChild(created, nullptr, true, error)) created->LeaveParent();
    const bool isPlaceless =
        created->GetDocType() == TDicomDoc::kPrivate && created->GetParentObj() == nullptr;
    if (isPlaceless) KeepDoc(created);
    return created;
}

void TDicomDirectory::SortSeriesByNumber(TStudyDoc* study) {
    if (study == nullptr) return;
    TListOf<TSeriesDoc>& list = *study->GetSeriesDocs();
    std::vector<Numbered<TSeriesDoc>> docs;
    size_t sortFrom = 0;
    for (TSeriesDoc* series : list) {
        char text[kLongestSeriesNumber + 1];
        const bool hasNumber = series->GetSeriesNumber(text, sizeof(text));
        docs.push_back({hasNumber ? TTextUtil().ReadInteger(text).value_or(0) : 0, series});
        if (hasNumber) continue;
        // Not compared with anything, it stands between those in front and those behind.
        SortByNumber(docs.begin() + static_cast<std::ptrdiff_t>(sortFrom), docs.end() - 1);
        sortFrom = docs.size();
    }
    SortByNumber(docs.begin() + static_cast<std::ptrdiff_t>(sortFrom), docs.end());
    PutBack(list, docs);
}

void TDicomDirectory::SortImagesByNumber(TSeriesDoc* series) {
    if (series == nullptr) return;
    TListOf<TImageDoc>& list = *series->GetImageDocs();
    std::vector<Numbered<TImageDoc>> docs;
    for (TImageDoc* image : list) docs.push_back({image->GetImageNumber(), image});
    SortByNumber(docs.begin(), docs.end());
    PutBack(list, docs);
}

// ---- Files and folders ----

std::shared_ptr<const TFilePlaces> TDicomDirectory::GetFilePlaces() {
    GetPlaces();
    return fPlaces;
}

const MediaPlaces& TDicomDirectory::GetPlaces() {
    if (fPlaces == nullptr || fPlacesOf != fFileSpec.fPath) {
        fPlacesOf = fFileSpec.fPath;
        fPlaces = MakePlaces();
    }
    return *fPlaces;
}

std::shared_ptr<const MediaPlaces> TDicomDirectory::MakePlaces() {
    return std::make_shared<const MediaPlaces>(
        reinterpret_cast<uintptr_t>(this), fFileSpec,
        MediaPaths(Platform::PathStyle::OfPlatform(), fFileSpec.fPath, Platform::IsFolder(fFileSpec.fPath)));
}

const MediaPaths& TDicomDirectory::GetPaths() { return GetPlaces().GetPaths(); }

void TDicomDirectory::MakeFileSpec(std::string_view fileID, TFileSpec& fileSpec) {
    fileSpec = GetPlaces().Find(fileID);
}

void TDicomDirectory::MakeRelativeFileID(char* buffer, uint32_t& length, const TFileSpec& fileSpec) {
    length =
        TTextUtil().CopyCString(GetPaths().MakeFileID(fileSpec.fPath).c_str(), buffer, TFileSpec::kPathSize);
}

void TDicomDirectory::SetImageFolderName(const char* name) { MakeImageFolder(name, GetPaths()); }

void TDicomDirectory::MakeImageFolder(const char* name, const MediaPaths& paths) {
    TTextUtil().CopyCString(name, fImageFolderName, kImageFolderNameSize);
    const std::string path = paths.MakeImageFolderPath(fImageFolderName);
    if (!path.empty()) Platform::MakeFolderIfMissing(path);
}

std::string TDicomDirectory::MakeImageFolderPath() {
    return GetPaths().MakeImageFolderPath(fImageFolderName);
}

double TDicomDirectory::GetAvailableSpace() {
    const Platform::PathStyle& style = Platform::PathStyle::OfPlatform();
    std::string path = fFileSpec.fPath;
    // A folder may be a volume of its own.
    if (Platform::IsFolder(path)) path += style.GetSeparator();
    const std::string root = style.VolumeRoot(path);
    return static_cast<double>(Platform::GetFreeBytes(root)) / kBytesPerKilobyte;
}

bool TDicomDirectory::RegisterDicomFile(std::unique_ptr<TDicomFile> file) {
    if (file == nullptr) return false;
    if (file->GetFileSpec()->fStorage == nullptr) fNewFiles.emplace_back(file->GetFileSpec()->fPath);
    fRegisteredFiles.push_back(std::move(file));
    return true;
}

std::unique_ptr<TDicomFile> TDicomDirectory::TakeRegisteredFile(const char* sopClassUID,
                                                                const char* sopInstanceUID) {
    const auto isWanted = [&](const std::unique_ptr<TDicomFile>& file) {
        char classUID[kMaximumUidLength + 1] = {};
        char instanceUID[kMaximumUidLength + 1] = {};
        file->GetSOPClassUID(classUID);
        file->GetSOPInstanceUID(instanceUID);
        return TTextUtil().EqualStrings(instanceUID, sopInstanceUID) &&
               TTextUtil().EqualStrings(classUID, sopClassUID);
    };
    const auto found = std::find_if(fRegisteredFiles.begin(), fRegisteredFiles.end(), isWanted);
    if (found == fRegisteredFiles.end()) return nullptr;
    std::unique_ptr<TDicomFile> file = std::move(*found);
    fRegisteredFiles.erase(found);
    fImportedFiles.erase(file.get());
    return file;
}

// ---- Properties ----

void TDicomDirectory::GetExtraText(char* buffer) { buffer[0] = '\0'; }

int32_t TDicomDirectory::GetExtraInfo(char* buffer) {
    buffer[0] = '\0';
    return fDirectoryType;
}

void TDicomDirectory::GetDirName(char* buffer, uint32_t size) const {
    TTextUtil().CopyCString(fDirectoryName, buffer, size);
}

// Where the records are in the data set; 0 when there are none.
int32_t TDicomDirectory::FindRecordSequence() const {
    int32_t offset = 0;
    fDataSet->FindElement(Tags::kDirectoryRecordSequence, nullptr, nullptr, nullptr, 0, &offset);
    return offset;
}

void TDicomDirectory::SetDirName(const char* text) {
    TTextUtil().CopyCString(text, fDirectoryName, kDirectoryNameSize);
    if (fDataSet == nullptr) return;
    const uint32_t length = TTextUtil().StringLength(text);
    const int32_t before = FindRecordSequence();
    fDataSet->PutElement(Tags::kFileSetID, Vr::kCS, length, text, length);
    // The offsets in the records are those of the file until it is written.
    fRecordShift += FindRecordSequence() - before;
}

void TDicomDirectory::GetVolumeName(char* buffer) const { std::memcpy(buffer, fVolumeName, kVolumeNameSize); }

void TDicomDirectory::SetVolumeName(const char* text) {
    TTextUtil().CopyCString(text, fVolumeName, kVolumeNameSize);
}

}  // namespace Vantor
