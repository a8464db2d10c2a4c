#include "wrappers/SeriesDeletion.h"

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "dicom/Attempt.h"
#include "dicom/TException.h"
#include "directory/TDicomDirectory.h"
#include "platform/Ascii.h"
#include "wrappers/Boundary.h"
#include "wrappers/DirectoryUpdate.h"
#include "wrappers/HeldDoc.h"

namespace VantorWrappers {

using Vantor::TDicomDirectory;
using Vantor::TDicomDoc;
using Vantor::TDicomFile;
using Vantor::TException;
using Vantor::TListOf;
using Vantor::TSeriesDoc;

namespace {

// As paths are compared that records name, which keep them in upper case.
std::string KeyOf(const std::string& path) { return Vantor::Platform::UpperCased(path); }

// What the records of a directory name, but for those of a series.
std::unordered_set<std::string> CollectFilesBeside(TDicomDirectory& directory, const TSeriesDoc& series) {
    std::unordered_set<std::string> files;
    const TListOf<Vantor::TPatientDoc>& patients = *directory.GetPatientDocs();
    std::vector<TDicomDoc*> docs(patients.begin(), patients.end());
    while (!docs.empty()) {
        TDicomDoc* const doc = docs.back();
        docs.pop_back();
        if (doc == &series) continue;
        files.insert(KeyOf(doc->GetFilePath()));
        TListOf<TDicomDoc> children;
        doc->GetChildDocs(children, true);
        docs.insert(docs.end(), children.begin(), children.end());
        docs.insert(docs.end(), doc->GetForeignChildren().begin(), doc->GetForeignChildren().end());
    }
    return files;
}

// A file that a record of another series names as well stays for that one.
void DeleteFiles(TDicomDirectory& directory, TSeriesDoc& series) {
    const auto others = CollectFilesBeside(directory, series);
    series.DeleteFilesFromDisk(
        [&](TDicomFile& file) { return others.count(KeyOf(file.GetFileSpec()->fPath)) > 0; });
}

}  // namespace

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
    Vantor::Succeeds([&] { DeleteFiles(fDirectory, series); });
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
