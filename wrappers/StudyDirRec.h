#pragma once

#include <cstdint>
#include <vector>

#include "host/PatientName.h"
#include "wrappers/DirRec.h"

namespace Vantor {
class TStudyDoc;
}

namespace VantorWrappers {

class PatientDirRec;
class SeriesDirRec;

// A study of a directory.
class StudyDirRec : public DirRec {
  public:
    StudyDirRec() = default;

    // `study` may be null: nothing is known then, and a trace warning is written.
    StudyDirRec(Vantor::TStudyDoc* study, DicomDirectory& directory);

    // For display.
    HostString GetPatientName() const { return fPatientName.GetDisplayablePatientName(); }
    HostString GetReferringPhysician() const { return fReferringPhysician.GetDisplayablePatientName(); }

    // Addition for hosts: the patient's name in DICOM form.
    const HostString& GetDicomPatientName() const { return fPatientName.GetDicomPatientName(); }

    const HostString& GetPatientNumber() const { return fPatientNumber; }
    const HostString& GetStudyDescription() const { return fStudyDescription; }

    // The date in the host's short form (VantorHost::ShortDate). Hosts rely on it being there: for a study
    // whose date is no eight digits of a day it is that of 0001-01-01.
    const HostString& GetStudyDate() const { return fStudyDate; }

    // Addition for hosts: the date as stored, eight digits; "" when the study has none.
    const HostString& GetStoredStudyDate() const { return fStoredStudyDate; }

    // HH:MM, not trimmed.
    const HostString& GetStudyTime() const { return fStudyTime; }

    const HostString& GetAccessionNumber() const { return fAccessionNumber; }

    // Those of the series, in one text without separators, the last first; "UK" when nothing better is known.
    const HostString& GetModalities() const { return fModalities; }

    const HostString& GetStudyUID() const { return fStudyUID; }
    const HostString& GetStudyID() const { return fStudyID; }

    // What is below the study. Private records count as series.
    int32_t GetImageCount() const { return fImageCount; }
    int32_t GetSeriesCount() const { return fSeriesCount; }

    // Reports, and those of the reporting product.
    int32_t GetSRCount() const { return fStructuredReportCount; }
    int32_t GetQuantixReportCount() const { return fQuantixReportCount; }

    // Empties the list and fills it with the study's series.
    void GetSeries(std::vector<SeriesDirRec>& list) const;

    // The patient above. False, and `patient` stays as it is, when there is none.
    bool GetPatientDirRec(PatientDirRec& patient) const;

    void SetStudyDescription(const HostString& description);
    void SetStudyUID(const HostString& uid);
    void SetStudyID(const HostString& id);

  private:
    Vantor::TStudyDoc* FindDoc() const;

    VantorHost::PatientName fPatientName;
    HostString fPatientNumber;
    HostString fStudyDescription;
    HostString fStudyDate;
    HostString fStudyTime;
    HostString fAccessionNumber;
    VantorHost::PatientName fReferringPhysician;
    HostString fModalities;
    HostString fStudyUID;
    HostString fStudyID;
    int32_t fImageCount = 0;
    int32_t fSeriesCount = 0;
    int32_t fStructuredReportCount = 0;
    int32_t fQuantixReportCount = 0;
    HostString fStoredStudyDate;
};

}  // namespace VantorWrappers
