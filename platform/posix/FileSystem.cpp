#include "platform/FileSystem.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>

#include "platform/MediumWatch.h"
#include "platform/PathStyle.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/DiskFile.h"
#include "platform/posix/FileState.h"
#include "platform/posix/Neighbour.h"
#include "platform/posix/PathLookup.h"
#include "platform/posix/SystemError.h"

namespace Vantor::Platform {

namespace {

constexpr const char* kTemporaryFolderVariable = "TMPDIR";
constexpr const char* kTemporaryFolder = "/tmp";
constexpr const char* kUniquePart = "XXXXXX";  // what mkostemps replaces
constexpr std::string_view kTemporarySuffix = ".tmp";

bool GetState(const std::string& path, struct stat& state) {
    return WithPathOnDisk(path, [&](const char* spelled) { return stat(spelled, &state); }) == 0;
}

FolderEntry::Kind KindOf(const std::string& path) {
    struct stat state = {};
    if (lstat(path.c_str(), &state) != 0) {
        return FolderEntry::Kind::kOther;
    }
    if (S_ISLNK(state.st_mode)) {
        return FolderEntry::Kind::kLink;
    }
    if (S_ISDIR(state.st_mode)) {
        return FolderEntry::Kind::kFolder;
    }
    return S_ISREG(state.st_mode) ? FolderEntry::Kind::kFile : FolderEntry::Kind::kOther;
}

bool IsNamedBefore(const FolderEntry& first, const FolderEntry& second) { return first.fName < second.fName; }

std::string TemporaryFolder() {
    const char* const folder = std::getenv(kTemporaryFolderVariable);
    return folder != nullptr && *folder != '\0' ? folder : kTemporaryFolder;
}

}  // namespace

std::optional<FileTime> GetLastWriteTime(const std::string& path) {
    struct stat state = {};
    if (!GetState(path, state)) {
        return std::nullopt;
    }
    return LastWriteTimeOf(state);
}

bool PathExists(const std::string& path) {
    struct stat state = {};
    return GetState(path, state);
}

bool IsFolder(const std::string& path) {
    struct stat state = {};
    return GetState(path, state) && S_ISDIR(state.st_mode);
}

bool IsReadOnly(const std::string& path) {
    const auto ask = [](const char* spelled) { return faccessat(AT_FDCWD, spelled, W_OK, AT_EACCESS); };
    return PathExists(path) && WithPathOnDisk(path, ask) != 0 &&
           (errno == EACCES || errno == EROFS || errno == EPERM);
}

bool IsLink(const std::string& path) {
    struct stat state = {};
    const auto look = [&](const char* spelled) { return lstat(spelled, &state); };
    return WithPathOnDisk(path, look) == 0 && S_ISLNK(state.st_mode);
}

bool IsSameFile(const std::string& first, const std::string& second) {
    struct stat firstState = {};
    struct stat secondState = {};
    return GetState(first, firstState) && GetState(second, secondState) &&
           firstState.st_dev == secondState.st_dev && firstState.st_ino == secondState.st_ino;
}

void CreateFolder(const std::string& path) {
    constexpr mode_t kAllThatTheUserMaskLeaves = 0777;
    const LookedUpPath found = LookUpPath(path);
    if (found.fMissing == Missing::kNothing) {
        ThrowPathError(EEXIST, path);
    }
    AnnounceChange(MediumChange::kCreateFolder, found.fPath);
    if (mkdir(found.fPath.c_str(), kAllThatTheUserMaskLeaves) != 0) {
        ThrowPathError(errno, path);
    }
    NoteAdded(found.fPath);
}

std::optional<std::vector<FolderEntry>> ReadFolder(const std::string& path) {
    const std::string folder = LookUpPath(path).fPath;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(folder.c_str()), closedir);
    if (stream == nullptr) {
        return std::nullopt;
    }
    std::vector<FolderEntry> entries;
    for (;;) {
        errno = 0;  // which tells a failure from the end
        const dirent* const found = readdir(stream.get());
        if (found == nullptr) break;
        const std::string_view name = found->d_name;
        if (name != "." && name != "..") {
            entries.push_back({std::string(name), KindOf(folder + "/" + found->d_name)});
        }
    }
    if (errno != 0) {
        return std::nullopt;
    }
    std::sort(entries.begin(), entries.end(), IsNamedBefore);
    return entries;
}

void RemoveFolder(const std::string& path) {
    AnnounceChange(MediumChange::kRemoveFolder, path);
    if (WithPathOnDisk(path, rmdir) != 0) {
        ThrowPathError(errno, path);
    }
}

uint64_t GetFreeBytes(const std::string& path) {
    struct statvfs volume = {};
    const int result = WithPathOnDisk(path, [&](const char* spelled) { return statvfs(spelled, &volume); });
    return result == 0 ? uint64_t{volume.f_bavail} * volume.f_frsize : 0;
}

// A folder once, however many files are in it: each flush of one waits for the medium.
void FlushFiles(const std::vector<std::string>& paths) {
    std::map<std::string, std::string> fileOfFolder;
    for (const std::string& path : paths) {
        const std::string found = LookUpPath(path).fPath;
        AnnounceChange(MediumChange::kFlush, found);
        const Descriptor file(RetryInterrupted(
            [&] { return open(found.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK); }));
        if (file.IsOpen()) {
            FlushDescriptor(file, path);
            fileOfFolder[PathStyle::OfPlatform().FolderOf(found)] = found;
        } else if (errno != ENOENT && errno != ENOTDIR) {
            ThrowPathError(errno, path);
        }
    }
    for (const auto& [folder, file] : fileOfFolder) {
        FlushFolderOf(file);
    }
}

void RemoveFile(const std::string& path) {
    AnnounceChange(MediumChange::kRemoveFile, path);
    if (WithPathOnDisk(path, unlink) != 0) {
        ThrowPathError(errno, path);
    }
}

std::string MakeTemporaryFile(const std::string& prefix) {
    std::string path = TemporaryFolder() + "/" + prefix + kUniquePart;
    path += kTemporarySuffix;
    AnnounceChange(MediumChange::kCreateFile, path);
    const Descriptor created(mkostemps(path.data(), static_cast<int>(kTemporarySuffix.size()), O_CLOEXEC));
    if (!created.IsOpen()) {
        ThrowPathError(errno, path);
    }
    return path;
}

}  // namespace Vantor::Platform
