#pragma once

#include "records/TDicomDoc.h"

namespace Vantor {

// A document that takes no others below it, and stands for itself only.
class TLeafDoc : public TDicomDoc {
  public:
    // True for this very document only.
    bool IsSameRecord(TDicomDoc* other) override { return other == this; }

    void GetChildDocs(TListOf<TDicomDoc>& /*list*/, bool /*directOnly*/) override {}
    bool CanAddChild(TDicomDoc* /*child*/, int32_t /*reserved*/, int32_t& error) override {
        error = 0;
        return false;
    }

    // False; a child that may go away stays as well.
    bool AddChild(TDicomDoc* /*child*/, TDicomDoc* /*before*/, bool /*keepSource*/, int32_t& error) override {
        error = 0;
        return false;
    }
    void RemoveChild(TDicomDoc* /*child*/) override {}

  protected:
    using TDicomDoc::TDicomDoc;
};

}  // namespace Vantor
