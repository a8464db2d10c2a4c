#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace Vantor::ByteOrder {

// The largest number whose bytes are turned round.
inline constexpr uint32_t kLargestNumber = 8;

// Copies `count` bytes; when swapping, in reverse order and at most kLargestNumber of them. The one place
// through which every multi-byte number enters or leaves a data set. Without swapping the two may overlap.
inline void CopyNumber(void* destination, const void* source, uint32_t count, bool swaps) {
    if (count == 0) return;
    if (!swaps) {
        std::memmove(destination, source, count);
        return;
    }
    const auto* bytes = static_cast<const uint8_t*>(source);
    auto* reversed = static_cast<uint8_t*>(destination);
    const uint32_t size = std::min(count, kLargestNumber);
    for (uint32_t index = 0; index < size; ++index) reversed[index] = bytes[size - 1 - index];
}

// Copies whole units of 2, 4 or 8 bytes, each with its bytes reversed; a rest shorter than a unit is not
// copied.
void CopyReversedUnits(void* destination, const void* source, uint32_t length, uint32_t unit);

// Copies whole pairs of bytes, each exchanged; an odd last byte is not copied.
void CopySwappedPairs(void* destination, const void* source, uint32_t length);

}  // namespace Vantor::ByteOrder
