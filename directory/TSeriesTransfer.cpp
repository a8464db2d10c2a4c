#include "directory/TSeriesTransfer.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <string>
#include <utility>

#include "dicom/Attempt.h"
#include "dicom/TException.h"
#include "dicom/TSRFile.h"
#include "dicom/TTextUtil.h"
#include "directory/TDicomDirectory.h"
#include "platform/Clock.h"
#include "platform/FileException.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"
#include "records/TPatientDoc.h"
#include "records/TSeriesDoc.h"
#include "records/TStudyDoc.h"

namespace Vantor {

namespace {

constexpr int64_t kKilobyte = 1024;
constexpr uint32_t kLongestText = 256;

constexpr int kMoveTries = 6;
constexpr std::chrono::milliseconds kRestBetweenTries(1000);

constexpr char kNotOpened[] = "Can not open DICOMDIR for updating.";

int32_t KindOf(const TDicomFile& file) {
    const auto* const report = dynamic_cast<const TSRFile*>(&file);
    return report == nullptr ? 0 : report->GetKind();
}

bool HasStudyID(const TStudyDoc& study) {
    char studyID[kLongestText + 1];
    return study.GetStudyID(studyID, sizeof(studyID)) && studyID[0] != '\0';
}

// The studies that a document's files may belong to, from the last to the first.
std::vector<TStudyDoc*> StudiesOf(TDicomDoc& doc) {
    switch (doc.GetDocType()) {
        case TDicomDoc::kPatient: {
            const TListOf<TStudyDoc>& studies = *static_cast<TPatientDoc&>(doc).GetStudyDocs();
            return {studies.rbegin(), studies.rend()};
        }
        case TDicomDoc::kStudy:
            return {static_cast<TStudyDoc*>(&doc)};
        case TDicomDoc::kSeries: {
            TStudyDoc* const study = static_cast<TSeriesDoc&>(doc).GetStudy();
            return study == nullptr ? std::vector<TStudyDoc*>() : std::vector<TStudyDoc*>{study};
        }
        default:
            return {};
    }
}

bool HasUID(const TStudyDoc& study, const char* uid) {
    char studyUID[kLongestText + 1];
    return study.GetStudyUID(studyUID, sizeof(studyUID)) && TTextUtil().EqualStrings(studyUID, uid);
}

std::vector<uint8_t> AllocateBuffer(uint32_t size) {
    try {
        return std::vector<uint8_t>(size);
    } catch (const std::bad_alloc&) {
        throw new TException(ErrorNumbers::kDataSetMemory, "Can not allocate transfer memory");
    }
}

}  // namespace

TSeriesTransfer::TSeriesTransfer(TDicomDirectory& destination, uint32_t bufferSize)
    : fDestination(destination), fBuffer(AllocateBuffer(bufferSize)) {}

TSeriesTransfer::~TSeriesTransfer() { Reset(); }

void TSeriesTransfer::SetDoc(TDicomDoc* doc) {
    Reset();
    fDoc = doc;
    fLastStudyUID.Clear();
    if (doc != nullptr) Collect(*doc);
}

// Each document in front of those below it.
void TSeriesTransfer::Collect(TDicomDoc& doc) {
    fDocs.push_back(&doc);
    doc.Register();
    if (doc.GetDicomFile() != nullptr) fFiled.push_back(&doc);
    TListOf<TDicomDoc> children;
    doc.GetChildDocs(children, true);
    for (TDicomDoc* child : children) Collect(*child);
}

void TSeriesTransfer::Reset() {
    CloseFiles();
    fFiled.clear();
    while (!fDocs.empty()) {
        TDicomDoc* const doc = fDocs.back();
        fDocs.pop_back();
        doc->Release();
        if (!doc->IsInUse()) delete doc;
    }
    fDoc = nullptr;
    fState = State::kStart;
}

void TSeriesTransfer::CloseFiles() {
    if (fSource != nullptr) fSource->CloseFile();
    if (fCopy != nullptr) fCopy->CloseFile();
}

bool TSeriesTransfer::Step(int32_t timeBudget, int32_t& doneKB, int32_t& totalKB, char* message) {
    if (fDoc == nullptr) return false;
    switch (fState) {
        case State::kStart:
            Start(doneKB, totalKB);
            return false;
        case State::kOpenFile:
            OpenNextFile();
            return false;
        case State::kCopying:
            Copy(timeBudget, doneKB);
            return false;
        default:
            Finish(message);
            return true;
    }
}

void TSeriesTransfer::Start(int32_t& doneKB, int32_t& totalKB) {
    if (fFiled.empty()) {
        fState = State::kFinish;
        return;
    }
    totalKB = fDoc->GetDiskSpace();
    doneKB = 0;
    fFileIndex = 0;
    fState = State::kOpenFile;
}

// ---- One file ----

void TSeriesTransfer::OpenNextFile() {
    if (FiledDoc().GetDicomFile() == nullptr) return GoOn();  // it has been taken away
    Succeeds([this] { RepairStudyID(); });
    char fileID[TFileSpec::kPathSize];
    uint32_t length = 0;
    fDestination.MakeNextFileName(fileID, length, KindOf(*FiledDoc().GetDicomFile()));
    TFileSpec fileSpec;
    fDestination.MakeFileSpec({fileID, length}, fileSpec);
    if (!OpenSource()) return GoOn();
    fFileSize = fSource->GetFileSize();
    try {
        CreateCopy(fileSpec);
    } catch (...) {
        CloseFiles();
        throw;
    }
    fBytesCopied = 0;
    fState = State::kCopying;
}

bool TSeriesTransfer::OpenSource() {
    fSource = std::make_unique<TDicomFile>(0, *FiledDoc().GetDicomFile()->GetFileSpec(), 0);
    return Succeeds([this] { fSource->OpenFile(Platform::FileAccess::kRead); });
}

// A record without Study ID is given that of the first file that has one. Files are only looked into while
// there is such a study.
void TSeriesTransfer::RepairStudyID() {
    const std::vector<TStudyDoc*> studies = StudiesOf(*fDoc);
    const bool areComplete = std::all_of(studies.begin(), studies.end(),
                                         [](const TStudyDoc* study) { return HasStudyID(*study); });
    const TDicomDataSet* const elements = areComplete ? nullptr : FiledDoc().GetDicomFile()->GetDataSet();
    char uid[kLongestText + 1];
    char studyID[kLongestText + 1];
    if (elements == nullptr || !elements->GetText(Tags::kStudyInstanceUID, uid, sizeof(uid)) ||
        !elements->GetText(Tags::kStudyID, studyID, sizeof(studyID)) || uid[0] == '\0' ||
        studyID[0] == '\0' || TTextUtil().EqualStrings(uid, fLastStudyUID.fText)) {
        return;
    }
    fLastStudyUID.Set(uid);
    const bool isOneOfMany = fDoc->GetDocType() == TDicomDoc::kPatient;
    const auto study = std::find_if(studies.begin(), studies.end(), [&](const TStudyDoc* candidate) {
        return !isOneOfMany || HasUID(*candidate, uid);
    });
    if (study == studies.end() || HasStudyID(**study)) return;
    (*study)->SetStudyID(studyID);
    (*study)->SetModified(true);
}

void TSeriesTransfer::CreateCopy(const TFileSpec& fileSpec) {
    const Platform::PathStyle& style = Platform::PathStyle::OfPlatform();
    std::string folder(style.FolderPart(fileSpec.fPath));
    if (!folder.empty()) folder.pop_back();
    if (!fDestination.GetFilePlaces()->MayBeWritten(fileSpec)) {
        throw new TException(ErrorNumbers::kRecordStructure, "The image folder leads elsewhere.");
    }
    const bool isOnDisk = fileSpec.fStorage == nullptr && !folder.empty();
    if (isOnDisk) Platform::MakeFolderIfMissing(folder);
    TDicomFile& file = *FiledDoc().GetDicomFile();
    fCopy = std::make_unique<TDicomFile>(reinterpret_cast<uintptr_t>(&fDestination), fileSpec, 0,
                                         file.GetFirstValue(), file.GetSecondValue());
    TUidText uid;
    if (file.GetSOPClassUID(uid.fText)) fCopy->SetSOPClassUID(uid.fText);
    if (file.GetSOPInstanceUID(uid.fText)) fCopy->SetSOPInstanceUID(uid.fText);
    fCopy->CreateEmptyFile(file.IsExplicit(), file.IsBigEndian());
    fCopy->OpenFile(Platform::FileAccess::kReadWrite);
}

void TSeriesTransfer::Copy(int32_t timeBudget, int32_t& doneKB) {
    Platform::Clock& clock = Platform::Clock::Current();
    const auto start = clock.Now();
    do {
        CopyChunk(doneKB);
    } while (fState == State::kCopying && clock.Now() - start < std::chrono::milliseconds(timeBudget));
}

// After a failure of the destination the file is copied anew.
template <typename Operation>
void TSeriesTransfer::OnCopy(Operation operation) {
    try {
        operation();
    } catch (...) {
        CloseFiles();
        fState = State::kOpenFile;
        throw;
    }
}

void TSeriesTransfer::CopyChunk(int32_t& doneKB) {
    const auto count =
        static_cast<size_t>(std::min(fFileSize - fBytesCopied, static_cast<int64_t>(fBuffer.size())));
    const bool isRead = Succeeds([this, count] {
        if (fSource->ReadNext(fBuffer.data(), count) == count) return;
        throw Platform::FileException(Platform::FileException::Cause::kEndOfFile, 0,
                                      fSource->GetFileSpec()->fPath);
    });
    if (!isRead) {
        CloseFiles();
        return GoOn();
    }
    OnCopy([this, count] { fCopy->WriteNext(fBuffer.data(), count); });
    fBytesCopied += static_cast<int64_t>(count);
    doneKB += static_cast<int32_t>(static_cast<int64_t>(count) / kKilobyte);
    if (fBytesCopied == fFileSize) EndFile();
}

void TSeriesTransfer::EndFile() {
    const bool replacesSource = HoldsInstance();
    // The old content goes away, so the new one has to be on the medium by then.
    OnCopy([&] { replacesSource ? fCopy->Flush() : fCopy->StartFlush(); });
    CloseFiles();
    if (replacesSource) {
        MoveOntoSource();
    } else {
        fDestination.RegisterImportedFile(std::move(fCopy));
    }
    GoOn();
}

// To the next file, or to the end.
void TSeriesTransfer::GoOn() {
    fSource.reset();
    fCopy.reset();
    ++fFileIndex;
    fState = fFileIndex == fFiled.size() ? State::kFinish : State::kOpenFile;
}

// True when the directory has a record of the file already, which then goes on naming the file that it names.
bool TSeriesTransfer::HoldsInstance() {
    const bool isHere = fDoc->GetDirectory() == &fDestination && fDestination.FindDoc(fDoc) != nullptr;
    return isHere || fDestination.FindDoc(&FiledDoc()) != nullptr;
}

// A file that cannot be replaced stays what it was, and so does one that is not of the medium that names it;
// its copy, which no record names, goes.
void TSeriesTransfer::MoveOntoSource() {
    const bool isMoved = FiledDoc().OwnsFile() && HasMoved();
    if (!isMoved) fCopy->DeleteDiskFile();
}

// A file that others are just looking at is free again in a moment.
bool TSeriesTransfer::HasMoved() {
    const auto move = [this] {
        Platform::MoveFileReplacing(fCopy->GetFileSpec()->fPath, fSource->GetFileSpec()->fPath);
    };
    for (int tries = 1; !Succeeds(move); ++tries) {
        if (tries == kMoveTries) return false;
        Platform::Clock::Current().Sleep(kRestBetweenTries);
    }
    return true;
}

// ---- The records ----

void TSeriesTransfer::Finish(char* message) {
    const bool isOpen = fDestination.OpenForUpdating();
    if (!isOpen) TTextUtil().CopyCString(kNotOpened, message, TDicomDirectory::kMessageSize);
    int32_t stop = 0;
    TDicomDoc* const imported = fDestination.FindOrCreateDoc(fDoc, stop);
    // What is of this directory is all here, in the document itself or, if another program has changed the
    // DICOMDIR, in its successor.
    const bool isForeign = fDoc->GetDirectory() != &fDestination;
    if (isOpen && isForeign && imported != nullptr && stop == 0) AddMissingDocs(*fDoc, *imported, stop);
    fDestination.AfterTransfer(imported, fDoc);
    fState = State::kStart;
}

void TSeriesTransfer::AddMissingDocs(TDicomDoc& source, TDicomDoc& target, int32_t& stop) {
    TListOf<TDicomDoc> children;
    source.GetChildDocs(children, true);
    for (TDicomDoc* child : children) {
        if (stop != 0) return;
        TDicomDoc* here = fDestination.FindDoc(child);
        if (here == nullptr) here = AddCopy(*child, target, stop);
        if (here != nullptr) AddMissingDocs(*child, *here, stop);
    }
}

// Without what is below the document, of which the directory may know some. Null when the target does not
// take it.
TDicomDoc* TSeriesTransfer::AddCopy(TDicomDoc& source, TDicomDoc& target, int32_t& stop) {
    TDicomDoc* const copy = source.CopyToDirectory(&fDestination, &target, false, stop);
    if (copy == nullptr || target.AddChild(copy, nullptr, true, stop)) return copy;
    if (copy != &source) copy->Discard();
    return nullptr;
}

}  // namespace Vantor
