#include "wrappers/SeriesDirRec.h"

#include "records/TPatientDoc.h"
#include "records/TSeriesDoc.h"
#include "records/TStudyDoc.h"
#include "wrappers/ImageDirRec.h"
#include "wrappers/NativeText.h"
#include "wrappers/PatientDirRec.h"
#include "wrappers/PrivateDirRec.h"
#include "wrappers/RawDataDirRec.h"
#include "wrappers/RecordChange.h"
#include "wrappers/RecordLists.h"
#include "wrappers/StructReportDirRec.h"
#include "wrappers/StudyDirRec.h"

namespace VantorWrappers {

using Vantor::TFileSpec;
using Vantor::TPatientDoc;
using Vantor::TSeriesDoc;
using Vantor::TStudyDoc;

namespace {

constexpr char kNoSeries[] = "No pointer to unmanaged series object, initialization can't be completed";
constexpr char kNoStudy[] = "No pointer to unmanaged study object, initialization can't be completed";

}  // namespace

SeriesDirRec::SeriesDirRec(TSeriesDoc* series, DicomDirectory& directory) : DirRec(directory) {
    if (series == nullptr) {
        TraceWarning(kNoSeries);
        return;
    }
    TakeStudy(*series);
    fModality = ReadText(*series, &TSeriesDoc::GetModality, kTextSize);
    fSeriesUID = ReadText(*series, &TSeriesDoc::GetSeriesUID, kTextSize);
    fSeriesNumber = ReadText(*series, &TSeriesDoc::GetSeriesNumber, kTextSize);
    fSeriesDescription = ReadText(*series, &TSeriesDoc::GetSeriesDesc, kTextSize);
    fManufacturerOrgID = ReadText(*series, &TSeriesDoc::GetManufacturerOrgID, kTextSize);
    fNumberSRs = series->GetSR_Docs()->GetCount();
    fNumberDicomObjects =
        series->GetImageDocs()->GetCount() + fNumberSRs + series->GetPrivateDocs()->GetCount();
    fSequoiaLoRes = series->CheckSequoiaLoRes();
}

void SeriesDirRec::TakeStudy(const TSeriesDoc& series) {
    const TStudyDoc* const study = series.GetStudy();
    if (study == nullptr) return TraceWarning(kNoStudy);
    fStudyDescription = ReadText(*study, &TStudyDoc::GetStudyName, kTextSize);
    fStudyDate = ShortDateOf(ReadStoredDate(*study));
    fStudyTime = ReadStudyTime(*study);
    fPatientName = VantorHost::PatientName(ReadText(*study, &TStudyDoc::GetPatientName, kNameSize));
    fReferringPhysician =
        VantorHost::PatientName(ReadUntrimmed(*study, &TStudyDoc::GetReferringPhysician, kTextSize));
    fPatientNumber = ReadText(*study, &TStudyDoc::GetPatientNumber, kNameSize);
}

TSeriesDoc* SeriesDirRec::FindDoc() const {
    DicomDirectory* const directory = GetDicomDirectory();
    return directory == nullptr ? nullptr : directory->GetUmSeries(fSeriesUID);
}

// ---- What is below and above ----

void SeriesDirRec::GetImages(std::vector<ImageDirRec>& list) const {
    list.clear();
    TSeriesDoc* const series = FindDoc();
    if (series == nullptr) return;
    // Of a large loop collection most of the time would go into looking up the same patient.
    const InstanceDirRec::Ancestors ancestors(series);
    FillListWith(list, *series->GetImageDocs(),
                 [&](std::vector<ImageDirRec>& filled, Vantor::TImageDoc* image) {
                     filled.emplace_back(*image, *GetDicomDirectory(), ancestors);
                 });
}

void SeriesDirRec::GetSRs(std::vector<StructReportDirRec>& list) const {
    list.clear();
    if (TSeriesDoc* const series = FindDoc(); series != nullptr) {
        FillList(list, *series->GetSR_Docs(), *GetDicomDirectory());
    }
}

void SeriesDirRec::GetRawDataObjects(std::vector<RawDataDirRec>& list) const {
    list.clear();
    if (TSeriesDoc* const series = FindDoc(); series != nullptr) {
        FillList(list, *series->GetRawDataDocs(), *GetDicomDirectory());
    }
}

void SeriesDirRec::GetPrivateDicom(std::vector<PrivateDirRec>& list) const {
    list.clear();
    if (TSeriesDoc* const series = FindDoc(); series != nullptr) {
        FillList(list, *series->GetPrivateDocs(), *GetDicomDirectory());
    }
}

bool SeriesDirRec::GetPatientDirRec(PatientDirRec& patient) const {
    const TSeriesDoc* const series = FindDoc();
    TPatientDoc* const doc = series == nullptr ? nullptr : series->GetPatient();
    return doc != nullptr && !FailureOf([&] { patient = PatientDirRec(doc, *GetDicomDirectory()); });
}

bool SeriesDirRec::GetStudyDirRec(StudyDirRec& study) const {
    const TSeriesDoc* const series = FindDoc();
    TStudyDoc* const doc = series == nullptr ? nullptr : series->GetStudy();
    return doc != nullptr && !FailureOf([&] { study = StudyDirRec(doc, *GetDicomDirectory()); });
}

bool SeriesDirRec::HasQuantixReport() {
    TSeriesDoc* const series = FindDoc();
    char path[TFileSpec::kPathSize] = {};
    if (series == nullptr || !series->HasQuantix4Report(path)) return false;
    fSRfilepath = Trimmed(Vantor::Platform::ToHostText(path));
    return true;
}

int32_t SeriesDirRec::GetDiskSpace() const {
    TSeriesDoc* const series = FindDoc();
    return series == nullptr ? 0 : series->GetDiskSpace();
}

// ---- Changes ----

void SeriesDirRec::SetSeriesUID(const HostString& uid) {
    const char* const warning = "Failed to find unmanaged Series Object, new Series UID not set.";
    const auto text = ChangeRecord(FindDoc(), warning, uid, &TSeriesDoc::SetSeriesUID);
    if (text) fSeriesUID = *text;
}

void SeriesDirRec::SetModality(const HostString& modality) {
    const char* const warning = "Failed to find unmanaged Series Object, new Modality not set.";
    const auto text = ChangeRecord(FindDoc(), warning, modality, &TSeriesDoc::SetModality);
    if (text) fModality = *text;
}

void SeriesDirRec::SetSeriesNumber(const HostString& number) {
    const char* const warning = "Failed to find unmanaged Series Object, new Series Number not set.";
    const auto text = ChangeRecord(FindDoc(), warning, number, &TSeriesDoc::SetSeriesNumber);
    if (text) fSeriesNumber = *text;
}

void SeriesDirRec::SetSeriesDescription(const HostString& description) {
    const char* const warning = "Failed to find unmanaged Series Object, new Series Description not set.";
    const auto text = ChangeRecord(FindDoc(), warning, description, &TSeriesDoc::SetSeriesDesc);
    if (text) fSeriesDescription = *text;
}

bool SeriesDirRec::Equals(const SeriesDirRec& other) const {
    return fSeriesUID == other.fSeriesUID && GetDicomDirectory() == other.GetDicomDirectory();
}

}  // namespace VantorWrappers
