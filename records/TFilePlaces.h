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

    // False for a file elsewhere than below the directory's folder: a record of a stranger's medium may name
    // one, and it may be read, but never removed.
    virtual bool IsInside(const TFileSpec& fileSpec) const = 0;

    uintptr_t GetOwner() const { return fOwner; }

  private:
    uintptr_t fOwner;
};

}  // namespace Vantor
