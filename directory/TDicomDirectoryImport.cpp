// How a directory takes in documents of others.

#include "directory/TDicomDirectory.h"
#include "directory/TSeriesTransfer.h"

namespace Vantor {

void TDicomDirectory::SetImportDocs(const TListOf<TDicomDoc>& docs) {
    for (TDicomDoc* doc : docs) {
        if (doc == nullptr) continue;
        fDocsToMove.InsertItemAt(fDocsToMove.kAtEnd, doc);
        doc->Register();
    }
}

bool TDicomDirectory::ImportDocs(int32_t timeBudget, int32_t& index, int32_t& count, int32_t& doneKB,
                                 int32_t& totalKB, char* message) {
    if (fDocsToMove.GetCount() == 0) return false;
    if (!fIsMoving) StartMoving(1);
    index = fMoveIndex;
    count = fMoveCount;
    if (!fTransfer->Step(timeBudget, doneKB, totalKB, message)) return false;
    if (fMoveIndex < fMoveCount) {
        StartMoving(fMoveIndex + 1);
        return false;
    }
    ClearDocsToMove();
    return true;
}

void TDicomDirectory::StartMoving(int32_t index) {
    fMoveIndex = index;
    fMoveCount = fDocsToMove.GetCount();
    fIsMoving = true;
    TDicomDoc* doc = nullptr;
    fDocsToMove.FetchItemAt(fMoveIndex, doc);
    fTransfer->SetDoc(doc);
}

void TDicomDirectory::ClearDocsToMove() {
    fTransfer->Reset();
    HeldDocs docs(fDocsToMove.begin(), fDocsToMove.end());
    fDocsToMove.RemoveAllItems();
    Drop(docs);
    fMoveCount = 0;
    fMoveIndex = 0;
    fIsMoving = false;
}

void TDicomDirectory::AfterTransfer(TDicomDoc* /*imported*/, TDicomDoc* /*source*/) {}

}  // namespace Vantor
