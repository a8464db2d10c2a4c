#include <gtest/gtest.h>

#include <map>
#include <string>

#include "dicom/TTextUtil.h"
#include "dicom/TVRUtil.h"

namespace {

using Vantor::TTextUtil;
using Vantor::TVRUtil;

TEST(TextUtil, CopiesWithinTheDestinationAndAlwaysTerminates) {
    for (const auto& [size, expected] : std::map<uint32_t, std::string>{{1, ""}, {3, "ab"}, {4, "abc"}}) {
        std::string buffer(8, '#');
        EXPECT_EQ(TTextUtil().CopyCString("abc", buffer.data(), size), expected.size());
        EXPECT_EQ(buffer, (expected + '\0').append(7 - expected.size(), '#'));
    }
}

TEST(TextUtil, MeasuresAndComparesNoFurtherThan256Bytes) {
    const std::string endless(300, 'x');
    EXPECT_EQ(TTextUtil().StringLength(endless.c_str()), 256u);
    EXPECT_TRUE(TTextUtil().EqualStrings(endless.c_str(), (std::string(256, 'x') + "yyy").c_str()));
    EXPECT_FALSE(TTextUtil().EqualStrings("abc", "abcd"));
    EXPECT_FALSE(TTextUtil().EqualStrings("abc", "abd"));
}

// Hosts ask FindLast "does it end so" by the answer and "where was it last" by the position.
TEST(TextUtil, FindLastAnswersForTheEndAndGivesTheLastPosition) {
    const struct {
        std::string fPattern, fText;
        int32_t fFirstPosition, fLastPosition;
        bool fIsLast;
    } cases[] = {{"ab", "abxx", 0, 0, false},   {"ab", "xxab", 2, 2, true},   {"ab", "abab", 0, 2, true},
                 {"ab", "xxxx", -1, -1, false}, {"abc", "ab", -1, -1, false}, {"", "ab", 0, 2, true}};
    for (const auto& [pattern, text, firstPosition, lastPosition, isLast] : cases) {
        const auto patternLength = static_cast<uint32_t>(pattern.size());
        const auto textLength = static_cast<uint32_t>(text.size());
        int32_t position = 77;
        EXPECT_EQ(TTextUtil().FindFirst(pattern.data(), patternLength, text.data(), textLength, position),
                  firstPosition >= 0);
        EXPECT_EQ(position, firstPosition) << pattern << " in " << text;
        EXPECT_EQ(TTextUtil().FindLast(pattern.data(), patternLength, text.data(), textLength, position),
                  isLast);
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
    const auto date = [](int32_t format, uint32_t size = 11) {
        char output[12] = "untouched";
        TVRUtil().DicomDateToCString("20240315", output, size, format);
        return std::string(output);
    };
    EXPECT_EQ(date(0), "03/15/2024");
    EXPECT_EQ(date(1), "15/03/2024");
    EXPECT_EQ(date(3), "20240315");
    EXPECT_EQ(date(7), "03/15/2024");
    EXPECT_EQ(date(3, 10), "untouched");
    char time[8] = "none";
    TVRUtil().DicomTimeToCString("143559.25", time, 5);
    EXPECT_STREQ(time, "none");
    TVRUtil().DicomTimeToCString("143559.25", time, 6);
    EXPECT_STREQ(time, "14:35");
}

}  // namespace
