#pragma once

#include <cstdint>

#include "wrappers/HostString.h"

namespace VantorWrappers {

// Addition for hosts with a list of their own: a compressor that a movie can be made with.
struct AVICompressor {
    uint32_t fHandler = 0;  // its four-character code, the first character in the lowest byte
    HostString fDescription;
};

}  // namespace VantorWrappers
