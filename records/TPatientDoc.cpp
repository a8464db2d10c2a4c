#include "records/TPatientDoc.h"

#include <algorithm>
#include <utility>

#include "platform/Ascii.h"
#include "records/TStudyDoc.h"

namespace Vantor {

namespace {

// In front of the texts of an identity: an empty text is not an absent one.
constexpr char kHasID[] = "ID ";
constexpr char kHasName[] = "\nName ";

// How many documents of a type are a number of levels below a document.
int32_t CountBelow(TDicomDoc& doc, int32_t docType) {
    TListOf<TDicomDoc> children;
    doc.GetChildDocs(children, true);
    int32_t count = 0;
    for (TDicomDoc* child : children) {
        if (child->GetDocType() == docType) ++count;
        // The types from patient to image are numbered from the top down.
        if (child->GetDocType() == doc.GetDocType() + 1 && child->GetDocType() < docType) {
            count += CountBelow(*child, docType);
        }
    }
    return count;
}

}  // namespace

TPatientDoc::TPatientDoc() : TParentDoc(kDocType) {}

TPatientDoc::TPatientDoc(const TDicomDataSet* record, TRecordDirectory* directory)
    : TParentDoc(kDocType, record, directory) {}

TPatientDoc::TPatientDoc(TStoredRecord record, TRecordDirectory* directory)
    : TParentDoc(kDocType, std::move(record), directory) {}

TPatientDoc::~TPatientDoc() = default;

std::unique_ptr<TDicomDoc> TPatientDoc::MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) {
    return std::make_unique<TPatientDoc>(record, directory);
}

TParentDoc::ChildLists TPatientDoc::GetChildLists() { return {&fStudies, &fPrivateDocs}; }

bool TPatientDoc::IsSameRecord(TDicomDoc* other) {
    if (other == nullptr || other->GetDocType() != kDocType) return false;
    const auto& patient = static_cast<const TPatientDoc&>(*other);
    if (!HasSameText(patient, Tags::kPatientID)) return false;
    const bool hasNoName = !HasElement(Tags::kPatientName) && !patient.HasElement(Tags::kPatientName);
    return hasNoName || HasSameText(patient, Tags::kPatientName);
}

void TPatientDoc::RemoveChild(TDicomDoc* child) {
    TRecordDirectory* const directory = GetDirectory();
    const bool isStudy = child != nullptr && child->GetDirectory() == directory && fStudies.Has(child);
    if (isStudy && directory != nullptr && directory->GetDirectoryType() == TRecordDirectory::kExamLayout) {
        RemoveCompanion(child->GetCompanionDoc(), *directory);
    }
    TParentDoc::RemoveChild(child);
}

// The companion may be gone by now: it is looked for, and looked at only when it is found.
void TPatientDoc::RemoveCompanion(const TDicomDoc* companion, TRecordDirectory& directory) {
    const TListOf<TPrivateDoc>& docs = *GetPrivateDocs();
    const auto found = std::find(docs.begin(), docs.end(), companion);
    if (found == docs.end()) return;
    directory.KeepDoc(*found);
    TParentDoc::RemoveChild(*found);
}

std::string TPatientDoc::GetIdentity() const {
    const auto patientID = PeekText(Tags::kPatientID);
    if (!patientID) return {};
    const auto name = PeekText(Tags::kPatientName);
    return kHasID + *patientID + (name ? kHasName + *name : std::string());
}

std::string TPatientDoc::GetHostKey() const {
    return MakeHostKey(PeekHostText(Tags::kPatientName), PeekHostText(Tags::kPatientID));
}

std::string TPatientDoc::MakeHostKey(std::string_view name, std::string_view number) {
    std::string_view key = Platform::Trimmed(name);
    while (key.ends_with('^')) key.remove_suffix(1);
    return kHasID + std::string(Platform::Trimmed(number)) + kHasName + std::string(key);
}

void TPatientDoc::CompleteRecord() {
    TParentDoc::CompleteRecord();
    if (Record() == nullptr) return;
    SetRecordType("PATIENT ");
    RequireElement(Tags::kPatientID, "No Patient ID");
}

bool TPatientDoc::GetPatientNumber(char* buffer, uint32_t size) const {
    return GetText(Tags::kPatientID, buffer, size);
}

bool TPatientDoc::GetPatientName(char* buffer, uint32_t size) const {
    return GetText(Tags::kPatientName, buffer, size);
}

void TPatientDoc::SetPatientNumber(const char* text) { SetText(Tags::kPatientID, Vr::kLO, text); }

void TPatientDoc::SetPatientName(const char* text) { SetText(Tags::kPatientName, Vr::kPN, text); }

int32_t TPatientDoc::GetStudyCount() { return CountBelow(*this, kStudy); }

int32_t TPatientDoc::GetSeriesCount() { return CountBelow(*this, kSeries); }

int32_t TPatientDoc::GetImageCount() { return CountBelow(*this, kImage); }

}  // namespace Vantor
