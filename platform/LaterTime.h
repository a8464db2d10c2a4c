#pragma once

#include <cstdint>

#include "platform/FileMark.h"

namespace Vantor::Platform {

// What a file's last-write time is counted in.
constexpr int64_t kTimeUnitsPerSecond = 10'000'000;

// The longest step in which a volume keeps it: FAT counts in two seconds.
constexpr int64_t kLongestTimeStep = 2 * kTimeUnitsPerSecond;

// A last-write time as one number, and back.
constexpr int kTimeHalfBits = 32;

constexpr int64_t UnitsOf(const FileTime& time) {
    return static_cast<int64_t>((uint64_t{time.fHigh} << kTimeHalfBits) | time.fLow);
}

constexpr FileTime TimeOf(int64_t units) {
    return {static_cast<uint32_t>(units), static_cast<uint32_t>(units >> kTimeHalfBits)};
}

// Gives a file a later last-write time than `before` unless it has one, by as little as its volume can tell
// apart. `readTime` gives the time as the volume has it, `setTime` sets it. A volume that takes no time keeps
// its own. True when it was set.
template <typename ReadTime, typename SetTime>
bool MakeLater(const FileTime& before, ReadTime readTime, SetTime setTime) {
    const auto isLater = [&] { return UnitsOf(readTime()) > UnitsOf(before); };
    if (isLater()) {
        return false;
    }
    setTime(TimeOf(UnitsOf(before) + 1));
    if (!isLater()) {
        setTime(TimeOf(UnitsOf(before) + kLongestTimeStep));
    }
    return true;
}

}  // namespace Vantor::Platform
