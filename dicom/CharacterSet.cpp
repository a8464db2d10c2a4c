#include "dicom/CharacterSet.h"

#include <algorithm>
#include <cstdint>

#include "dicom/ValueText.h"
#include "platform/Ascii.h"
#include "platform/CodePage.h"
#include "platform/Unicode.h"

namespace Vantor::CharacterSet {

namespace {

constexpr wchar_t kLastAscii = 0x7F;
constexpr wchar_t kFirstLatin1 = 0xA0;  // what lies between is not for texts
constexpr wchar_t kLastLatin1 = 0xFF;

constexpr std::string_view kExtendedLatin1 = "ISO 2022 IR 100";  // as the first of several sets, or alone

// Code pages whose letters have the numbers that they have in a character set of DICOM.
struct CodePageTerm {
    uint32_t fCodePage;
    const char* fTerm;
};
constexpr CodePageTerm kTerms[] = {
    {Platform::kUtf8CodePage, kUtf8},
    {1252, kLatin1},
    {1253, "ISO_IR 126"},  // Greek
    {1254, "ISO_IR 148"},  // Turkish
    {874, "ISO_IR 166"},   // Thai
    {936, "GBK"},
    {54936, "GB18030"},
};

bool IsAscii(std::wstring_view text) {
    return std::all_of(text.begin(), text.end(), [](wchar_t each) { return each <= kLastAscii; });
}

bool IsLatin1(std::wstring_view text) {
    return std::all_of(text.begin(), text.end(), [](wchar_t each) {
        return each <= kLastAscii || (each >= kFirstLatin1 && each <= kLastLatin1);
    });
}

// Half a surrogate pair is no character, and becomes a question mark.
std::optional<std::string> Utf8Of(std::wstring_view text) {
    std::string bytes = Platform::ToUtf8(text);
    if (std::count(bytes.begin(), bytes.end(), '?') != std::count(text.begin(), text.end(), L'?'))
        return std::nullopt;
    return bytes;
}

// How many bytes a character of UTF-8 has; 0 for a byte that begins none.
size_t Utf8Length(uint8_t lead) {
    using namespace Platform::Unicode;
    constexpr size_t kLengths[] = {2, 3, 4};
    if (lead <= kLastAscii) return 1;
    if (lead < kTwoByteLead || lead >= kFirstNoLead) return 0;
    return kLengths[(lead >= kThreeByteLead ? 1 : 0) + (lead >= kFourByteLead ? 1 : 0)];
}

bool IsUtf8(std::string_view bytes) {
    using namespace Platform::Unicode;
    const auto isContinuation = [](char each) {
        return (static_cast<uint8_t>(each) & kContinuationMask) == kFirstContinuation;
    };
    while (!bytes.empty()) {
        const size_t length = Utf8Length(static_cast<uint8_t>(bytes.front()));
        if (length == 0 || length > bytes.size()) return false;
        const std::string_view following = bytes.substr(1, length - 1);
        if (!std::all_of(following.begin(), following.end(), isContinuation)) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::string BytesOf(std::wstring_view text) {
    std::string bytes(text.size(), '\0');
    std::transform(text.begin(), text.end(), bytes.begin(), [](wchar_t each) { return char(each); });
    return bytes;
}

}  // namespace

std::optional<std::string> Encode(std::wstring_view text, std::string_view characterSet) {
    const std::string_view first = TrimValue(characterSet.substr(0, characterSet.find('\\')));
    const bool isLatin1 = first == kLatin1 || first == kExtendedLatin1;
    if (IsAscii(text) || (isLatin1 && IsLatin1(text))) return BytesOf(text);
    return first == kUtf8 ? Utf8Of(text) : std::nullopt;
}

std::optional<std::string> OfUnnamed(std::string_view bytes) {
    if (bytes.find(kEscape) != std::string_view::npos) return std::nullopt;
    if (IsUtf8(bytes)) return kUtf8;
    const bool isLatin1 = std::all_of(bytes.begin(), bytes.end(), [](char each) {
        const auto byte = static_cast<uint8_t>(each);
        return byte <= kLastAscii || byte >= kFirstLatin1;
    });
    return isLatin1 ? std::optional<std::string>(kLatin1) : std::nullopt;
}

std::optional<std::string> OfNativeText(std::string_view bytes) {
    if (Platform::IsAscii(bytes)) return std::nullopt;
    const auto* const found = std::find_if(
        std::begin(kTerms), std::end(kTerms),
        [](const CodePageTerm& each) { return each.fCodePage == Platform::GetNativeCodePage(); });
    if (found == std::end(kTerms)) return std::nullopt;
    return found->fTerm;
}

}  // namespace Vantor::CharacterSet
