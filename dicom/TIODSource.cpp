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

void TKeptUid::Set(const char* text) {
    TUidText uid;
    uid.Set(text);
    Set(uid);
}

void TKeptUid::Set(const TUidText& uid) {
    fUid = uid.fLength == 0 ? nullptr : std::make_unique<const TUidText>(uid);
}

const TUidText& TKeptUid::Get() const {
    static const TUidText kEmpty;
    return fUid == nullptr ? kEmpty : *fUid;
}

TIODSource::TIODSource() = default;

TIODSource::~TIODSource() = default;

TDicomDataSet* TIODSource::GetDataSet() { return fDataSet.get(); }

bool TIODSource::GetTransferSyntaxUID(char* buffer) { return fTransferSyntaxUID.Get().CopyTo(buffer); }

bool TIODSource::GetSOPClassUID(char* buffer) { return fSOPClassUID.Get().CopyTo(buffer); }

bool TIODSource::GetSOPInstanceUID(char* buffer) { return fSOPInstanceUID.Get().CopyTo(buffer); }

void TIODSource::SetSOPClassUID(const char* text) {
    fSOPClassUID.Set(text);
    PutUid(fDataSet.get(), Tags::kSOPClassUID, fSOPClassUID.Get());
}

void TIODSource::SetSOPInstanceUID(const char* text) {
    fSOPInstanceUID.Set(text);
    PutUid(fDataSet.get(), Tags::kSOPInstanceUID, fSOPInstanceUID.Get());
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
