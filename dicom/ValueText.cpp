#include "dicom/ValueText.h"

#include <algorithm>

namespace Vantor {

std::string_view TrimValue(std::string_view value) {
    constexpr std::string_view kPadding("\0 ", 2);
    const size_t start = value.find_first_not_of(' ');
    if (start == std::string_view::npos) return {};
    const size_t end = value.find_last_not_of(kPadding);
    return end == std::string_view::npos || end < start ? std::string_view()
                                                        : value.substr(start, end + 1 - start);
}

size_t EscapeLength(std::string_view text) {
    constexpr std::string_view kIntermediates = "$()-,./";
    size_t length = 1;
    while (length < text.size() && kIntermediates.find(text[length]) != std::string_view::npos) ++length;
    return std::min(length + 1, text.size());
}

std::vector<std::string_view> SplitValue(std::string_view value, char separator) {
    std::vector<std::string_view> parts;
    bool hasPairs = false;
    size_t start = 0;
    size_t position = 0;
    while (position < value.size()) {
        if (value[position] == kEscape) {
            const size_t length = EscapeLength(value.substr(position));
            const std::string_view escape = value.substr(position, length);
            // "$)" names a set for the upper half of the bytes, in which no separators are.
            if (!escape.starts_with("\x1B$)") && !escape.starts_with("\x1B)"))
                hasPairs = escape.starts_with("\x1B$");
            position += length;
        } else if (hasPairs) {
            position += 2;
        } else {
            if (value[position] == separator) {
                parts.push_back(value.substr(start, position - start));
                start = position + 1;
            }
            ++position;
        }
    }
    parts.push_back(value.substr(std::min(start, value.size())));
    return parts;
}

}  // namespace Vantor
