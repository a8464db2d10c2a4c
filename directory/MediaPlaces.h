#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "directory/MediaPaths.h"
#include "records/TFilePlaces.h"

namespace Vantor {

// Where a directory's files are, by its own path as it was, with the other words of its file; and which of
// them are its own, to be changed.
class MediaPlaces : public TFilePlaces {
  public:
    MediaPlaces(uintptr_t owner, const TFileSpec& directorySpec, MediaPaths paths)
        : TFilePlaces(owner), fDirectorySpec(directorySpec), fPaths(std::move(paths)) {}

    const MediaPaths& GetPaths() const { return fPaths; }

    TFileSpec Find(std::string_view fileID) const override;
    bool MayBeRemoved(const TFileSpec& fileSpec) const override;
    bool MayBeWritten(const TFileSpec& fileSpec) const override;

    // True for a path below the directory's folder that is not the directory's own file. Links are not looked
    // at: enough for a file that is only read.
    virtual bool IsInside(const TFileSpec& fileSpec) const;

    // False when the directory's own file is a link to one in another folder.
    bool MayDirectoryBeWritten() const;

  protected:
    // The file at a path; one without path when that is too long, as a path that is cut would name another.
    TFileSpec MakeSpec(const std::string& path) const;

    // True when the path leads to the directory's own file, however it is spelled.
    virtual bool IsDirectoryItself(const std::string& path) const;

  private:
    bool LeadsOut(const std::string& path) const;

    TFileSpec fDirectorySpec;
    MediaPaths fPaths;
};

}  // namespace Vantor
