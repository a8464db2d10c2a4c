#include "records/TImageDoc.h"

#include <string>
#include <utility>

#include "dicom/TImageFile.h"
#include "dicom/TTextUtil.h"
#include "records/ReferencedFile.h"

namespace Vantor {

namespace {

constexpr uint32_t kLongestImageNumberRead = 256;
constexpr size_t kLongestImageNumber = 12;

}  // namespace

TImageDoc::TImageDoc() : TParentDoc(kDocType) {}

TImageDoc::TImageDoc(const TDicomDataSet* record, TRecordDirectory* directory, uint32_t imageSetting)
    : TParentDoc(kDocType, record, directory), fImageSetting(imageSetting) {
    TImageDoc::MakeFile();
}

TImageDoc::TImageDoc(TStoredRecord record, TRecordDirectory* directory, uint32_t imageSetting)
    : TParentDoc(kDocType, std::move(record), directory), fImageSetting(imageSetting) {}

void TImageDoc::MakeFile() {
    const auto fileSpec = ReferencedFile::Find(Record(), GetDirectory());
    if (!fileSpec) return;
    const auto owner = reinterpret_cast<uintptr_t>(GetDirectory());
    SetDicomFile(std::make_unique<TImageFile>(owner, *fileSpec, fImageSetting));
    ReferencedFile::HandUids(Record(), *GetDicomFile());
}

TImageDoc::~TImageDoc() = default;

bool TImageDoc::GetSOPClassUID(char* buffer) {
    return ReferencedFile::GetUid(Record(), Tags::kReferencedSOPClassUIDInFile, buffer);
}

bool TImageDoc::GetSOPInstanceUID(char* buffer) {
    return ReferencedFile::GetUid(Record(), Tags::kReferencedSOPInstanceUIDInFile, buffer);
}

void TImageDoc::SetSOPClassUID(const char* text) {
    ReferencedFile::SetUid(Record(), Tags::kReferencedSOPClassUIDInFile, text);
}

void TImageDoc::SetSOPInstanceUID(const char* text) {
    ReferencedFile::SetUid(Record(), Tags::kReferencedSOPInstanceUIDInFile, text);
}

TDicomDoc* TImageDoc::CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                                      int32_t& error) {
    error = 0;
    if (directory == GetDirectory()) return this;
    const auto record = ReferencedFile::CopyRecordTo(*this, directory, ReferencedFile::kNotCopied);
    return PlaceCopy(record.get(), directory, parent, deep, error);
}

std::unique_ptr<TDicomDoc> TImageDoc::MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) {
    const uint32_t setting = directory == nullptr ? 0 : directory->GetImageSetting();
    return std::make_unique<TImageDoc>(record, directory, setting);
}

bool TImageDoc::IsSameRecord(TDicomDoc* other) { return ReferencedFile::CountsAsSame(*this, other); }

void TImageDoc::CompleteRecord() {
    TParentDoc::CompleteRecord();
    SetRecordType("IMAGE ");
    if (!HasElement(Tags::kInstanceNumber)) SetText(Tags::kInstanceNumber, Vr::kIS, "");
}

int32_t TImageDoc::GetImageNumber() {
    const TDicomDataSet* dataSet = GetDataSet();
    char text[kLongestImageNumberRead + 1] = {};
    if (dataSet == nullptr || !dataSet->GetText(Tags::kInstanceNumber, text, sizeof(text))) return 0;
    return TTextUtil().ReadInteger(text).value_or(0);
}

void TImageDoc::SetImageNumber(int32_t number) {
    SetText(Tags::kInstanceNumber, Vr::kIS, std::to_string(number).substr(0, kLongestImageNumber).c_str());
}

}  // namespace Vantor
