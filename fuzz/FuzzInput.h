#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
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

// The input's bytes in a block of exactly their size, so that a read behind the end is seen.
inline std::vector<uint8_t> ExactCopy(const uint8_t* data, size_t size) {
    std::vector<uint8_t> copy;
    copy.reserve(size);
    copy.assign(data, data + size);
    return copy;
}

}  // namespace VantorFuzz
