#include "directory/MediaPlaces.h"

namespace Vantor {

TFileSpec MediaPlaces::Find(std::string_view fileID) const { return MakeSpec(fPaths.MakeFullPath(fileID)); }

TFileSpec MediaPlaces::MakeSpec(const std::string& path) const {
    TFileSpec fileSpec(TFileSpec::FitsPath(path) ? path : std::string(), fDirectorySpec.fStorage);
    fileSpec.fWord = fDirectorySpec.fWord;
    return fileSpec;
}

}  // namespace Vantor
