// The items of reports: what each shows, which are left out and how those left are numbered, and comparison.
// Hunts values of the wrong element or item, limits that are not kept, and trees that shift.

#include <algorithm>

#include "sr/SRDateContentItem.h"
#include "sr/SRDateTimeContentItem.h"
#include "sr/SRPnameContentItem.h"
#include "sr/SRTextContentItem.h"
#include "sr/SRTimeContentItem.h"
#include "tests/sr/ReportSupport.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using namespace VantorWrappers;

const ReportCode kName = {"1", "LN", "Name"};
const ReportCode kCentimeters = {"cm", "UCUM", "centimeter"};

// ---- Values ----

class SRContentItemTest : public ReportTest {};

TEST_F(SRContentItemTest, EveryValueTypeInEveryEncoding) {
    const ReportBuilder text =
        ReportBuilder("TEXT", {"2", "DCM", "Finding"}).Text(Tags::kTextValue, Vr::kUT, " two\r\nlines \r\n");
    const ReportBuilder number = ReportBuilder::Number({"3", "LN", "Depth", "1.0"}, " 4.50 ", kCentimeters)
                                     .Text(Tags::kRelationshipType, Vr::kCS, "contains")
                                     .Text(Tags::kObservationDateTime, Vr::kDT, "20240315101501.5+0100")
                                     .Below({ReportBuilder("IMAGE"), text});
    const ReportBuilder observer =
        ReportBuilder("PNAME", {"5", "DCM", "Observer"}).Text(Tags::kPersonName, Vr::kPN, "Doe^Jane");
    const ReportBuilder section = ReportBuilder("CONTAINER", {"4", "DCM", "Section"})
                                      .Text(Tags::kContinuityOfContent, Vr::kCS, " separate")
                                      .Below({number, observer});
    const ReportBuilder report =
        ReportBuilder("CONTAINER", {"125200", "DCM", "Echo"})
            .Text(Tags::kContinuityOfContent, Vr::kCS, "CONTINUOUS")
            .Below({ReportBuilder("DATE").Text(Tags::kDate, Vr::kDA, "20240315"), section,
                    ReportBuilder("SCOORD"), ReportBuilder("Time ").Text(Tags::kTime, Vr::kTM, "101501.25"),
                    ReportBuilder("DATETIME").Text(Tags::kDateTime, Vr::kDT, "20240315"),
                    ReportBuilder::Coded({"6", "LN", "View"}, {"7", "SRT", " Apical", "2"})});
    const Lines expected = {"1 CONTAINER (125200,DCM,,Echo) = ; CONTINUOUS [0] ",
                            "1.1 DATE (,,,) = 2024-3-15 [0] ",
                            "1.2 CONTAINER (4,DCM,,Section) = ; SEPARATE [0] ",
                            "1.2.1 NUM (3,LN,1.0,Depth) = 4.50; cm [1] 2024-3-15 36901s",
                            "1.2.1.2 TEXT (2,DCM,,Finding) = two\r\nlines [0] ",
                            "1.2.2 PNAME (5,DCM,,Observer) = Doe, Jane [0] ",
                            "1.4 TIME (,,,) = 36901s [0] ",
                            "1.5 DATETIME (,,,) = 2024-3-15 0s [0] ",
                            "1.6 CODE (6,LN,,View) = Apical; (7,SRT,2,Apical) [0] "};
    for (const Encoding& encoding : kEncodings) {
        for (const Lengths lengths : {Lengths::kDefined, Lengths::kUndefined}) {
            Read(report.Encode(encoding.fTransferSyntax, lengths), encoding);
            EXPECT_EQ(fReport->GetContentItemCount(), 5);
            EXPECT_EQ(Tree(), expected);
        }
    }
}

// Some are cut to none, or to less, by the limits of what can be one: of 10, 16 and 26 characters.
TEST_F(SRContentItemTest, DatesAndTimesAreShownOnlyWhenTheyAreSome) {
    const auto line = [&](const std::string& type, const std::string& stored) {
        ReportBuilder item(type);
        if (type == "DATE") item.Text(Tags::kDate, Vr::kDA, stored);
        if (type == "TIME") item.Text(Tags::kTime, Vr::kTM, stored);
        if (type == "DATETIME") item.Text(Tags::kDateTime, Vr::kDT, stored);
        return LineOf(item);
    };
    const char* const cases[][3] = {{"DATE", " 20240229", "2024-2-29"},
                                    {"DATE", "  20240229", "2024-2-29"},
                                    {"TIME", "10", "36000s"},
                                    {"TIME", " 1001", "36060s"},
                                    {"TIME", "            101501", "36900s"},
                                    {"DATETIME", "20240315", "2024-3-15 0s"},
                                    {"DATETIME", " 2024031510 ", "2024-3-15 36000s"},
                                    {"DATETIME", "20240315101501.123456-0500", "2024-3-15 36901s"},
                                    {"DATETIME", "20240315+0100", "2024-3-15 0s"},
                                    {"DATETIME", "20240315235960", "2024-3-15 86399s"},
                                    {"DATETIME", "              20240315101501", "2024-3-15 36900s"},
                                    {"DATETIME", "               20240315101501", "2024-3-15 36000s"}};
    for (const auto& [type, stored, shown] : cases) {
        EXPECT_EQ(line(type, stored), "1.1 " + std::string(type) + " (,,,) = " + shown + " [0] ");
    }
    for (const char* stored : {"20230229", "202403", "   20240229", "2024.03.15", ""})
        EXPECT_EQ(line("DATE", stored), "1.1 DATE (,,,) =  [0] ");
    for (const char* stored : {"24", "1060", "1", "               10", ""})
        EXPECT_EQ(line("TIME", stored), "1.1 TIME (,,,) =  [0] ");
    for (const char* stored : {"2024031524", "202403151", "202403", "2024-03-15", "20230229", ""})
        EXPECT_EQ(line("DATETIME", stored), "1.1 DATETIME (,,,) =  [0] ");
}

TEST_F(SRContentItemTest, UnitsAreAsHostsShowThem) {
    const char* const cases[][3] = {
        {"a", "year", "Y"},         {" a ", "", "Y"},        {"A", "ampere", "A"},
        {"1", "No Units", ""},      {"1", "no  unit", "1"},  {"a", "None of these", ""},
        {"{ratio}", "a rATIo", ""}, {"ratio", "%", "ratio"}, {"", "millimeter", ""}};
    for (const auto& [code, meaning, units] : cases) {
        EXPECT_EQ(LineOf(ReportBuilder::Number(kName, "1", {code, "UCUM", meaning})),
                  "1.1 NUM (1,LN,,Name) = 1; " + std::string(units) + " [0] ");
    }
}

// Hosts know the types by these numbers.
TEST_F(SRContentItemTest, RelationshipsAreKnownByTheirTextInAnyCase) {
    const char* const texts[] = {"HAS CONCEPT MODIFIER", "CONTAINS        behind the limit",
                                 "HAS PROPERTIES",       "Has Obs Context",
                                 "HAS ACQ CONTEXT",      " inferred from ",
                                 "SELECTED FROM",        "HAS CONCEPT MOD"};
    for (int number = 0; number < 8; ++number) {
        EXPECT_EQ(LineOf(ReportBuilder("DATE").Text(Tags::kRelationshipType, Vr::kCS, texts[number])),
                  "1.1 DATE (,,,) =  [" + std::to_string(number) + "] ");
    }
}

// Half a character would make all of the text unreadable as UTF-8.
TEST_F(SRContentItemTest, TextsAreCutAtTheirLimitsButNotInsideACharacter) {
    const auto cut = [](const std::string& text, size_t inside, size_t limit) {
        return Shown(Platform::ToHostText(text.substr(0, kIsWindows ? limit : inside)));
    };
    const std::string part = std::string(14, 'X') + "\xE2\x82\xAC" + std::string(60, 'X');
    const std::string name = std::string(63, 'x') + "\xC3\xA9";
    const std::string shownPart = cut(part, 14, 16), shownName = cut(name, 63, 64);
    const std::string code = "(" + shownPart + "," + shownPart + "," + shownPart + "," + shownName + ")";
    EXPECT_EQ(LineOf(ReportBuilder::Coded({part, part, name, part}, {part, part, name, part})),
              "1.1 CODE " + code + " = " + shownName + "; " + code + " [0] ");
    EXPECT_EQ(LineOf(ReportBuilder::Number({}, part, {part, "", "m"})),
              "1.1 NUM (,,,) = " + shownPart + "; " + shownPart + " [0] ");
    EXPECT_EQ(LineOf(ReportBuilder("PNAME").Text(Tags::kPersonName, Vr::kPN, name)),
              "1.1 PNAME (,,,) = " + shownName + " [0] ");
    EXPECT_EQ(LineOf(ReportBuilder("CONTAINER").Text(Tags::kContinuityOfContent, Vr::kCS, part)),
              "1.1 CONTAINER (,,,) = ; " + shownPart + " [0] ");
    EXPECT_EQ(LineOf(ReportBuilder("NUM             behind the limit")), "1.1 NUM (,,,) = ;  [0] ");
    const std::string text = std::string(8'000'000, 'y') + "end";
    EXPECT_TRUE(LineOf(ReportBuilder("TEXT").Text(Tags::kTextValue, Vr::kUT, text)) ==
                "1.1 TEXT (,,,) = " + text + " [0] ");
}

// ---- The tree ----

// Hosts do not show the reporting product's own notes on its measurements.
TEST_F(SRContentItemTest, MeasurementContextsAreLeftOutAndKeepTheirNumbers) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"99QUANTIX", "measurement context", false}, {"99QUANTIX", " measurement contexts", false},
        {"99QUANTIX", "Measurement context", true},  {"99QUANTIX", "a measurement context", true},
        {"99quantix", "measurement context", true},  {"99QUANTIX2", "measurement context", true}};
    for (const auto& [scheme, meaning, isShown] : cases) {
        const ReportBuilder context =
            ReportBuilder("CONTAINER", {"M", scheme, meaning}).Below({ReportBuilder("TEXT")});
        Read(ReportBuilder("CONTAINER")
                 .Below({ReportBuilder("NUM"), context, ReportBuilder("DATE")})
                 .Encode());
        EXPECT_EQ(fReport->GetContentItemCount(), isShown ? 3 : 2) << scheme << meaning;
        EXPECT_EQ(Tree().back(), "1.3 DATE (,,,) =  [0] ");
    }
}

TEST_F(SRContentItemTest, OtherValueTypesAreLeftOutAndKeepTheirNumbers) {
    for (const std::string type :
         {"UIDREF", "COMPOSITE", "IMAGE", "WAVEFORM", "SCOORD", "TCOORD", "TABLE", "", "NUMB"}) {
        const ReportBuilder image = ReportBuilder(type, kName).Below({ReportBuilder("TEXT", kName)});
        const Lines lines = TraceOf(
            ReportBuilder("CONTAINER", kName).Below({ReportBuilder("num "), image, ReportBuilder("DATE")}),
            TraceLevel::kInfo);
        EXPECT_NE(std::find(lines.begin(), lines.end(),
                            "info: Unsupported Value Type " + type + " encountered for node number 1.2"),
                  lines.end());
        EXPECT_EQ(Tree(), (Lines{"1 CONTAINER (1,LN,,Name) = ;  [0] ", "1.1 NUM (,,,) = ;  [0] ",
                                 "1.3 DATE (,,,) =  [0] "}));
    }
}

TEST_F(SRContentItemTest, EmptyItemsAndSequencesHoldNothing) {
    for (const Lengths lengths : {Lengths::kDefined, Lengths::kUndefined}) {
        ReportBuilder report = ReportBuilder("CONTAINER").Below({{}, ReportBuilder("DATE"), {}});
        Read(report.Encode(Uids::kExplicitVRLittleEndian, lengths));
        EXPECT_EQ(Tree().size(), 2U);
        EXPECT_EQ(Tree().back(), "1.2 DATE (,,,) =  [0] ");
        Read(report.Below({}).Encode(Uids::kExplicitVRLittleEndian, lengths));
        EXPECT_EQ(Tree().size(), 1U);
    }
}

// Containers within containers, without the time and memory that composing them from the inside would take.
Bytes MakeDeepReport(size_t levels) {
    ElementBuilder report;
    for (size_t count = 1; count < levels; ++count) {
        report.Text(Tags::kValueType, Vr::kCS, "CONTAINER")
            .Header(Tags::kContentSequence, Vr::kSQ, TDicomDataSet::kUndefinedLength)
            .ItemHeader(Tags::kItem, TDicomDataSet::kUndefinedLength);
    }
    report.Text(Tags::kValueType, Vr::kCS, "CONTAINER");
    for (size_t count = 1; count < levels; ++count)
        report.ItemHeader(Tags::kItemDelimitation, 0).ItemHeader(Tags::kSequenceDelimitation, 0);
    return report.GetBytes();
}

TEST_F(SRContentItemTest, WhatLiesTooDeepIsLeftOut) {
    constexpr size_t kDeepest = SRContentItem::kDeepestNesting;
    for (const size_t levels : {size_t{500}, kDeepest, kDeepest + 1, size_t{5000}}) {
        TraceLines trace(TraceArea::kStructuredReport, TraceLevel::kWarning);
        EXPECT_TRUE(Read(MakeDeepReport(levels)).IsValid());
        std::string last = "1";
        for (size_t count = 1; count < std::min(levels, kDeepest); ++count) last += ".1";
        EXPECT_EQ(Tree().size(), std::min(levels, kDeepest));
        EXPECT_EQ(Tree().back(), last + " CONTAINER (,,,) = ;  [0] ");
        const std::string line = "warning: Content nested too deeply, not parsed below node number " + last;
        EXPECT_EQ(trace.Take().back() == line, levels > kDeepest);
    }
}

TEST_F(SRContentItemTest, AHundredThousandItemsStayInOrder) {
    const std::vector<ReportBuilder> items(100'000, ReportBuilder("NUM"));
    for (const Lengths lengths : {Lengths::kDefined, Lengths::kUndefined}) {
        Read(ReportBuilder("CONTAINER").Below(items).Encode(Uids::kExplicitVRLittleEndian, lengths));
        ASSERT_EQ(fReport->GetContentItemCount(), 100'000);
        EXPECT_EQ(Item(99'999).GetNodeNumber(), L"1.100000");
    }
}

// ---- Items of their own ----

template <typename Item>
void ExpectEmpty(const std::string& complaint = "No Content Sequence provided for SR node number = ") {
    TraceLines trace(TraceArea::kStructuredReport, TraceLevel::kVerbose);
    const Item item(nullptr, L"1.7");
    EXPECT_EQ(item.GetNodeNumber() + item.GetConceptName() + item.GetValue(), L"1.7");
    EXPECT_EQ(trace.Take(), (Lines{"verbose: Entering constructor for " + std::string(Item::kValueType) +
                                       " Content Item for node number 1.7",
                                   "error: " + complaint + "1.7", "warning: No DICOM Data Set provided.",
                                   "verbose: Concept Name for node number 1.7 is "}));
    EXPECT_EQ(Item().GetNodeNumber(), L"");
}

TEST_F(SRContentItemTest, WithoutADataSetTheySayAndStayEmpty) {
    ExpectEmpty<SRContainerContentItem>("No Content Sequence provided for SR with node number ");
    ExpectEmpty<SRNumericContentItem>();
    ExpectEmpty<SRCodedContentItem>();
    ExpectEmpty<SRTextContentItem>();
    ExpectEmpty<SRDateContentItem>();
    ExpectEmpty<SRTimeContentItem>();
    ExpectEmpty<SRDateTimeContentItem>();
    ExpectEmpty<SRPnameContentItem>();
}

TEST_F(SRContentItemTest, AreReadWithTheirNumber) {
    Bytes bytes = ReportBuilder::Number(kName, "7", kCentimeters).Below({ReportBuilder("TEXT")}).Encode();
    const TDicomDataSet dataSet = Over(bytes);
    Lines lines;
    AppendTree(lines, SRNumericContentItem(&dataSet, L"3.2"));
    EXPECT_EQ(lines, (Lines{"3.2 NUM (1,LN,,Name) = 7; cm [0] ", "3.2.1 TEXT (,,,) =  [0] "}));
}

// ---- Comparison ----

class Comparison : public ReportTest {
  protected:
    using Items = std::vector<ReportBuilder>;

    // "equal" or not, and "more" when the first has more; of two measurements with these items below.
    std::string Compare(const Items& first, const Items& second, const char* nameOfSecond = "Name") {
        const ReportBuilder one = ReportBuilder::Number(kName, "first", {}).Below(first);
        const ReportBuilder two =
            ReportBuilder::Number({"2", "LN", nameOfSecond}, "second", {}).Below(second);
        Read(ReportBuilder("CONTAINER").Below({one, two}).Encode());
        bool hasMore = first.size() <= second.size();  // the wrong answer
        const bool areEqual = Item(0).EqualExceptDerivation(&Item(1), hasMore);
        return std::string(areEqual ? "equal" : "different") + (hasMore ? " more" : "");
    }

    static ReportBuilder Text(const char* name, const char* value) {
        return ReportBuilder("TEXT", {"T", "LN", name}).Text(Tags::kTextValue, Vr::kUT, value);
    }
    static ReportBuilder Derivation(const char* meaning, const char* code = "121401",
                                    const char* scheme = "DCM") {
        return ReportBuilder::Coded({code, scheme, "Any name"}, {"R", "SRT", meaning});
    }
};

TEST_F(Comparison, IsOfNamesAndOfWhatLiesBelowTheOneWithMore) {
    const ReportBuilder a = Text("A", "1"), b = Text("B", "2"), other = Text("A", "2");
    EXPECT_EQ(Compare({}, {}), "equal");
    EXPECT_EQ(Compare({a}, {}, "name"), "different more");
    EXPECT_EQ(Compare({a, b}, {b, a}), "equal");
    EXPECT_EQ(Compare({a}, {other}), "different");
    EXPECT_EQ(Compare({a, b}, {a}), "different more");
    EXPECT_EQ(Compare({a}, {a, b}), "different");
    EXPECT_EQ(Compare({a, a}, {a}), "equal more") << "one may stand for several";
    EXPECT_EQ(Compare({a, b}, {a, a}), "equal") << "with as many, only those of the second are looked for";
    EXPECT_EQ(Compare({a, a}, {a, b}), "different");
    bool hasMore = true;
    EXPECT_FALSE(Item(0).EqualExceptDerivation(nullptr, hasMore) || hasMore);
}

TEST_F(Comparison, IgnoresHowValuesWereDerived) {
    const ReportBuilder ignored[] = {Text("selection Status", "mean value Chosen"),
                                     Derivation("Mean"),
                                     Derivation("MEDIAN"),
                                     Derivation("mode"),
                                     Derivation("Minimum"),
                                     Derivation("Maximum")};
    const ReportBuilder counted[] = {Text("SELECTION STATUS", "MEAN VALUE"),
                                     Text("SELECTION", "MEAN VALUE CHOSEN"),
                                     Derivation("Mean of all"),
                                     Derivation("Last"),
                                     Derivation("Mean", "121402"),
                                     Derivation("Mean", "121401", "dcm")};
    const ReportBuilder a = Text("A", "1");
    for (const ReportBuilder& item : ignored) {
        EXPECT_EQ(Compare({a, item}, {a}), "equal more");
        EXPECT_EQ(Compare({a}, {item, a}), "equal");
    }
    for (const ReportBuilder& item : counted) {
        EXPECT_EQ(Compare({a, item}, {a}), "different more");
        EXPECT_EQ(Compare({a}, {item, a}), "different");
    }
}

// Hosts see the value of the item that was last found different, whichever report it is of.
TEST_F(Comparison, LeavesTheValueOfTheLastThatDifferedAndIsNotSwayedByIt) {
    using Values = std::vector<HostString>;
    const auto values = SRContentItem::GetTestContentItemValueList;
    Compare({Text("A", "1")}, {Text("A", "2")});
    EXPECT_EQ(values(), Values{L"first"});
    EXPECT_EQ(Compare({Text("A", "first")}, {Text("A", "first")}), "equal");
    EXPECT_EQ(Compare({}, {}, "Other"), "different");
    EXPECT_EQ(values(), Values{L"first"}) << "the names alone leave it";
    bool hasMore = true;
    Bytes bytes = ReportBuilder::Number(kName, "9", {}).Encode();
    const TDicomDataSet dataSet = Over(bytes);
    const SRNumericContentItem later(&dataSet, L"1");
    Compare({Text("A", "1")}, {});
    EXPECT_FALSE(later.EqualExceptDerivation(&Item(0), hasMore) || hasMore);
    EXPECT_EQ(values(), Values{L"9"});
    EXPECT_TRUE(later.EqualExceptDerivation(&later, hasMore));
}

}  // namespace
