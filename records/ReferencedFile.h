#pragma once

#include <memory>
#include <optional>

#include "dicom/TDicomDataSet.h"
#include "dicom/TFileSpec.h"
#include "records/TDicomDoc.h"

// What the records of instances have in common: they name a file of the medium, its class and its instance.
namespace Vantor::ReferencedFile {

// Where the file is; none when the record names none.
std::optional<TFileSpec> Find(const TDicomDataSet* record, const TFilePlaces& places);

// Read and write a referenced UID of the record, as TIODSource's operations do their own.
bool GetUid(const TDicomDataSet* record, Tag tag, char* buffer);
void SetUid(TDicomDataSet* record, Tag tag, const char* text);

// Gives the referenced UIDs that the record has to a file or document.
void HandUids(const TDicomDataSet* record, TIODSource& receiver);

// A plain file object for the file that the record names, with its UIDs; null when it names none.
std::unique_ptr<TDicomFile> MakePlainFile(const TDicomDataSet* record, const TFilePlaces& places);

// A copy of a document's record for another directory. It names the file that is registered there for the
// document's instance; without one, the fallback, or what it named before when that is null.
std::unique_ptr<TDicomDataSet> CopyRecordTo(TDicomDoc& doc, TRecordDirectory* directory,
                                            const char* fallback);

// Puts what a record lacks of the reference to a file: its file ID, when it is below the directory's folder,
// and its transfer syntax, for which the file is looked into when the object does not know it. `directory`
// may be null.
void CompleteReference(TDicomDataSet& record, TDicomFile& file, TRecordDirectory* directory);

// Named in a copied record whose file is not registered with the directory.
inline constexpr char kNotCopied[] = "NOT_COPIED";

}  // namespace Vantor::ReferencedFile
