#include "records/TSR_Doc.h"

#include "records/ReferencedFile.h"

namespace Vantor {

TSR_Doc::TSR_Doc() : TParentDoc(kDocType) {}

TSR_Doc::TSR_Doc(const TDicomDataSet* record, TRecordDirectory* directory)
    : TParentDoc(kDocType, record, directory) {
    const auto fileSpec = ReferencedFile::Find(Record(), directory);
    if (!fileSpec) return;
    auto file = std::make_unique<TSRFile>(reinterpret_cast<uintptr_t>(directory), *fileSpec);
    file->CheckForQuantixReport();
    // What the record says counts, also where it says nothing: the file has told its own UIDs by now.
    char uid[kMaximumUidLength + 1] = {};
    GetSOPClassUID(uid);
    file->SetSOPClassUID(uid);
    uid[0] = '\0';
    GetSOPInstanceUID(uid);
    file->SetSOPInstanceUID(uid);
    SetDicomFile(std::move(file));
}

TSR_Doc::~TSR_Doc() = default;

bool TSR_Doc::GetSOPClassUID(char* buffer) {
    return ReferencedFile::GetUid(Record(), Tags::kReferencedSOPClassUIDInFile, buffer);
}

bool TSR_Doc::GetSOPInstanceUID(char* buffer) {
    return ReferencedFile::GetUid(Record(), Tags::kReferencedSOPInstanceUIDInFile, buffer);
}

void TSR_Doc::SetSOPClassUID(const char* text) {
    ReferencedFile::SetUid(Record(), Tags::kReferencedSOPClassUIDInFile, text);
}

void TSR_Doc::SetSOPInstanceUID(const char* text) {
    ReferencedFile::SetUid(Record(), Tags::kReferencedSOPInstanceUIDInFile, text);
}

TDicomDoc* TSR_Doc::CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                                    int32_t& error) {
    error = 0;
    if (directory == GetDirectory()) return this;
    const auto record = ReferencedFile::CopyRecordTo(*this, directory, nullptr);
    return PlaceCopy(record.get(), directory, parent, deep, error);
}

std::unique_ptr<TDicomDoc> TSR_Doc::MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) {
    return std::make_unique<TSR_Doc>(record, directory);
}

bool TSR_Doc::IsSameRecord(TDicomDoc* other) { return ReferencedFile::CountsAsSame(*this, other); }

void TSR_Doc::CompleteRecord() {
    TParentDoc::CompleteRecord();
    SetRecordType("SR DOCUMENT ");
}

bool TSR_Doc::IsQuantixReport() {
    const TSRFile* const file = GetSRFile();
    return file != nullptr && file->HasQuantixReport();
}

}  // namespace Vantor
