#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

#include "dicom/TException.h"
#include "platform/FileException.h"

namespace VantorFuzz {

// Runs one operation. The exceptions that a damaged medium may cause are its proper end; any other goes on
// and is a finding.
inline void Run(const std::function<void()>& operation) {
    try {
        operation();
    } catch (Vantor::TException* thrown) {
        delete thrown;
    } catch (const Vantor::Platform::FileException&) {
    }
}

// A finding when something does not hold that holds for any input.
inline void Require(bool holds, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (holds) return;
    std::fprintf(stderr, "%s:%i: does not hold\n", file, line);
    std::abort();
}

// The input's bytes in a block of exactly their size, so that a read behind the end is seen.
inline std::vector<uint8_t> ExactCopy(const uint8_t* data, size_t size) {
    std::vector<uint8_t> copy;
    copy.reserve(size);
    copy.assign(data, data + size);
    return copy;
}

// Takes numbers off an input for what a target has to choose; zeros at its end.
class Choices {
  public:
    Choices(const uint8_t* data, size_t size) : fNext(data), fEnd(data + size) {}

    bool HasMore() const { return fNext != fEnd; }
    uint8_t Byte() { return HasMore() ? *fNext++ : uint8_t{0}; }
    uint16_t Word() {
        const uint8_t low = Byte();
        return static_cast<uint16_t>(low | Byte() << 8);
    }
    uint32_t Number() {
        const uint16_t low = Word();
        return low | static_cast<uint32_t>(Word()) << 16;
    }

    // Below `end`, which is above 0.
    size_t Below(size_t end) { return (end > UINT8_MAX ? Word() : Byte()) % end; }

    // Up to `count` bytes of the input, in a block of just their size.
    std::vector<uint8_t> Take(size_t count) {
        const size_t taken = std::min(count, static_cast<size_t>(fEnd - fNext));
        fNext += taken;
        return ExactCopy(fNext - taken, taken);
    }
    std::vector<uint8_t> TakeRest() { return Take(SIZE_MAX); }

  private:
    const uint8_t* fNext;
    const uint8_t* fEnd;
};

}  // namespace VantorFuzz
