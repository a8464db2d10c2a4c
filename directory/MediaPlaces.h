#pragma once

#include <string_view>
#include <utility>

#include "directory/MediaPaths.h"
#include "records/TFilePlaces.h"

namespace Vantor {

// Where a directory's files are, by its own path as it was, with the other words of its file.
class MediaPlaces : public TFilePlaces {
  public:
    MediaPlaces(uintptr_t owner, const TFileSpec& directorySpec, MediaPaths paths)
        : TFilePlaces(owner), fDirectorySpec(directorySpec), fPaths(std::move(paths)) {}

    const MediaPaths& GetPaths() const { return fPaths; }

    TFileSpec Find(std::string_view fileID) const override;

    // False for the directory's own file as well: no record has it.
    bool IsInside(const TFileSpec& fileSpec) const override;

  protected:
    // The file at a path; one without path when that is too long, as a path that is cut would name another.
    TFileSpec MakeSpec(const std::string& path) const;

  private:
    TFileSpec fDirectorySpec;
    MediaPaths fPaths;
};

}  // namespace Vantor
