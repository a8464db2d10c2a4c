#include "cli/Text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <type_traits>

#include "platform/CodePage.h"

namespace VantorCli {

namespace {

constexpr size_t kLongestFormatted = 64;
constexpr uint32_t kReplacement = 0xFFFD;
constexpr uint32_t kLastCodePoint = 0x10FFFF;

// Surrogates: two units of 16 bits for a code point that needs more.
constexpr uint32_t kFirstHighSurrogate = 0xD800;
constexpr uint32_t kFirstLowSurrogate = 0xDC00;
constexpr uint32_t kLastLowSurrogate = 0xDFFF;
constexpr uint32_t kSurrogateBits = 10;
constexpr uint32_t kFirstSupplementary = 0x10000;

// The controls of ASCII and those that ISO 8859 adds; terminals obey both.
constexpr uint32_t kFirstPrintable = 0x20;
constexpr uint32_t kFirstHighControl = 0x7F;
constexpr uint32_t kLastHighControl = 0x9F;

// UTF-8: a lead byte that tells how many bytes follow, each with 6 bits.
constexpr uint32_t kLastAscii = 0x7F;
constexpr uint32_t kLastOfTwoBytes = 0x7FF;
constexpr uint32_t kLastOfThreeBytes = 0xFFFF;
constexpr std::array<uint32_t, 4> kLeadBytes = {0, 0xC0, 0xE0, 0xF0};  // by the number of bytes that follow
constexpr uint32_t kContinuation = 0x80;
constexpr uint32_t kContinuationMask = 0x3F;
constexpr uint32_t kContinuationBits = 6;

bool IsControl(uint32_t codePoint) {
    return codePoint < kFirstPrintable || (codePoint >= kFirstHighControl && codePoint <= kLastHighControl);
}

bool IsPrintableAscii(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte >= kFirstPrintable && byte < kFirstHighControl;
}

bool IsHighSurrogate(uint32_t unit) { return unit >= kFirstHighSurrogate && unit < kFirstLowSurrogate; }

bool IsLowSurrogate(uint32_t unit) { return unit >= kFirstLowSurrogate && unit <= kLastLowSurrogate; }

uint32_t UnitAt(const HostString& text, size_t position) {
    return position < text.size() ? static_cast<std::make_unsigned_t<wchar_t>>(text[position]) : 0;
}

// The code points of host text, whose units have 16 or 32 bits.
template <typename Visitor>
void ForEachCodePoint(const HostString& text, Visitor visit) {
    for (size_t i = 0; i < text.size(); ++i) {
        const uint32_t unit = UnitAt(text, i);
        const uint32_t next = UnitAt(text, i + 1);
        if (IsHighSurrogate(unit) && IsLowSurrogate(next)) {
            ++i;
            visit(kFirstSupplementary + ((unit - kFirstHighSurrogate) << kSurrogateBits) + next -
                  kFirstLowSurrogate);
        } else if (IsHighSurrogate(unit) || IsLowSurrogate(unit) || unit > kLastCodePoint) {
            visit(kReplacement);
        } else {
            visit(unit);
        }
    }
}

uint32_t CountFollowingBytes(uint32_t codePoint) {
    if (codePoint <= kLastAscii) return 0;
    if (codePoint <= kLastOfTwoBytes) return 1;
    return codePoint <= kLastOfThreeBytes ? 2 : 3;
}

void AppendUtf8(std::string& utf8, uint32_t codePoint) {
    uint32_t following = CountFollowingBytes(codePoint);
    utf8 += static_cast<char>(kLeadBytes[following] | (codePoint >> (following * kContinuationBits)));
    while (following-- > 0) {
        const uint32_t bits = (codePoint >> (following * kContinuationBits)) & kContinuationMask;
        utf8 += static_cast<char>(kContinuation | bits);
    }
}

template <typename... Numbers>
std::string Formatted(const char* format, Numbers... numbers) {
    std::array<char, kLongestFormatted> text{};
    std::snprintf(text.data(), text.size(), format, numbers...);
    return text.data();
}

void AppendEscaped(std::string& utf8, uint32_t control) { utf8 += Formatted("\\x%02X", control); }

std::chrono::year_month_day DateOf(HostDateTime moment) {
    return std::chrono::year_month_day(std::chrono::floor<std::chrono::days>(moment));
}

const char* MonthName(std::chrono::month month) {
    constexpr std::array<const char*, 12> kNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    return kNames[static_cast<unsigned>(month) - 1];
}

// Of ASCII.
std::string ToNarrow(const HostString& text) {
    std::string narrow(text.size(), '\0');
    std::transform(text.begin(), text.end(), narrow.begin(),
                   [](wchar_t character) { return static_cast<char>(character); });
    return narrow;
}

}  // namespace

std::string ToUtf8(const HostString& text) {
    std::string utf8;
    ForEachCodePoint(text, [&utf8](uint32_t codePoint) { AppendUtf8(utf8, codePoint); });
    return utf8;
}

std::string ToPrintable(const HostString& text) {
    const auto isPlain = [](wchar_t character) { return character >= L' ' && character < L'\x7F'; };
    if (std::all_of(text.begin(), text.end(), isPlain)) return ToNarrow(text);
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

std::string ToPrintable(std::string_view bytes) {
    // Nearly all text, and much of it in a long dump.
    if (std::all_of(bytes.begin(), bytes.end(), IsPrintableAscii)) return std::string(bytes);
    return ToPrintable(Vantor::Platform::ToHostText(bytes));
}

std::string ToDotted(std::string_view bytes) {
    std::string text(bytes);
    std::replace_if(text.begin(), text.end(), std::not_fn(IsPrintableAscii), '.');
    return text;
}

size_t WidthOf(std::string_view utf8) {
    constexpr uint32_t kLeadMask = kContinuationMask ^ 0xFF;
    return static_cast<size_t>(std::count_if(utf8.begin(), utf8.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & kLeadMask) != kContinuation;
    }));
}

std::string PadRight(std::string utf8, size_t width) {
    utf8.append(width - std::min(width, WidthOf(utf8)), ' ');
    return utf8;
}

std::string PadLeft(std::string utf8, size_t width) {
    utf8.insert(0, width - std::min(width, WidthOf(utf8)), ' ');
    return utf8;
}

std::string Grouped(uint64_t number) {
    constexpr size_t kGroup = 3;
    std::string text = std::to_string(number);
    for (size_t end = text.size(); end > kGroup; end -= kGroup) {
        text.insert(end - kGroup, 1, ',');
    }
    return text;
}

std::string Counted(uint64_t number, const char* one, const char* many) {
    return Grouped(number) + " " + (number == 1 ? one : many);
}

std::string ReadableKilobytes(uint64_t count) { return Grouped(count) + " KB"; }

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
