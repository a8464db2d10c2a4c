#pragma once

#include <cstdint>

namespace VantorWrappers {

enum class ErrorSeverity : int32_t {
    InternalError = 0,  // the library or its host is at fault
    Fatal = 1,
    Warning = 2,
    Informational = 3,
    Success = 4,
};

enum class ErrorNumber : int32_t {
    NoError = 0,
    StudyNotInDirectory = 1,
    DirectoryInvalid = 2,
    MissingDirectoryObject = 3,
    DeleteFailedSeriesOpen = 4,
    DeleteFailed = 5,
    DirectoryReadOnly = 6,
    CopySeriesFailure = 7,
    CopySeriesVolumeFull = 8,
    CopySeriesDirUpdateFailure = 9,
    SaveGeneralFailure = 10,
    SaveOpenForUpdateFailure = 11,
    FileNamesAllUsed = 12,
    DirectoryWriteError = 13,
    RepairFailure = 14,
    CopySeriesDestMissing = 15,
    CopySeriesFAT32 = 16,
};

// How an operation ended.
class LuminaError {
  public:
    // Success, without error.
    LuminaError() = default;
    LuminaError(ErrorSeverity severity, ErrorNumber number) : fSeverity(severity), fErrorNumber(number) {}

    ErrorSeverity GetSeverityLevel() const { return fSeverity; }
    ErrorNumber GetErrorNumber() const { return fErrorNumber; }

    // True without an error number, and with a severity that lets go on.
    bool IsSuccess() const {
        return fSeverity != ErrorSeverity::Fatal && fSeverity != ErrorSeverity::InternalError &&
               fErrorNumber == ErrorNumber::NoError;
    }

    bool operator==(const LuminaError&) const = default;

  private:
    ErrorSeverity fSeverity = ErrorSeverity::Success;
    ErrorNumber fErrorNumber = ErrorNumber::NoError;
};

// Addition for hosts: the number's name, such as "CopySeriesVolumeFull".
const char* NameOf(ErrorNumber number);

}  // namespace VantorWrappers
