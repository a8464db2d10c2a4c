#include "cli/AttributeText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "cli/Text.h"
#include "platform/CodePage.h"

namespace VantorCli {

namespace {

constexpr size_t kLongText = 64;
constexpr size_t kShortText = 16;
constexpr std::ptrdiff_t kNameGroups = 3;
constexpr std::ptrdiff_t kNameParts = 5;

// A backslash would begin another value.
bool IsForbidden(wchar_t character) { return character < L' ' || character == L'\x7F' || character == L'\\'; }

std::string ProblemOfText(const HostString& text, size_t longest) {
    if (std::any_of(text.begin(), text.end(), IsForbidden)) {
        return "backslashes and control characters cannot be stored: " + ToPrintable(text);
    }
    if (text.size() <= longest) return "";
    return "longer than " + std::to_string(longest) + " characters: " + ToPrintable(text);
}

bool HasMore(const HostString& text, wchar_t separator, std::ptrdiff_t parts) {
    return std::count(text.begin(), text.end(), separator) >= parts;
}

std::string ProblemOfNameGroup(const HostString& group) {
    if (HasMore(group, L'^', kNameParts)) return "a name has up to five parts: " + ToPrintable(group);
    return ProblemOfText(group, kLongText);
}

}  // namespace

std::string ProblemOfPersonName(const std::string& text) {
    HostString rest = Vantor::Platform::ToHostText(text);
    if (HasMore(rest, L'=', kNameGroups)) return "a name has up to three groups: " + ToPrintable(rest);
    for (;;) {
        const size_t end = rest.find(L'=');
        std::string problem = ProblemOfNameGroup(rest.substr(0, end));
        if (!problem.empty() || end == HostString::npos) return problem;
        rest.erase(0, end + 1);
    }
}

std::string ProblemOfLongText(const std::string& text) {
    return ProblemOfText(Vantor::Platform::ToHostText(text), kLongText);
}

std::string ProblemOfShortText(const std::string& text) {
    return ProblemOfText(Vantor::Platform::ToHostText(text), kShortText);
}

std::string ProblemOfNumber(const std::string& text) {
    int32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || (error == std::errc() && end == text.data() + text.size())) return "";
    return "no whole number: " + ToPrintable(text);
}

}  // namespace VantorCli
