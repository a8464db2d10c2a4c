#pragma once

#include "wrappers/InstanceDirRec.h"

namespace Vantor {
class TPrivateDoc;
}

namespace VantorWrappers {

// An object of a directory that is of a private kind, or of one that the library does not know.
class PrivateDirRec : public InstanceDirRec {
  public:
    PrivateDirRec() = default;

    // `object` may be null: nothing is known then, and a trace warning is written.
    PrivateDirRec(Vantor::TPrivateDoc* object, DicomDirectory& directory);

    // The file's full path.
    const HostString& GetDicomFile() const { return fDicomFilePath; }

    // Takes everything from the record anew; as at construction.
    void UpdateFields(Vantor::TPrivateDoc* object);

  private:
    HostString fDicomFilePath;
};

}  // namespace VantorWrappers
