#include "platform/CodePage.h"

#include <cstdint>

#include "platform/Ascii.h"
#include "platform/Unicode.h"

namespace Vantor::Platform {

using namespace Unicode;

namespace {

constexpr char kNoCounterpart = '?';

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

std::string ToUtf8(std::wstring_view text) {
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

std::string AsHostsSee(std::string_view bytes) {
    return IsAscii(bytes) ? std::string(bytes) : FromHostText(ToHostText(bytes));
}

}  // namespace Vantor::Platform
