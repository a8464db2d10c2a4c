#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// The letters of ASCII, whatever locale a host has set: names on media and code strings know no others.

namespace Vantor::Platform {

constexpr char UpperCase(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

inline std::string UpperCased(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), UpperCase);
    return upper;
}

}  // namespace Vantor::Platform
