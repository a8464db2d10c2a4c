#include <fcntl.h>
#include <sys/stat.h>

#include <cstdio>
#include <vector>

#include "platform/File.h"
#include "platform/FileSystem.h"
#include "platform/MediumWatch.h"
#include "platform/posix/Neighbour.h"
#include "platform/posix/PathLookup.h"
#include "platform/posix/SystemError.h"

namespace Vantor::Platform {

namespace {

constexpr size_t kCopyBufferSize = size_t{256} * 1024;
constexpr mode_t kRightsMask = 07777;

// Symbolic links are moved and replaced themselves, so a link to nothing exists here.
LookedUpPath LookUpEntry(const std::string& path) {
    struct stat state = {};
    if (lstat(path.c_str(), &state) == 0) {
        return {path, Missing::kNothing};
    }
    return LookUpPath(path);
}

void CopyBytes(File& source, File& copy) {
    std::vector<char> buffer(kCopyBufferSize);
    while (const size_t count = source.Read(buffer.data(), buffer.size())) {
        copy.Write(buffer.data(), count);
    }
}

// As a rename would keep them, and those that are added. A medium that has no such rights or times does
// without.
void CopyRightsAndTimes(const std::string& from, const std::string& to, mode_t added) {
    struct stat state = {};
    if (stat(from.c_str(), &state) == 0) {
        const timespec times[] = {state.st_atim, state.st_mtim};
        chmod(to.c_str(), (state.st_mode & kRightsMask) | added);
        utimensat(AT_FDCWD, to.c_str(), times, 0);
    }
}

void FillNeighbour(const std::string& source, const std::string& neighbour, mode_t added) {
    const std::unique_ptr<File> original = OpenDiskFile(source, FileAccess::kRead);
    const std::unique_ptr<File> copy = OpenDiskFile(neighbour, FileAccess::kReadWrite);
    CopyBytes(*original, *copy);
    CopyRightsAndTimes(source, neighbour, added);
    copy->Flush();
    copy->Close();
}

void PutCopyInPlace(const std::string& source, const std::string& target, mode_t added) {
    Neighbour neighbour(target, kRightsOfMaker);
    neighbour.TakeDescriptor().Close();
    FillNeighbour(source, neighbour.GetPath(), added);
    neighbour.TakePlaceOfTarget();
}

void MoveToOtherVolume(const std::string& source, const std::string& target) {
    PutCopyInPlace(source, target, 0);
    if (MayChange(MediumChange::kRemoveFile, source)) {
        unlink(source.c_str());
    }
}

void Move(const std::string& source, const std::string& target) {
    AnnounceChange(MediumChange::kMove, source, target);
    if (rename(source.c_str(), target.c_str()) == 0) {
        FlushFolderOf(target);
        return;
    }
    if (errno != EXDEV) {
        ThrowFileError(errno, target);
    }
    MoveToOtherVolume(source, target);
}

}  // namespace

void MoveFileReplacing(const std::string& from, const std::string& to) {
    const LookedUpPath source = LookUpEntry(from);
    if (source.fMissing != Missing::kNothing) {
        ThrowPathError(ENOENT, from);
    }
    const LookedUpPath target = LookUpEntry(to);
    if (target.fMissing == Missing::kFolder) {
        ThrowPathError(ENOENT, to);
    }
    struct stat replaced = {};
    const bool isReplacing = stat(target.fPath.c_str(), &replaced) == 0 && S_ISREG(replaced.st_mode);
    try {
        Move(source.fPath, target.fPath);
    } catch (const FileException& error) {
        throw error.WithFileName(error.GetFileName() == source.fPath ? from : to);
    }
    // A file made as a temporary one is its maker's alone; in place of another it is for the same people.
    if (isReplacing) {
        chmod(target.fPath.c_str(), replaced.st_mode & kRightsMask);
    }
    NoteAdded(target.fPath);
}

void CopyFileReplacing(const std::string& from, const std::string& to) {
    const LookedUpPath source = LookUpPath(from);
    const LookedUpPath target = LookUpEntry(to);
    if (source.fMissing != Missing::kNothing) {
        ThrowPathError(ENOENT, from);
    }
    if (target.fMissing == Missing::kFolder) {
        ThrowPathError(ENOENT, to);
    }
    try {
        PutCopyInPlace(source.fPath, target.fPath, S_IWUSR);
    } catch (const FileException& error) {
        throw error.WithFileName(error.GetFileName() == source.fPath ? from : to);
    }
    NoteAdded(target.fPath);
}

}  // namespace Vantor::Platform
