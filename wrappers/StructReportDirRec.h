#pragma once

#include "wrappers/DirRec.h"

namespace Vantor {
class TSR_Doc;
}

namespace VantorWrappers {

// A structured report of a directory.
class StructReportDirRec : public DirRec {
  public:
    StructReportDirRec() = default;

    // `report` may be null: nothing is known then, and a trace warning is written.
    StructReportDirRec(Vantor::TSR_Doc* report, DicomDirectory& directory);

    const HostString& GetInstanceUID() const { return fInstanceUID; }
    const HostString& GetClassUID() const { return fClassUID; }

    // The file's full path.
    const HostString& GetSRPath() const { return fSRPath; }

    // True for a report of the reporting product.
    bool IsQuantixReport() const;

    void SetInstanceUID(const HostString& uid);
    void SetClassUID(const HostString& uid);

    // Takes everything from the record anew; as at construction.
    void UpdateFields(Vantor::TSR_Doc* report);

  private:
    Vantor::TSR_Doc* FindDoc() const;

    HostString fInstanceUID;
    HostString fClassUID;
    HostString fSRPath;
};

}  // namespace VantorWrappers
