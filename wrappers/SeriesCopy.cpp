#include "wrappers/SeriesCopy.h"

#include <memory>
#include <string_view>
#include <utility>

#include "dicom/Attempt.h"
#include "dicom/TException.h"
#include "directory/TDicomDirectory.h"
#include "platform/Ascii.h"
#include "platform/FileException.h"
#include "platform/FileSystem.h"
#include "platform/PathStyle.h"
#include "wrappers/Boundary.h"
#include "wrappers/DirectoryUpdate.h"
#include "wrappers/HeldDoc.h"

namespace VantorWrappers {

namespace {

using Vantor::TDicomDirectory;
using Vantor::TDicomDoc;
using Vantor::TException;
using Vantor::TListOf;
using Vantor::TSeriesDoc;
using Vantor::Platform::FileException;
using Vantor::Platform::PathStyle;

// How long a step lasts, in milliseconds.
constexpr int32_t kStepTime = 100;

constexpr char kExceptionCaught[] = "CopySeries - Exception caught: ";

constexpr wchar_t kFormatWithoutLargeFiles[] = L"FAT32";

}  // namespace

SeriesCopy::SeriesCopy(TDicomDirectory& destination, const DriveInfo* drive, Progress progress)
    : fDestination(&destination), fDrive(drive), fProgress(std::move(progress)) {}

LuminaError SeriesCopy::Run(TSeriesDoc& series) {
    const HeldDoc held(&series);  // beyond the import, which lets go of it
    try {
        CopyFiles(series);
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        Fail(ErrorNumber::CopySeriesFailure, kExceptionCaught + std::to_string(error->GetErrorNumber()));
    } catch (const FileException& error) {
        FailOnFile(error);
    } catch (...) {
        Fail(ErrorNumber::CopySeriesVolumeFull, "CopySeries - Exception caught, likely due to full volume");
    }
    if (fDestination == nullptr) return fResult;
    if (!fResult.IsSuccess()) GiveUp(series);
    if (!fIsStopped) WriteDirectory(series);
    return fResult;
}

// ---- The files ----

// The last step, which enters the records, opens the DICOMDIR for updating.
void SeriesCopy::CopyFiles(TSeriesDoc& series) {
    fDestination->ClearDocsToMove();
    TListOf<TDicomDoc> docs;
    docs.InsertItemAt(docs.kAtEnd, &series);
    fDestination->SetImportDocs(docs);
    int32_t index = 0;
    int32_t count = 0;
    int32_t copiedKB = 0;
    int32_t totalKB = 0;
    char message[TDicomDirectory::kMessageSize] = {};
    while (!fDestination->ImportDocs(kStepTime, index, count, copiedKB, totalKB, message)) {
        if (!fProgress(copiedKB, totalKB)) {
            fDestination = nullptr;
            return Stop(ErrorNumber::CopySeriesFailure, "CopySeries - The directory is gone");
        }
        // The host may have made another copy meanwhile, which has ended this one. What it has entered stays,
        // also when that is the same series.
        if (count == 0) {
            fDestination = nullptr;
            return Stop(ErrorNumber::CopySeriesFailure, "CopySeries - There is nothing to copy");
        }
    }
    if (message[0] == '\0') return;
    Stop(HasRootFolder() ? ErrorNumber::CopySeriesDirUpdateFailure : ErrorNumber::CopySeriesDestMissing,
         std::string("CopySeries - ") + message);
}

// ---- Failures ----

void SeriesCopy::Stop(ErrorNumber number, const std::string& line) {
    fIsStopped = true;
    Fail(number, line);
}

void SeriesCopy::Fail(ErrorNumber number, const std::string& line) {
    if (fResult.IsSuccess()) fResult = LuminaError(ErrorSeverity::Fatal, number);
    TraceError(line);
}

void SeriesCopy::FailOnFile(const FileException& error) {
    const std::string fileName(Vantor::Platform::Trimmed(error.GetFileName()));
    if (fileName.empty()) {
        return Fail(ErrorNumber::CopySeriesVolumeFull,
                    "CopySeries - File exception caught, no file name provided.");
    }
    ErrorNumber number = ErrorNumber::CopySeriesVolumeFull;
    if (!HasFolderOf(fileName)) {
        number = ErrorNumber::CopySeriesDestMissing;
    } else if (fDrive != nullptr && fDrive->GetDriveFormat() == kFormatWithoutLargeFiles) {
        number = ErrorNumber::CopySeriesFAT32;
    }
    Fail(number, "CopySeries - File exception caught for file: " + fileName);
}

// Failures while a file is written name what is written instead of a path.
bool SeriesCopy::HasFolderOf(const std::string& fileName) const {
    const PathStyle& style = PathStyle::OfPlatform();
    if (style.FolderPart(fileName).empty()) return HasRootFolder();
    return Vantor::Platform::PathExists(style.FolderOf(fileName));
}

bool SeriesCopy::HasRootFolder() const {
    const PathStyle& style = PathStyle::OfPlatform();
    return Vantor::Platform::PathExists(IsPlainFolder(*fDestination)
                                            ? fDestination->GetFullPath()
                                            : style.FolderOf(fDestination->GetFullPath()));
}

// A series that was entered in part must not pass for a copied one when the host tries again.
void SeriesCopy::GiveUp(TSeriesDoc& series) {
    fDestination->ClearDocsToMove();
    if (fDestination->IsOpen()) {
        Vantor::Succeeds([this] { fDestination->RefreshDocs(); });
        return;
    }
    TakeOut(series);
}

void SeriesCopy::TakeOut(TSeriesDoc& series) {
    TDicomDoc* const entered = fDestination->FindDoc(&series);
    if (entered == nullptr) return;
    TDicomDoc* const study = entered->GetParentObj();
    entered->Discard();
    RemoveEmptyDocs(*fDestination, study, false);
}

// ---- The DICOMDIR ----

void SeriesCopy::WriteDirectory(TSeriesDoc& series) {
    try {
        WriteDICOMDIR(*fDestination);
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        FailToWrite(series, kExceptionCaught + std::to_string(error->GetErrorNumber()));
    } catch (...) {
        FailToWrite(series, "Exception caught");
    }
}

// Neither must one that is in memory only. Where it may have been on disk before, from another program, the
// records are those on disk again.
void SeriesCopy::FailToWrite(TSeriesDoc& series, const std::string& line) {
    Fail(ErrorNumber::CopySeriesDirUpdateFailure, line);
    Vantor::Succeeds([&] {
        if (fDestination->IsUnwritten()) {
            TakeOut(series);
        } else if (fDestination->FindDoc(&series) != nullptr) {
            fDestination->RefreshDocs();
        }
    });
}

}  // namespace VantorWrappers
