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
bool RemoveEntry(const std::string& path, Kind kind) {
    return Succeeds(RemoveFile, path) || (kind == Kind::kLink && Succeeds(RemoveFolder, path));
}

}  // namespace

bool IsFile(const std::string& path) { return PathExists(path) && !IsFolder(path); }

void MakeFolderIfMissing(const std::string& path) {
    if (!IsFolder(path)) Succeeds(CreateFolder, path);
}

std::vector<FolderEntry> ListFolder(const std::string& path) {
    return ReadFolder(path).value_or(std::vector<FolderEntry>());
}

bool RemoveFolderTree(const std::string& path) {
    return RemoveFolderTree(path, [](const std::string& /*name*/) { return false; });
}

// Folders within folders are kept on a list of their own: they may be nested deeper than a stack goes.
bool RemoveFolderTree(const std::string& path, bool (*isKept)(const std::string& name)) {
    if (IsLink(path)) return RemoveEntry(path, Kind::kLink);
    std::vector<std::string> folders = {path};
    for (size_t index = 0; index < folders.size(); ++index) {
        const std::string start = folders[index] + PathStyle::OfPlatform().GetSeparator();
        for (const FolderEntry& entry : ListFolder(folders[index])) {
            if (entry.fKind != Kind::kFolder) {
                RemoveEntry(start + entry.fName, entry.fKind);
            } else if (!isKept(entry.fName)) {
                folders.push_back(start + entry.fName);
            }
        }
    }
    bool isGone = false;
    for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) {
        isGone = Succeeds(RemoveFolder, *folder);
    }
    return isGone;
}

}  // namespace Vantor::Platform
