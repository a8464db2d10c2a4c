#include "sr/SRType.h"

#include <array>
#include <cstddef>

namespace VantorWrappers {

const char* NameOf(SRType type) {
    // In the order of their numbers.
    constexpr std::array<const char*, 8> kNames = {
        "Unknown",      "NoTemplateSR", "USAdultCardiacSR", "USPediatricCardiacSR",
        "USVascularSR", "USOBGynSR",    "CardiacCathSR",    "BasicTextSR"};
    return kNames.at(static_cast<size_t>(type));
}

}  // namespace VantorWrappers
