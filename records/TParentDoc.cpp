#include "records/TParentDoc.h"

namespace Vantor {

TDicomDoc* TParentDoc::CopyToDirectory(TRecordDirectory* directory, TDicomDoc* parent, bool deep,
                                       int32_t& error) {
    return TDicomDoc::CopyToDirectory(directory, parent, deep, error);
}

void TParentDoc::GetChildDocs(TListOf<TDicomDoc>& list, bool directOnly) {
    TListOf<TDicomDoc> children;
    for (const TDocListBase* childList : GetChildLists()) {
        if (childList != nullptr) childList->AppendTo(children);
    }
    list.AppendList(&children);
    if (directOnly) return;
    for (TDicomDoc* child : children) child->GetChildDocs(list, false);
}

bool TParentDoc::CanAddChild(TDicomDoc* child, int32_t /*reserved*/, int32_t& error) {
    error = 0;
    if (child == nullptr || FindListFor(child) == nullptr) return false;
    TRecordDirectory* const directory = GetDirectory();
    return directory == nullptr || directory->GetAvailableSpace() >= double(child->GetDiskSpace());
}

bool TParentDoc::AddChild(TDicomDoc* child, TDicomDoc* before, bool keepSource, int32_t& error) {
    error = 0;
    if (child == nullptr) return false;
    TDicomDoc* const candidate = child->CopyToDirectory(GetDirectory(), this, true, error);
    const bool isInserted = candidate != nullptr && Insert(candidate, before);
    if (!isInserted && candidate != nullptr && candidate != child) candidate->Discard();
    if (!keepSource) child->Discard();
    return isInserted;
}

bool TParentDoc::Insert(TDicomDoc* child, const TDicomDoc* before) {
    TDocListBase* const list = FindListFor(child);
    if (list == nullptr || child->GetDirectory() != GetDirectory()) return false;
    // One without this parent is not in there, which is the usual case and needs no look.
    if (child->GetParentObj() == this && list->Has(child)) return true;
    const bool isSameType = before != nullptr && before->GetDocType() == child->GetDocType();
    list->Insert(child, isSameType ? before : nullptr);
    if (child->GetParentObj() != this) {
        child->LeaveParent();
        child->SetParentObj(this);
    }
    return true;
}

void TParentDoc::RemoveChild(TDicomDoc* child) {
    if (child == nullptr || child->GetDirectory() != GetDirectory()) return;
    TDocListBase* const list = FindListFor(child);
    if (list == nullptr || !list->Remove(child)) return;
    child->SetParentObj(nullptr);
    Release();
}

TDocListBase* TParentDoc::FindListFor(const TDicomDoc* child) {
    for (TDocListBase* list : GetChildLists()) {
        if (list != nullptr && list->GetMemberType() == child->GetDocType()) return list;
    }
    return nullptr;
}

}  // namespace Vantor
