#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "host/PatientName.h"
#include "wrappers/DirRec.h"

namespace Vantor {
class TSeriesDoc;
}

namespace VantorWrappers {

class ImageDirRec;
class PatientDirRec;
class PrivateDirRec;
class RawDataDirRec;
class StructReportDirRec;
class StudyDirRec;

// A series of a directory.
class SeriesDirRec : public DirRec {
  public:
    SeriesDirRec() = default;

    // `series` may be null: nothing is known then, and a trace warning is written; likewise for a series
    // without a study, of which what belongs to the study is not known.
    SeriesDirRec(Vantor::TSeriesDoc* series, DicomDirectory& directory);

    const HostString& GetSeriesUID() const { return fSeriesUID; }
    const HostString& GetModality() const { return fModality; }
    const HostString& GetSeriesNumber() const { return fSeriesNumber; }
    const HostString& GetSeriesDescription() const { return fSeriesDescription; }

    // For display, and in DICOM form.
    HostString GetPatientName() const { return fPatientName.GetDisplayablePatientName(); }
    HostString GetReferringPhysician() const { return fReferringPhysician.GetDisplayablePatientName(); }
    const HostString& GetDicomPatientName() const { return fPatientName.GetDicomPatientName(); }

    const HostString& GetPatientNumber() const { return fPatientNumber; }
    const HostString& GetStudyDescription() const { return fStudyDescription; }

    // As those of StudyDirRec.
    const HostString& GetStudyDate() const { return fStudyDate; }
    const HostString& GetStudyTime() const { return fStudyTime; }

    // The whole series UID, for hosts that take the maker's root from it.
    const HostString& GetManufacturerOrgID() const { return fManufacturerOrgID; }

    // Images, reports and private objects; raw data do not count. And the reports alone.
    int32_t GetNumberDicomObjects() const { return fNumberDicomObjects; }
    int32_t GetNumberSRs() const { return fNumberSRs; }

    // True for a series of small copies of images: more than one, and QMAG in the path of the first.
    bool CheckSequoiaLoRes() const { return fSequoiaLoRes; }

    // Each empties the list and fills it with the series' instances of that kind.
    void GetImages(std::vector<ImageDirRec>& list) const;
    void GetSRs(std::vector<StructReportDirRec>& list) const;
    void GetRawDataObjects(std::vector<RawDataDirRec>& list) const;
    void GetPrivateDicom(std::vector<PrivateDirRec>& list) const;

    // The patient and the study above. False, and the record given stays as it is, when there is none.
    bool GetPatientDirRec(PatientDirRec& patient) const;
    bool GetStudyDirRec(StudyDirRec& study) const;

    // True when a report of the series is one of the reporting product; GetSRfilePath gives its path then, ""
    // before.
    bool HasQuantixReport();
    const HostString& GetSRfilePath() const { return fSRfilepath; }

    // What the files take, in units of 1,024 bytes. Looks at the files.
    int32_t GetDiskSpace() const;

    void SetSeriesUID(const HostString& uid);
    void SetModality(const HostString& modality);
    void SetSeriesNumber(const HostString& number);
    void SetSeriesDescription(const HostString& description);

    // True for a series of the same UID in the same directory.
    bool Equals(const SeriesDirRec& other) const;
    bool operator==(const SeriesDirRec& other) const { return Equals(other); }

    // The same for series that are equal.
    size_t GetHashCode() const { return std::hash<HostString>()(fSeriesUID); }

  private:
    friend class DicomDirectory;

    Vantor::TSeriesDoc* FindDoc() const;
    void TakeStudy(const Vantor::TSeriesDoc& series);

    HostString fSeriesUID;
    HostString fModality;
    HostString fSeriesNumber;
    HostString fSeriesDescription;
    VantorHost::PatientName fPatientName;
    VantorHost::PatientName fReferringPhysician;
    HostString fPatientNumber;
    HostString fStudyDescription;
    HostString fStudyDate;
    HostString fStudyTime;
    HostString fSRfilepath;
    HostString fManufacturerOrgID;
    int32_t fNumberDicomObjects = 0;
    int32_t fNumberSRs = 0;
    bool fSequoiaLoRes = false;
};

}  // namespace VantorWrappers
