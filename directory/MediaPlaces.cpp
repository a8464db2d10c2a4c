#include "directory/MediaPlaces.h"

#include "platform/Ascii.h"

namespace Vantor {

TFileSpec MediaPlaces::Find(std::string_view fileID) const { return MakeSpec(fPaths.MakeFullPath(fileID)); }

bool MediaPlaces::IsInside(const TFileSpec& fileSpec) const {
    return fPaths.IsInside(fileSpec.fPath) &&
           Platform::UpperCased(fPaths.MakeFileID(fileSpec.fPath)) !=
               Platform::UpperCased(fPaths.MakeFileID(fDirectorySpec.fPath));
}

TFileSpec MediaPlaces::MakeSpec(const std::string& path) const {
    TFileSpec fileSpec(TFileSpec::FitsPath(path) ? path : std::string(), fDirectorySpec.fStorage);
    fileSpec.fWord = fDirectorySpec.fWord;
    return fileSpec;
}

}  // namespace Vantor
