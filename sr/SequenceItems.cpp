#include "sr/SequenceItems.h"

#include "dicom/TException.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;
using Vantor::TException;
namespace ErrorNumbers = Vantor::ErrorNumbers;

// Who wrote a sequence as UN did not know it, and left its items in another encoding than all else.
SequenceItems::SequenceItems(const TDicomDataSet& dataSet, int32_t sequenceOffset)
    : fDataSet(&dataSet), fSequenceOffset(sequenceOffset) {
    if (dataSet.IsExplicit() && dataSet.GetElementVR(sequenceOffset) == Vantor::Vr::kUN) {
        throw new TException(ErrorNumbers::kSequenceStructure, "Sequence of unknown VR");
    }
}

bool SequenceItems::Next() {
    int32_t offset = 0;
    uint32_t length = 0;
    if (fDataSet->FindNextItem(fSequenceOffset, fItemOffset, fItemLength, &offset, &length)) {
        fItemOffset = offset;
        fItemLength = length;
        ++fCount;
        return true;
    }
    if (fDataSet->IsLastItem(fSequenceOffset, fItemOffset, fItemLength)) return false;
    throw new TException(ErrorNumbers::kSequenceStructure, "Damaged sequence");
}

}  // namespace VantorWrappers
