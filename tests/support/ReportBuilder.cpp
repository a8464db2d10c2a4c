#include "tests/support/ReportBuilder.h"

namespace VantorTest {

namespace Tags = Vantor::Tags;
namespace Vr = Vantor::Vr;

ReportBuilder::ReportBuilder(std::string_view valueType) { Text(Tags::kValueType, Vr::kCS, valueType); }

ReportBuilder::ReportBuilder(std::string_view valueType, const ReportCode& name) : ReportBuilder(valueType) {
    Code(Tags::kConceptNameCodeSequence, name);
}

ReportBuilder ReportBuilder::Number(const ReportCode& name, std::string_view number,
                                    const ReportCode& units) {
    ReportBuilder measured;
    measured.Text(Tags::kNumericValue, Vr::kDS, number).Code(Tags::kMeasurementUnitsCodeSequence, units);
    return ReportBuilder("NUM", name).Sequence(Tags::kMeasuredValueSequence, {measured});
}

ReportBuilder ReportBuilder::Coded(const ReportCode& name, const ReportCode& value) {
    return ReportBuilder("CODE", name).Code(Tags::kConceptCodeSequence, value);
}

ReportBuilder& ReportBuilder::Text(Vantor::Tag tag, Vantor::VrCode vr, std::string_view value) {
    fElements[tag] = {vr, std::string(value), {}};
    return *this;
}

ReportBuilder& ReportBuilder::Sequence(Vantor::Tag tag, const std::vector<ReportBuilder>& items) {
    fElements[tag] = {Vr::kSQ, {}, items};
    return *this;
}

ReportBuilder& ReportBuilder::Code(Vantor::Tag tag, const ReportCode& code) {
    ReportBuilder item;
    if (!code.fValue.empty()) item.Text(Tags::kCodeValue, Vr::kSH, code.fValue);
    if (!code.fScheme.empty()) item.Text(Tags::kCodingSchemeDesignator, Vr::kSH, code.fScheme);
    if (!code.fVersion.empty()) item.Text(Tags::kCodingSchemeVersion, Vr::kSH, code.fVersion);
    if (!code.fMeaning.empty()) item.Text(Tags::kCodeMeaning, Vr::kLO, code.fMeaning);
    return Sequence(tag, {item});
}

ReportBuilder& ReportBuilder::Without(Vantor::Tag tag) {
    fElements.erase(tag);
    return *this;
}

ReportBuilder& ReportBuilder::Below(const std::vector<ReportBuilder>& items) {
    return Sequence(Tags::kContentSequence, items);
}

Bytes ReportBuilder::Encode(std::string_view transferSyntaxUID, Lengths lengths) const {
    ElementBuilder data(transferSyntaxUID);
    for (const auto& [tag, element] : fElements) {
        if (element.fVr == Vr::kSQ) {
            std::vector<Bytes> items;
            for (const ReportBuilder& item : element.fItems) {
                items.push_back(item.Encode(transferSyntaxUID, lengths));
            }
            data.Sequence(tag, items, lengths);
        } else {
            data.Text(tag, element.fVr, element.fText);
        }
    }
    return data.GetBytes();
}

}  // namespace VantorTest
