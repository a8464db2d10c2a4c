#include "dicom/TTextUtil.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace Vantor {

uint32_t TTextUtil::CopyCString(const char* source, char* destination, uint32_t destinationSize) const {
    if (destinationSize == 0) return 0;
    uint32_t position = 0;
    while (position + 1 < destinationSize && source[position] != '\0') {
        destination[position] = source[position];
        ++position;
    }
    destination[position] = '\0';
    return position;
}

uint32_t TTextUtil::StringLength(const char* text) const {
    uint32_t length = 0;
    while (length < kMaximumStringLength && text[length] != '\0') ++length;
    return length;
}

bool TTextUtil::CompareBytes(const void* a, const void* b, uint32_t count) const {
    return count == 0 || std::memcmp(a, b, count) == 0;
}

bool TTextUtil::EqualStrings(const char* a, const char* b) const {
    const uint32_t length = StringLength(a);
    return length == StringLength(b) && CompareBytes(a, b, length);
}

bool TTextUtil::FindFirst(const char* pattern, uint32_t patternLength, const char* text, uint32_t textLength,
                          int32_t& position) const {
    position = -1;
    for (uint32_t start = 0; patternLength <= textLength && start <= textLength - patternLength; ++start) {
        if (CompareBytes(pattern, text + start, patternLength)) {
            position = static_cast<int32_t>(start);
            return true;
        }
    }
    return false;
}

bool TTextUtil::FindLast(const char* pattern, uint32_t patternLength, const char* text, uint32_t textLength,
                         int32_t& position) const {
    position = -1;
    bool endsWithPattern = false;
    for (uint32_t start = 0; patternLength <= textLength && start <= textLength - patternLength; ++start) {
        endsWithPattern = CompareBytes(pattern, text + start, patternLength);
        if (endsWithPattern) position = static_cast<int32_t>(start);
    }
    return endsWithPattern;
}

int32_t TTextUtil::AppendText(const char* source, uint32_t count, char* buffer, int32_t capacity,
                              int32_t position) const {
    if (position >= capacity) return position;
    const uint32_t room = static_cast<uint32_t>(capacity - position);
    const uint32_t length = std::min(count, room);
    std::replace_copy(source, source + length, buffer + position, '\0', ' ');
    return position + static_cast<int32_t>(length);
}

int32_t TTextUtil::AppendHex(const uint8_t* bytes, uint32_t count, char* buffer, int32_t capacity,
                             int32_t position) const {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    for (uint32_t index = 0; index < count && position <= capacity - 2; ++index) {
        buffer[position++] = kDigits[bytes[index] >> 4];
        buffer[position++] = kDigits[bytes[index] & 0x0F];
    }
    return position;
}

std::optional<int32_t> TTextUtil::ReadInteger(const char* text) const {
    // The C locale's: a host may have set another one.
    while (*text == ' ' || (*text >= '\t' && *text <= '\r')) ++text;
    const bool isNegative = *text == '-';
    if (*text == '-' || *text == '+') ++text;
    if (*text < '0' || *text > '9') return std::nullopt;
    constexpr int64_t kBase = 10;
    constexpr int64_t kSmallest = std::numeric_limits<int32_t>::min();
    constexpr int64_t kLargest = std::numeric_limits<int32_t>::max();
    int64_t number = 0;
    for (; *text >= '0' && *text <= '9'; ++text) {
        number = std::clamp(number * kBase + (isNegative ? '0' - *text : *text - '0'), kSmallest, kLargest);
    }
    return static_cast<int32_t>(number);
}

void TTextUtil::ReplaceChar(char from, char to, char* text, uint32_t length) const {
    std::replace(text, text + length, from, to);
}

}  // namespace Vantor
