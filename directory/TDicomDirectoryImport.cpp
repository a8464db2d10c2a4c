// How a directory takes in documents of others.

#include <utility>

#include "directory/TDicomDirectory.h"
#include "directory/TSeriesTransfer.h"

namespace Vantor {

void TDicomDirectory::SetImportDocs(const TListOf<TDicomDoc>& docs) {
    for (TDicomDoc* doc : docs) {
        if (doc == nullptr) continue;
        fDocsToMove.InsertItemAt(fDocsToMove.kAtEnd, doc);
        // With those above: the directory that it is in may be read again meanwhile.
        for (TDicomDoc* held = doc; held != nullptr; held = held->GetParentObj()) {
            held->Register();
            fHeldToMove.push_back(held);
        }
    }
}

bool TDicomDirectory::ImportDocs(int32_t timeBudget, int32_t& index, int32_t& count, int32_t& doneKB,
                                 int32_t& totalKB, char* message) {
    const bool hasDocs = fDocsToMove.GetCount() > 0;
    if (hasDocs && !fIsMoving) StartMoving(1);
    index = fMoveIndex;
    count = fMoveCount;
    if (!hasDocs) return false;
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
    fDocsToMove.RemoveAllItems();
    Drop(fHeldToMove);
    std::erase_if(fRegisteredFiles,
                  [this](const auto& file) { return fImportedFiles.count(file.get()) > 0; });
    fImportedFiles.clear();
    fMoveCount = 0;
    fMoveIndex = 0;
    fIsMoving = false;
}

void TDicomDirectory::RegisterImportedFile(std::unique_ptr<TDicomFile> file) {
    fImportedFiles.insert(file.get());
    RegisterDicomFile(std::move(file));
}

void TDicomDirectory::AfterTransfer(TDicomDoc* /*imported*/, TDicomDoc* /*source*/) {}

}  // namespace Vantor
