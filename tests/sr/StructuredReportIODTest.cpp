// Reports as a whole: what they are taken for, their header, what is traced, and damage of every kind. Hunts
// reports taken for another template, lines that support staff search for and would not find, and reads
// outside the data set.

#include <algorithm>
#include <stdexcept>
#include <tuple>

#include "host/DateAndTime.h"
#include "tests/sr/ReportSupport.h"

namespace {

using namespace Vantor;
using namespace VantorTest;
using namespace VantorWrappers;

const ReportCode kName = {"1", "LN", "Name"};

class StructuredReportIODTest : public ReportTest {
  protected:
    void ExpectNoContent() const {
        const SRContentItem* item = nullptr;
        EXPECT_FALSE(fReport->IsValid() || fReport->GetContentItem(0, item));
        EXPECT_TRUE(fReport->IsEmpty());
        EXPECT_EQ(fReport->GetRootContentItem(), nullptr);
        EXPECT_EQ(fReport->GetContentItemCount(), 0);
    }
};

TEST_F(StructuredReportIODTest, IsTakenForATemplateByItsClassAndTitle) {
    const char* const kEnhanced = Uids::kEnhancedSR;
    const std::tuple<const char*, ReportCode, SRType> cases[] = {
        {kEnhanced, {"125200", "DCM", "T"}, SRType::USAdultCardiacSR},
        {Uids::kComprehensiveSR, {"125300", "DCM", "T"}, SRType::USPediatricCardiacSR},
        {kEnhanced, {"125100 ", " dcm ", ""}, SRType::USVascularSR},
        {Uids::kComprehensiveSR, {" 0125000", "DCM", "T"}, SRType::USOBGynSR},
        {kEnhanced, {"125001", "DCM", "T"}, SRType::NoTemplateSR},
        {kEnhanced, {"125100", "99DCM", "T"}, SRType::NoTemplateSR},
        {kEnhanced, {"125100x", "DCM", "T"}, SRType::NoTemplateSR},
        {kEnhanced, {"4295092396", "DCM", "T"}, SRType::NoTemplateSR},  // 125100 in 32 bits
        {kEnhanced, {"", "DCM", "T"}, SRType::NoTemplateSR},
        {"1.2.840.10008.5.1.4.1.1.88.222", {"125100", "DCM", "T"}, SRType::NoTemplateSR},
        {Uids::kBasicTextSR, {"125100", "DCM", "T"}, SRType::BasicTextSR},
        {Uids::kBasicTextSR, {"", "", "T"}, SRType::BasicTextSR},
        // Hosts rely on the sense of this: what says that it is one is not taken for one.
        {Uids::kComprehensiveSR, {"121058", "DCM", "Cardiac Catheterization"}, SRType::NoTemplateSR},
        {kEnhanced, {"121058", "DCM", "cardiac cath"}, SRType::NoTemplateSR},
        {kEnhanced, {"121058", "DCM", "Cardiac Cat"}, SRType::CardiacCathSR},
        {kEnhanced, {"121058", "DCM", "A Cardiac Cath"}, SRType::CardiacCathSR},
        {kEnhanced, {"121058", "DCM", "Lo"}, SRType::CardiacCathSR},
        {kEnhanced, {"121058", "DCM", "L "}, SRType::NoTemplateSR},
        {kEnhanced, {"121058", "DCM", ""}, SRType::NoTemplateSR}};
    for (const auto& [sopClass, title, type] : cases) {
        const auto report = ReportBuilder("CONTAINER", title).Text(Tags::kSOPClassUID, Vr::kUI, sopClass);
        for (const Encoding& encoding : kEncodings) {
            Read(report.Encode(encoding.fTransferSyntax), encoding);
            EXPECT_STREQ(NameOf(fReport->GetSRType()), NameOf(type)) << title.fValue << title.fMeaning;
            EXPECT_TRUE(fReport->IsValid() && fReport->IsEmpty());
        }
    }
    Read(ReportBuilder("CONTAINER").Text(Tags::kSOPClassUID, Vr::kUI, Uids::kBasicTextSR).Encode());
    EXPECT_EQ(fReport->GetSRType(), SRType::NoTemplateSR) << "it has no title";
    EXPECT_EQ(static_cast<int>(SRType::BasicTextSR), 7) << "hosts know the types by these numbers";
}

TEST_F(StructuredReportIODTest, HasTheTitleOfItsFirstName) {
    const std::string title = std::string(2, ' ') + std::string(61, 't') + "\xC3\xA9";
    const auto name = [](const std::string& text) {
        return ReportBuilder().Text(Tags::kCodeMeaning, Vr::kLO, text);
    };
    Read(ReportBuilder("CONTAINER")
             .Sequence(Tags::kConceptNameCodeSequence, {name(title), name("second")})
             .Encode());
    const HostString shown = Platform::ToHostText(title.substr(2, kIsWindows ? 62 : 61));
    EXPECT_EQ(fReport->GetSRDocumentTitle(), shown);
    EXPECT_EQ(fReport->GetRootContentItem()->GetConceptName(), shown);
}

// What stands in front of the value type describes the document.
TEST_F(StructuredReportIODTest, TheRootIsAContainerOfWhatFollowsTheValueType) {
    ReportBuilder report = ReportBuilder("TEXT", kName)
                               .Text(Tags::kRelationshipType, Vr::kCS, "CONTAINS")
                               .Text(Tags::kObservationDateTime, Vr::kDT, "20240315")
                               .Text(Tags::kContinuityOfContent, Vr::kCS, "SEPARATE")
                               .Text({0x0040, 0xA731}, Vr::kLO, "behind");
    Read(report.Encode());
    EXPECT_EQ(Tree(), Lines{"1 CONTAINER (1,LN,,Name) = ; SEPARATE [0] "});
    Read(report.Without(Tags::kValueType).Encode());
    ExpectNoContent();
    EXPECT_EQ(fReport->GetSRDocumentTitle(), L"Name");
}

TEST_F(StructuredReportIODTest, WithoutADataSetIsNotValid) {
    fReport = std::make_unique<StructuredReportIOD>(nullptr);
    ExpectNoContent();
    EXPECT_EQ(fReport->GetSRType(), SRType::NoTemplateSR);
    EXPECT_EQ(fReport->GetSRDateTime(), StructuredReportIOD::kMinimumDate);
    EXPECT_EQ(fReport->GetPatientName() + fReport->GetAttribute(8, 0x60, 16), L"");
}

// ---- Header ----

TEST_F(StructuredReportIODTest, AttributesAreGivenInTheFormatsThatHostsAskFor) {
    const std::string id = std::string(63, 'i') + "\xC3\xA9";
    Read(ReportBuilder("CONTAINER")
             .Text(Tags::kContentDate, Vr::kDA, "20240315101500")
             .Text(Tags::kContentTime, Vr::kTM, "1015 ")
             .Text(Tags::kModality, Vr::kCS, std::string("SR\0x", 4))
             .Text(Tags::kPatientName, Vr::kPN, " Doe^Jane^^Dr. ")
             .Text(Tags::kPatientID, Vr::kLO, id)
             .Encode());
    const std::tuple<Tag, uint32_t, const wchar_t*, const wchar_t*> cases[] = {
        {Tags::kPatientName, 64, L"", L"Doe^Jane^^Dr."},
        {Tags::kPatientName, 64, L"PatientName", L"Doe, Dr. Jane"},
        {Tags::kPatientName, 64, L"DATE", L""},
        {Tags::kPatientName, 6, L"PATIENTNAME", L"Doe, J"},
        {Tags::kPatientName, 0, L"", L""},
        {Tags::kContentDate, 10, L"", L"2024031510"},
        {Tags::kContentDate, 8, L"date", L"2024-3-15 0s"},
        {Tags::kContentDate, 64, L"Date", L"2024-3-15 36900s"},
        {Tags::kContentDate, 7, L"DATE", L""},
        {Tags::kModality, 16, L"", L"SR"},
        {Tags::kStudyInstanceUID, 64, L"DATE", L""},
        {Tags::kContentDate, 0xFFFFFFFF, L"", L"20240315101500"}};
    for (const auto& [tag, maxLength, format, shown] : cases) {
        EXPECT_EQ(fReport->GetAttribute(tag.fGroup, tag.fElement, maxLength, format), shown);
    }
    for (int times = 0; times < 2; ++times) EXPECT_EQ(fReport->GetPatientName(), L"Doe, Dr. Jane");
    EXPECT_EQ(fReport->GetPatientNumber(), Platform::ToHostText(id.substr(0, kIsWindows ? 64 : 63)));
}

TEST_F(StructuredReportIODTest, DateAndTimeAreWholeOrTheMinimum) {
    constexpr char kMinimum[] = "1-1-1 0s";
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"20240315", " 101501.999", "2024-3-15 36901s"},
        {" 20240229 ", "235960", "2024-2-29 86399s"},
        {"20240315", "10150", kMinimum},
        {"20240315", "1015  ", kMinimum},
        {"20240315", "246060", kMinimum},
        {"20240315", "            101501", kMinimum},  // behind the limit
        {"   20240229", "101501", kMinimum},           // likewise
        {"2024031", "101501", kMinimum},
        {"", "101501", kMinimum}};
    for (const auto& [date, time, shown] : cases) {
        Read(ReportBuilder("CONTAINER")
                 .Text(Tags::kContentDate, Vr::kDA, date)
                 .Text(Tags::kContentTime, Vr::kTM, time)
                 .Text(Tags::kPatientName, Vr::kPN, "Doe^Jane")
                 .Text(Tags::kPatientID, Vr::kLO, "17")
                 .Encode());
        TraceLines trace(TraceArea::kStructuredReport, TraceLevel::kError);
        EXPECT_EQ(Shown(VantorHost::DateAndTime::Format(fReport->GetSRDateTime())), shown) << date << time;
        EXPECT_EQ(trace.Take(), Lines(shown == kMinimum ? 1 : 0,
                                      "error: Failed to retrieve or convert Content Date or "
                                      "Content Time for patient Doe, Jane Patient ID = 17"));
    }
}

// ---- Trace ----

TEST_F(StructuredReportIODTest, TracesHowAReportIsRead) {
    const ReportBuilder report =
        ReportBuilder("CONTAINER", {"125100", "DCM", "Vessels"})
            .Text(Tags::kSOPClassUID, Vr::kUI, Uids::kEnhancedSR)
            .Text(Tags::kPatientName, Vr::kPN, "Doe^Jane")
            .Below({ReportBuilder::Coded(kName, {"2", "SRT", "Apical", "3"}), ReportBuilder("SCOORD"),
                    ReportBuilder::Number({"4", "LN", "Depth"}, "5", {"cm", "UCUM", "centimeter"})});
    EXPECT_EQ(TraceOf(report, TraceLevel::kVerbose),
              (Lines{"info: New StructuredReportIOD instance being created for Patient: Doe, Jane",
                     "info: Parsing of Structured Report Content Tree started for Patient: Doe, Jane",
                     "verbose: Found Concept Name Code Sequence at displacement 72",
                     "verbose: Found SR Document Title = Vessels", "verbose: Found SR Template Type = 125100",
                     "verbose: Template type is Ultrasound Vascular",
                     "verbose: Entering constructor for CONTAINER Content Item for node number 1",
                     "verbose: Concept Name for node number 1 is Vessels",
                     "verbose: Parsing of Referenced Content Item Identifier no implemented.",
                     "verbose: Entering constructor for CODE Content Item for node number 1.1",
                     "verbose: Concept Name for node number 1.1 is Name",
                     "verbose: Parsing of Referenced Content Item Identifier no implemented.",
                     ("verbose: Contents of Code Sequence Macro: Code Value = 2, Code Meaning = Apical, "
                      "Coding Scheme Designator = SRT, Coding Scheme Version = 3"),
                     "info: Unsupported Value Type SCOORD encountered for node number 1.2",
                     "verbose: Entering constructor for NUM Content Item for node number 1.3",
                     "verbose: Concept Name for node number 1.3 is Depth",
                     "verbose: Parsing of Referenced Content Item Identifier no implemented."}));
    for (const auto& [code, line] :
         {std::pair("125200", "verbose: Template type is Ultrasound Adult Cardiac"),
          {"125300", "verbose: Template type is Ultrasound Pediatric Cardiac"},
          {"125000", "verbose: Template type is Ultrasound OB/Gyn"},
          {"121058", "verbose: Template type is Cardiac Catheterization"},
          {"7", "verbose: Template type is not one of the customized templates."}}) {
        const auto other = ReportBuilder(report).Code(Tags::kConceptNameCodeSequence, {code, "DCM", "Title"});
        EXPECT_EQ(TraceOf(other, TraceLevel::kVerbose).at(5), line);
    }
}

// A sequence that is absent, without items, with an item without content, and with one without a code.
TEST_F(StructuredReportIODTest, TracesWhatSequencesLack) {
    const ReportBuilder number = ReportBuilder().Text(Tags::kNumericValue, Vr::kDS, "1");
    const ReportBuilder version = ReportBuilder().Text(Tags::kCodingSchemeVersion, Vr::kSH, "1");
    const ReportBuilder date("DATE"), num("NUM", kName), code("CODE", kName);
    const Lines noCode = {"warning: No Code Meaning found in Code Sequence Macro.",
                          "warning: No code value found in Code Sequence Macro.",
                          "warning: No coding Scheme Designator found in Code Sequence Macro."};
    struct Case {
        Tag fTag;
        ReportBuilder fItem;
        std::string fComplaints[3];
        Lines fNoCode;
    };
    const Case cases[] = {
        {Tags::kConceptNameCodeSequence,
         date,
         {"warning: No Concept Name Code Sequence found.",
          "warning: No items found in Concept Name Code Sequence.",
          "warning: Failed to create temporary TDicomDataSet for Concept Name Code Sequence."},
         noCode},
        {Tags::kMeasuredValueSequence,
         num,
         {"info: No Measured Value Sequence found for NUMERIC Content Item at Node Number = 1.1",
          "info: No items found in Measured Value Sequence for Node Number = 1.1",
          "warning: Failed to create temporary TDicomDataSet for Measured Value Sequence for Node Number = "
          "1.1"},
         {"warning: Numeric Value (type 1) not found in Measured Value Sequence for Node Number = 1.1",
          "warning: No Measurement Units Code Sequence found for Node Number = 1.1"}},
        {Tags::kMeasurementUnitsCodeSequence,
         number,
         {"warning: No Measurement Units Code Sequence found for Node Number = 1.1",
          "warning: No items found in Measurement Units Code Sequence for Node Number = 1.1",
          "warning: Failed to create temporary TDicomDataSet for Measurement Units Code Sequence for Node "
          "Number = 1.1"},
         noCode},
        {Tags::kConceptCodeSequence,
         code,
         {"error: No Concept Code Sequence found for CODE Conent Item at Node Number = 1.1",
          "error: No items found in Concept Code Sequence for Node Number = 1.1",
          "warning: Failed to create temporary TDicomDataSet for Concept Code Sequence for Node Number = "
          "1.1"},
         noCode}};
    for (const Case& each : cases) {
        const auto lines = [&](const ReportBuilder& item) {
            const bool isBelow = each.fTag == Tags::kMeasurementUnitsCodeSequence;
            const auto whole =
                isBelow ? ReportBuilder(num).Sequence(Tags::kMeasuredValueSequence, {item}) : item;
            Lines all = TraceOf(ReportBuilder("CONTAINER", kName).Below({whole}), TraceLevel::kInfo);
            EXPECT_TRUE(fReport->IsValid());
            return Lines(all.begin() + 2, all.end());
        };
        const auto with = [&](const std::vector<ReportBuilder>& items) {
            return lines(ReportBuilder(each.fItem).Sequence(each.fTag, items));
        };
        EXPECT_EQ(lines(each.fItem), Lines{each.fComplaints[0]});
        EXPECT_EQ(with({}), Lines{each.fComplaints[1]});
        EXPECT_EQ(with({{}}), Lines{each.fComplaints[2]});
        EXPECT_EQ(with({version}), each.fNoCode);
    }
}

TEST_F(StructuredReportIODTest, TracesWhatElseIsMissing) {
    const ReportBuilder document = ReportBuilder().Text(Tags::kModality, Vr::kCS, "SR");
    const auto named = [&](const std::vector<ReportBuilder>& items) {
        return ReportBuilder(document).Sequence(Tags::kConceptNameCodeSequence, items);
    };
    constexpr char kNoContent[] = "warning: No Document Content Macro found, no SR content will be parsed.";
    EXPECT_EQ(TraceOf(document), (Lines{"warning: No SR Concept Name Code Sequence found.", kNoContent}));
    EXPECT_EQ(TraceOf(named({})),
              (Lines{"warning: No items found in SR Concept Name Code Sequence.", kNoContent}));
    EXPECT_EQ(TraceOf(named({{}})),
              (Lines{"warning: Failed to create temporary TDicomDataSet for Concept Name Code Sequence.",
                     kNoContent}));
    EXPECT_EQ(
        TraceOf(named({document})),
        (Lines{"warning: No SR Document Title found.", "warning: No code value found for SR template type.",
               "warning: No coding Scheme Designator found for SR template type.", kNoContent}));
    EXPECT_EQ(TraceOf(ReportBuilder("CONTAINER", kName).Below({ReportBuilder("TEXT", kName)})),
              Lines{"warning: No Text Value attribute found for TEXT Content Item at Node Number = 1.1"});
    EXPECT_EQ(TraceOf(ReportBuilder("CONTAINER", kName).Below({{}, {}})),
              Lines{"error: Failed to create temporary data set for Content Sequence for node number 1.1"});
}

// ---- Damage ----

TEST_F(StructuredReportIODTest, WhatIsNoSequenceOrLeadsOutsideEndsTheReport) {
    const auto broken = [](const char* type, Tag tag) {
        return ReportBuilder(type, kName).Text(tag, Vr::kLO, "no sequence");
    };
    const auto expectError = [&](const ReportBuilder& report) {
        EXPECT_EQ(TraceOf(report), Lines{"error: SR parse failed with exception thrown - 101"});
        ExpectNoContent();
    };
    expectError(broken("CONTAINER", Tags::kConceptNameCodeSequence));
    expectError(broken("CONTAINER", Tags::kContentSequence));
    expectError(ReportBuilder("CONTAINER", kName).Below({broken("CODE", Tags::kConceptCodeSequence)}));
    Bytes bytes = ReportBuilder("CONTAINER", kName).Encode();
    bytes[6] = 0x7F;  // the length of the value type
    TraceLines trace(TraceArea::kStructuredReport, TraceLevel::kError);
    Read(bytes);
    EXPECT_EQ(trace.Take(), Lines{"error: SR parse failed with exception thrown - 102"});
    ExpectNoContent();
}

// A report that lacks some of its items is worse than none.
class DamagedItems : public ReportTest {
  protected:
    static constexpr uint32_t kUndefined = TDicomDataSet::kUndefinedLength;
    static constexpr Tag kBehind{0x0040, 0xA731};
    static constexpr char kDamaged[] = "error: SR parse failed with exception thrown - 101";

    static ElementBuilder Item(uint32_t length, const Bytes& content, Tag tag = Tags::kItem) {
        return ElementBuilder().ItemHeader(tag, length).Raw(content);
    }

    static Bytes Join(const std::vector<ElementBuilder>& parts) {
        ElementBuilder all;
        for (const ElementBuilder& part : parts) all.Raw(part.GetBytes());
        return all.GetBytes();
    }

    // Reads a report whose content sequence may be of any length and has another element behind it. Gives
    // what is traced; "valid" for a valid report.
    std::string Outcome(uint32_t length, const std::vector<ElementBuilder>& items, VrCode vr = Vr::kSQ) {
        ElementBuilder report;
        report.Raw(ReportBuilder("CONTAINER", kName).Encode())
            .Header(Tags::kContentSequence, vr, length)
            .Raw(Join(items))
            .Text(kBehind, Vr::kLO, "Behind the sequence, so that no length leads outside.");
        TraceLines trace(TraceArea::kStructuredReport, TraceLevel::kError);
        return Read(report.GetBytes()).IsValid() ? "valid" : trace.Take().at(0);
    }

    const Bytes fText = ReportBuilder("TEXT", kName).Text(Tags::kTextValue, Vr::kUT, "text").Encode();
    const uint32_t fSize = static_cast<uint32_t>(fText.size());
    const ElementBuilder fItem = Item(fSize, fText);
    const ElementBuilder fItemEnd = Item(0, {}, Tags::kItemDelimitation);
    const ElementBuilder fSequenceEnd = Item(0, {}, Tags::kSequenceDelimitation);
};

TEST_F(DamagedItems, EndTheReport) {
    const ElementBuilder tooLong = Item(fSize + 2, fText), endless = Item(kUndefined, fText);
    const ElementBuilder other = Item(fSize, fText, {0xFFFE, 0xE001}), stray = ElementBuilder().Raw(Bytes(8));
    const auto number = [](uint32_t excess) {
        const Bytes value = ReportBuilder().Text(Tags::kNumericValue, Vr::kDS, "1.5").Encode();
        const auto measured = Item(static_cast<uint32_t>(value.size()) + excess, value);
        const auto content = ElementBuilder()
                                 .Raw(ReportBuilder("NUM", kName).Encode())
                                 .Value(Tags::kMeasuredValueSequence, Vr::kSQ, measured.GetBytes())
                                 .Text(kBehind, Vr::kLO, "Behind it");
        return Item(content.GetSize(), content.GetBytes());
    };
    const std::tuple<const char*, bool, std::vector<ElementBuilder>> cases[] = {
        {"first too long", true, {tooLong}},
        {"last too long", true, {fItem, tooLong}},
        {"measured value too long", true, {number(2)}},
        {"first of another tag", true, {other, fItem}},
        {"last of another tag", true, {fItem, other}},
        {"last of another tag", false, {fItem, other, fSequenceEnd}},
        {"last without delimiter", true, {fItem, endless}},
        {"last without delimiter", false, {fItem, endless, fSequenceEnd}},
        {"bytes behind the last", true, {fItem, stray}},
        {"bytes between", false, {fItem, stray, fItem, fSequenceEnd}}};
    for (const auto& [what, isDefined, items] : cases) {
        const auto size = static_cast<uint32_t>(Join(items).size());
        EXPECT_EQ(Outcome(isDefined ? size : kUndefined, items), kDamaged) << what;
    }
    const std::vector<ElementBuilder> good = {number(0), endless, fItemEnd, fItem};
    EXPECT_EQ(Outcome(static_cast<uint32_t>(Join(good).size()), good), "valid");
    EXPECT_EQ(Outcome(kUndefined, {fItem, endless, fItemEnd, fSequenceEnd}), "valid");
}

TEST_F(DamagedItems, EndTheReportWhereverTheirSequenceEndsTooEarly) {
    for (uint32_t length = 1; length < 2 * fItem.GetSize(); ++length) {
        if (length == fItem.GetSize()) continue;  // where it ends with an item
        EXPECT_EQ(Outcome(length, {fItem, fItem}), kDamaged) << length;
    }
}

// Sequences of unknown VR hold items in implicit encoding, which are not looked into.
TEST_F(DamagedItems, EndTheReportWhenTheyAreInAnotherEncoding) {
    const Bytes text = ReportBuilder("TEXT").Encode(Uids::kImplicitVRLittleEndian);
    const ElementBuilder item = Item(static_cast<uint32_t>(text.size()), text);
    EXPECT_EQ(Outcome(kUndefined, {item, fSequenceEnd}, Vr::kUN), kDamaged);
    EXPECT_EQ(Outcome(item.GetSize(), {item}, Vr::kUN), kDamaged);
    EXPECT_EQ(Outcome(kUndefined, {Item(kUndefined, text), fItemEnd, fSequenceEnd}, Vr::kUN),
              "error: SR parse failed with exception thrown - 102");
}

TEST_F(StructuredReportIODTest, WhatTheHostThrowsEndsTheReport) {
    VantorHost::ShortDate::SetFormatter([](auto) -> std::wstring { throw std::runtime_error("no format"); });
    const auto date = ReportBuilder("DATE", kName).Text(Tags::kDate, Vr::kDA, "20240315");
    EXPECT_EQ(TraceOf(ReportBuilder("CONTAINER", kName).Below({date})),
              Lines{"error: SR parse failed with unknown exception thrown"});
    ExpectNoContent();
}

// What is cut off shows all items, or none.
TEST_F(StructuredReportIODTest, CutOffAnywhereKeepsWithinItsBytes) {
    const ReportBuilder text = ReportBuilder("TEXT", kName).Text(Tags::kTextValue, Vr::kUT, "text");
    const ReportBuilder coded = ReportBuilder::Coded(kName, {"4", "LN", "coded"});
    const ReportBuilder report =
        ReportBuilder("CONTAINER", {"125100", "DCM", "Title"})
            .Text(Tags::kSOPClassUID, Vr::kUI, Uids::kEnhancedSR)
            .Text(Tags::kPatientID, Vr::kLO, "ID")
            .Below({ReportBuilder("CONTAINER", kName).Below({text, coded}),
                    ReportBuilder::Number({"5", "LN", "N"}, "1.5", {"cm", "", "cm"})});
    for (const Encoding& encoding : kEncodings) {
        for (const Lengths lengths : {Lengths::kDefined, Lengths::kUndefined}) {
            const Bytes whole = report.Encode(encoding.fTransferSyntax, lengths);
            Read(whole, encoding);
            const Lines tree = Tree();
            ASSERT_EQ(tree.size(), 5U);
            for (auto end = whole.begin(); end != whole.end(); ++end) {
                Read(Bytes(whole.begin(), end), encoding);
                const HostString id = fReport->GetPatientNumber();
                EXPECT_TRUE(id.empty() || id == L"ID");
                const Lines lines = Tree();
                EXPECT_LE(lines.size(), 1U) << lines.size() << " lines";
            }
        }
    }
}

}  // namespace
