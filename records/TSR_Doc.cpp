#include "records/TSR_Doc.h"

#include <utility>

#include "records/ReferencedFile.h"

namespace Vantor {

TSR_Doc::TSR_Doc() : TInstanceDoc(kDocType) {}

TSR_Doc::TSR_Doc(const TDicomDataSet* record, TRecordDirectory* directory)
    : TInstanceDoc(kDocType, record, directory) {
    FindFile();
}

void TSR_Doc::MakeFile(const TFilePlaces& places) {
    const auto fileSpec = ReferencedFile::Find(Record(), places);
    if (!fileSpec) return;
    auto file = std::make_unique<TSRFile>(places.GetOwner(), *fileSpec);
    if (TRecordDirectory* const directory = GetDirectory(); directory != nullptr) {
        directory->CheckReport(*file);
    } else {
        file->CheckForQuantixReport();
    }
    // What the record says counts, also where it says nothing: the file has told its own UIDs by now.
    TUidText sopClass;
    TUidText sopInstance;
    GetSOPClassUID(sopClass.fText);
    GetSOPInstanceUID(sopInstance.fText);
    file->SetSOPClassUID(sopClass.fText);
    file->SetSOPInstanceUID(sopInstance.fText);
    KeepFile(std::move(file));
}

std::unique_ptr<TDicomDoc> TSR_Doc::MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) {
    return std::make_unique<TSR_Doc>(record, directory);
}

void TSR_Doc::CompleteRecord() {
    TInstanceDoc::CompleteRecord();
    SetRecordType("SR DOCUMENT ");
}

bool TSR_Doc::IsQuantixReport() {
    const TSRFile* const file = GetSRFile();
    return file != nullptr && file->HasQuantixReport();
}

}  // namespace Vantor
