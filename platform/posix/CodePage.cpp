#include "platform/CodePage.h"

#include <array>
#include <cstdint>
#include <optional>
#include <utility>

#include "platform/Ascii.h"
#include "platform/Unicode.h"

namespace Vantor::Platform {

using namespace Unicode;

namespace {

static_assert(sizeof(wchar_t) == sizeof(char32_t), "host text holds one character per element here");

// Windows-1252 is Latin-1 but for these. The five bytes that it leaves undefined stand for the control
// character of the same number, as Windows itself converts them.
constexpr uint8_t kFirstWindowsOnly = 0x80;
constexpr std::array<char16_t, 32> kWindowsOnly = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// How one UTF-8 sequence begins: how many bytes follow, the bits its first byte brings, and the smallest
// character that needs this many bytes.
struct LeadByte {
    int fFollowing;
    char32_t fBits;
    char32_t fSmallest;
};

std::optional<LeadByte> ReadLeadByte(uint8_t byte) {
    if (byte <= kLastAscii) {
        return LeadByte{0, byte, 0};
    }
    if (byte < kTwoByteLead || byte >= kFirstNoLead) {
        return std::nullopt;
    }
    if (byte < kThreeByteLead) {
        return LeadByte{1, static_cast<char32_t>(byte - kTwoByteLead), kLastAscii + 1};
    }
    if (byte < kFourByteLead) {
        return LeadByte{2, static_cast<char32_t>(byte - kThreeByteLead), kLastOfTwoBytes + 1};
    }
    return LeadByte{3, static_cast<char32_t>(byte - kFourByteLead), kFirstSupplementary};
}

// The character at the position, which moves behind it; none when the bytes are not valid UTF-8. Overlong
// forms, surrogates and what lies beyond the last character are not valid.
std::optional<char32_t> ReadUtf8(std::string_view bytes, size_t& position) {
    const std::optional<LeadByte> lead = ReadLeadByte(static_cast<uint8_t>(bytes[position++]));
    if (!lead) {
        return std::nullopt;
    }
    char32_t character = lead->fBits;
    for (int i = 0; i < lead->fFollowing; ++i) {
        if (position == bytes.size()) {
            return std::nullopt;
        }
        const auto byte = static_cast<uint8_t>(bytes[position++]);
        if ((byte & kContinuationMask) != kFirstContinuation) {
            return std::nullopt;
        }
        character = (character << kContinuationBits) | (byte & kContinuationValueMask);
    }
    if (character < lead->fSmallest || character > kLastCharacter || IsSurrogate(character)) {
        return std::nullopt;
    }
    return character;
}

std::optional<std::wstring> FromUtf8(std::string_view bytes) {
    std::wstring text;
    text.reserve(bytes.size());
    for (size_t position = 0; position < bytes.size();) {
        const std::optional<char32_t> character = ReadUtf8(bytes, position);
        if (!character) {
            return std::nullopt;
        }
        text += static_cast<wchar_t>(*character);
    }
    return text;
}

std::wstring FromWindows1252(std::string_view bytes) {
    std::wstring text;
    text.reserve(bytes.size());
    for (const char letter : bytes) {
        const auto byte = static_cast<uint8_t>(letter);
        const bool isWindowsOnly =
            byte >= kFirstWindowsOnly && byte < kFirstWindowsOnly + kWindowsOnly.size();
        text += static_cast<wchar_t>(isWindowsOnly ? kWindowsOnly[byte - kFirstWindowsOnly] : byte);
    }
    return text;
}

}  // namespace

// Most texts are ASCII.
std::wstring ToHostText(std::string_view bytes) {
    if (IsAscii(bytes)) {
        return {bytes.begin(), bytes.end()};
    }
    std::optional<std::wstring> text = FromUtf8(bytes);
    return text ? std::move(*text) : FromWindows1252(bytes);
}

std::string FromHostText(std::wstring_view text) { return ToUtf8(text); }

uint32_t GetNativeCodePage() { return kUtf8CodePage; }

size_t CutPosition(std::string_view bytes, size_t limit) {
    if (bytes.size() <= limit) {
        return bytes.size();
    }
    for (size_t position = 0; position < limit;) {
        const size_t start = position;
        if (!ReadUtf8(bytes, position)) {
            break;
        }
        if (position > limit) {
            return start;
        }
    }
    return limit;
}

}  // namespace Vantor::Platform
