#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// The letters of ASCII, whatever locale a host has set: names on media and code strings know no others.

namespace Vantor::Platform {

constexpr char UpperCase(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

constexpr bool IsAscii(std::string_view text) {
    for (const char character : text) {
        if (static_cast<signed char>(character) < 0) return false;
    }
    return true;
}

// The text without the blanks, tabs and line ends around it.
constexpr std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n\v\f";
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

inline std::string UpperCased(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), UpperCase);
    return upper;
}

}  // namespace Vantor::Platform
