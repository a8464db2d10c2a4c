#include "sr/SequenceItems.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;

TDicomDataSet WrapPart(const TDicomDataSet& whole, int32_t offset, uint32_t length) {
    auto* const bytes = const_cast<uint8_t*>(whole.GetDataSet()) + offset;  // never written to
    const auto size = static_cast<int32_t>(length);
    return TDicomDataSet(whole.IsExplicit(), whole.IsBigEndian(), bytes, size, size);
}

bool SequenceItems::Next() {
    if (!fDataSet->FindNextItem(fSequenceOffset, fItemOffset, fItemLength, &fItemOffset, &fItemLength)) {
        return false;
    }
    ++fCount;
    return true;
}

}  // namespace VantorWrappers
