#include "platform/posix/LockedFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "platform/MediumWatch.h"
#include "platform/posix/PathLookup.h"
#include "platform/posix/SystemError.h"

namespace Vantor::Platform {

namespace {

static_assert(sizeof(off_t) == sizeof(int64_t), "files of any size need 64-bit offsets");

// Never waits for the other end of a pipe, never becomes the terminal of the process, never leaks into a
// program that the host starts.
constexpr int kCommonFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
constexpr mode_t kNewFileMode = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;  // less the umask

// How often a file may be replaced between opening and locking it before that is taken for somebody else's
// use of the path.
constexpr int kAttempts = 16;

int OpenExisting(const std::string& path, int accessFlags) {
    return WithPathOnDisk(path, [&](const char* spelled) {
        return RetryInterrupted([&] { return open(spelled, accessFlags | kCommonFlags); });
    });
}

int OpenOrCreate(const std::string& path) {
    const int existing = RetryInterrupted([&] { return open(path.c_str(), O_RDWR | kCommonFlags); });
    if (existing >= 0 || errno != ENOENT) {
        return existing;
    }
    const LookedUpPath found = LookUpPath(path);
    const int opened = RetryInterrupted(
        [&] { return open(found.fPath.c_str(), O_RDWR | O_CREAT | kCommonFlags, kNewFileMode); });
    if (opened >= 0 && found.fMissing == Missing::kName) {
        NoteAdded(found.fPath);
    }
    return opened;
}

// Takes what open() gave. Sockets and devices without a driver already fail there, in words of their own.
Descriptor TakeOpened(int opened, const std::string& path) {
    using Cause = FileException::Cause;
    if (opened < 0) {
        if (errno == ENXIO || errno == ENODEV) {
            throw FileException(Cause::kAccessDenied, errno, path);
        }
        ThrowPathError(errno, path);
    }
    Descriptor descriptor(opened);
    struct stat state = {};
    if (fstat(opened, &state) != 0) {
        ThrowFileError(errno, path);
    }
    if (!S_ISREG(state.st_mode)) {
        throw FileException(Cause::kAccessDenied, S_ISDIR(state.st_mode) ? EISDIR : EACCES, path);
    }
    return descriptor;
}

bool KnowsNoLocks(int error) {
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == ENOLCK;
}

void LockWhole(const Descriptor& descriptor, FileAccess access, const std::string& path) {
    struct flock lock = {};
    lock.l_type = access == FileAccess::kRead ? F_RDLCK : F_WRLCK;
    lock.l_whence = SEEK_SET;  // from the start, to an end of any length
    if (RetryInterrupted([&] { return fcntl(descriptor.Get(), F_OFD_SETLK, &lock); }) == 0 ||
        KnowsNoLocks(errno)) {
        return;
    }
    if (errno == EAGAIN || errno == EACCES) {
        throw FileException(FileException::Cause::kSharingViolation, errno, path);
    }
    ThrowFileError(errno, path);
}

bool IsStillAt(const std::string& path, const Descriptor& descriptor) {
    struct stat opened = {};
    struct stat present = {};
    return fstat(descriptor.Get(), &opened) == 0 &&
           WithPathOnDisk(path, [&](const char* spelled) { return stat(spelled, &present); }) == 0 &&
           opened.st_dev == present.st_dev && opened.st_ino == present.st_ino;
}

// Opens a file to be held alone. Between opening and locking it, a program that held it may have put
// another file in its place, and what is written to the old one would be lost.
template <typename Open>
Descriptor OpenAlone(const std::string& path, Open open) {
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        Descriptor descriptor = TakeOpened(open(), path);
        LockWhole(descriptor, FileAccess::kReadWrite, path);
        if (IsStillAt(path, descriptor)) {
            return descriptor;
        }
    }
    throw FileException(FileException::Cause::kSharingViolation, EAGAIN, path);
}

}  // namespace

Descriptor OpenLocked(const std::string& path, FileAccess access) {
    if (access == FileAccess::kReadWrite) {
        return OpenAlone(path, [&] { return OpenExisting(path, O_RDWR); });
    }
    Descriptor descriptor = TakeOpened(OpenExisting(path, O_RDONLY), path);
    LockWhole(descriptor, access, path);
    return descriptor;
}

Descriptor CreateLocked(const std::string& path) {
    AnnounceChange(MediumChange::kCreateFile, path);
    Descriptor descriptor = OpenAlone(path, [&] { return OpenOrCreate(path); });
    if (RetryInterrupted([&] { return ftruncate(descriptor.Get(), 0); }) != 0) {
        ThrowFileError(errno, path);
    }
    return descriptor;
}

}  // namespace Vantor::Platform
