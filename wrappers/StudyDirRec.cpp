#include "wrappers/StudyDirRec.h"

#include "records/TPatientDoc.h"
#include "records/TSeriesDoc.h"
#include "records/TStudyDoc.h"
#include "wrappers/NativeText.h"
#include "wrappers/PatientDirRec.h"
#include "wrappers/RecordChange.h"
#include "wrappers/RecordLists.h"

namespace VantorWrappers {

using Vantor::TPatientDoc;
using Vantor::TStudyDoc;

StudyDirRec::StudyDirRec(TStudyDoc* study, DicomDirectory& directory) : DirRec(directory) {
    if (study == nullptr) {
        TraceWarning(kNoNativeObject);
        return;
    }
    fPatientName = VantorHost::PatientName(ReadText(*study, &TStudyDoc::GetPatientName, kNameSize));
    fPatientNumber = ReadText(*study, &TStudyDoc::GetPatientNumber, kNameSize);
    fStudyDescription = ReadText(*study, &TStudyDoc::GetStudyName, kTextSize);
    fStoredStudyDate = ReadStoredDate(*study);
    fStudyDate = ShortDateOf(fStoredStudyDate);
    fStudyTime = ReadStudyTime(*study);
    fAccessionNumber = ReadText(*study, &TStudyDoc::GetAccessionNum, kTextSize);
    fReferringPhysician =
        VantorHost::PatientName(ReadUntrimmed(*study, &TStudyDoc::GetReferringPhysician, kTextSize));
    fModalities = ReadText(*study, &TStudyDoc::GetStudyModality, kTextSize);
    fStudyUID = ReadText(*study, &TStudyDoc::GetStudyUID, kTextSize);
    fStudyID = ReadText(*study, &TStudyDoc::GetStudyID, kTextSize);
    fImageCount = study->GetImageCount();
    fSeriesCount = study->GetSeriesCount();
    fStructuredReportCount = study->GetSRCount();
    fQuantixReportCount = study->GetQuantixSRCount();
}

TStudyDoc* StudyDirRec::FindDoc() const {
    DicomDirectory* const directory = GetDicomDirectory();
    return directory == nullptr ? nullptr : directory->GetUmStudy(fStudyUID);
}

void StudyDirRec::GetSeries(std::vector<SeriesDirRec>& list) const {
    list.clear();
    if (TStudyDoc* const study = FindDoc(); study != nullptr) {
        FillList(list, *study->GetSeriesDocs(), *GetDicomDirectory());
    }
}

bool StudyDirRec::GetPatientDirRec(PatientDirRec& patient) const {
    TStudyDoc* const study = FindDoc();
    auto* const doc = study == nullptr ? nullptr : dynamic_cast<TPatientDoc*>(study->GetParentObj());
    return doc != nullptr && !FailureOf([&] { patient = PatientDirRec(doc, *GetDicomDirectory()); });
}

void StudyDirRec::SetStudyDescription(const HostString& description) {
    const char* const warning = "Failed to find unmanaged Study Object, new Study Description not set.";
    const auto text = ChangeRecord(FindDoc(), warning, description, &TStudyDoc::SetStudyName);
    if (text) fStudyDescription = *text;
}

void StudyDirRec::SetStudyUID(const HostString& uid) {
    const char* const warning = "Failed to find unmanaged Study Object, new Study UID not set.";
    const auto text = ChangeRecord(FindDoc(), warning, uid, &TStudyDoc::SetStudyUID);
    if (text) fStudyUID = *text;
}

void StudyDirRec::SetStudyID(const HostString& id) {
    const char* const warning = "Failed to find unmanaged Study Object, new Study ID not set.";
    const auto text = ChangeRecord(FindDoc(), warning, id, &TStudyDoc::SetStudyID);
    if (text) fStudyID = *text;
}

}  // namespace VantorWrappers
