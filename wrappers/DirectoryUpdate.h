#pragma once

#include <functional>
#include <string>

namespace Vantor {
class TDicomDirectory;
class TDicomDoc;
}  // namespace Vantor

namespace VantorWrappers {

// Steps that changes of a directory have in common.

// Writes the DICOMDIR and notes its time. Throws as TDicomDirectory::WriteDICOMDIR, and also TException 102
// when that of a folder could not be written.
void WriteDICOMDIR(Vantor::TDicomDirectory& directory);

// Gives a directory a File-set ID and runs what writes it. When that throws it has its old one again, as on
// disk: the next update would bring the new one there although the host was told that this has failed.
void WriteNamed(Vantor::TDicomDirectory& directory, const std::string& name,
                const std::function<void()>& write);

// True for a folder that has no DICOMDIR: nothing has to be opened or written to change it.
bool IsPlainFolder(const Vantor::TDicomDirectory& directory);

// Makes the records what they are on disk: those of the DICOMDIR as it was read last, or, of a plain folder,
// those of the files that are there. Throws as TDicomDirectory::RefreshDocs.
void MakeRecordsAnew(Vantor::TDicomDirectory& directory);

// Takes out a study or patient that nothing is below any more, and then what is above it, up to the first one
// that has something left. `deletesFolders`: the folder of a study goes from disk as well.
void RemoveEmptyDocs(Vantor::TDicomDirectory& directory, Vantor::TDicomDoc* lowest, bool deletesFolders);

}  // namespace VantorWrappers
