#include "directory/MediaPlaces.h"

#include <algorithm>
#include <filesystem>

#include "dicom/Attempt.h"
#include "platform/Ascii.h"
#include "platform/CodePage.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"

namespace Vantor {

namespace fs = std::filesystem;
using Platform::PathStyle;

namespace {

std::string NativePath(const fs::path& path) { return Platform::FromHostText(path.wstring()); }

// The path without links, as far as the system tells where they lead.
fs::path WithoutLinks(const std::string& path) {
    return fs::weakly_canonical(fs::path(Platform::ToHostText(path)));
}

bool IsBelow(const fs::path& path, const fs::path& folder) {
    return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end();
}

// Names that are spelled otherwise on disk, and those of other systems, may hide links.
bool IsKnownToBeWithoutLinks(fs::path path, const fs::path& folder) {
    if (!Platform::IsFolder(NativePath(path.parent_path()))) return false;
    for (; path != folder; path = path.parent_path()) {
        if (Platform::IsLink(NativePath(path))) return false;
    }
    return true;
}

bool LeadsBelow(const std::string& path, const std::string& folder) {
    bool isBelow = false;
    const bool isTold = Succeeds([&] {
        const fs::path realFolder = WithoutLinks(folder);
        const fs::path realPath = WithoutLinks(path);
        isBelow = IsBelow(realPath, realFolder) && IsKnownToBeWithoutLinks(realPath, realFolder);
    });
    return isTold && isBelow;
}

std::string FolderOf(const std::string& path) {
    const std::string folder = PathStyle::OfPlatform().FolderOf(path);
    return folder.empty() ? "." : folder;
}

}  // namespace

TFileSpec MediaPlaces::Find(std::string_view fileID) const { return MakeSpec(fPaths.MakeFullPath(fileID)); }

bool MediaPlaces::IsInside(const TFileSpec& fileSpec) const {
    return fPaths.IsInside(fileSpec.fPath) &&
           Platform::UpperCased(fPaths.MakeFileID(fileSpec.fPath)) !=
               Platform::UpperCased(fPaths.MakeFileID(fDirectorySpec.fPath));
}

bool MediaPlaces::MayBeRemoved(const TFileSpec& fileSpec) const {
    if (fileSpec.fStorage != nullptr) return IsInside(fileSpec);
    return IsInside(fileSpec) && !IsDirectoryItself(fileSpec.fPath) &&
           !LeadsOut(PathStyle::OfPlatform().FolderOf(fileSpec.fPath));
}

bool MediaPlaces::MayBeWritten(const TFileSpec& fileSpec) const {
    return MayBeRemoved(fileSpec) && (fileSpec.fStorage != nullptr || !LeadsOut(fileSpec.fPath));
}

bool MediaPlaces::MayDirectoryBeWritten() const {
    const std::string path = fDirectorySpec.fPath;
    const bool isOnDisk = fDirectorySpec.fStorage == nullptr;
    return !isOnDisk || !Platform::IsLink(path) || LeadsBelow(path, FolderOf(path));
}

bool MediaPlaces::IsDirectoryItself(const std::string& path) const {
    return Platform::IsSameFile(path, fDirectorySpec.fPath);
}

// True when a link on the way from the directory's folder, or the path itself, leads elsewhere.
bool MediaPlaces::LeadsOut(const std::string& path) const {
    bool hasLink = false;
    std::string folder = path;
    while (fPaths.IsInside(folder)) {
        hasLink = hasLink || Platform::IsLink(folder);
        folder = PathStyle::OfPlatform().FolderOf(folder);
    }
    return hasLink && !LeadsBelow(path, folder.empty() ? "." : folder);
}

TFileSpec MediaPlaces::MakeSpec(const std::string& path) const {
    TFileSpec fileSpec(TFileSpec::FitsPath(path) ? path : std::string(), fDirectorySpec.fStorage);
    fileSpec.fWord = fDirectorySpec.fWord;
    return fileSpec;
}

}  // namespace Vantor
