#include "records/TSeriesDoc.h"

#include <cstring>
#include <string>
#include <utility>

#include "platform/Ascii.h"
#include "records/TPatientDoc.h"
#include "records/TStudyDoc.h"

namespace Vantor {

namespace {

constexpr char kNoUID[] = "VANTxxxxUID";
constexpr char kHasUID[] = "UID ";  // in front of an identity, which an empty UID is as well
constexpr char kFirstSeriesNumber[] = "1";
constexpr char kLowResolutionFolder[] = "QMAG";

}  // namespace

TSeriesDoc::TSeriesDoc() : TParentDoc(kDocType) {}

TSeriesDoc::TSeriesDoc(const TDicomDataSet* record, TRecordDirectory* directory)
    : TParentDoc(kDocType, record, directory) {}

TSeriesDoc::TSeriesDoc(TStoredRecord record, TRecordDirectory* directory)
    : TParentDoc(kDocType, std::move(record), directory) {}

TSeriesDoc::~TSeriesDoc() = default;

std::unique_ptr<TDicomDoc> TSeriesDoc::MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) {
    return std::make_unique<TSeriesDoc>(record, directory);
}

TParentDoc::ChildLists TSeriesDoc::GetChildLists() { return {&fImages, &fReports, &fRawData, &fPrivateDocs}; }

bool TSeriesDoc::IsSameRecord(TDicomDoc* other) {
    if (other == this) return true;
    return other != nullptr && other->GetDocType() == kDocType &&
           HasSameText(*other, Tags::kSeriesInstanceUID);
}

std::string TSeriesDoc::GetIdentity() const {
    const auto uid = PeekText(Tags::kSeriesInstanceUID);
    return uid ? kHasUID + *uid : std::string();
}

void TSeriesDoc::CompleteRecord() {
    TParentDoc::CompleteRecord();
    if (Record() == nullptr) return;
    SetRecordType("SERIES");
    RequireElement(Tags::kModality, "No Modality Element");
    RequireElement(Tags::kSeriesInstanceUID, "No Series Instance UID");
    if (!HasElement(Tags::kSeriesNumber)) SetSeriesNumber(kFirstSeriesNumber);
    RequireElement(Tags::kSeriesNumber, "No Series Number");
}

// ---- Attributes ----

bool TSeriesDoc::GetSeriesUID(char* buffer, uint32_t size) const {
    return GetText(Tags::kSeriesInstanceUID, buffer, size);
}

bool TSeriesDoc::GetSeriesNumber(char* buffer, uint32_t size) const {
    return GetText(Tags::kSeriesNumber, buffer, size);
}

bool TSeriesDoc::GetModality(char* buffer, uint32_t size) const {
    return GetText(Tags::kModality, buffer, size);
}

bool TSeriesDoc::GetSeriesDesc(char* buffer, uint32_t size) const {
    return GetText(Tags::kSeriesDescription, buffer, size);
}

bool TSeriesDoc::GetManufacturerOrgID(char* buffer, uint32_t size) const {
    return GetSeriesUID(buffer, size);
}

void TSeriesDoc::SetSeriesUID(const char* uid) {
    SetText(Tags::kSeriesInstanceUID, Vr::kUI, uid == nullptr ? kNoUID : uid);
}

void TSeriesDoc::SetSeriesNumber(const char* text) { SetText(Tags::kSeriesNumber, Vr::kIS, text); }

void TSeriesDoc::SetModality(const char* text) { SetText(Tags::kModality, Vr::kCS, text); }

void TSeriesDoc::SetSeriesDesc(const char* text) { SetText(Tags::kSeriesDescription, Vr::kLO, text); }

// ---- Around it in the tree ----

TImageDoc* TSeriesDoc::GetFirstImage() {
    TImageDoc* first = nullptr;
    if (GetImageDocs()->GetCount() > 0) GetImageDocs()->FetchItemAt(1, first);
    return first;
}

TStudyDoc* TSeriesDoc::GetStudy() const {
    TDicomDoc* const parent = GetParentObj();
    return parent != nullptr && parent->GetDocType() == kStudy ? static_cast<TStudyDoc*>(parent) : nullptr;
}

TPatientDoc* TSeriesDoc::GetPatient() const {
    TStudyDoc* const study = GetStudy();
    TDicomDoc* const parent = study == nullptr ? nullptr : study->GetParentObj();
    return parent != nullptr && parent->GetDocType() == kPatient ? static_cast<TPatientDoc*>(parent)
                                                                 : nullptr;
}

bool TSeriesDoc::CheckSequoiaLoRes() {
    if (GetImageDocs()->GetCount() <= 1) return false;
    const std::string path = Platform::UpperCased(GetFirstImage()->GetFilePath());
    return path.find(kLowResolutionFolder) != std::string::npos;
}

// From the last report to the first, each overwriting the path of the one before: hosts expect the first.
bool TSeriesDoc::HasQuantix4Report(char* pathOut) {
    bool hasReport = false;
    const TListOf<TSR_Doc>& reports = *GetSR_Docs();
    for (auto report = reports.rbegin(); report != reports.rend(); ++report) {
        if (!(*report)->IsQuantixReport()) continue;
        hasReport = true;
        const TFileSpec& fileSpec = *(*report)->GetSRFile()->GetFileSpec();
        if (pathOut != nullptr) std::memcpy(pathOut, fileSpec.fPath, sizeof(fileSpec.fPath));
    }
    return hasReport;
}

}  // namespace Vantor
