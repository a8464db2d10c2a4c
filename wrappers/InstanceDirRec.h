#pragma once

#include <cstdint>

#include "wrappers/DirRec.h"

namespace Vantor {
class TDicomDoc;
class TSeriesDoc;
}  // namespace Vantor

namespace VantorWrappers {

// What images, raw data and private objects of a directory have in common.
class InstanceDirRec : public DirRec {
  public:
    // What the instances of a series have in common: texts of those above them, "" for who is missing.
    struct Ancestors {
        // Of a series, which may be null.
        explicit Ancestors(const Vantor::TSeriesDoc* series);

        HostString fSeriesUID;
        bool fHasStudy = false;
        HostString fPatientName;
        HostString fPatientID;
    };

    const HostString& GetInstanceUID() const { return fInstanceUID; }
    const HostString& GetClassUID() const { return fClassUID; }
    const HostString& GetSeriesUID() const { return fSeriesUID; }

    // The SOP class UID. Hosts rely on it: it has always been so, see IsSameStudy.
    const HostString& GetStudyUID() const { return fStudyUID; }

    // In DICOM form and not trimmed; and the ID.
    const HostString& GetPatientName() const { return fPatientName; }
    const HostString& GetPatientID() const { return fPatientID; }

    bool IsSameSeries(const InstanceDirRec& other) const { return fSeriesUID == other.fSeriesUID; }

    // True for instances of the same SOP class. Hosts rely on it: they tell by it what can be shown together.
    bool IsSameStudy(const InstanceDirRec& other) const { return fStudyUID == other.fStudyUID; }

    // True when name and ID are the same.
    bool IsSamePatient(const InstanceDirRec& other) const;

  protected:
    InstanceDirRec() = default;
    using DirRec::DirRec;

    // Takes what is known of a document and those above it.
    void TakeFields(Vantor::TDicomDoc& doc);
    void TakeTexts(HostString instanceUID, HostString classUID, const Ancestors& ancestors);
    static Ancestors AncestorsOf(const Vantor::TDicomDoc& doc);

    HostString fInstanceUID;
    HostString fClassUID;
    HostString fSeriesUID;
    HostString fStudyUID;
    HostString fPatientName;
    HostString fPatientID;
};

}  // namespace VantorWrappers
