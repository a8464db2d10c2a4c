#include "wrappers/MediaBounds.h"

#include <algorithm>
#include <filesystem>

#include "dicom/Attempt.h"
#include "dicom/TFileSpec.h"
#include "platform/CodePage.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"
#include "records/TFilePlaces.h"

namespace VantorWrappers {

namespace fs = std::filesystem;
using Vantor::TFilePlaces;
using Vantor::TFileSpec;
using Vantor::Platform::PathStyle;

namespace {

std::string NativePath(const fs::path& path) { return Vantor::Platform::FromHostText(path.wstring()); }

// The path without links, as far as the system tells where they lead.
fs::path WithoutLinks(const std::string& path) {
    return fs::weakly_canonical(fs::path(Vantor::Platform::ToHostText(path)));
}

bool IsBelow(const fs::path& path, const fs::path& folder) {
    return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end();
}

// Names that are spelled otherwise on disk, and those of other systems, may hide links.
bool IsKnownToBeWithoutLinks(fs::path path, const fs::path& folder) {
    if (!Vantor::Platform::IsFolder(NativePath(path.parent_path()))) return false;
    for (; path != folder; path = path.parent_path()) {
        if (Vantor::Platform::IsLink(NativePath(path))) return false;
    }
    return true;
}

bool LeadsBelow(const std::string& path, const std::string& folder) {
    bool isBelow = false;
    const bool isTold = Vantor::Succeeds([&] {
        const fs::path realFolder = WithoutLinks(folder);
        const fs::path realPath = WithoutLinks(path);
        isBelow = IsBelow(realPath, realFolder) && IsKnownToBeWithoutLinks(realPath, realFolder);
    });
    return isTold && isBelow;
}

}  // namespace

bool IsOnMedium(const TFilePlaces& places, const std::string& path) {
    if (!TFileSpec::FitsPath(path) || !places.IsInside(TFileSpec(path))) return false;
    bool hasLink = false;
    std::string folder = path;
    while (!folder.empty() && places.IsInside(TFileSpec(folder))) {
        hasLink = hasLink || Vantor::Platform::IsLink(folder);
        folder = PathStyle::OfPlatform().FolderOf(folder);
    }
    return !hasLink || LeadsBelow(path, folder.empty() ? "." : folder);
}

}  // namespace VantorWrappers
