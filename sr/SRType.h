#pragma once

#include <cstdint>

namespace VantorWrappers {

// The template that a structured report follows.
enum class SRType : int32_t {
    Unknown = 0,       // there is no report
    NoTemplateSR = 1,  // none of those below
    USAdultCardiacSR = 2,
    USPediatricCardiacSR = 3,
    USVascularSR = 4,
    USOBGynSR = 5,
    CardiacCathSR = 6,
    BasicTextSR = 7,
};

// The name of a value as above; for hosts that write it down.
const char* NameOf(SRType type);

}  // namespace VantorWrappers
