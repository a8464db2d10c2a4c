#pragma once

#include <cstdint>
#include <optional>

namespace Vantor {

// Works on byte strings that either end with a NUL or come with a length, as DICOM values do. Everything is
// bounded by a size that the caller gives. Has no data; make one where it is needed.
class TTextUtil {
  public:
    // StringLength never counts further.
    static constexpr uint32_t kMaximumStringLength = 256;

    // Copies up to the source's NUL or until destinationSize − 1 bytes are copied, then writes a NUL. Gives
    // the position of that NUL. A destinationSize of 0 writes nothing and gives 0.
    uint32_t CopyCString(const char* source, char* destination, uint32_t destinationSize) const;

    // The number of bytes before the NUL, at most kMaximumStringLength.
    uint32_t StringLength(const char* text) const;

    // True when the first `count` bytes are equal; so also for a count of 0. A caller that compares a stored
    // value with a constant passes the value's length, so that the constant counts over that length only.
    bool CompareBytes(const void* a, const void* b, uint32_t count) const;

    // True when both StringLengths and the bytes over that length are equal.
    bool EqualStrings(const char* a, const char* b) const;

    // Finds the first place of a pattern in a text. True with its position, or false with position −1.
    bool FindFirst(const char* pattern, uint32_t patternLength, const char* text, uint32_t textLength,
                   int32_t& position) const;

    // Finds the last place of a pattern: position is the start of the last match, −1 without one. The answer
    // is true only when the text ends with the pattern; it may be false with a position set. Callers ask
    // "does it end so" by the answer and "where was it last" by the position.
    bool FindLast(const char* pattern, uint32_t patternLength, const char* text, uint32_t textLength,
                  int32_t& position) const;

    // Appends up to `count` bytes at `position` of a buffer, cut at its capacity, each NUL as a space. Gives
    // the new position. Writes no terminator.
    int32_t AppendText(const char* source, uint32_t count, char* buffer, int32_t capacity,
                       int32_t position) const;

    // Appends each byte as two upper-case hexadecimal digits, as long as both fit. Gives the new position.
    int32_t AppendHex(const uint8_t* bytes, uint32_t count, char* buffer, int32_t capacity,
                      int32_t position) const;

    // The integer at the start of a text, behind white space and a sign; none when there is none. One beyond
    // 32 bits is the nearest that fits.
    std::optional<int32_t> ReadInteger(const char* text) const;

    // Replaces each `from` by `to` in the first `length` bytes.
    void ReplaceChar(char from, char to, char* text, uint32_t length) const;
};

}  // namespace Vantor
