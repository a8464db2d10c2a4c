#include "records/TPrivateDoc.h"

#include <utility>

#include "records/ReferencedFile.h"

namespace Vantor {

TPrivateDoc::TPrivateDoc() : TLeafDoc(kDocType) {}

TPrivateDoc::TPrivateDoc(const TDicomDataSet* record, TRecordDirectory* directory)
    : TLeafDoc(kDocType, record, directory) {
    FindFile();
}

TPrivateDoc::TPrivateDoc(TStoredRecord record, TRecordDirectory* directory)
    : TLeafDoc(kDocType, std::move(record), directory) {}

void TPrivateDoc::MakeFile(const TFilePlaces& places) {
    KeepFile(ReferencedFile::MakePlainFile(Record(), places));
}

TDicomDoc* TPrivateDoc::CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                                        int32_t& error) {
    error = 0;
    if (directory == GetDirectory()) return this;
    // Under the name that it has elsewhere another file may be there.
    const auto record = ReferencedFile::CopyRecordTo(*this, directory, nullptr);
    return PlaceCopy(record.get(), directory, parent, deep, error);
}

std::unique_ptr<TDicomDoc> TPrivateDoc::MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) {
    return std::make_unique<TPrivateDoc>(record, directory);
}

void TPrivateDoc::CompleteRecord() {
    TLeafDoc::CompleteRecord();
    SetRecordType("PRIVATE ");
    if (HasElement(Tags::kPrivateRecordUID)) return;
    ReferencedFile::SetUid(Record(), Tags::kPrivateRecordUID, Uids::kPrivateRecord);
}

}  // namespace Vantor
