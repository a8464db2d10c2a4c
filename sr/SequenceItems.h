#pragma once

#include <cstdint>
#include <string_view>

#include "dicom/TDicomDataSet.h"

namespace VantorWrappers {

// Walks through the items of a sequence, which must outlive this object. Throws Vantor::TException* for an
// element that is no sequence, for a sequence of unknown VR, and where damage would hide items: a report that
// lacks some is worse than none.
class SequenceItems {
  public:
    // At first in front of the first item. `sequenceOffset` is where the sequence's element starts.
    SequenceItems(const Vantor::TDicomDataSet& dataSet, int32_t sequenceOffset);

    // Steps to the next item. False when there is none.
    bool Next();

    // How many times Next has found one.
    int32_t GetCount() const { return fCount; }

    // True for an item without content, which holds no data set.
    bool IsEmpty() const { return fItemLength == 0; }

    // The item's content as it is stored.
    std::string_view GetBytes() const {
        return {reinterpret_cast<const char*>(fDataSet->GetDataSet()) + fItemOffset, fItemLength};
    }

    // A data set over the item's content.
    Vantor::TDicomDataSet Wrap() const { return {*fDataSet, fItemOffset, static_cast<int32_t>(fItemLength)}; }

  private:
    const Vantor::TDicomDataSet* fDataSet;
    int32_t fSequenceOffset;
    int32_t fItemOffset = Vantor::TDicomDataSet::kFromStart;
    uint32_t fItemLength = 0;
    int32_t fCount = 0;
};

}  // namespace VantorWrappers
