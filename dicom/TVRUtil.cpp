#include "dicom/TVRUtil.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace Vantor {

namespace {

constexpr size_t kYearLength = 4;
constexpr size_t kMonthStart = 4;
constexpr size_t kDayStart = 6;
constexpr size_t kPartLength = 2;  // month, day, hours, minutes
constexpr size_t kDateLength = 8;
constexpr size_t kTimeLength = 4;

size_t LengthWithin(const char* text, size_t limit) {
    return static_cast<size_t>(std::find(text, text + limit, '\0') - text);
}

// The first characters of a value; those behind an early NUL are NUL.
template <size_t N>
std::array<char, N> FirstCharacters(const char* value) {
    std::array<char, N> characters{};
    std::memcpy(characters.data(), value, LengthWithin(value, N));
    return characters;
}

// Writes parts of a value, joined by a separator, and a NUL.
class PartWriter {
  public:
    explicit PartWriter(char* output) : fOutput(output) {}

    PartWriter& Part(const char* part, size_t length) {
        fOutput = std::copy_n(part, length, fOutput);
        *fOutput = '\0';
        return *this;
    }

    PartWriter& Separator(char separator) {
        *fOutput++ = separator;
        return *this;
    }

  private:
    char* fOutput;
};

}  // namespace

void TVRUtil::DicomDateToCString(const char* date, char* output, uint32_t outputSize, int32_t format) const {
    if (outputSize < kDateOutputSize) return;
    const auto characters = FirstCharacters<kDateLength>(date);
    const char* year = characters.data();
    const char* month = year + kMonthStart;
    const char* day = year + kDayStart;
    PartWriter writer(output);
    if (format == kEightDigits) {
        writer.Part(year, kDateLength);
    } else if (format == kDayFirst) {
        writer.Part(day, kPartLength).Separator('/').Part(month, kPartLength).Separator('/');
        writer.Part(year, kYearLength);
    } else {
        writer.Part(month, kPartLength).Separator('/').Part(day, kPartLength).Separator('/');
        writer.Part(year, kYearLength);
    }
}

void TVRUtil::DicomTimeToCString(const char* time, char* output, uint32_t outputSize) const {
    if (outputSize < kTimeOutputSize) return;
    const auto characters = FirstCharacters<kTimeLength>(time);
    PartWriter(output)
        .Part(characters.data(), kPartLength)
        .Separator(':')
        .Part(characters.data() + kPartLength, kPartLength);
}

}  // namespace Vantor
