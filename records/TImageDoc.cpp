#include "records/TImageDoc.h"

#include <algorithm>
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

TImageDoc::TImageDoc() : TInstanceDoc(kDocType) {}

TImageDoc::TImageDoc(const TDicomDataSet* record, TRecordDirectory* directory, uint32_t imageSetting)
    : TInstanceDoc(kDocType, record, directory), fImageSetting(imageSetting) {
    FindFile();
}

TImageDoc::TImageDoc(TStoredRecord record, TRecordDirectory* directory, uint32_t imageSetting)
    : TInstanceDoc(kDocType, std::move(record), directory), fImageSetting(imageSetting) {}

void TImageDoc::MakeFile(const TFilePlaces& places) {
    const auto fileSpec = ReferencedFile::Find(Record(), places);
    if (!fileSpec) return;
    KeepFile(std::make_unique<TImageFile>(places.GetOwner(), *fileSpec, fImageSetting));
    ReferencedFile::HandUids(Record(), *GetDicomFile());
}

std::unique_ptr<TDicomDoc> TImageDoc::MakeCopy(const TDicomDataSet* record, TRecordDirectory* directory) {
    const uint32_t setting = directory == nullptr ? 0 : directory->GetImageSetting();
    return std::make_unique<TImageDoc>(record, directory, setting);
}

const char* TImageDoc::GetFallbackFileID() const { return ReferencedFile::kNotCopied; }

void TImageDoc::CompleteRecord() {
    TInstanceDoc::CompleteRecord();
    SetRecordType("IMAGE ");
    if (!HasElement(Tags::kInstanceNumber)) SetText(Tags::kInstanceNumber, Vr::kIS, "");
}

int32_t TImageDoc::GetImageNumber() {
    char text[kLongestImageNumberRead + 1] = {};
    if (!ViewRecord().GetText(Tags::kInstanceNumber, text, sizeof(text))) return 0;
    return TTextUtil().ReadInteger(text).value_or(0);
}

TImageOutline TImageDoc::GetOutline() {
    char fileID[TFileSpec::kPathSize];
    char sopClassUID[kMaximumUidLength];
    char sopInstanceUID[kMaximumUidLength];
    char number[kLongestImageNumberRead + 1] = {};
    TDicomDataSet::Wanted wanted[] = {
        {Tags::kReferencedFileID, fileID, sizeof(fileID)},
        {Tags::kReferencedSOPClassUIDInFile, sopClassUID, sizeof(sopClassUID)},
        {Tags::kReferencedSOPInstanceUIDInFile, sopInstanceUID, sizeof(sopInstanceUID)},
        {Tags::kInstanceNumber, number, kLongestImageNumberRead}};
    TImageOutline outline;
    if (!IsAsStored() || !ViewRecord().FindElements(wanted)) {
        outline.fSOPClassUID = PeekText(Tags::kReferencedSOPClassUIDInFile).value_or("");
        outline.fSOPInstanceUID = PeekText(Tags::kReferencedSOPInstanceUIDInFile).value_or("");
        outline.fImageNumber = GetImageNumber();
        outline.fFilePath = GetFilePath();
        return outline;
    }
    const auto& [file, classUID, instanceUID, imageNumber] = wanted;
    outline.fSOPClassUID = FinishText(classUID);
    outline.fSOPInstanceUID = FinishText(instanceUID);
    outline.fImageNumber = imageNumber.fIsFound ? TTextUtil().ReadInteger(number).value_or(0) : 0;
    if (file.fIsFound) outline.fFilePath = FindStoredFile(FinishText(file));
    return outline;
}

void TImageDoc::SetImageNumber(int32_t number) {
    SetText(Tags::kInstanceNumber, Vr::kIS, std::to_string(number).substr(0, kLongestImageNumber).c_str());
}

}  // namespace Vantor
