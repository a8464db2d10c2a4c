#include "wrappers/DirectoryUpdate.h"

#include "dicom/TException.h"
#include "directory/TFolderDirectory.h"

namespace VantorWrappers {

using Vantor::TDicomDirectory;
using Vantor::TDicomDoc;
using Vantor::TException;
using Vantor::TFolderDirectory;
using Vantor::TListOf;

namespace {

bool HasChildren(TDicomDoc& doc) {
    TListOf<TDicomDoc> children;
    doc.GetChildDocs(children, true);
    return children.GetCount() > 0 || !doc.GetForeignChildren().empty();
}

}  // namespace

void WriteDICOMDIR(TDicomDirectory& directory) {
    directory.WriteDICOMDIR();
    const auto* const folder = dynamic_cast<const TFolderDirectory*>(&directory);
    if (folder != nullptr && folder->GetHasDICOMDIRflag() && !folder->HasWritten()) {
        throw new TException(Vantor::ErrorNumbers::kRecordStructure, "DICOMDIR was not written");
    }
    directory.UpdateModTime();
}

void WriteNamed(TDicomDirectory& directory, const std::string& name, const std::function<void()>& write) {
    char old[TDicomDirectory::kDirectoryNameSize] = {};
    directory.GetDirName(old, sizeof(old));
    try {
        directory.SetDirName(name.c_str());
        write();
    } catch (...) {
        directory.SetDirName(old);
        throw;
    }
}

bool IsPlainFolder(const TDicomDirectory& directory) {
    const auto* const folder = dynamic_cast<const TFolderDirectory*>(&directory);
    return folder != nullptr && !folder->GetHasDICOMDIRflag();
}

void MakeRecordsAnew(TDicomDirectory& directory) {
    if (!IsPlainFolder(directory)) return directory.RefreshDocs();
    dynamic_cast<TFolderDirectory&>(directory).LookAgain();
}

void RemoveEmptyDocs(TDicomDirectory& directory, TDicomDoc* lowest, bool deletesFolders) {
    TDicomDoc* doc = lowest;
    while (doc != nullptr && !HasChildren(*doc)) {
        TDicomDoc* const above = doc->GetParentObj();
        // The top one, a patient, has no folder of its own.
        if (above != nullptr && deletesFolders) directory.DeleteFolders(doc);
        doc->Discard();
        doc = above;
    }
}

}  // namespace VantorWrappers
