#pragma once

#include <cstdint>
#include <string_view>

#include "dicom/TFileSpec.h"

namespace Vantor {

// Where the files of a directory are, as it was when its documents were made. A document looks for its file
// when it is first asked for it; by then the directory may have another path, or be gone.
class TFilePlaces {
  public:
    // `owner` is what file objects are told of whom they belong to.
    explicit TFilePlaces(uintptr_t owner) : fOwner(owner) {}
    virtual ~TFilePlaces() = default;

    // The file that a record names by its file ID. Its path is empty when there can be none.
    virtual TFileSpec Find(std::string_view fileID) const = 0;

    // A record of a stranger's medium may name any file of the computer, by a path that leads out or by a
    // link on the medium. Such a file may be read. Who changes anything on disk asks here first:

    // True for a path of which the entry itself, be it a link, may be removed or replaced: it is in the
    // directory's folder, or in one below to which no link leads out, and is not the directory's own file.
    virtual bool MayBeRemoved(const TFileSpec& fileSpec) const = 0;

    // True for a path, where there need not be anything yet, that may be written to: it may be removed, and
    // is no link out either. A link that the system does not tell the end of counts as one.
    virtual bool MayBeWritten(const TFileSpec& fileSpec) const = 0;

    uintptr_t GetOwner() const { return fOwner; }

  private:
    uintptr_t fOwner;
};

}  // namespace Vantor
