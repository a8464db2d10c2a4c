#include "dicom/CharacterSet.h"

#include <algorithm>
#include <cstdint>

#include "platform/Ascii.h"
#include "platform/CodePage.h"

namespace Vantor::CharacterSet {

namespace {

constexpr wchar_t kLastAscii = 0x7F;
constexpr wchar_t kFirstLatin1 = 0xA0;  // what lies between is not for texts
constexpr wchar_t kLastLatin1 = 0xFF;

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

std::string BytesOf(std::wstring_view text) {
    std::string bytes(text.size(), '\0');
    std::transform(text.begin(), text.end(), bytes.begin(), [](wchar_t each) { return char(each); });
    return bytes;
}

}  // namespace

std::optional<std::string> Encode(std::wstring_view text, std::string_view characterSet) {
    if (IsAscii(text) || (characterSet == kLatin1 && IsLatin1(text))) return BytesOf(text);
    if (characterSet == kUtf8) return Platform::ToUtf8(text);
    return std::nullopt;
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
