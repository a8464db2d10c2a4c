#include "platform/CodePage.h"

#include <gtest/gtest.h>

#include "tests/support/TestFolder.h"

namespace Vantor::Platform {

using VantorTest::kIsWindows;

// The system code page of Western Europe on Windows; elsewhere what bytes mean that are no UTF-8.
TEST(CodePage, Windows1252) {
    if (kIsWindows && ToHostText("\x80") != L"\u20AC") GTEST_SKIP() << "another code page";
    std::string bytes;
    std::wstring text;
    for (int byte = 0; byte <= 0xFF; ++byte) {
        bytes += static_cast<char>(byte);
        text += static_cast<wchar_t>(byte);
    }
    text.replace(
        0x80, 32,
        L"\u20AC\x81\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\x8D\u017D\x8F"
        L"\x90\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\x9D\u017E\u0178");
    EXPECT_EQ(ToHostText(bytes), text);
    EXPECT_EQ(ToHostText(FromHostText(text)), text);
    // The second is no slash, although it looks like one.
    EXPECT_EQ(FromHostText(L"\u65E5\uFF0F"), kIsWindows ? "??" : "\xE6\x97\xA5\xEF\xBC\x8F");
}

TEST(CodePage, Utf8) {
    const std::wstring text = L"M\x80\x7FF\x800\xD7FF\xE000\xFFFF\U00010000\U0010FFFF";
    const std::string bytes =
        "M\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
    EXPECT_EQ(ToUtf8(text), bytes);
    if (kIsWindows) GTEST_SKIP() << "text is in the system code page";
    EXPECT_EQ(GetNativeCodePage(), kUtf8CodePage);
    EXPECT_EQ(ToHostText(bytes), text);
    EXPECT_EQ(FromHostText(text), bytes);
    // Halves of surrogate pairs and what lies beyond the last character; a pair from a host with UTF-16.
    EXPECT_EQ(FromHostText(std::wstring(L"a\xD800\xE000\xDFFF") + static_cast<wchar_t>(0x110000)),
              "a?\xEE\x80\x80??");
    EXPECT_EQ(FromHostText(std::wstring_view(L"\xD83D\xD83D\xDE00\xD83D\xDE00", 4)), "?\xF0\x9F\x98\x80?");
    EXPECT_EQ(ToHostText(std::string_view("\xC3\xBC", 1)), L"\xC3");
    // Bytes alone, overlong forms, surrogates, beyond the last character. One of them makes the whole value
    // Windows-1252, byte by byte.
    for (const std::string value :
         {"\xC3\xBC\xFC", "\xE6\x97", "\xC3(", "\xC0\xAF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xED\xA0\x80",
          "\xED\xBF\xBF", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80"}) {
        std::wstring byteByByte;
        for (const char byte : value) byteByByte += ToHostText(std::string(1, byte));
        EXPECT_EQ(ToHostText(value), byteByByte) << testing::PrintToString(value);
    }
}

}  // namespace Vantor::Platform
