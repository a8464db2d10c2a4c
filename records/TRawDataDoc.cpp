#include "records/TRawDataDoc.h"

#include "platform/CodePage.h"
#include "records/ReferencedFile.h"

namespace Vantor {

TRawDataDoc::TRawDataDoc() : TLeafDoc(kDocType) {}

TRawDataDoc::TRawDataDoc(const TDicomDataSet* record, TRecordDirectory* directory)
    : TLeafDoc(kDocType, record, directory) {
    FindFile();
    ReferencedFile::HandUids(Record(), *this);
}

void TRawDataDoc::MakeFile(const TFilePlaces& places) {
    KeepFile(ReferencedFile::MakePlainFile(Record(), places));
}

TDicomDoc* TRawDataDoc::CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                                        int32_t& error) {
    error = 0;
    if (directory == GetDirectory()) return this;
    const auto record = ReferencedFile::CopyRecordTo(*this, directory, ReferencedFile::kNotCopied);
    return PlaceCopy(record.get(), directory, parent, deep, error);
}

std::unique_ptr<TDicomDoc> TRawDataDoc::MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) {
    return std::make_unique<TRawDataDoc>(record, directory);
}

std::string TRawDataDoc::GetHostKey() const { return Platform::AsHostsSee(fSOPInstanceUID.Get().fText); }

void TRawDataDoc::CompleteRecord() {
    TLeafDoc::CompleteRecord();
    SetRecordType("RAW DATA");
}

}  // namespace Vantor
