#pragma once

#include "records/TDicomDoc.h"

namespace VantorWrappers {

// Counts a document until destroyed, and destroys it then unless somebody else has use for it: it may have
// been taken out of its directory meanwhile.
class HeldDoc {
  public:
    explicit HeldDoc(Vantor::TDicomDoc* doc) : fDoc(doc) { fDoc->Register(); }
    ~HeldDoc() {
        fDoc->Release();
        if (!fDoc->IsInUse()) delete fDoc;
    }
    HeldDoc(const HeldDoc&) = delete;
    HeldDoc& operator=(const HeldDoc&) = delete;

  private:
    Vantor::TDicomDoc* fDoc;
};

}  // namespace VantorWrappers
