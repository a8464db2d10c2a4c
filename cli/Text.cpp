#include "cli/Text.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>

#include "platform/CodePage.h"

namespace VantorCli {

namespace {

constexpr uint32_t kReplacement = 0xFFFD;
constexpr uint32_t kLastCodePoint = 0x10FFFF;
constexpr uint32_t kSurrogatePayloadBits = 10;
constexpr uint32_t kFirstBeyond16Bits = 0x10000;

bool IsHighSurrogate(uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

bool IsLowSurrogate(uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// The controls of ASCII and those that ISO 8859 adds; terminals obey both.
bool IsControl(uint32_t codePoint) { return codePoint < 0x20 || (codePoint >= 0x7F && codePoint <= 0x9F); }

// The code points of host text, whose units have 16 or 32 bits.
template <typename Visitor>
void ForEachCodePoint(const HostString& text, Visitor visit) {
    for (size_t i = 0; i < text.size(); ++i) {
        const auto unit = static_cast<uint32_t>(text[i]);
        const uint32_t next = i + 1 < text.size() ? static_cast<uint32_t>(text[i + 1]) : 0;
        if (IsHighSurrogate(unit) && IsLowSurrogate(next)) {
            ++i;
            visit(kFirstBeyond16Bits + ((unit - 0xD800) << kSurrogatePayloadBits) + (next - 0xDC00));
        } else if (IsHighSurrogate(unit) || IsLowSurrogate(unit) || unit > kLastCodePoint) {
            visit(kReplacement);
        } else {
            visit(unit);
        }
    }
}

void AppendUtf8(std::string& utf8, uint32_t codePoint) {
    const auto append = [&utf8](uint32_t byte) { utf8 += static_cast<char>(static_cast<uint8_t>(byte)); };
    const auto continuation = [codePoint](uint32_t shift) { return 0x80 | ((codePoint >> shift) & 0x3F); };
    if (codePoint < 0x80) {
        append(codePoint);
    } else if (codePoint < 0x800) {
        append(0xC0 | (codePoint >> 6));
        append(continuation(0));
    } else if (codePoint < kFirstBeyond16Bits) {
        append(0xE0 | (codePoint >> 12));
        append(continuation(6));
        append(continuation(0));
    } else {
        append(0xF0 | (codePoint >> 18));
        append(continuation(12));
        append(continuation(6));
        append(continuation(0));
    }
}

void AppendEscaped(std::string& utf8, uint32_t control) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    utf8 += "\\x";
    utf8 += kDigits[(control >> 4) & 0xF];
    utf8 += kDigits[control & 0xF];
}

template <typename... Numbers>
std::string Formatted(const char* format, Numbers... numbers) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), format, numbers...);
    return text.data();
}

std::chrono::year_month_day DateOf(HostDateTime moment) {
    return std::chrono::year_month_day(std::chrono::floor<std::chrono::days>(moment));
}

const char* MonthName(std::chrono::month month) {
    constexpr std::array<const char*, 12> kNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    return kNames[static_cast<unsigned>(month) - 1];
}

}  // namespace

std::string ToUtf8(const HostString& text) {
    std::string utf8;
    ForEachCodePoint(text, [&utf8](uint32_t codePoint) { AppendUtf8(utf8, codePoint); });
    return utf8;
}

std::string ToPrintable(const HostString& text) {
    std::string utf8;
    ForEachCodePoint(text, [&utf8](uint32_t codePoint) {
        if (IsControl(codePoint)) {
            AppendEscaped(utf8, codePoint);
        } else {
            AppendUtf8(utf8, codePoint);
        }
    });
    return utf8;
}

std::string ToPrintable(std::string_view bytes) { return ToPrintable(Vantor::Platform::ToHostText(bytes)); }

HostString Trimmed(const HostString& text) {
    const size_t first = text.find_first_not_of(L' ');
    if (first == HostString::npos) return HostString();
    return text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

std::string IsoDate(HostDateTime moment) {
    const std::chrono::year_month_day date = DateOf(moment);
    return Formatted("%04d-%02u-%02u", static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                     static_cast<unsigned>(date.day()));
}

std::string IsoDateTime(HostDateTime moment) { return IsoDate(moment) + "T" + ReadableTime(moment); }

std::string ReadableDate(HostDateTime moment) {
    const std::chrono::year_month_day date = DateOf(moment);
    return Formatted("%u %s %d", static_cast<unsigned>(date.day()), MonthName(date.month()),
                     static_cast<int>(date.year()));
}

std::string ReadableTime(HostDateTime moment) {
    const std::chrono::hh_mm_ss time(moment - std::chrono::floor<std::chrono::days>(moment));
    return Formatted("%02d:%02d:%02d", static_cast<int>(time.hours().count()),
                     static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
}

}  // namespace VantorCli
