#include <gtest/gtest.h>

#include <string>

#include "dicom/TTextUtil.h"
#include "dicom/TVRUtil.h"

namespace {

using Vantor::TTextUtil;
using Vantor::TVRUtil;

TEST(TextUtil, CopiesWithinTheDestinationAndAlwaysTerminates) {
    struct Case {
        const char* fSource;
        uint32_t fSize;
        const char* fExpected;
    };
    for (const Case& testCase : {Case{"abc", 1, ""}, {"abc", 3, "ab"}, {"abc", 4, "abc"}, {"", 4, ""}}) {
        std::string buffer(8, '#');
        const uint32_t end = TTextUtil().CopyCString(testCase.fSource, buffer.data(), testCase.fSize);
        EXPECT_EQ(std::string(buffer.c_str()), testCase.fExpected);
        EXPECT_EQ(end, std::string(testCase.fExpected).size());
        EXPECT_EQ(buffer.substr(end + 1), std::string(8 - end - 1, '#')) << "wrote behind the terminator";
    }
    char untouched = '#';
    EXPECT_EQ(TTextUtil().CopyCString("abc", &untouched, 0), 0u);
    EXPECT_EQ(untouched, '#');
}

TEST(TextUtil, MeasuresAndComparesNoFurtherThan256Bytes) {
    const std::string endless(300, 'x');
    EXPECT_EQ(TTextUtil().StringLength(endless.c_str()), 256u);
    EXPECT_TRUE(TTextUtil().EqualStrings(endless.c_str(), (std::string(256, 'x') + "yyy").c_str()));
    EXPECT_FALSE(TTextUtil().EqualStrings("abc", "abcd"));
    EXPECT_FALSE(TTextUtil().EqualStrings("abc", "abd"));
    EXPECT_TRUE(TTextUtil().CompareBytes("1.2.840", "1.2.840.10008", 7));
    EXPECT_TRUE(TTextUtil().CompareBytes("a", "b", 0));
}

// Hosts ask FindLast "does it end so" by the answer and "where was it last" by the position.
TEST(TextUtil, FindLastAnswersForTheEndAndGivesTheLastPosition) {
    struct Case {
        std::string fPattern, fText;
        bool fFirst;
        int32_t fFirstPosition;
        bool fLast;
        int32_t fLastPosition;
    };
    const Case cases[] = {
        {"ab", "abxx", true, 0, false, 0},   {"ab", "xxab", true, 2, true, 2},
        {"ab", "abab", true, 0, true, 2},    {"ab", "xxxx", false, -1, false, -1},
        {"abc", "ab", false, -1, false, -1}, {"", "ab", true, 0, true, 2},
    };
    for (const Case& testCase : cases) {
        const auto& [pattern, text, first, firstPosition, last, lastPosition] = testCase;
        const auto patternLength = static_cast<uint32_t>(pattern.size());
        const auto textLength = static_cast<uint32_t>(text.size());
        int32_t position = 77;
        EXPECT_EQ(TTextUtil().FindFirst(pattern.data(), patternLength, text.data(), textLength, position),
                  first);
        EXPECT_EQ(position, firstPosition) << pattern << " in " << text;
        EXPECT_EQ(TTextUtil().FindLast(pattern.data(), patternLength, text.data(), textLength, position),
                  last);
        EXPECT_EQ(position, lastPosition) << pattern << " in " << text;
    }
}

TEST(TextUtil, AppendsWithinTheCapacity) {
    char buffer[] = "######";
    EXPECT_EQ(TTextUtil().AppendText("a\0bc", 4, buffer, 6, 1), 5);
    EXPECT_STREQ(buffer, "#a bc#");
    EXPECT_EQ(TTextUtil().AppendText("xyz", 3, buffer, 6, 5), 6);
    EXPECT_STREQ(buffer, "#a bcx");
    EXPECT_EQ(TTextUtil().AppendText("xyz", 3, buffer, 6, 6), 6);

    const uint8_t bytes[] = {0x0F, 0xA0, 0x33};
    char hex[] = "#####";
    EXPECT_EQ(TTextUtil().AppendHex(bytes, 3, hex, 5, 0), 4) << "the third byte fits by half only";
    EXPECT_STREQ(hex, "0FA0#");

    char text[] = "a/b/c";
    TTextUtil().ReplaceChar('/', '\\', text, 3);
    EXPECT_STREQ(text, "a\\b/c");
}

TEST(VRUtil, ArrangesDatesAndTimes) {
    struct Case {
        const char* fDate;
        uint32_t fSize;
        int32_t fFormat;
        const char* fExpected;
    };
    const Case cases[] = {
        {"20240315", 11, 1, "15/03/2024"}, {"20240315", 11, 0, "03/15/2024"},
        {"20240315", 11, 7, "03/15/2024"}, {"20240315", 11, 3, "20240315"},
        {"20240315", 10, 3, "untouched"},
    };
    for (const Case& testCase : cases) {
        char output[27] = "untouched";
        TVRUtil().DicomDateToCString(testCase.fDate, output, testCase.fSize, testCase.fFormat);
        EXPECT_STREQ(output, testCase.fExpected);
    }
    char time[8] = "none";
    TVRUtil().DicomTimeToCString("143559.25", time, 5);
    EXPECT_STREQ(time, "none");
    TVRUtil().DicomTimeToCString("143559.25", time, 6);
    EXPECT_STREQ(time, "14:35");
}

}  // namespace
