#include "dicom/ValueText.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "platform/Ascii.h"

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

// "$)" names a set for the upper half of the bytes, in which no separators are.
bool StartsPairs(std::string_view escape, bool before) {
    if (escape.starts_with("\x1B$)") || escape.starts_with("\x1B)")) return before;
    return escape.starts_with("\x1B$");
}

std::vector<std::string_view> SplitValue(std::string_view value, char separator, Characters characters) {
    const auto isLead = [&](char c) {
        constexpr uint8_t kFirst = 0x81;
        constexpr uint8_t kLast = 0xFE;
        const auto byte = static_cast<uint8_t>(c);
        return characters == Characters::kOfGb18030 && byte >= kFirst && byte <= kLast;
    };
    std::vector<std::string_view> parts;
    bool hasPairs = false;
    size_t start = 0;
    size_t position = 0;
    while (position < value.size()) {
        if (value[position] == kEscape) {
            const size_t length = EscapeLength(value.substr(position));
            hasPairs = StartsPairs(value.substr(position, length), hasPairs);
            position += length;
        } else if (hasPairs || isLead(value[position])) {
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

bool IsPlainAscii(std::string_view text) {
    return Platform::IsAscii(text) && text.find(kEscape) == std::string_view::npos;
}

bool IsInCharacterSet(VrCode vr) {
    static constexpr std::array kTexts = {Vr::kLO, Vr::kLT, Vr::kPN,         Vr::kSH,
                                          Vr::kST, Vr::kUT, MakeVr('U', 'C')};
    return std::find(kTexts.begin(), kTexts.end(), vr) != kTexts.end();
}

bool HasControlCharacters(std::string_view value) {
    constexpr std::string_view kOfText = "\t\n\f\r\x1B";
    const std::string_view text = TrimValue(value);
    return std::any_of(text.begin(), text.end(), [&](char c) {
        const bool isControl = static_cast<uint8_t>(c) < ' ' || c == '\x7F';
        return isControl && kOfText.find(c) == std::string_view::npos;
    });
}

std::optional<std::string> ReplaceUids(std::string_view value, const UidFinder& find) {
    constexpr char kBetweenUids = '\\';
    std::string result;
    bool isReplaced = false;
    for (const std::string_view part : SplitValue(value, kBetweenUids)) {
        const std::string_view uid = TrimValue(part);
        const auto replacement = uid.empty() ? std::nullopt : find(uid);
        if (replacement && *replacement != uid) isReplaced = true;
        if (part.data() != value.data()) result += kBetweenUids;
        result += replacement ? *replacement : std::string(uid);
    }
    if (!isReplaced) return std::nullopt;
    if (result.size() % 2 != 0) result += '\0';
    return result;
}

}  // namespace Vantor
