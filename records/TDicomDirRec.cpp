#include "records/TDicomDirRec.h"

#include <unordered_set>

namespace Vantor {

TDicomDirRec::TDicomDirRec(TIODSource* source) : fSource(source) {
    if (fSource != nullptr) fSource->Register();
}

TDicomDirRec::~TDicomDirRec() {
    if (fSource != nullptr) fSource->Release();
}

void TDicomDirRec::CollectSources(TListOf<TIODSource>& list) const {
    std::unordered_set<const TDicomDirRec*> visited;
    for (const TDicomDirRec* record = this; record != nullptr && record->fSource != nullptr;
         record = record->fNext) {
        if (!visited.insert(record).second) return;
        list.InsertItemAt(TListOf<TIODSource>::kAtEnd, record->fSource);
    }
}

}  // namespace Vantor
