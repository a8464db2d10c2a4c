#pragma once

#include <cstdint>

namespace VantorCli {

// The value that is stored in a sample: some of its bits, the highest of which may be a sign. The others may
// be anything.
class StoredValue {
  public:
    // `bits` from `highBit` down, both within the sample.
    StoredValue(int32_t bits, int32_t highBit, bool isSigned)
        : fShift(static_cast<uint32_t>(highBit + 1 - bits)),
          fMask((uint32_t{1} << bits) - 1),
          fSign(isSigned ? uint32_t{1} << (bits - 1) : 0) {}

    int32_t Of(uint32_t sample) const {
        const uint32_t value = (sample >> fShift) & fMask;
        return static_cast<int32_t>(value ^ fSign) - static_cast<int32_t>(fSign);
    }

    int32_t GetLowest() const { return -static_cast<int32_t>(fSign); }
    int32_t GetHighest() const { return static_cast<int32_t>(fMask - fSign); }

  private:
    uint32_t fShift;
    uint32_t fMask;
    uint32_t fSign;
};

}  // namespace VantorCli
