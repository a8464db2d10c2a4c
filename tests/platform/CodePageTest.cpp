#include "platform/CodePage.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace Vantor::Platform {

namespace {

// Windows has the system code page, all others the rule that valid UTF-8 is UTF-8.
bool HasSystemCodePage() { return std::filesystem::path::preferred_separator == '\\'; }

struct TextPair {
    std::string fBytes;
    std::wstring fText;
};

class GuessedCodePage : public testing::Test {
  protected:
    void SetUp() override {
        if (HasSystemCodePage()) {
            GTEST_SKIP() << "text is in the system code page";
        }
    }
};

std::wstring Characters(std::initializer_list<uint32_t> characters) {
    std::wstring text;
    for (const uint32_t character : characters) {
        text += static_cast<wchar_t>(character);
    }
    return text;
}

}  // namespace

TEST(CodePage, AsciiIsTheSameEverywhere) {
    std::string bytes;
    std::wstring text;
    for (int character = 0; character < 128; ++character) {
        bytes += static_cast<char>(character);
        text += static_cast<wchar_t>(character);
    }
    EXPECT_EQ(ToHostText(bytes), text);
    EXPECT_EQ(FromHostText(text), bytes);
    EXPECT_EQ(ToHostText(""), L"");
    EXPECT_EQ(FromHostText(L""), "");
}

TEST(CodePage, EveryByteGivesSomething) {
    for (int byte = 128; byte < 256; ++byte) {
        EXPECT_FALSE(ToHostText(std::string("a") + static_cast<char>(byte) + "z").empty());
    }
}

TEST(CodePage, SystemCodePageOfWesternEurope) {
    if (!HasSystemCodePage() || ToHostText("\xFC") != L"\u00FC") {
        GTEST_SKIP() << "another code page";
    }
    EXPECT_EQ(ToHostText("M\xFCller\x80"), L"M\u00FCller\u20AC");
    EXPECT_EQ(FromHostText(L"M\u00FCller\u20AC"), "M\xFCller\x80");
    EXPECT_EQ(FromHostText(L"\u65E5"), "?");
    EXPECT_EQ(FromHostText(L"\uFF0F"), "?") << "not a slash, which only looks alike";
}

TEST_F(GuessedCodePage, ValidUtf8IsUtf8) {
    const TextPair cases[] = {
        {"M\xC3\xBCller", Characters({'M', 0xFC, 'l', 'l', 'e', 'r'})},
        {"\xC2\x80", Characters({0x80})},
        {"\xDF\xBF", Characters({0x7FF})},
        {"\xE0\xA0\x80", Characters({0x800})},
        {"\xE6\x97\xA5", Characters({0x65E5})},
        {"\xED\x9F\xBF", Characters({0xD7FF})},
        {"\xEE\x80\x80", Characters({0xE000})},
        {"\xEF\xBF\xBF", Characters({0xFFFF})},
        {"\xF0\x90\x80\x80", Characters({0x10000})},
        {"\xF0\x9F\x98\x80", Characters({0x1F600})},
        {"\xF4\x8F\xBF\xBF", Characters({0x10FFFF})},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(ToHostText(bytes), text);
        EXPECT_EQ(FromHostText(text), bytes);
    }
}

// One byte that cannot be UTF-8 makes the whole value Windows-1252.
TEST_F(GuessedCodePage, AnyOtherIsWindows1252) {
    const TextPair cases[] = {
        {"M\xFCller", Characters({'M', 0xFC, 'l', 'l', 'e', 'r'})},
        {"\x80 \x9F", Characters({0x20AC, ' ', 0x178})},
        {"\x81\x8D\x8F\x90\x9D", Characters({0x81, 0x8D, 0x8F, 0x90, 0x9D})},
        {"\xA0\xFF", Characters({0xA0, 0xFF})},
        {"\xC3\xBC\xFC", Characters({0xC3, 0xBC, 0xFC})},                // UTF-8, then not
        {"\xC3", Characters({0xC3})},                                    // ends too early
        {"\xE6\x97", Characters({0xE6, 0x2014})},                        // ends too early
        {"\xC3(", Characters({0xC3, '('})},                              // no continuation
        {"\xC0\xAF", Characters({0xC0, 0xAF})},                          // overlong
        {"\xC1\xBF", Characters({0xC1, 0xBF})},                          // overlong
        {"\xE0\x9F\xBF", Characters({0xE0, 0x178, 0xBF})},               // overlong
        {"\xF0\x8F\xBF\xBF", Characters({0xF0, 0x8F, 0xBF, 0xBF})},      // overlong
        {"\xED\xA0\x80", Characters({0xED, 0xA0, 0x20AC})},              // a surrogate
        {"\xED\xBF\xBF", Characters({0xED, 0xBF, 0xBF})},                // a surrogate
        {"\xF4\x90\x80\x80", Characters({0xF4, 0x90, 0x20AC, 0x20AC})},  // beyond the last character
        {"\xF8\x88\x80\x80\x80", Characters({0xF8, 0x2C6, 0x20AC, 0x20AC, 0x20AC})},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(ToHostText(bytes), text) << testing::PrintToString(bytes);
    }
}

TEST_F(GuessedCodePage, WholeUpperHalfOfWindows1252) {
    const std::wstring firstRows =
        Characters({0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021, 0x2C6,  0x2030, 0x160,
                    0x2039, 0x152,  0x8D,   0x17D,  0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
                    0x2013, 0x2014, 0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178});
    for (uint32_t byte = 0x80; byte <= 0xFF; ++byte) {
        const std::wstring expected = byte < 0xA0 ? firstRows.substr(byte - 0x80, 1) : Characters({byte});
        EXPECT_EQ(ToHostText(std::string(1, static_cast<char>(byte))), expected) << byte;
    }
}

TEST_F(GuessedCodePage, HostTextThatIsNoText) {
    const TextPair cases[] = {
        {"a?z", Characters({'a', 0xD800, 'z'})},
        {"a?z", Characters({'a', 0xDFFF, 'z'})},
        {"?", Characters({0xD83D})},
        {"??", Characters({0xDE00, 0xD83D})},
        {"?", Characters({0x110000})},
        {"?", Characters({0xFFFFFFFF})},
        {"\xF0\x9F\x98\x80", Characters({0xD83D, 0xDE00})},  // a pair, from a host with 16-bit text
        {"?\xF0\x9F\x98\x80", Characters({0xD83D, 0xD83D, 0xDE00})},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(FromHostText(text), bytes);
    }
}

}  // namespace Vantor::Platform
