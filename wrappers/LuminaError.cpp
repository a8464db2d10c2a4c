#include "wrappers/LuminaError.h"

namespace VantorWrappers {

const char* NameOf(ErrorNumber number) {
    switch (number) {
        case ErrorNumber::NoError:
            return "NoError";
        case ErrorNumber::StudyNotInDirectory:
            return "StudyNotInDirectory";
        case ErrorNumber::DirectoryInvalid:
            return "DirectoryInvalid";
        case ErrorNumber::MissingDirectoryObject:
            return "MissingDirectoryObject";
        case ErrorNumber::DeleteFailedSeriesOpen:
            return "DeleteFailedSeriesOpen";
        case ErrorNumber::DeleteFailed:
            return "DeleteFailed";
        case ErrorNumber::DirectoryReadOnly:
            return "DirectoryReadOnly";
        case ErrorNumber::CopySeriesFailure:
            return "CopySeriesFailure";
        case ErrorNumber::CopySeriesVolumeFull:
            return "CopySeriesVolumeFull";
        case ErrorNumber::CopySeriesDirUpdateFailure:
            return "CopySeriesDirUpdateFailure";
        case ErrorNumber::SaveGeneralFailure:
            return "SaveGeneralFailure";
        case ErrorNumber::SaveOpenForUpdateFailure:
            return "SaveOpenForUpdateFailure";
        case ErrorNumber::FileNamesAllUsed:
            return "FileNamesAllUsed";
        case ErrorNumber::DirectoryWriteError:
            return "DirectoryWriteError";
        case ErrorNumber::RepairFailure:
            return "RepairFailure";
        case ErrorNumber::CopySeriesDestMissing:
            return "CopySeriesDestMissing";
        case ErrorNumber::CopySeriesFAT32:
            break;
    }
    return "CopySeriesFAT32";
}

}  // namespace VantorWrappers
