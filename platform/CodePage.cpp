#include "platform/CodePage.h"

#include "platform/Ascii.h"

namespace Vantor::Platform {

std::string AsHostsSee(std::string_view bytes) {
    return IsAscii(bytes) ? std::string(bytes) : FromHostText(ToHostText(bytes));
}

}  // namespace Vantor::Platform
