#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace Vantor {

// A value, or one of several, without the spaces around it and the byte that made its length even.
std::string_view TrimValue(std::string_view value);

// The parts of a value between separators, one or more; a byte that is half of a character after an escape
// sequence of ISO 2022 is no separator.
std::vector<std::string_view> SplitValue(std::string_view value, char separator);

// An escape sequence, with which ISO 2022 changes the character set, begins with this byte; gives the length
// of the one at the start of a text.
inline constexpr char kEscape = '\x1B';
size_t EscapeLength(std::string_view text);

}  // namespace Vantor
