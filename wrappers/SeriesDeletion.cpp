#include "wrappers/SeriesDeletion.h"

#include <memory>
#include <string>

#include "dicom/Attempt.h"
#include "dicom/TException.h"
#include "directory/TDicomDirectory.h"
#include "wrappers/Boundary.h"
#include "wrappers/DirectoryUpdate.h"
#include "wrappers/HeldDoc.h"

namespace VantorWrappers {

using Vantor::TDicomDoc;
using Vantor::TException;
using Vantor::TSeriesDoc;

LuminaError SeriesDeletion::Run(TSeriesDoc& series) {
    try {
        TSeriesDoc* present = &series;
        const bool isPlain = IsPlainFolder(fDirectory);
        if (!isPlain && !OpenForUpdating(present)) {
            TraceError("Directory open for update failed");
            return {ErrorSeverity::Fatal, ErrorNumber::DirectoryReadOnly};
        }
        if (present != nullptr) Delete(*present);
        if (!isPlain) WriteDICOMDIR(fDirectory);
        return {};
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        return Fail(("Exception caught: " + std::to_string(error->GetErrorNumber())).c_str());
    } catch (...) {
        return Fail("Exception caught");
    }
}

// The DICOMDIR may have been changed by another program: the series is then another document, or null.
bool SeriesDeletion::OpenForUpdating(TSeriesDoc*& series) {
    const HeldDoc held(series);
    if (!fDirectory.OpenForUpdating()) return false;
    series = dynamic_cast<TSeriesDoc*>(fDirectory.FindDoc(series));
    return true;
}

void SeriesDeletion::Delete(TSeriesDoc& series) {
    TDicomDoc* const study = series.GetParentObj();
    // Files that cannot be told stay; the records go all the same.
    Vantor::Succeeds([&] { fDirectory.DeleteFiles(series); });
    fDirectory.DeleteFolders(&series);
    series.Discard();
    RemoveEmptyDocs(fDirectory, study, true);
}

// The records are what they are on disk again, so that the deletion can be tried anew.
LuminaError SeriesDeletion::Fail(const char* line) {
    TraceError(line);
    fDirectory.CloseFile();
    Vantor::Succeeds([this] { MakeRecordsAnew(fDirectory); });
    return {ErrorSeverity::Fatal, ErrorNumber::DeleteFailed};
}

}  // namespace VantorWrappers
