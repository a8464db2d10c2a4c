#include "platform/CodePage.h"

#include <algorithm>

namespace Vantor::Platform {

std::string AsHostsSee(std::string_view bytes) {
    const bool isAscii =
        std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
    return isAscii ? std::string(bytes) : FromHostText(ToHostText(bytes));
}

}  // namespace Vantor::Platform
