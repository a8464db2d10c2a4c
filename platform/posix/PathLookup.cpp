#include "platform/posix/PathLookup.h"

#include <sys/stat.h>

#include <algorithm>
#include <optional>

#include "platform/posix/FolderListing.h"
#include "platform/posix/SystemError.h"

namespace Vantor::Platform {

namespace {

constexpr char kSeparator = '/';

bool Exists(const std::string& path) {
    struct stat state = {};
    return stat(path.c_str(), &state) == 0;
}

bool IsEntry(const std::string& path) {
    struct stat state = {};
    return lstat(path.c_str(), &state) == 0;
}

// The last component's start; the separators before it belong to the folder.
size_t NameStart(const std::string& path) {
    const size_t separator = path.rfind(kSeparator);
    return separator == std::string::npos ? 0 : separator + 1;
}

std::string FolderOrHere(const std::string& folder) { return folder.empty() ? "." : folder; }

// Appends the component to the folder as it is spelled on disk; false when it does not exist.
bool AppendAsOnDisk(std::string& folder, const std::string& name) {
    if (Exists(folder + name)) {
        folder += name;
        return true;
    }
    const std::optional<std::string> spelling = FolderListing::Find(FolderOrHere(folder), name);
    // A listing may still have a name that was removed within the tick in which it was read.
    if (!spelling || !IsEntry(folder + *spelling)) {
        return false;
    }
    folder += *spelling;
    return true;
}

bool IsFolderAt(const std::string& path) {
    struct stat state = {};
    return stat(FolderOrHere(path).c_str(), &state) == 0 && S_ISDIR(state.st_mode);
}

}  // namespace

LookedUpPath LookUpPath(const std::string& path) {
    std::string found;
    for (size_t start = 0; start < path.size();) {
        const size_t nameStart = std::min(path.find_first_not_of(kSeparator, start), path.size());
        const size_t nameEnd = std::min(path.find(kSeparator, nameStart), path.size());
        found.append(path, start, nameStart - start);
        const std::string name = path.substr(nameStart, nameEnd - nameStart);
        if (!name.empty() && !AppendAsOnDisk(found, name)) {
            const bool isLast = path.find_first_not_of(kSeparator, nameEnd) == std::string::npos;
            const bool isNameMissing = isLast && IsFolderAt(found);
            return {found.append(path, nameStart), isNameMissing ? Missing::kName : Missing::kFolder};
        }
        start = nameEnd;
    }
    return {found, path.empty() ? Missing::kName : Missing::kNothing};
}

void NoteAdded(const std::string& path) {
    const size_t nameStart = NameStart(path);
    FolderListing::NoteAdded(FolderOrHere(path.substr(0, nameStart)), path.substr(nameStart));
}

void NoteAddedForNow(const std::string& path) {
    FolderListing::NoteAddedForNow(FolderOrHere(path.substr(0, NameStart(path))));
}

void ThrowPathError(int error, const std::string& path) {
    if (error == ENOENT && LookUpPath(path).fMissing == Missing::kFolder) {
        throw FileException(FileException::Cause::kBadPath, error, path);
    }
    ThrowFileError(error, path);
}

}  // namespace Vantor::Platform
