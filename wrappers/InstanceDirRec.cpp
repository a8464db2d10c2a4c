#include "wrappers/InstanceDirRec.h"

#include <utility>

#include "records/TPatientDoc.h"
#include "records/TSeriesDoc.h"
#include "records/TStudyDoc.h"
#include "wrappers/NativeText.h"

namespace VantorWrappers {

using Vantor::TDicomDoc;
using Vantor::TPatientDoc;
using Vantor::TSeriesDoc;
using Vantor::TStudyDoc;

InstanceDirRec::Ancestors::Ancestors(const TSeriesDoc* series) {
    if (series == nullptr) return;
    fSeriesUID = ReadText(*series, &TSeriesDoc::GetSeriesUID, kTextSize);
    const TStudyDoc* const study = series->GetStudy();
    fHasStudy = study != nullptr;
    const auto* const patient = fHasStudy ? dynamic_cast<const TPatientDoc*>(study->GetParentObj()) : nullptr;
    if (patient == nullptr) return;
    fPatientName = ReadUntrimmed(*patient, &TPatientDoc::GetPatientName, kNameSize);
    fPatientID = ReadText(*patient, &TPatientDoc::GetPatientNumber, kNameSize);
}

InstanceDirRec::Ancestors InstanceDirRec::AncestorsOf(const TDicomDoc& doc) {
    return Ancestors(dynamic_cast<const TSeriesDoc*>(doc.GetParentObj()));
}

void InstanceDirRec::TakeFields(TDicomDoc& doc) {
    TakeTexts(ReadUid(doc, &TDicomDoc::GetSOPInstanceUID), ReadUid(doc, &TDicomDoc::GetSOPClassUID),
              AncestorsOf(doc));
}

void InstanceDirRec::TakeTexts(HostString instanceUID, HostString classUID, const Ancestors& ancestors) {
    fInstanceUID = std::move(instanceUID);
    fClassUID = std::move(classUID);
    fSeriesUID = ancestors.fSeriesUID;
    fStudyUID = ancestors.fHasStudy ? fClassUID : HostString();
    fPatientName = ancestors.fPatientName;
    fPatientID = ancestors.fPatientID;
}

bool InstanceDirRec::IsSamePatient(const InstanceDirRec& other) const {
    return fPatientName == other.fPatientName && fPatientID == other.fPatientID;
}

}  // namespace VantorWrappers
