#include "dicom/PatientIdentity.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "dicom/ValueText.h"
#include "platform/Ascii.h"

namespace Vantor {

namespace {

constexpr std::string_view kUidCharacters = "0123456789.\\";
constexpr std::string_view kNumberCharacters = "0123456789.+-Ee\\ ";
constexpr size_t kShortestText = 4;
constexpr size_t kShortestAmongNumbers = 6;

bool ConsistsOf(std::string_view text, std::string_view characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
}

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetterOrDigit(char c) { return IsLetter(c) || IsDigit(c); }

// The form in which texts are compared: in upper case, without changes of the character set, and with one
// space for whatever may stand between the parts of a name. Bytes that are parts of longer characters change
// as well, but the same way on both sides.
std::string Comparable(std::string_view text) {
    constexpr std::string_view kBetween = "^=,;_./-\\\r\n\t";
    std::string comparable;
    size_t position = 0;
    while (position < text.size()) {
        const char c = text[position];
        if (c == kEscape) {
            position += EscapeLength(text.substr(position));
            continue;
        }
        ++position;
        if (c == ' ' || c == '\0' || kBetween.find(c) != std::string_view::npos) {
            if (!comparable.empty() && comparable.back() != ' ') comparable.push_back(' ');
        } else {
            comparable.push_back(Platform::UpperCase(c));
        }
    }
    if (!comparable.empty() && comparable.back() == ' ') comparable.pop_back();
    return comparable;
}

// The first two parts of a name; not everybody separates them as DICOM has it.
std::pair<std::string, std::string> FamilyAndGivenName(std::string_view name) {
    for (const char separator : {'^', ',', ' '}) {
        const std::vector<std::string_view> parts = SplitValue(TrimValue(name), separator);
        if (parts.size() > 1) return {std::string(TrimValue(parts[0])), std::string(TrimValue(parts[1]))};
    }
    return {};
}

bool IsPlain(std::string_view text) {
    return Platform::IsAscii(text) && text.find(kEscape) == std::string_view::npos;
}

bool IsOfOneKind(std::string_view number) {
    return std::none_of(number.begin(), number.end(), IsDigit) ||
           std::none_of(number.begin(), number.end(), IsLetter);
}

bool StandsAlone(std::string_view text, size_t position, size_t length) {
    const size_t end = position + length;
    return (position == 0 || !IsLetterOrDigit(text[position - 1])) &&
           (end == text.size() || !IsLetterOrDigit(text[end]));
}

bool Contains(std::string_view text, std::string_view wanted, bool isWord) {
    for (size_t position = text.find(wanted); position != std::string_view::npos;
         position = text.find(wanted, position + 1)) {
        if (!isWord || StandsAlone(text, position, wanted.size())) return true;
    }
    return false;
}

bool HasControlCharacters(std::string_view text) {
    constexpr std::string_view kOfText = "\t\n\f\r\x1B";
    return std::any_of(text.begin(), text.end(), [&](char c) {
        const bool isControl = static_cast<uint8_t>(c) < ' ' || c == '\x7F';
        return isControl && kOfText.find(c) == std::string_view::npos;
    });
}

// Texts, and what may be one where the VR is not known. Numbers as text cannot tell who somebody is.
bool IsSearched(VrCode vr, std::string_view value) {
    static constexpr std::array kTexts = {Vr::kAE, Vr::kCS,          Vr::kLO,         Vr::kLT,
                                          Vr::kPN, Vr::kSH,          Vr::kST,         Vr::kUT,
                                          Vr::kAS, MakeVr('U', 'C'), MakeVr('U', 'R')};
    if (vr == Vr::kUI) return !ConsistsOf(value, kUidCharacters);
    if (vr == Vr::kUN || vr == Vr::kNotKnown)
        return !HasControlCharacters(value) &&
               !(value.find('.') != std::string_view::npos && ConsistsOf(value, kUidCharacters));
    return std::find(kTexts.begin(), kTexts.end(), vr) != kTexts.end();
}

}  // namespace

void PatientIdentity::AddNames(std::string_view names) {
    for (const std::string_view name : SplitValue(names, '\\'))
        for (const std::string_view group : SplitValue(name, '=')) AddNamesOf(group);
}

// Each of the ways to write a name, in either order and also without anything between the parts.
void PatientIdentity::AddNamesOf(std::string_view group) {
    const bool isWord = IsPlain(group);
    Add(group, isWord);
    const auto [family, given] = FamilyAndGivenName(group);
    if (family.empty() || given.empty()) return;
    for (const std::string between : {" ", ""}) {
        Add(std::string(family).append(between).append(given), isWord);
        Add(std::string(given).append(between).append(family), isWord);
    }
}

void PatientIdentity::AddNumbers(std::string_view numbers) {
    for (const std::string_view number : SplitValue(numbers, '\\'))
        Add(number, IsPlain(number) && IsOfOneKind(number));
}

void PatientIdentity::Add(std::string_view text, bool isWord) {
    std::string comparable = Comparable(text);
    if (comparable.size() < kShortestText) return;
    const auto [known, isNew] = fTexts.try_emplace(std::move(comparable), isWord);
    if (!isNew) known->second = known->second && isWord;
}

bool PatientIdentity::IsIn(VrCode vr, std::string_view padded) const {
    const std::string_view value = TrimValue(padded);
    if (fTexts.empty() || !IsSearched(vr, value)) return false;
    // Numbers of measurements may be the same as a short number of the patient.
    const bool isNumber = vr == Vr::kNotKnown && ConsistsOf(value, kNumberCharacters);
    const size_t shortest = isNumber ? kShortestAmongNumbers : kShortestText;
    const std::string text = Comparable(value);
    return std::any_of(fTexts.begin(), fTexts.end(), [&](const auto& entry) {
        const auto& [wanted, isWord] = entry;
        return wanted.size() >= shortest && Contains(text, wanted, isWord);
    });
}

}  // namespace Vantor
