#include "dicom/TIODSource.h"

#include <cstring>

#include "dicom/TTextUtil.h"

namespace Vantor {

void TUidText::Set(const char* text) {
    Clear();
    fLength = TTextUtil().CopyCString(text, fText, sizeof(fText));
}

bool TUidText::CopyTo(char* buffer) const {
    if (fLength == 0) return false;
    std::memcpy(buffer, fText, fLength);
    buffer[fLength] = '\0';
    return true;
}

TIODSource::TIODSource() = default;

TIODSource::~TIODSource() = default;

TDicomDataSet* TIODSource::GetDataSet() { return fDataSet.get(); }

bool TIODSource::GetTransferSyntaxUID(char* buffer) { return fTransferSyntaxUID.CopyTo(buffer); }

bool TIODSource::GetSOPClassUID(char* buffer) { return fSOPClassUID.CopyTo(buffer); }

bool TIODSource::GetSOPInstanceUID(char* buffer) { return fSOPInstanceUID.CopyTo(buffer); }

void TIODSource::SetSOPClassUID(const char* text) {
    fSOPClassUID.Set(text);
    PutUid(fDataSet.get(), Tags::kSOPClassUID, fSOPClassUID);
}

void TIODSource::SetSOPInstanceUID(const char* text) {
    fSOPInstanceUID.Set(text);
    PutUid(fDataSet.get(), Tags::kSOPInstanceUID, fSOPInstanceUID);
}

void TIODSource::SetTransferSyntaxUID(const char* text) { fTransferSyntaxUID.Set(text); }

int32_t TIODSource::BeginCopy(const TFileSpec& /*destination*/, int64_t& size) {
    size = 0;
    return -1;
}

int64_t TIODSource::CopyNextChunk() { return 0; }

void TIODSource::EndCopy(const TFileSpec* /*destination*/) {}

void TIODSource::PutUid(TDicomDataSet* dataSet, Tag tag, const TUidText& uid) {
    if (dataSet == nullptr) return;
    dataSet->PutElement(tag, Vr::kUI, uid.fLength, uid.fText, uid.fLength);
}

}  // namespace Vantor
