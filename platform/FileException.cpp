#include "platform/FileException.h"

#include <utility>

namespace Vantor::Platform {

const char* CauseText(FileException::Cause cause) {
    using Cause = FileException::Cause;
    switch (cause) {
        case Cause::kFileNotFound:
            return "file not found";
        case Cause::kBadPath:
            return "path not found or not usable";
        case Cause::kTooManyOpenFiles:
            return "too many open files";
        case Cause::kAccessDenied:
            return "access denied";
        case Cause::kDirectoryFull:
            return "folder is full";
        case Cause::kBadSeek:
            return "position outside the file";
        case Cause::kHardIO:
            return "device error";
        case Cause::kSharingViolation:
            return "in use by another program";
        case Cause::kDiskFull:
            return "disk is full";
        case Cause::kEndOfFile:
            return "unexpected end of file";
        case Cause::kGeneric:
            break;
    }
    return "file operation failed";
}

FileException::FileException(Cause cause, int32_t osError, std::string fileName)
    : fCause(cause), fOsError(osError), fFileName(std::move(fileName)) {
    fMessage = fFileName + ": " + CauseText(fCause);
    if (fCause == Cause::kGeneric && fOsError != 0) {
        fMessage += " (system error " + std::to_string(fOsError) + ")";
    }
}

FileException FileException::WithFileName(const std::string& fileName) const {
    return FileException(fCause, fOsError, fileName);
}

}  // namespace Vantor::Platform
