#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "host/PatientName.h"
#include "wrappers/HostString.h"

namespace VantorWrappers {

class DicomDirectory;

// Where a copy of a series is saved, and with which attributes. All of them are the copy's: a text that is
// left empty is empty there.
class SaveAsInfo {
  public:
    // The directory that takes the copy; at first null.
    void SetDestinationDirectory(std::shared_ptr<DicomDirectory> directory) {
        fDestinationDicomDirectory = std::move(directory);
    }
    const std::shared_ptr<DicomDirectory>& GetDestinationDirectory() const {
        return fDestinationDicomDirectory;
    }

    // The patient. Images whose patient has an empty name or number keep theirs, unless they are made
    // anonymous.
    void SetPatientName(VantorHost::PatientName name) { fPatientName = std::move(name); }
    const VantorHost::PatientName& GetPatientName() const { return fPatientName; }
    void SetPatientNumber(HostString number) { fPatientNumber = std::move(number); }
    const HostString& GetPatientNumber() const { return fPatientNumber; }

    // The study. Until it is set there is no study ID: the record of a new study gets one from the date and
    // time then.
    void SetAccessionNumber(HostString number) { fAccessionNumber = std::move(number); }
    const HostString& GetAccessionNumber() const { return fAccessionNumber; }
    void SetStudyID(HostString studyID) { fStudyID = std::move(studyID); }
    const std::optional<HostString>& GetStudyID() const { return fStudyID; }
    void SetStudyDescription(HostString description) { fStudyDescription = std::move(description); }
    const HostString& GetStudyDescription() const { return fStudyDescription; }

    // The series.
    void SetSeriesNumber(HostString number) { fSeriesNumber = std::move(number); }
    const HostString& GetSeriesNumber() const { return fSeriesNumber; }
    void SetSeriesDescription(HostString description) { fSeriesDescription = std::move(description); }
    const HostString& GetSeriesDescription() const { return fSeriesDescription; }

    // Puts the copy into a new study; otherwise it joins that of the series it is made of. At first false.
    void SetNewStudyFlag(bool isNewStudy) { fNewStudy = isNewStudy; }
    bool GetNewStudyFlag() const { return fNewStudy; }

    // Takes out of the images who the patient is, and with the second flag also the names of physicians. The
    // second has no effect without the first. At first false.
    void SetMakeAnonymousFlag(bool makesAnonymous) { fMakeAnonymous = makesAnonymous; }
    bool GetMakeAnonymousFlag() const { return fMakeAnonymous; }
    void SetErasePhysicianNamesFlag(bool erasesNames) { fErasePhysicianNames = erasesNames; }
    bool GetErasePhysicianNamesFlag() const { return fErasePhysicianNames; }

  private:
    std::shared_ptr<DicomDirectory> fDestinationDicomDirectory;
    VantorHost::PatientName fPatientName;
    HostString fPatientNumber;
    HostString fAccessionNumber;
    std::optional<HostString> fStudyID;
    HostString fStudyDescription;
    HostString fSeriesNumber;
    HostString fSeriesDescription;
    bool fNewStudy = false;
    bool fMakeAnonymous = false;
    bool fErasePhysicianNames = false;
};

}  // namespace VantorWrappers
