#pragma once

#include <cstdint>

// The numbers of Unicode and of its UTF-8 form, for the sources that read and write them.
namespace Vantor::Platform::Unicode {

inline constexpr char32_t kLastAscii = 0x7F;
inline constexpr char32_t kLastOfTwoBytes = 0x7FF;
inline constexpr char32_t kLastOfThreeBytes = 0xFFFF;
inline constexpr char32_t kLastCharacter = 0x10FFFF;
inline constexpr char32_t kFirstSupplementary = 0x10000;

inline constexpr char32_t kFirstHighSurrogate = 0xD800;
inline constexpr char32_t kFirstLowSurrogate = 0xDC00;
inline constexpr char32_t kLastLowSurrogate = 0xDFFF;
inline constexpr int kSurrogateBits = 10;

inline constexpr uint8_t kFirstContinuation = 0x80;  // 10xxxxxx
inline constexpr uint8_t kContinuationMask = 0xC0;
inline constexpr int kContinuationBits = 6;
inline constexpr char32_t kContinuationValueMask = 0x3F;
inline constexpr uint8_t kTwoByteLead = 0xC0;    // 110xxxxx
inline constexpr uint8_t kThreeByteLead = 0xE0;  // 1110xxxx
inline constexpr uint8_t kFourByteLead = 0xF0;   // 11110xxx
inline constexpr uint8_t kFirstNoLead = 0xF8;

constexpr bool IsSurrogate(char32_t character) {
    return character >= kFirstHighSurrogate && character <= kLastLowSurrogate;
}

}  // namespace Vantor::Platform::Unicode
