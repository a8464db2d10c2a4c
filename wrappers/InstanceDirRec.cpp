#include "wrappers/InstanceDirRec.h"

#include "records/TPatientDoc.h"
#include "records/TSeriesDoc.h"
#include "records/TStudyDoc.h"
#include "wrappers/NativeText.h"

namespace VantorWrappers {

using Vantor::TDicomDoc;
using Vantor::TPatientDoc;
using Vantor::TSeriesDoc;
using Vantor::TStudyDoc;

void InstanceDirRec::TakeFields(TDicomDoc& doc) {
    fInstanceUID = ReadUid(doc, &TDicomDoc::GetSOPInstanceUID);
    fClassUID = ReadUid(doc, &TDicomDoc::GetSOPClassUID);
    const auto* const series = dynamic_cast<const TSeriesDoc*>(doc.GetParentObj());
    const TStudyDoc* const study = series == nullptr ? nullptr : series->GetStudy();
    const auto* const patient =
        study == nullptr ? nullptr : dynamic_cast<const TPatientDoc*>(study->GetParentObj());
    fSeriesUID = series == nullptr ? HostString() : ReadText(*series, &TSeriesDoc::GetSeriesUID, kTextSize);
    fStudyUID = study == nullptr ? HostString() : fClassUID;
    fPatientName =
        patient == nullptr ? HostString() : ReadUntrimmed(*patient, &TPatientDoc::GetPatientName, kNameSize);
    fPatientID = patient == nullptr ? HostString()
                                    : ReadUntrimmed(*patient, &TPatientDoc::GetPatientNumber, kNameSize);
}

bool InstanceDirRec::IsSamePatient(const InstanceDirRec& other) const {
    return fPatientName == other.fPatientName && fPatientID == other.fPatientID;
}

}  // namespace VantorWrappers
