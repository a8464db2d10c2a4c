#include "cli/Json.h"

#include <string_view>

namespace VantorCli {

namespace {

constexpr char kDelete = '\x7F';

// The controls behind ASCII are this byte of UTF-8 and one of a range, which is also their number.
constexpr char kLeadOfHighControls = '\xC2';
constexpr unsigned char kFirstHighControl = 0x80;
constexpr unsigned char kLastHighControl = 0x9F;

bool IsHighControl(std::string_view utf8, size_t position) {
    if (utf8[position] != kLeadOfHighControls || position + 1 == utf8.size()) return false;
    const auto second = static_cast<unsigned char>(utf8[position + 1]);
    return second >= kFirstHighControl && second <= kLastHighControl;
}

void AppendEscaped(std::string& line, char control) {
    constexpr char kDigits[] = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(control);
    line += "\\u00";
    line += kDigits[code >> 4];
    line += kDigits[code & 0xF];
}

}  // namespace

std::string ToLine(const Json& object) {
    // Texts are valid UTF-8 already; a text that is not would be mended rather than end the program.
    const std::string text = object.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string line;
    line.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == kDelete) {
            AppendEscaped(line, text[i]);
        } else if (IsHighControl(text, i)) {
            AppendEscaped(line, text[++i]);
        } else {
            line += text[i];
        }
    }
    return line;
}

Json ListOf(const std::vector<HostString>& texts) {
    Json list = Json::array();
    for (const HostString& text : texts) {
        list.push_back(ToUtf8(text));
    }
    return list;
}

}  // namespace VantorCli
