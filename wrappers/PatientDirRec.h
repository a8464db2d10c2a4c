#pragma once

#include <cstdint>
#include <vector>

#include "host/PatientName.h"
#include "wrappers/DirRec.h"

namespace Vantor {
class TPatientDoc;
}

namespace VantorWrappers {

class StudyDirRec;

// A patient of a directory.
class PatientDirRec : public DirRec {
  public:
    PatientDirRec() = default;

    // `patient` may be null: nothing is known then, and a trace warning is written.
    PatientDirRec(Vantor::TPatientDoc* patient, DicomDirectory& directory);

    // For display.
    HostString GetPatientName() const { return fPatientName.GetDisplayablePatientName(); }

    // Addition for hosts: the name in DICOM form.
    const HostString& GetDicomPatientName() const { return fPatientName.GetDicomPatientName(); }

    const HostString& GetPatientNumber() const { return fPatientNumber; }

    // What is below the patient.
    int32_t GetStudyCount() const { return fStudyCount; }
    int32_t GetSeriesCount() const { return fSeriesCount; }
    int32_t GetImageCount() const { return fImageCount; }

    // Empties the list and fills it with the patient's studies.
    void GetStudies(std::vector<StudyDirRec>& list) const;

    // The name in DICOM form.
    void SetPatientName(const HostString& name);
    void SetPatientNumber(const HostString& number);

  private:
    Vantor::TPatientDoc* FindDoc() const;

    VantorHost::PatientName fPatientName;
    HostString fPatientNumber;
    int32_t fStudyCount = 0;
    int32_t fSeriesCount = 0;
    int32_t fImageCount = 0;
};

}  // namespace VantorWrappers
