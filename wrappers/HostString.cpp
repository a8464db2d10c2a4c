#include "wrappers/HostString.h"

namespace VantorWrappers {

HostString Trimmed(const HostString& text) {
    constexpr wchar_t kBlanks[] = L" \t\r\n\v\f";
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == HostString::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

HostString UpperCased(const HostString& text) {
    HostString upper(text);
    for (wchar_t& letter : upper) {
        if (letter >= L'a' && letter <= L'z') letter = static_cast<wchar_t>(letter - L'a' + L'A');
    }
    return upper;
}

}  // namespace VantorWrappers
