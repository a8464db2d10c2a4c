#pragma once

#include <cstdint>

namespace Vantor::Platform {

// When a file was last written: 100-nanosecond units since 1601-01-01 UTC, in two halves.
struct FileTime {
    uint32_t fLow = 0;
    uint32_t fHigh = 0;

    bool operator==(const FileTime&) const = default;
};

// What tells whether a file is still the one that was read: more than its last-write time, which is coarse on
// many volumes.
struct FileMark {
    FileTime fLastWriteTime;
    int64_t fSize = 0;
    uint64_t fVolume = 0;  // the two that tell one file of the machine from all others
    uint64_t fIdentity = 0;

    bool operator==(const FileMark&) const = default;
};

}  // namespace Vantor::Platform
