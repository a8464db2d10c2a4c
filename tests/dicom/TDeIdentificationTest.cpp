// What de-identification leaves of an instance. What it hunts: an attribute or a text that still tells who
// the patient is, and one that is taken although the image cannot do without it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "dicom/TDeIdentification.h"
#include "tests/support/DicomSupport.h"
#include "tests/support/FileBuilder.h"

namespace {

using namespace Vantor;
using namespace VantorTest;

constexpr Tag kDescription{0x0018, 0x1060};  // a text that stays
constexpr Tag kOtherIDs{0x0010, 0x1000};
constexpr Tag kFunctionalGroups{0x5200, 0x9229};
constexpr TDeIdentification::Level kLevels[] = {TDeIdentification::Level::kPatient,
                                                TDeIdentification::Level::kPhysicians};

Bytes DeIdentify(const Bytes& bytes, TDeIdentification::Level level = kLevels[0],
                 const VantorTest::Encoding& encoding = kEncodings[0]) {
    const Vantor::Encoding form = {encoding.fIsExplicit, encoding.fIsBigEndian};
    TDataSetEdit edit;
    const auto replace = [](std::string_view uid) {
        return "9." + std::string(uid.substr(uid.rfind('.') + 1));
    };
    edit.SetRule(TDeIdentification(level, replace, bytes, form));
    return edit.Apply(bytes, form);
}

std::string Left(const Bytes& bytes, Tag tag, const VantorTest::Encoding& encoding = kEncodings[0]) {
    Bytes copy = bytes;
    const std::string text = TextOf(Over(copy, encoding.fIsExplicit, encoding.fIsBigEndian), tag);
    return text.substr(0, text.find_last_not_of(std::string_view("\0 ", 2)) + 1);
}

TEST(TDeIdentification, EachAttributeHasItsFateAtEachLevel) {
    struct Case {
        Tag fTag;
        VrCode fVr;
        const char* fValue;
        const char* fLeft[2];
    };
    static constexpr char kGone[] = "(absent)";
    static constexpr char kUids[] = "9.1\\1.2.840.10008.1.4\\9.7";
    constexpr Case kCases[] = {{Tags::kSOPClassUID, Vr::kUI, "1.2.3", {"1.2.3", "1.2.3"}},
                               {Tags::kSOPInstanceUID, Vr::kUI, "1.2.34", {"9.34", "9.34"}},
                               {Tags::kStudyDate, Vr::kDA, "20240315", {"", ""}},
                               {Tags::kReferringPhysicianName, Vr::kPN, "Who^Dr", {"Who^Dr", ""}},
                               {{0x0008, 0x0092}, Vr::kST, "Harley Street", {"Harley Street", kGone}},
                               {{0x0008, 0x0201}, Vr::kSH, "+0100", {kGone, kGone}},
                               {Tags::kStudyDescription, Vr::kLO, "Echo", {kGone, kGone}},
                               {{0x0008, 0x3010}, Vr::kUI, "1.2.1\\1.2.840.10008.1.4\\1.2.7", {kUids, kUids}},
                               {{0x0009, 0x0010}, Vr::kLO, "VENDOR", {kGone, kGone}},
                               {Tags::kPatientName, Vr::kPN, "Doe^Jane", {"", ""}},
                               {{0x0010, 0x0040}, Vr::kCS, "F", {"", ""}},
                               {{0x0010, 0x9999}, Vr::kLO, "new", {kGone, kGone}},
                               {{0x0018, 0x1088}, Vr::kIS, "72", {"72", "72"}},
                               {{0x0018, 0xFF02}, Vr::kUI, "1.2.5", {"9.5", "9.5"}},
                               {{0x0018, 0xFF04}, Vr::kDA, "20240315", {kGone, kGone}},
                               {{0x0018, 0xFF06}, Vr::kPN, "Who^Dr", {"", ""}},
                               {{0x0018, 0xFF08}, Vr::kTM, "1212", {kGone, kGone}},
                               {{0x0018, 0xFF0A}, Vr::kDT, "202403151212", {kGone, kGone}},
                               {{0x0018, 0xFF0C}, Vr::kUI, "1.2.840.100089", {"9.100089", "9.100089"}},
                               {{0x0018, 0xFF0E}, Vr::kUI, "1.2.840.10008.DOE", {"9.DOE", "9.DOE"}},
                               {{0x0018, 0x1012}, Vr::kDA, "20240315", {kGone, kGone}},
                               {{0x0034, 0x0005}, Vr::kOB, "source", {kGone, kGone}},
                               {{0x0040, 0xA075}, Vr::kPN, "Who^Dr", {"Who^Dr", "ANONYMIZED"}},
                               {{0x0070, 0x0083}, Vr::kTM, "1212", {"000000", "000000"}},
                               {{0x6002, 0x1500}, Vr::kLO, "overlay", {kGone, kGone}}};
    for (const VantorTest::Encoding& encoding : kEncodings) {
        ElementBuilder all(encoding.fTransferSyntax);
        for (const Case& one : kCases) all.Text(one.fTag, one.fVr, one.fValue);
        for (const size_t index : {size_t{0}, size_t{1}}) {
            const Bytes left = DeIdentify(all.GetBytes(), kLevels[index], encoding);
            for (const Case& one : kCases) {
                // Not in the table: only the VR says what they are.
                if (!encoding.fIsExplicit && one.fTag.fElement >= 0xFF00) continue;
                EXPECT_EQ(Left(left, one.fTag, encoding), one.fLeft[index]) << "instead of " << one.fValue;
            }
        }
    }
}

// Readers refuse enhanced images and reports in which these are missing or empty.
TEST(TDeIdentification, MandatoryValuesBecomeDummies) {
    for (const Tag kind : {kFunctionalGroups, Tag{0x0040, 0xA730}}) {
        const Bytes item = ElementBuilder().Text({0x0018, 0x9074}, Vr::kDT, "20240315").GetBytes();
        const Bytes left = DeIdentify(ElementBuilder()
                                          .Text(Tags::kContentDate, Vr::kDA, "20240315")
                                          .Sequence({0x0008, 0x1111}, {item})
                                          .Text({0x0018, 0x1000}, Vr::kLO, "SN17")
                                          .Sequence(kind, {item})
                                          .GetBytes());
        EXPECT_EQ(Left(left, Tags::kContentDate), "19000101");
        EXPECT_EQ(Left(left, {0x0018, 0x1000}), "ANONYMIZED");
        EXPECT_EQ(Left(left, {0x0008, 0x1111}), kind == kFunctionalGroups ? "(absent)" : "");
        const std::string frame(left.end() - 14, left.end());
        EXPECT_EQ(frame == "19000101000000", kind == kFunctionalGroups);
    }
}

constexpr char kJapanese[] =
    "Yamada^Tarou=\x1B$B;3ED\x1B(B^\x1B$BB@O:\x1B(B=\x1B$B$d$^$@\x1B(B^\x1B$B$?$m$&\x1B(B";
constexpr char kUtf8[] = "Wang^XiaoDong=\xE7\x8E\x8B^\xE5\xB0\x8F\xE6\x9D\xB1=";

constexpr char kGb18030[] = "\x95\\\x81\\^\xC4\xCF\xA5";  // in each character a byte that is a separator

TEST(TDeIdentification, TextsThatTellThePatientAreBlanked) {
    struct Case {
        const char* fName;
        const char* fText;
        bool fStays;
    };
    constexpr Case kCases[] = {{"Doe^Jane", "for DOE, Jane!", false},
                               {"Doe^Jane^M^Dr", "jane_doe 12", false},
                               {"Doe^Jane", "JaneDoe", false},
                               {"Doe^Jane", "'Doe': (Jane)|", false},
                               {"Doe^Jane", "\x1B$B Jane_Doe", false},
                               {"Doe^Jane", "Doe and Janet", true},
                               {"Doe, Jane", "Jane Doe", false},
                               {"Li^A", "Li A", false},
                               {"Li", "a Li text", true},
                               {"", "0815 again", false},
                               {"", "No. 108151", true},
                               {"", "xPAT-77y", false},
                               {kJapanese, "of \x1B$B;3EDB@O:\x1B(B", false},
                               {kJapanese, "\x1B$B$?$m$&$d$^$@\x1B(B", false},
                               {kJapanese, "\x1B$B;3ED\x1B(B alone", true},
                               {"Aki=\x1B$B=)=);3\x1B(B", "\x1B$B=)=);3\x1B(B", false},
                               {kUtf8, "\xE5\xB0\x8F\xE6\x9D\xB1\xE7\x8E\x8B", false},
                               {kUtf8, "dong \xE7\x8E\x8B", true},
                               {kGb18030, "x\xC4\xCF\xA5 \x95\\\x81\\", false},
                               {"Caf\xE9^Ren\xE9", "ren\xE9 caf\xE9", false}};
    for (const VantorTest::Encoding& encoding : kEncodings) {
        for (const Case& one : kCases) {
            ElementBuilder all(encoding.fTransferSyntax);
            const Bytes item = ElementBuilder(encoding.fTransferSyntax)
                                   .Text(Tags::kModality, Vr::kCS, "US")
                                   .Text(kDescription, Vr::kLO, one.fText)
                                   .GetBytes();
            all.Sequence(Tags::kSourceImageSequence, {item}).Text(Tags::kPatientName, Vr::kPN, one.fName);
            all.Text(Tags::kPatientID, Vr::kLO, "0815 ").Text(kOtherIDs, Vr::kLO, "1\\PAT-77");
            all.Text(kDescription, Vr::kLO, one.fText).Numbers16(Tags::kRows, Vr::kUS, {480});
            const Bytes left = DeIdentify(all.GetBytes(), kLevels[0], encoding);
            EXPECT_EQ(Left(left, kDescription, encoding), one.fStays ? one.fText : "") << one.fText;
            const std::string bytes(left.begin(), left.end());
            EXPECT_EQ(bytes.find(one.fText) != std::string::npos, one.fStays) << "in the item as well";
        }
    }
}

TEST(TDeIdentification, ItemsThatCannotBeReadGo) {
    const Bytes item = ElementBuilder().ItemHeader(Tags::kItem, 3).Raw({1, 2, 3, 4}).GetBytes();
    EXPECT_EQ(DeIdentify(ElementBuilder().Value(kDescription, Vr::kUN, item).GetBytes()), Bytes());
}

// Whatever hides a text from whoever looks for it.
TEST(TDeIdentification, NothingGoesAlongUnread) {
    struct Case {
        Tag fTag;
        VrCode fVr;
        std::string fValue;
        bool fStays = false;
    };
    const auto itemOf = [](const char* syntax) {
        const Bytes inside = ElementBuilder(syntax).Text(kDescription, Vr::kLO, "DOE^JANE").GetBytes();
        ElementBuilder item(syntax);
        item.ItemHeader(Tags::kItem, static_cast<uint32_t>(inside.size())).Raw(inside);
        return std::string(item.GetBytes().begin(), item.GetBytes().end());
    };
    const std::string bigEndian = itemOf(Uids::kExplicitVRBigEndian);
    const std::string littleEndian = itemOf(Uids::kExplicitVRLittleEndian);
    const std::string name = "DOE^JANE";
    const std::string behind(" \0\1 ", 4);
    const std::vector<Case> cases = {
        {kDescription, Vr::kUN, name + behind},
        {kDescription, Vr::kUN, behind + name},
        {kDescription, Vr::kUN, "XY12" + behind},
        {kDescription, Vr::kUN, "\1XY12" + behind, true},
        {kDescription, Vr::kUN, bigEndian},
        {kDescription, Vr::kOB, littleEndian},
        {kDescription, MakeVr('Z', 'Z'), name},
        {kDescription, MakeVr('O', 'T'), name},
        {kDescription, 0, "other"},
        {kDescription, Vr::kIS, name},
        {kDescription, Vr::kDS, "1.5\\-2E3 ", true},
        {Tags::kRows, MakeVr('Z', 'Z'), "\1\1", true},
        {{0x0018, 0x0000}, Vr::kLO, name},
        {{0x0018, 0x0000}, Vr::kLO, "DOE "},
        {{0x0018, 0x0000}, Vr::kUL, std::string("\0\0\0\0", 4), true},
        {{0xFFFC, 0xFFFC}, Vr::kOB, name},
        {Tags::kPixelData, Vr::kOB, littleEndian, true},  // of an icon
    };
    for (const char* syntax : {Uids::kExplicitVRLittleEndian, Uids::kImplicitVRLittleEndian}) {
        const bool isExplicit = syntax == kEncodings[0].fTransferSyntax;
        const auto& encoding = *std::find_if(
            std::begin(kEncodings), std::end(kEncodings),
            [&](const auto& each) { return each.fIsExplicit == isExplicit && !each.fIsBigEndian; });
        for (const Case& one : cases) {
            if (!isExplicit && one.fVr != Vr::kUN) continue;
            ElementBuilder patient(syntax);
            patient.Text(Tags::kPatientName, Vr::kPN, name).Text(Tags::kPatientID, Vr::kLO, "XY12");
            ElementBuilder all(syntax);
            all.Raw(patient.GetBytes()).Text(one.fTag, one.fVr, one.fValue);
            const Bytes left = DeIdentify(all.GetBytes(), kLevels[0], encoding);
            const Bytes without = DeIdentify(patient.GetBytes(), kLevels[0], encoding);
            const Bytes rest(left.begin() + static_cast<std::ptrdiff_t>(without.size()), left.end());
            const Bytes value = BytesOf(one.fValue);
            const bool hasValue =
                std::search(rest.begin(), rest.end(), value.begin(), value.end()) != rest.end();
            EXPECT_EQ(hasValue, one.fStays) << one.fValue;
        }
    }
    // Items in no sequence, and what a delimiter carries.
    const Bytes stray = ElementBuilder().ItemHeader(Tags::kItem, 8).Raw(BytesOf(name)).GetBytes();
    EXPECT_EQ(DeIdentify(stray), Bytes());
}

// Each takes seconds if the texts are compared one by one, and none now.
TEST(TDeIdentification, ManyAndLongTextsAreFound) {
    std::string names;
    for (int number = 0; number < 20000; ++number) names += "NAME" + std::to_string(number) + "^X\\";
    ElementBuilder all;
    all.Text(kOtherIDs, Vr::kUT, std::string(500000, 'A') + "1B").Text({0x0010, 0x1001}, Vr::kUT, names);
    for (int number = 0; number < 20000; ++number)
        all.Text(kDescription, Vr::kLO, "NAME of " + std::to_string(number));
    all.Text(kDescription, Vr::kUT, std::string(400000, 'A')).Text(kDescription, Vr::kLO, "x name7 y");
    const size_t whole = all.GetSize();
    const Bytes left = DeIdentify(all.GetBytes());
    const Bytes stays = BytesOf("NAME of 19999");
    EXPECT_NE(std::search(left.begin(), left.end(), stays.begin(), stays.end()), left.end());
    EXPECT_LT(left.size(), whole - 400000) << "the start of a long number is enough";
    const Bytes goes = BytesOf("x name7 y");
    EXPECT_EQ(std::search(left.begin(), left.end(), goes.begin(), goes.end()), left.end());
}

TEST(TDeIdentification, TheFileSaysWhatWasDone) {
    TDataSetEdit edit;
    for (const TDeIdentification::Level level : kLevels) {
        TDeIdentification(level, nullptr, {}, {}).Mark(edit);
        const Bytes marked = edit.Apply({}, {});
        EXPECT_EQ(Left(marked, {0x0012, 0x0062}), "YES");
        EXPECT_EQ(Left(marked, {0x0012, 0x0063}).ends_with("physicians retained"), level == kLevels[0]);
    }
}

TEST(TDeIdentification, TheDocumentShowsTheTable) {
    const std::vector<std::string> actions = {"stays",
                                              "removed",
                                              "blanked",
                                              "dummy",
                                              "removed or blanked",
                                              "removed or dummy",
                                              "blanked or dummy",
                                              "replaced"};
    const std::string document = ReadWholeFileAsText(VANTOR_SOURCE_DIR "/docs/deidentification.md");
    size_t place = document.find("\n| (");
    Tag last;
    for (const auto& [tag, vr, atLevel1, atLevel2] : GetDeIdentificationTable()) {
        ASSERT_NE(place, std::string::npos);
        EXPECT_LT(std::exchange(last, tag), tag) << "found by halves";
        char start[16];
        std::snprintf(start, sizeof(start), "| (%04X,%04X) |", tag.fGroup, tag.fElement);
        const std::string line = document.substr(place + 1, document.find('\n', place + 1) - place - 1);
        const auto end = [&](auto action) {
            return std::string("| ") + actions[static_cast<size_t>(action)] + " ";
        };
        EXPECT_TRUE(line.starts_with(start) && line.ends_with(end(atLevel1) + end(atLevel2) + "|")) << line;
        place = document.find("\n| (", place + 1);
    }
    EXPECT_EQ(place, std::string::npos) << "no row too many";
}

}  // namespace
