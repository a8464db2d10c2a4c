#pragma once

#include "wrappers/InstanceDirRec.h"

namespace Vantor {
class TRawDataDoc;
}

namespace VantorWrappers {

// Raw data of a directory.
class RawDataDirRec : public InstanceDirRec {
  public:
    RawDataDirRec() = default;

    // `rawData` may be null: nothing is known then, and a trace warning is written.
    RawDataDirRec(Vantor::TRawDataDoc* rawData, DicomDirectory& directory);

    // The file's full path.
    const HostString& GetRawDataPath() const { return fRawDataPath; }

    // In units of 1,024 bytes. Looks at the file.
    int32_t GetDiskSpaceInKBytes() const;

    void SetInstanceUID(const HostString& uid);

    // Takes everything from the record anew; as at construction.
    void UpdateFields(Vantor::TRawDataDoc* rawData);

  private:
    Vantor::TRawDataDoc* FindDoc() const;

    HostString fRawDataPath;
};

}  // namespace VantorWrappers
