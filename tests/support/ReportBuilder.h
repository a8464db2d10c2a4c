#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/FileBuilder.h"

namespace VantorTest {

struct ReportCode {
    std::string fValue;
    std::string fScheme;
    std::string fMeaning;
    std::string fVersion = {};
};

// Composes the data set of a structured report from items within items, to be encoded in any way. Elements
// may be put in any order, each replaces the one of its tag; parts of codes that are "" are left out.
//
//     ReportBuilder report("CONTAINER", {"125200", "DCM", "Echo Report"});
//     report.Below({ReportBuilder::Number({"1", "LN", "Depth"}, "4.5", {"cm", "UCUM", "centimeter"})});
//     const Bytes bytes = report.Encode(Uids::kImplicitVRLittleEndian);
class ReportBuilder {
  public:
    using Lengths = ElementBuilder::Lengths;

    // An item without elements, one of a value type, and one that is named as well.
    ReportBuilder() = default;
    explicit ReportBuilder(std::string_view valueType);
    ReportBuilder(std::string_view valueType, const ReportCode& name);

    // Measurements and codes with their values.
    static ReportBuilder Number(const ReportCode& name, std::string_view number, const ReportCode& units);
    static ReportBuilder Coded(const ReportCode& name, const ReportCode& value);

    ReportBuilder& Text(Vantor::Tag tag, Vantor::VrCode vr, std::string_view value);
    ReportBuilder& Sequence(Vantor::Tag tag, const std::vector<ReportBuilder>& items);
    ReportBuilder& Code(Vantor::Tag tag, const ReportCode& code);
    ReportBuilder& Without(Vantor::Tag tag);

    // The items below.
    ReportBuilder& Below(const std::vector<ReportBuilder>& items);

    Bytes Encode(std::string_view transferSyntaxUID = Vantor::Uids::kExplicitVRLittleEndian,
                 Lengths lengths = Lengths::kDefined) const;

  private:
    struct Element {
        Vantor::VrCode fVr = 0;
        std::string fText;
        std::vector<ReportBuilder> fItems;  // of a sequence
    };

    std::map<Vantor::Tag, Element> fElements;
};

}  // namespace VantorTest
