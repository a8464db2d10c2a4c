#include "wrappers/PatientDirRec.h"

#include "records/TPatientDoc.h"
#include "records/TStudyDoc.h"
#include "wrappers/Boundary.h"
#include "wrappers/DicomDirectory.h"
#include "wrappers/NativeText.h"
#include "wrappers/RecordChange.h"
#include "wrappers/StudyDirRec.h"

namespace VantorWrappers {

using Vantor::TPatientDoc;
using Vantor::TStudyDoc;

PatientDirRec::PatientDirRec(TPatientDoc* patient, DicomDirectory& directory) : DirRec(directory) {
    if (patient == nullptr) {
        TraceWarning(kNoNativeObject);
        return;
    }
    fPatientName = VantorHost::PatientName(ReadText(*patient, &TPatientDoc::GetPatientName, kNameSize));
    fPatientNumber = ReadText(*patient, &TPatientDoc::GetPatientNumber, kNameSize);
    fStudyCount = patient->GetStudyCount();
    fSeriesCount = patient->GetSeriesCount();
    fImageCount = patient->GetImageCount();
}

TPatientDoc* PatientDirRec::FindDoc() const {
    DicomDirectory* const directory = GetDicomDirectory();
    return directory == nullptr ? nullptr
                                : directory->GetUmPatient(fPatientName.GetDicomPatientName(), fPatientNumber);
}

void PatientDirRec::GetStudies(std::vector<StudyDirRec>& list) const {
    list.clear();
    TraceInfo("Entering");
    if (DicomDirectory* const directory = GetValidDirectory(); directory == nullptr) {
        TraceWarning("Invalid fDicomDirectory detected");
    } else if (TPatientDoc* const patient = FindDoc(); patient == nullptr) {
        TraceWarning("Failed to create a TPatientDoc object");
    } else {
        for (TStudyDoc* study : *patient->GetStudyDocs()) {
            const auto failure = FailureOf([&] { list.emplace_back(study, *directory); });
            if (failure) TraceWarning("Failed to create a StudyDirRec object");
        }
    }
    TraceInfo("Exiting");
}

void PatientDirRec::SetPatientName(const HostString& name) {
    const char* const warning = "Failed to find unmanaged Patient Object, new patient name not set.";
    const auto text = ChangeRecord(FindDoc(), warning, name, &TPatientDoc::SetPatientName);
    if (text) fPatientName = VantorHost::PatientName(*text);
}

void PatientDirRec::SetPatientNumber(const HostString& number) {
    const char* const warning = "Failed to find unmanaged Patient Object, new patient number not set.";
    const auto text = ChangeRecord(FindDoc(), warning, number, &TPatientDoc::SetPatientNumber);
    if (text) fPatientNumber = *text;
}

}  // namespace VantorWrappers
