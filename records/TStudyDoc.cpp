#include "records/TStudyDoc.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>
#include <utility>

#include "dicom/TTextUtil.h"
#include "dicom/TVRUtil.h"
#include "platform/Clock.h"
#include "records/TPatientDoc.h"
#include "records/TSeriesDoc.h"

namespace Vantor {

namespace {

constexpr char kNoUID[] = "VANT.ERROR.UID";
constexpr char kHasUID[] = "UID ";  // in front of an identity, which an empty UID is as well
constexpr char kNoTimeStudyID[] = "1";
constexpr int kYearsOfACentury = 100;
constexpr size_t kStudyIDSize = 32;

constexpr std::string_view kUnknownModality = "UK";
constexpr std::string_view kReportModality = "SR";
constexpr size_t kModalityKeyLength = 2;
constexpr uint32_t kLongestModality = 8;

constexpr uint32_t kLongestDate = 10;
constexpr uint32_t kLongestTime = 16;

}  // namespace

std::string TStudyDoc::MakeStudyID() {
    const auto now = Platform::Clock::Current().GetLocalTime();
    if (!now) return kNoTimeStudyID;
    char text[kStudyIDSize];
    std::snprintf(text, sizeof(text), "%02d%02d%02d.%02d%02d%02d%03d", now->fYear % kYearsOfACentury,
                  now->fMonth, now->fDay, now->fHour, now->fMinute, now->fSecond, now->fMillisecond);
    return text;
}

TStudyDoc::TStudyDoc() : TParentDoc(kDocType) {}

TStudyDoc::TStudyDoc(const TDicomDataSet* record, TRecordDirectory* directory)
    : TParentDoc(kDocType, record, directory) {}

TStudyDoc::TStudyDoc(TStoredRecord record, TRecordDirectory* directory)
    : TParentDoc(kDocType, std::move(record), directory) {}

TStudyDoc::~TStudyDoc() = default;

std::unique_ptr<TDicomDoc> TStudyDoc::MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) {
    return std::make_unique<TStudyDoc>(record, directory);
}

TParentDoc::ChildLists TStudyDoc::GetChildLists() { return {&fSeries, &fPrivateDocs}; }

bool TStudyDoc::IsSameRecord(TDicomDoc* other) {
    if (other == this) return true;
    return other != nullptr && other->GetDocType() == kDocType &&
           HasSameText(*other, Tags::kStudyInstanceUID);
}

std::string TStudyDoc::GetIdentity() const {
    const auto uid = PeekText(Tags::kStudyInstanceUID);
    return uid ? kHasUID + *uid : std::string();
}

void TStudyDoc::CompleteRecord() {
    TParentDoc::CompleteRecord();
    if (Record() == nullptr) return;
    SetRecordType("STUDY ");
    RequireElement(Tags::kStudyDate, "No Study Date");
    RequireElement(Tags::kStudyTime, "No Study Time");
    char studyID[kLongestText + 1];
    if (!GetStudyID(studyID, sizeof(studyID)) || studyID[0] == '\0') SetStudyID(MakeStudyID().c_str());
}

// ---- Attributes ----

bool TStudyDoc::GetStudyUID(char* buffer, uint32_t size) const {
    return GetText(Tags::kStudyInstanceUID, buffer, size);
}

bool TStudyDoc::GetStudyID(char* buffer, uint32_t size) const {
    return GetText(Tags::kStudyID, buffer, size);
}

bool TStudyDoc::GetStudyName(char* buffer, uint32_t size) const {
    return GetText(Tags::kStudyDescription, buffer, size);
}

bool TStudyDoc::GetAccessionNum(char* buffer, uint32_t size) const {
    return GetText(Tags::kAccessionNumber, buffer, size);
}

bool TStudyDoc::GetReferringPhysician(char* buffer, uint32_t size) const {
    return GetText(Tags::kReferringPhysicianName, buffer, size);
}

bool TStudyDoc::GetStudyDate(char* buffer, uint32_t size, int32_t format) const {
    char date[kLongestDate + 1];
    if (!GetText(Tags::kStudyDate, date, sizeof(date))) {
        if (size > 0) buffer[0] = '\0';
        return false;
    }
    if (date[0] != '\0') TVRUtil().DicomDateToCString(date, buffer, size, format);
    return true;
}

bool TStudyDoc::GetStudyTime(char* buffer, uint32_t size) const {
    char time[kLongestTime + 1];
    if (!GetText(Tags::kStudyTime, time, sizeof(time))) {
        if (size > 0) buffer[0] = '\0';
        return false;
    }
    if (time[0] != '\0') TVRUtil().DicomTimeToCString(time, buffer, size);
    return true;
}

void TStudyDoc::SetStudyUID(const char* uid) {
    SetText(Tags::kStudyInstanceUID, Vr::kUI, uid == nullptr ? kNoUID : uid);
}

void TStudyDoc::SetStudyDate(const char* text) { SetText(Tags::kStudyDate, Vr::kDA, text); }

void TStudyDoc::SetStudyTime(const char* text) { SetText(Tags::kStudyTime, Vr::kTM, text); }

void TStudyDoc::SetStudyID(const char* text) { SetText(Tags::kStudyID, Vr::kSH, text); }

void TStudyDoc::SetStudyName(const char* text) { SetText(Tags::kStudyDescription, Vr::kLO, text); }

void TStudyDoc::SetAccessionNum(const char* text) { SetText(Tags::kAccessionNumber, Vr::kSH, text); }

void TStudyDoc::SetReferringPhysician(const char* text) {
    SetText(Tags::kReferringPhysicianName, Vr::kSH, text);
}

bool TStudyDoc::GetPatientName(char* buffer, uint32_t size) const {
    const TDicomDoc* const parent = GetParentObj();
    return parent != nullptr && parent->GetDocType() == kPatient &&
           static_cast<const TPatientDoc*>(parent)->GetPatientName(buffer, size);
}

bool TStudyDoc::GetPatientNumber(char* buffer, uint32_t size) const {
    const TDicomDoc* const parent = GetParentObj();
    return parent != nullptr && parent->GetDocType() == kPatient &&
           static_cast<const TPatientDoc*>(parent)->GetPatientNumber(buffer, size);
}

// ---- Series ----

TSeriesDoc* TStudyDoc::GetFirstSeries() {
    TSeriesDoc* first = nullptr;
    if (GetSeriesDocs()->GetCount() > 0) GetSeriesDocs()->FetchItemAt(1, first);
    return first;
}

// Gathers modalities in a caller's buffer, which starts with the unknown one until there is another.
class TStudyDoc::ModalityText {
  public:
    ModalityText(char* buffer, uint32_t size) : fBuffer(buffer), fSize(size) {
        std::fill_n(buffer, size, '\0');
        if (kUnknownModality.size() < size) kUnknownModality.copy(buffer, kUnknownModality.size());
    }

    void Add(std::string_view modality) {
        const bool isKnown = HasAt(kModalityKeyLength, modality) || HasAt(2 * kModalityKeyLength, modality);
        if (isKnown || fPosition + modality.size() >= fSize) return;
        modality.copy(fBuffer + fPosition, modality.size());
        fPosition += modality.size();
    }

  private:
    // Only what stands two and four characters back is looked at, so a modality can come again later: hosts
    // have always shown it so.
    bool HasAt(size_t charactersBack, std::string_view modality) const {
        return fPosition >= charactersBack && modality.size() >= kModalityKeyLength &&
               modality.substr(0, kModalityKeyLength) ==
                   std::string_view(fBuffer + fPosition - charactersBack, kModalityKeyLength);
    }

    char* fBuffer;
    size_t fSize;
    size_t fPosition = 0;
};

bool TStudyDoc::GetStudyModality(char* buffer, uint32_t size) {
    ModalityText text(buffer, size);
    const TListOf<TSeriesDoc>& series = *GetSeriesDocs();
    if (series.GetCount() == 0) {
        std::fill_n(buffer, size, '\0');
        return false;
    }
    for (auto item = series.rbegin(); item != series.rend(); ++item) {
        char modality[kLongestModality + 1];
        if (!(*item)->GetModality(modality, sizeof(modality))) continue;
        if (modality != kUnknownModality && modality != kReportModality) text.Add(modality);
    }
    return true;
}

int32_t TStudyDoc::GetSeriesCount() {
    TListOf<TDicomDoc> children;
    GetChildDocs(children, true);
    return children.GetCount();
}

int32_t TStudyDoc::GetImageCount() {
    int32_t count = 0;
    for (TSeriesDoc* series : *GetSeriesDocs()) count += series->GetImageDocs()->GetCount();
    return count;
}

// ---- Reports ----

int32_t TStudyDoc::GetSRCount() {
    CountReports();
    return fSRCount;
}

int32_t TStudyDoc::GetQuantixSRCount() {
    CountReports();
    return fQuantixSRCount;
}

bool TStudyDoc::HasQuantixSR() {
    CountReports();
    return fHasQuantixSR;
}

void TStudyDoc::CountReports() {
    if (fHasCountedReports) return;
    fHasCountedReports = true;
    for (TSeriesDoc* series : *GetSeriesDocs()) {
        const TListOf<TSR_Doc>& reports = *series->GetSR_Docs();
        fSRCount += reports.GetCount();
        fQuantixSRCount += static_cast<int32_t>(std::count_if(
            reports.begin(), reports.end(), [](TSR_Doc* report) { return report->IsQuantixReport(); }));
    }
    fHasQuantixSR = fQuantixSRCount > 0;
}

}  // namespace Vantor
