#include "records/TInstanceDoc.h"

#include <algorithm>

#include "dicom/TTextUtil.h"
#include "records/ReferencedFile.h"

namespace Vantor {

namespace {

constexpr char kAndClass = '\n';  // between the UIDs of an identity

}  // namespace

// An absent UID leaves the buffer alone: who collects UIDs in a loop relies on it.
bool TInstanceDoc::PeekUid(Tag tag, char* buffer) const {
    const auto uid = PeekText(tag, kMaximumUidLength);
    if (!uid) return false;
    std::fill_n(std::copy(uid->begin(), uid->end(), buffer), kMaximumUidLength + 1 - uid->size(), '\0');
    return true;
}

bool TInstanceDoc::GetSOPClassUID(char* buffer) {
    return PeekUid(Tags::kReferencedSOPClassUIDInFile, buffer);
}

bool TInstanceDoc::GetSOPInstanceUID(char* buffer) {
    return PeekUid(Tags::kReferencedSOPInstanceUIDInFile, buffer);
}

void TInstanceDoc::SetSOPClassUID(const char* text) {
    ReferencedFile::SetUid(Record(), Tags::kReferencedSOPClassUIDInFile, text);
    NoteIdentity();
}

void TInstanceDoc::SetSOPInstanceUID(const char* text) {
    ReferencedFile::SetUid(Record(), Tags::kReferencedSOPInstanceUIDInFile, text);
    NoteIdentity();
}

TDicomDoc* TInstanceDoc::CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                                         int32_t& error) {
    error = 0;
    if (directory == GetDirectory()) return this;
    const auto record = ReferencedFile::CopyRecordTo(*this, directory, GetFallbackFileID());
    return PlaceCopy(record.get(), directory, parent, deep, error);
}

bool TInstanceDoc::IsSameRecord(TDicomDoc* other) {
    if (other == this || other == nullptr || other->GetDocType() != GetDocType()) return true;
    TUidText mine[2];
    TUidText others[2];
    return GetSOPInstanceUID(mine[0].fText) && GetSOPClassUID(mine[1].fText) &&
           other->GetSOPInstanceUID(others[0].fText) && other->GetSOPClassUID(others[1].fText) &&
           TTextUtil().EqualStrings(mine[0].fText, others[0].fText) &&
           TTextUtil().EqualStrings(mine[1].fText, others[1].fText);
}

std::string TInstanceDoc::GetIdentity() const {
    const auto instance = PeekText(Tags::kReferencedSOPInstanceUIDInFile);
    const auto sopClass = PeekText(Tags::kReferencedSOPClassUIDInFile);
    return instance && sopClass ? *instance + kAndClass + *sopClass : std::string();
}

}  // namespace Vantor
