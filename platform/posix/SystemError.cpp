#include "platform/posix/SystemError.h"

namespace Vantor::Platform {

FileException::Cause CauseOfError(int error) {
    using Cause = FileException::Cause;
    switch (error) {
        case ENOENT:
            return Cause::kFileNotFound;
        case ENOTDIR:
        case ENAMETOOLONG:
        case ELOOP:
        case EINVAL:  // a name that the medium's file system cannot hold
        case EILSEQ:
            return Cause::kBadPath;
        case EMFILE:
        case ENFILE:
            return Cause::kTooManyOpenFiles;
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR:
        case EEXIST:
            return Cause::kAccessDenied;
        case EMLINK:
            return Cause::kDirectoryFull;
        case ESPIPE:
            return Cause::kBadSeek;
        case EIO:
        case ENXIO:
        case ENODEV:
        case ESTALE:
        case ENOMEDIUM:
        case EREMOTEIO:
        case ETIMEDOUT:
        case EHOSTDOWN:
        case EHOSTUNREACH:
            return Cause::kHardIO;
        case EAGAIN:
        case EBUSY:    // what a Windows share answers when another client holds the file
        case ETXTBSY:  // the same from an older mount, and a program that is running
            return Cause::kSharingViolation;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:  // 4 GB on a FAT32 medium
            return Cause::kDiskFull;
        default:
            return Cause::kGeneric;
    }
}

void ThrowFileError(int error, const std::string& path) {
    throw FileException(CauseOfError(error), error, path);
}

}  // namespace Vantor::Platform
