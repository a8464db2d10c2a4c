#include "platform/CodePage.h"

#include <array>
#include <cstdint>
#include <optional>
#include <utility>

#include "platform/Ascii.h"

namespace Vantor::Platform {

namespace {

static_assert(sizeof(wchar_t) == sizeof(char32_t), "host text holds one character per element here");

constexpr char32_t kLastAscii = 0x7F;
constexpr char32_t kLastOfTwoBytes = 0x7FF;
constexpr char32_t kLastOfThreeBytes = 0xFFFF;
constexpr char32_t kLastCharacter = 0x10FFFF;
constexpr char32_t kFirstSupplementary = 0x10000;
constexpr char32_t kFirstHighSurrogate = 0xD800;
constexpr char32_t kFirstLowSurrogate = 0xDC00;
constexpr char32_t kLastLowSurrogate = 0xDFFF;
constexpr int kSurrogateBits = 10;

constexpr uint8_t kFirstContinuation = 0x80;  // 10xxxxxx
constexpr uint8_t kContinuationMask = 0xC0;
constexpr int kContinuationBits = 6;
constexpr char32_t kContinuationValueMask = 0x3F;
constexpr uint8_t kTwoByteLead = 0xC0;    // 110xxxxx
constexpr uint8_t kThreeByteLead = 0xE0;  // 1110xxxx
constexpr uint8_t kFourByteLead = 0xF0;   // 11110xxx
constexpr uint8_t kFirstNoLead = 0xF8;

constexpr char kNoCounterpart = '?';

// Windows-1252 is Latin-1 but for these. The five bytes that it leaves undefined stand for the control
// character of the same number, as Windows itself converts them.
constexpr uint8_t kFirstWindowsOnly = 0x80;
constexpr std::array<char16_t, 32> kWindowsOnly = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsSurrogate(char32_t character) {
    return character >= kFirstHighSurrogate && character <= kLastLowSurrogate;
}

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

char ContinuationByte(char32_t character, int position) {
    const char32_t bits = (character >> (position * kContinuationBits)) & kContinuationValueMask;
    return static_cast<char>(kFirstContinuation | bits);
}

void AppendUtf8(std::string& bytes, char32_t character) {
    if (character <= kLastAscii) {
        bytes += static_cast<char>(character);
        return;
    }
    int following = 1;
    uint8_t lead = kTwoByteLead;
    if (character > kLastOfThreeBytes) {
        following = 3;
        lead = kFourByteLead;
    } else if (character > kLastOfTwoBytes) {
        following = 2;
        lead = kThreeByteLead;
    }
    bytes += static_cast<char>(lead | (character >> (following * kContinuationBits)));
    while (following > 0) {
        bytes += ContinuationByte(character, --following);
    }
}

// The character at the position, which moves behind it. Text that a host took over from UTF-16 element by
// element holds surrogate pairs; each is one character.
char32_t ReadHostText(std::wstring_view text, size_t& position) {
    const auto first = static_cast<char32_t>(text[position++]);
    if (first < kFirstHighSurrogate || first >= kFirstLowSurrogate || position == text.size()) {
        return first;
    }
    const auto second = static_cast<char32_t>(text[position]);
    if (second < kFirstLowSurrogate || second > kLastLowSurrogate) {
        return first;
    }
    ++position;
    return kFirstSupplementary + ((first - kFirstHighSurrogate) << kSurrogateBits) +
           (second - kFirstLowSurrogate);
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

std::string FromHostText(std::wstring_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (size_t position = 0; position < text.size();) {
        const char32_t character = ReadHostText(text, position);
        if (character > kLastCharacter || IsSurrogate(character)) {
            bytes += kNoCounterpart;
        } else {
            AppendUtf8(bytes, character);
        }
    }
    return bytes;
}

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
