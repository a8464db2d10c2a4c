#include "directory/FolderFiles.h"

#include "dicom/TFileSpec.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"

namespace Vantor::FolderFiles {

namespace {

using Kind = Platform::FolderEntry::Kind;

// No deeper than paths are long.
void AppendBelow(const std::string& folder, std::vector<std::string>& paths) {
    const Platform::PathStyle& style = Platform::PathStyle::OfPlatform();
    for (const Platform::FolderEntry& entry : Platform::ListFolder(folder)) {
        std::string path = folder;
        if (!style.EndsFolder(path)) path += style.GetSeparator();
        path += entry.fName;
        if (!TFileSpec::FitsPath(path)) continue;
        if (entry.fKind == Kind::kFolder) AppendBelow(path, paths);
        const bool isFile =
            entry.fKind == Kind::kFile || (entry.fKind == Kind::kLink && !Platform::IsFolder(path));
        if (isFile) paths.push_back(std::move(path));
    }
}

}  // namespace

std::vector<std::string> ListBelow(const std::string& folder) {
    std::vector<std::string> paths;
    if (!folder.empty()) AppendBelow(folder, paths);
    return paths;
}

}  // namespace Vantor::FolderFiles
