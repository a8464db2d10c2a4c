#include <gtest/gtest.h>

#include <limits>

#include "dicom/TDicomDictionary.h"
#include "tests/support/DicomSupport.h"
#include "tests/support/FileBuilder.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

const std::string kDictionary =
    "(0008,0060)\tVR=\"CS\"\tName=\"Modality\"\n"
    "(0008,2112)\tVR=\"SQ\"\tName=\"Source Image Sequence\"\n"
    "(0010,0010)\tVR=\"PN\"\tName=\"Patient's Name\"\n"
    "(0018,9087)\tVR=\"??\"\tName=\"Some (odd) name\"\n"
    "(0028,0010)\tVR=\"US\"\tName=\"Rows\"\n"
    "(00fe,00fe)\tVR=\"US\"\tName=\"lower case digits\"\n";

std::string Field(const std::string& text, Tag tag, std::string_view key) {
    const Bytes exact(text.begin(), text.end());
    const TDicomDictionary dictionary(reinterpret_cast<const char*>(exact.data()),
                                      static_cast<uint32_t>(exact.size()));
    char buffer[64];
    return std::string(buffer, static_cast<size_t>(dictionary.AppendField(tag, key, buffer, 64, 0)));
}

TEST(Dictionary, LooksFieldsUpByTag) {
    EXPECT_EQ(Field(kDictionary, {0x10, 0x10}, "Name="), "Patient's Name");
    EXPECT_EQ(Field(kDictionary, {0x18, 0x9087}, "Name="), "Some (odd) name");
    EXPECT_EQ(Field(kDictionary, {0x28, 0x10}, "Keyword="), "");
    EXPECT_EQ(Field(kDictionary, {0x28, 0x11}, "VR="), "");
    EXPECT_EQ(Field(kDictionary, {0xFE, 0xFE}, "VR="), "") << "digits must be upper case";
    for (const char* damaged : {"", "(", "(0008,0060", "(0008,0060)", "(0008,0060)VR=", "(0008,0060)VR=\""}) {
        EXPECT_EQ(Field(damaged, {8, 0x60}, "VR="), "") << damaged;
    }
}

TEST(Dictionary, OutOfOrderEntriesAreFoundUpToAHigherGroup) {
    const std::string text = R"((0010,0020) VR="LO" Name="Patient ID" (0008,0060) VR="CS" Name="Modality"  )"
                             R"((0030,0010) VR="LO" Name="Later on   " (0020,0010) VR="SH" Name="Study ID")";
    EXPECT_EQ(Field(text, {0x10, 0x20}, "VR="), "LO");
    EXPECT_EQ(Field(text, {0x30, 0x10}, "VR="), "LO");
    EXPECT_EQ(Field(text, {0x20, 0x10}, "VR="), "") << "behind a higher group";
}

Bytes SampleBytes(const char* transferSyntax) {
    const Bytes item = ElementBuilder(transferSyntax).Text({8, 0x60}, Vr::kCS, "IN").GetBytes();
    return ElementBuilder(transferSyntax)
        .Text({8, 0x60}, Vr::kCS, "US")
        .Sequence({8, 0x2112}, {item, item})
        .Value({0x10, 0x10}, Vr::kPN, {'D', 'o', 'e', 0})
        .Numbers16({0x28, 0x10}, Vr::kUS, {0x01E0})
        .Value({0x29, 0x1010}, Vr::kOB, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12})
        .GetBytes();
}

std::string DumpOf(const Encoding& encoding, const std::string& dictionary = "", int32_t capacity = 5000) {
    Bytes bytes = SampleBytes(encoding.fTransferSyntax);
    TDicomDataSet dataSet = Over(bytes, encoding.fIsExplicit, encoding.fIsBigEndian);
    const char* entries = dictionary.empty() ? nullptr : dictionary.data();
    const auto length = static_cast<uint32_t>(dictionary.size());
    dataSet.SetDictionary(entries, length);
    std::string text(static_cast<size_t>(capacity), '#');
    text.resize(static_cast<size_t>(dataSet.Dump(0, text.data(), capacity, 0, entries, length)));
    return text;
}

TEST(Dump, ShowsEachElementOnALine) {
    EXPECT_EQ(DumpOf(kEncodings[0]),
              "  0008  0060  CS  00000002  US\r\n"
              "        2112  SQ  00000024  00080000000AE000FFFE...\r\n"
              "        ======= Item 0001 of 0002 ======\r\n"
              "        0008  0060  CS  00000002  IN\r\n"
              "        ======= Item 0002 of 0002 ======\r\n"
              "        0008  0060  CS  00000002  IN\r\n"
              "  0010  0010  PN  00000004  Doe \r\n"
              "  0028  0010  US  00000002  01E0\r\n"
              "  0029  1010  OB  0000000C  0A090807060504030201...\r\n");
}

TEST(Dump, ShowsNamesAndVRsOfADictionaryAndNumbersInTheirOrder) {
    const std::string named = DumpOf(kEncodings[1], kDictionary);
    for (const char* line :
         {"  0008  0060  CS  00000002  Modality  US\r\n",
          "        0008  0060  CS  00000002  Modality  IN\r\n", "  0028  0010  US  00000002  Rows  01E0\r\n",
          "  0029  1010  UN  0000000C    "}) {
        EXPECT_NE(named.find(line), std::string::npos) << named;
    }
    EXPECT_NE(DumpOf(kEncodings[1]).find("  0008  0060  NU  00000002  US\r\n"), std::string::npos);
    EXPECT_NE(DumpOf(kEncodings[2]).find("  0028  0010  US  00000002  01E0\r\n"), std::string::npos);
}

TEST(Dump, IsCutAtTheCapacity) {
    const std::string whole = DumpOf(kEncodings[0]);
    for (int32_t capacity = 0; capacity < static_cast<int32_t>(whole.size()); capacity += 7) {
        const std::string cut = DumpOf(kEncodings[0], "", capacity);
        EXPECT_GE(cut.size() + 2, static_cast<size_t>(capacity));
        const size_t sure = cut.size() < 2 ? 0 : cut.size() - 2;  // half a byte's digits are not written
        EXPECT_EQ(cut.substr(0, sure), whole.substr(0, sure));
    }
}

// However deep a caller says that it is: what has no room is not counted out either.
TEST(Dump, AnyDepthEndsAtTheCapacity) {
    Bytes bytes = ElementBuilder().Text(Tags::kModality, Vr::kCS, "US").GetBytes();
    std::string text(100, '\0');
    EXPECT_EQ(Over(bytes).Dump(std::numeric_limits<int32_t>::max(), text.data(), 100, 0), 100);
    EXPECT_EQ(text, std::string(100, ' '));
}

}  // namespace
