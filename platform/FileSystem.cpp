#include "platform/FileSystem.h"

#include "platform/FileException.h"
#include "platform/PathStyle.h"

namespace Vantor::Platform {

namespace {

using Kind = FolderEntry::Kind;

template <typename Operation>
bool Succeeds(Operation operation, const std::string& path) {
    try {
        operation(path);
        return true;
    } catch (const FileException&) {
        return false;
    }
}

// Windows removes a link to a folder as a folder.
void RemoveEntry(const std::string& path, Kind kind) {
    if (!Succeeds(RemoveFile, path) && kind == Kind::kLink) Succeeds(RemoveFolder, path);
}

}  // namespace

bool IsFile(const std::string& path) { return PathExists(path) && !IsFolder(path); }

void MakeFolderIfMissing(const std::string& path) {
    if (!IsFolder(path)) Succeeds(CreateFolder, path);
}

// Folders within folders are kept on a list of their own: they may be nested deeper than a stack goes.
void RemoveFolderTree(const std::string& path) {
    if (IsLink(path)) {
        RemoveEntry(path, Kind::kLink);
        return;
    }
    std::vector<std::string> folders = {path};
    for (size_t index = 0; index < folders.size(); ++index) {
        const std::string start = folders[index] + PathStyle::OfPlatform().GetSeparator();
        for (const FolderEntry& entry : ListFolder(folders[index])) {
            if (entry.fKind == Kind::kFolder) {
                folders.push_back(start + entry.fName);
            } else {
                RemoveEntry(start + entry.fName, entry.fKind);
            }
        }
    }
    for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) Succeeds(RemoveFolder, *folder);
}

}  // namespace Vantor::Platform
