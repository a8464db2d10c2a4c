#include "platform/RegistryText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "platform/Ascii.h"
#include "platform/CodePage.h"

namespace Vantor::Platform {

namespace {

constexpr char kLineEnd = '\n';
constexpr char kQuote = '"';
constexpr char kEscape = '\\';
constexpr char kKeySeparator = '\\';
constexpr char kKeyStart = '[';
constexpr char kKeyEnd = ']';
constexpr char kEquals = '=';
constexpr std::string_view kLineBreaks("\r\n\0", 3);
constexpr std::string_view kIntegerStart = "dword:";
constexpr size_t kIntegerDigits = 8;
constexpr int kHexadecimal = 16;

// What stands behind the backslash, and what both together stand for.
struct Escape {
    char fLetter;
    char fMeaning;
};
constexpr Escape kEscapes[] = {{kQuote, kQuote}, {kEscape, kEscape}, {'n', '\n'}, {'r', '\r'}};

std::optional<char> MeaningOf(char letter) {
    for (const Escape& escape : kEscapes) {
        if (escape.fLetter == letter) {
            return escape.fMeaning;
        }
    }
    return std::nullopt;
}

std::string Quoted(std::string_view text) {
    std::string quoted(1, kQuote);
    for (const char letter : text) {
        const auto* const escape = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                                [letter](const Escape& e) { return e.fMeaning == letter; });
        if (escape == std::end(kEscapes)) {
            quoted += letter;
        } else {
            quoted += {kEscape, escape->fLetter};
        }
    }
    return quoted + kQuote;
}

// Takes a quoted text off the front of the line; none when there is no whole one.
std::optional<std::string> TakeQuoted(std::string_view& line) {
    if (!line.starts_with(kQuote)) {
        return std::nullopt;
    }
    std::string text;
    for (size_t index = 1; index < line.size(); ++index) {
        if (line[index] == kQuote) {
            line.remove_prefix(index + 1);
            return text;
        }
        std::optional<char> letter = line[index];
        if (letter == kEscape) {
            ++index;
            letter = index < line.size() ? MeaningOf(line[index]) : std::nullopt;
        }
        if (!letter) {
            return std::nullopt;
        }
        text += *letter;
    }
    return std::nullopt;
}

std::optional<RegistryValue> ReadInteger(std::string_view line) {
    if (!line.starts_with(kIntegerStart)) {
        return std::nullopt;
    }
    line.remove_prefix(kIntegerStart.size());
    uint32_t value = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), value, kHexadecimal);
    const bool isWhole = error == std::errc() && end == line.data() + line.size();
    return isWhole ? std::optional<RegistryValue>(int64_t{value}) : std::nullopt;
}

std::optional<RegistryValue> ReadValue(std::string_view line) {
    const std::optional<std::string> text = TakeQuoted(line);
    if (!text) {
        return ReadInteger(line);
    }
    return line.empty() ? std::optional<RegistryValue>(ToHostText(*text)) : std::nullopt;
}

std::optional<RegistrySetting> ReadSetting(std::string_view line) {
    line = Trimmed(line);
    const std::optional<std::string> name = TakeQuoted(line);
    if (!name || !line.starts_with(kEquals)) {
        return std::nullopt;
    }
    const std::optional<RegistryValue> value = ReadValue(line.substr(1));
    return value ? std::optional(RegistrySetting{*name, *value}) : std::nullopt;
}

// The path of the key that begins with this line, in upper case.
std::optional<std::string> ReadKeyLine(std::string_view line) {
    line = Trimmed(line);
    if (!line.starts_with(kKeyStart) || !line.ends_with(kKeyEnd)) {
        return std::nullopt;
    }
    return UpperCased(line.substr(1, line.size() - 2));
}

std::string WriteInteger(int64_t value) {
    char digits[kIntegerDigits] = {};
    const auto [end, error] =
        std::to_chars(std::begin(digits), std::end(digits), static_cast<uint32_t>(value), kHexadecimal);
    const std::string_view written(digits, static_cast<size_t>(end - digits));
    return std::string(kIntegerStart) + std::string(kIntegerDigits - written.size(), '0').append(written);
}

std::string WriteSetting(const RegistrySetting& setting) {
    const auto* const text = std::get_if<std::wstring>(&setting.fValue);
    return Quoted(setting.fName) + kEquals +
           (text != nullptr ? Quoted(FromHostText(*text)) : WriteInteger(std::get<int64_t>(setting.fValue)));
}

}  // namespace

RegistryText::RegistryText(std::string_view text) {
    while (!text.empty()) {
        const size_t end = std::min(text.find(kLineEnd), text.size());
        fLines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

std::optional<RegistryValues> RegistryText::ReadKey(std::string_view path) const {
    const std::string wanted = UpperCased(path);
    bool isFound = false;
    bool isInside = false;
    RegistryValues values;
    for (const std::string& line : fLines) {
        if (const std::optional<std::string> key = ReadKeyLine(line)) {
            isInside = *key == wanted;
            isFound = isFound || isInside || key->starts_with(wanted + kKeySeparator);
        } else if (const auto setting = isInside ? ReadSetting(line) : std::nullopt) {
            values[UpperCased(setting->fName)] = setting->fValue;
        }
    }
    return isFound ? std::optional(values) : std::nullopt;
}

bool RegistryText::AddKey(std::string_view path) {
    if (path.find_first_of(kLineBreaks) != std::string_view::npos) {
        return false;
    }
    const std::string wanted = UpperCased(path);
    if (std::none_of(fLines.begin(), fLines.end(),
                     [&](const auto& line) { return ReadKeyLine(line) == wanted; })) {
        if (!fLines.empty()) {
            fLines.emplace_back();
        }
        fLines.push_back(kKeyStart + std::string(path) + kKeyEnd);
    }
    return true;
}

RegistryText::Place RegistryText::FindPlace(const std::string& upperPath,
                                            const std::string& upperName) const {
    bool isInside = false;
    Place place;
    for (size_t index = 0; index < fLines.size(); ++index) {
        const std::optional<std::string> key = ReadKeyLine(fLines[index]);
        isInside = key ? *key == upperPath : isInside;
        if (!isInside) {
            continue;
        }
        const std::optional<RegistrySetting> setting = ReadSetting(fLines[index]);
        if (setting && UpperCased(setting->fName) == upperName) {
            place = {index, true};
        } else if (!place.fIsThere && !Trimmed(fLines[index]).empty()) {
            place.fLine = index + 1;
        }
    }
    return place;
}

void RegistryText::Set(std::string_view path, const RegistrySetting& setting) {
    const Place place = FindPlace(UpperCased(path), UpperCased(setting.fName));
    if (place.fIsThere) {
        fLines[place.fLine] = WriteSetting(setting);
    } else {
        fLines.insert(fLines.begin() + static_cast<ptrdiff_t>(place.fLine), WriteSetting(setting));
    }
}

std::string RegistryText::GetText() const {
    std::string text;
    for (const std::string& line : fLines) {
        text += line + kLineEnd;
    }
    return text;
}

}  // namespace Vantor::Platform
