#include "cli/Wrapping.h"

#include <algorithm>

namespace VantorCli {

namespace {

constexpr wchar_t kLineEnds[] = L"\r\n";

// Where the character behind so many others starts; the end when there are no more than these.
size_t PositionBehind(std::string_view utf8, size_t characters) {
    size_t position = 0;
    while (position < utf8.size()) {
        size_t next = position + 1;
        while (next < utf8.size() && WidthOf(utf8.substr(next, 1)) == 0) ++next;
        if (characters-- == 0) return position;
        position = next;
    }
    return utf8.size();
}

// Where to break a text that is longer than a line, which ends at `end`: at the last blank behind a word.
size_t BreakOf(std::string_view utf8, size_t end) {
    const size_t blank = utf8.rfind(' ', end);
    const size_t firstWord = std::min(utf8.find_first_not_of(' '), end);
    return blank == std::string_view::npos || blank < firstWord ? end : blank;
}

std::string_view WithoutBlanksBehind(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

void VisitParagraph(std::string_view utf8, size_t width, const std::function<void(std::string_view)>& visit) {
    while (true) {
        const size_t end = PositionBehind(utf8, width);
        if (end == utf8.size()) return visit(utf8);
        const size_t position = BreakOf(utf8, end);
        visit(WithoutBlanksBehind(utf8.substr(0, position)));
        utf8.remove_prefix(std::min(utf8.find_first_not_of(' ', position), utf8.size()));
    }
}

// Tabs have no width of their own.
std::string ToLine(HostString text) {
    std::replace(text.begin(), text.end(), L'\t', L' ');
    return ToPrintable(text);
}

}  // namespace

void ForEachLine(const HostString& text, size_t width, const std::function<void(std::string_view)>& visit) {
    bool isBehindText = false;
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find_first_of(kLineEnds, start), text.size());
        const std::string paragraph = ToLine(text.substr(start, end - start));
        const std::string_view shown = WithoutBlanksBehind(paragraph);
        if (!shown.empty() || isBehindText) VisitParagraph(shown, width, visit);
        isBehindText = !shown.empty();
        const bool isPair = text.compare(end, 2, L"\r\n") == 0;
        start = end + (isPair ? 2 : 1);
    }
}

std::optional<std::string> ToSingleLine(const HostString& text, size_t width) {
    constexpr size_t kMostUnits = 2;  // of host text that make a character
    if (text.size() > width * kMostUnits || text.find_first_of(kLineEnds) != HostString::npos) {
        return std::nullopt;
    }
    std::string line = ToLine(text);
    return WidthOf(line) <= width ? std::optional(std::move(line)) : std::nullopt;
}

}  // namespace VantorCli
