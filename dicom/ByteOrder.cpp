#include "dicom/ByteOrder.h"

namespace Vantor::ByteOrder {

namespace {

constexpr uint32_t kPair = 2;

}  // namespace

void CopyReversedUnits(void* destination, const void* source, uint32_t length, uint32_t unit) {
    auto* to = static_cast<uint8_t*>(destination);
    const auto* from = static_cast<const uint8_t*>(source);
    for (uint32_t count = length / unit; count > 0; --count, to += unit, from += unit) {
        CopyNumber(to, from, unit, true);
    }
}

void CopySwappedPairs(void* destination, const void* source, uint32_t length) {
    CopyReversedUnits(destination, source, length, kPair);
}

}  // namespace Vantor::ByteOrder
