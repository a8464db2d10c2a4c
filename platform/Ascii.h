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

// A blank, a tab or an end of a line.
constexpr bool IsBlank(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

// The text without the blanks around it.
constexpr std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

inline std::string UpperCased(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), UpperCase);
    return upper;
}

}  // namespace Vantor::Platform
