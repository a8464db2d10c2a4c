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
constexpr size_t kShortestAmongBytes = 6;  // and among numbers

// Of what is longer, the start is looked for: it stands for the whole.
constexpr size_t kLongestText = 128;

bool ConsistsOf(std::string_view text, std::string_view characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
}

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetterOrDigit(char c) { return IsLetter(c) || IsDigit(c); }
bool IsOfAscii(char c) { return static_cast<uint8_t>(c) < 0x80; }

// The form in which texts are compared: in upper case, without changes of the character set, and with one
// space for whatever of ASCII may stand between the parts of a name. Bytes that are parts of longer
// characters change as well, but the same way on both sides; `knowsPairs`: but for those of two bytes after
// an escape sequence.
std::string Comparable(std::string_view text, bool knowsPairs) {
    constexpr size_t kPair = 2;
    std::string comparable;
    bool hasPairs = false;
    size_t position = 0;
    while (position < text.size()) {
        const char c = text[position];
        if (c == kEscape) {
            const size_t length = EscapeLength(text.substr(position));
            hasPairs = knowsPairs && StartsPairs(text.substr(position, length), hasPairs);
            position += length;
        } else if (hasPairs) {
            comparable.append(text.substr(position, kPair));
            position += kPair;
        } else {
            ++position;
            if (!IsOfAscii(c) || IsLetterOrDigit(c))
                comparable.push_back(Platform::UpperCase(c));
            else if (!comparable.empty() && comparable.back() != ' ')
                comparable.push_back(' ');
        }
    }
    if (!comparable.empty() && comparable.back() == ' ') comparable.pop_back();
    return comparable;
}

// The first two parts of a name; not everybody separates them as DICOM has it.
std::pair<std::string, std::string> FamilyAndGivenName(std::string_view name, Characters characters) {
    for (const char separator : {'^', ',', ' '}) {
        const std::vector<std::string_view> parts = SplitValue(TrimValue(name), separator, characters);
        if (parts.size() > 1) return {std::string(TrimValue(parts[0])), std::string(TrimValue(parts[1]))};
    }
    return {};
}

bool IsOfOneKind(std::string_view number) {
    return std::none_of(number.begin(), number.end(), IsDigit) ||
           std::none_of(number.begin(), number.end(), IsLetter);
}

// What a text can be in: nothing but measurements, texts, or nobody knows what.
enum class Content { kBinary, kText, kUnknown };

Content ContentOf(VrCode vr, std::string_view value) {
    static constexpr std::array kBinary = {
        Vr::kAT,          Vr::kFD,          Vr::kFL,          Vr::kOB,
        Vr::kOW,          Vr::kSL,          Vr::kSQ,          Vr::kSS,
        Vr::kUL,          Vr::kUS,          MakeVr('O', 'D'), MakeVr('O', 'F'),
        MakeVr('O', 'L'), MakeVr('O', 'V'), MakeVr('S', 'V'), MakeVr('U', 'V')};
    static constexpr std::array kNumbers = {Vr::kDA, Vr::kDS, Vr::kDT, Vr::kIS, Vr::kTM};
    static constexpr std::array kOtherTexts = {Vr::kAE, Vr::kCS, Vr::kAS, MakeVr('U', 'R')};
    const auto isOneOf = [vr](const auto& list) {
        return std::find(list.begin(), list.end(), vr) != list.end();
    };
    if (isOneOf(kBinary)) return Content::kBinary;
    // Numbers as text cannot tell who somebody is.
    if (vr == Vr::kUI) return ConsistsOf(value, kUidCharacters) ? Content::kBinary : Content::kText;
    if (isOneOf(kNumbers)) return ConsistsOf(value, kNumberCharacters) ? Content::kBinary : Content::kText;
    if (IsInCharacterSet(vr) || isOneOf(kOtherTexts)) return Content::kText;
    const bool isUid = value.find('.') != std::string_view::npos && ConsistsOf(value, kUidCharacters);
    return isUid ? Content::kBinary : Content::kUnknown;
}

}  // namespace

// ---- What is looked for ----

// Nobody need have said which character set a name is in: what is cut in the wrong places is found nowhere.
void PatientIdentity::AddNames(std::string_view names) {
    for (const Characters characters : {Characters::kOfIso2022, Characters::kOfGb18030}) {
        for (const std::string_view name : SplitValue(names, '\\', characters))
            for (const std::string_view group : SplitValue(name, '=', characters))
                AddNamesOf(group, characters);
        if (IsPlainAscii(names)) return;
    }
}

// Each of the ways to write a name, in either order and also without anything between the parts.
void PatientIdentity::AddNamesOf(std::string_view group, Characters characters) {
    const bool isWord = IsPlainAscii(group);
    Add(group, isWord);
    const auto [family, given] = FamilyAndGivenName(group, characters);
    if (family.empty() || given.empty()) return;
    for (const std::string between : {" ", ""}) {
        Add(std::string(family).append(between).append(given), isWord);
        Add(std::string(given).append(between).append(family), isWord);
    }
}

void PatientIdentity::AddNumbers(std::string_view numbers) {
    AddNumbersOf(numbers, Characters::kOfIso2022);
    if (!IsPlainAscii(numbers)) AddNumbersOf(numbers, Characters::kOfGb18030);
}

void PatientIdentity::AddNumbersOf(std::string_view numbers, Characters characters) {
    for (const std::string_view number : SplitValue(numbers, '\\', characters))
        Add(number, IsPlainAscii(number) && IsOfOneKind(number));
}

void PatientIdentity::Add(std::string_view text, bool isWord) {
    std::string comparable = Comparable(text, true);
    if (comparable.size() < kShortestText) return;
    Bounds bounds{isWord, isWord && comparable.size() <= kLongestText};
    comparable.resize(std::min(comparable.size(), kLongestText));
    const auto [known, isNew] = fTexts.try_emplace(std::move(comparable), bounds);
    if (isNew) return;
    known->second.fAtStart = known->second.fAtStart && bounds.fAtStart;
    known->second.fAtEnd = known->second.fAtEnd && bounds.fAtEnd;
}

// Texts that another one begins with come before it, and nothing else but such that begin with them between.
void PatientIdentity::Prepare() {
    fWanted.reserve(fTexts.size());
    while (!fTexts.empty()) {
        auto next = fTexts.extract(fTexts.begin());
        size_t shorter = fWanted.empty() ? kNone : fWanted.size() - 1;
        while (shorter != kNone && !next.key().starts_with(fWanted[shorter].fText))
            shorter = fWanted[shorter].fShorter;
        fStarts.set(StartOf(next.key()));
        fWanted.push_back({std::move(next.key()), next.mapped(), shorter});
    }
}

uint16_t PatientIdentity::StartOf(std::string_view text) {
    constexpr int kBitsOfByte = 8;
    return static_cast<uint16_t>(static_cast<uint8_t>(text[0]) << kBitsOfByte |
                                 static_cast<uint8_t>(text[1]));
}

// ---- Looking for it ----

bool PatientIdentity::IsIn(VrCode vr, std::string_view padded) const {
    const std::string_view value = TrimValue(padded);
    if (fWanted.empty()) return false;
    switch (ContentOf(vr, value)) {
        case Content::kBinary:
            return false;
        case Content::kText:
            return IsInText(value, kShortestText);
        case Content::kUnknown:
            return IsInUnknown(value, vr == Vr::kNotKnown);
    }
    return false;
}

// A text may end before its value does; what is behind it need not be text.
bool PatientIdentity::IsInUnknown(std::string_view value, bool mayBeNumber) const {
    size_t end = 0;
    for (size_t start = 0; start < value.size(); start = end + 1) {
        end = std::min(value.find('\0', start), value.size());
        const std::string_view part = value.substr(start, end - start);
        if (part.size() < kShortestText || HasControlCharacters(part)) continue;
        // Numbers of measurements may be the same as a short number of the patient.
        const bool isNumber = mayBeNumber && ConsistsOf(part, kNumberCharacters);
        if (IsInText(part, isNumber ? kShortestAmongBytes : kShortestText)) return true;
    }
    return HasControlCharacters(value) && IsInText(value, kShortestAmongBytes);
}

// An escape sequence that somebody forgot to take back, or that is none, hides nothing.
bool PatientIdentity::IsInText(std::string_view value, size_t shortest) const {
    if (IsInComparable(Comparable(value, true), shortest)) return true;
    return value.find(kEscape) != std::string_view::npos &&
           IsInComparable(Comparable(value, false), shortest);
}

bool PatientIdentity::IsInComparable(std::string_view text, size_t shortest) const {
    for (size_t position = 0; position + kShortestText <= text.size(); ++position) {
        const bool mayBegin = fStarts.test(StartOf(text.substr(position)));
        if (mayBegin && BeginsAt(text, position, shortest)) return true;
    }
    return false;
}

// Every text that the rest begins with is the last one that does not come behind the rest, or one that this
// begins with in turn.
bool PatientIdentity::BeginsAt(std::string_view text, size_t position, size_t shortest) const {
    const std::string_view rest = text.substr(position);
    const auto behind = std::upper_bound(fWanted.begin(), fWanted.end(), rest,
                                         [](std::string_view a, const Wanted& b) { return a < b.fText; });
    if (behind == fWanted.begin()) return false;
    const bool isInWord = position > 0 && IsLetterOrDigit(text[position - 1]);
    auto place = static_cast<size_t>(behind - fWanted.begin()) - 1;
    bool isFound = false;
    for (; place != kNone; place = fWanted[place].fShorter) {
        const auto& [wanted, bounds, shorter] = fWanted[place];
        if (wanted.size() < shortest) return false;
        if (bounds.fAtStart && isInWord) continue;
        isFound = isFound || rest.starts_with(wanted);
        const bool goesOn = wanted.size() < rest.size() && IsLetterOrDigit(rest[wanted.size()]);
        if (isFound && !(bounds.fAtEnd && goesOn)) return true;
    }
    return false;
}

}  // namespace Vantor
