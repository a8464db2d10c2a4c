#include "platform/windows/SystemError.h"

#include <windows.h>

namespace Vantor::Platform {

namespace {

// Structured storage numbers its own failures after the system's, up to here.
constexpr int kLastSharedStorageCode = 0xEF;

// ERROR_DISK_QUOTA_EXCEEDED, which not every compiler's headers name.
constexpr uint32_t kDiskQuotaExceeded = 1295;

}  // namespace

FileException::Cause CauseOfError(uint32_t error) {
    using Cause = FileException::Cause;
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
            return Cause::kFileNotFound;
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
        case ERROR_BAD_NETPATH:
        case ERROR_BAD_NET_NAME:
        case ERROR_INVALID_DRIVE:
        case ERROR_FILENAME_EXCED_RANGE:
        case ERROR_BUFFER_OVERFLOW:
        case ERROR_DIRECTORY:
            return Cause::kBadPath;
        case ERROR_TOO_MANY_OPEN_FILES:
            return Cause::kTooManyOpenFiles;
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
        case ERROR_INVALID_ACCESS:
        case ERROR_NETWORK_ACCESS_DENIED:
        case ERROR_CURRENT_DIRECTORY:
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS:
        case ERROR_PRIVILEGE_NOT_HELD:
        case ERROR_FILE_READ_ONLY:
        case ERROR_LOCK_VIOLATION:  // these are not over when another program closes the file
        case ERROR_SHARING_BUFFER_EXCEEDED:
        case ERROR_USER_MAPPED_FILE:
        case ERROR_DELETE_PENDING:
        case ERROR_BUSY:
            return Cause::kAccessDenied;
        case ERROR_CANNOT_MAKE:
            return Cause::kDirectoryFull;
        case ERROR_SEEK:
        case ERROR_NEGATIVE_SEEK:
        case ERROR_SEEK_ON_DEVICE:
            return Cause::kBadSeek;
        case ERROR_READ_FAULT:
        case ERROR_WRITE_FAULT:
        case ERROR_GEN_FAILURE:
        case ERROR_CRC:
        case ERROR_IO_DEVICE:
        case ERROR_NOT_READY:
        case ERROR_BAD_UNIT:
        case ERROR_SECTOR_NOT_FOUND:
        case ERROR_WRONG_DISK:
        case ERROR_DEV_NOT_EXIST:
        case ERROR_UNEXP_NET_ERR:
        case ERROR_NETNAME_DELETED:
        case ERROR_MEDIA_CHANGED:
        case ERROR_NO_MEDIA_IN_DRIVE:
        case ERROR_DEVICE_NOT_CONNECTED:
        case ERROR_UNRECOGNIZED_VOLUME:
        case ERROR_UNRECOGNIZED_MEDIA:
        case ERROR_FILE_CORRUPT:
        case ERROR_DISK_CORRUPT:
            return Cause::kHardIO;
        case ERROR_SHARING_VIOLATION:
            return Cause::kSharingViolation;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
        case kDiskQuotaExceeded:
        case ERROR_FILE_TOO_LARGE:
            return Cause::kDiskFull;
        case ERROR_HANDLE_EOF:
            return Cause::kEndOfFile;
        default:
            return Cause::kGeneric;
    }
}

FileException::Cause CauseOfResult(int32_t result) {
    const int code = HRESULT_CODE(result);
    if (result == STG_E_INVALIDNAME) {
        return FileException::Cause::kBadPath;
    }
    if (result == STG_E_INUSE) {
        return FileException::Cause::kSharingViolation;
    }
    if (HRESULT_FACILITY(result) == FACILITY_WIN32 ||
        (HRESULT_FACILITY(result) == FACILITY_STORAGE && code <= kLastSharedStorageCode)) {
        return CauseOfError(static_cast<uint32_t>(code));
    }
    return FileException::Cause::kGeneric;
}

void ThrowFileError(uint32_t error, const std::string& path) {
    throw FileException(CauseOfError(error), static_cast<int32_t>(error), path);
}

void ThrowLastError(const std::string& path) { ThrowFileError(GetLastError(), path); }

void ThrowStorageError(int32_t result, const std::string& path) {
    throw FileException(CauseOfResult(result), result, path);
}

}  // namespace Vantor::Platform
