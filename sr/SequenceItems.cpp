#include "sr/SequenceItems.h"

namespace VantorWrappers {

bool SequenceItems::Next() {
    if (!fDataSet->FindNextItem(fSequenceOffset, fItemOffset, fItemLength, &fItemOffset, &fItemLength)) {
        return false;
    }
    ++fCount;
    return true;
}

}  // namespace VantorWrappers
