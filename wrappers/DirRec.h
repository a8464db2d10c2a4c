#pragma once

#include <memory>

#include "wrappers/HostString.h"

namespace VantorWrappers {

class DicomDirectory;

// One record of a directory, as it was when this object was made: texts and numbers that stay as they are,
// whatever becomes of the directory. Operations that need the record itself look it up again in the
// directory, by the texts; they do nothing, and answer false, 0 or "", when it or the directory is not there
// any more. May be copied.
//
// A setter trims the new value, cuts it to the 64 bytes that a record holds, puts it there and keeps it; when
// the record is not found, a trace warning is written and nothing changes. Nothing is written to disk: the
// host saves the directory.
//
// Texts are trimmed, and "" for what the record does not have.
class DirRec {
  public:
    // The directory; null when there is none, or it is gone.
    DicomDirectory* GetDicomDirectory() const {
        return fDicomDirectory == nullptr ? nullptr : *fDicomDirectory;
    }

  protected:
    DirRec() = default;
    explicit DirRec(DicomDirectory& directory);

    // The directory, if it is one that its manager still has; else null.
    DicomDirectory* GetValidDirectory() const;

  private:
    std::shared_ptr<DicomDirectory* const> fDicomDirectory;
};

}  // namespace VantorWrappers
