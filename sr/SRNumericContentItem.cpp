#include "sr/SRNumericContentItem.h"

#include <algorithm>
#include <array>

#include "platform/CodePage.h"
#include "sr/SRCodeTable.h"
#include "sr/SRItemReader.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;
namespace Tags = Vantor::Tags;

namespace {

constexpr uint32_t kNumberSize = 16;

// How codes write years, and how hosts show them.
constexpr wchar_t kYearsCode[] = L"a";
constexpr wchar_t kYears[] = L"Y";

// Words of the meaning of units that are none.
constexpr std::array kNoUnits = {L"NO UNIT", L"NONE", L"RATIO"};

HostString UnitsOf(const SRCodedEntry& code) {
    const HostString meaning = UpperCased(code.GetCodeMeaning());
    const bool isNone = std::any_of(kNoUnits.begin(), kNoUnits.end(), [&](const wchar_t* words) {
        return meaning.find(words) != HostString::npos;
    });
    if (isNone) return {};
    return code.GetCodeValue() == kYearsCode ? kYears : code.GetCodeValue();
}

}  // namespace

SRNumericContentItem::SRNumericContentItem(const TDicomDataSet* dataSet, const HostString& nodeNumber) {
    Construct(dataSet, nodeNumber, kNoDataSet);
}

void SRNumericContentItem::ParseValue(const TDicomDataSet& dataSet, SRCodeTable& codes) {
    constexpr FirstItemComplaints kComplaints = {
        {TraceLevel::kInfo, "No Measured Value Sequence found for NUMERIC Content Item at Node Number = "},
        {TraceLevel::kInfo, "No items found in Measured Value Sequence for Node Number = "},
        {TraceLevel::kWarning,
         "Failed to create temporary TDicomDataSet for Measured Value Sequence for Node Number = "}};
    const auto items =
        FindFirstItem(dataSet, Tags::kMeasuredValueSequence, kComplaints, [&] { return NodeText(); });
    if (!items) return;
    const TDicomDataSet measuredValue = items->Wrap();
    if (const auto number = ViewTrimmed(measuredValue, Tags::kNumericValue, kNumberSize)) {
        SetValue(Vantor::Platform::ToHostText(*number));
    } else {
        TraceReport(TraceLevel::kWarning, [&] {
            return "Numeric Value (type 1) not found in Measured Value Sequence for Node Number = " +
                   NodeText();
        });
    }
    ParseUnits(measuredValue, codes);
}

void SRNumericContentItem::ParseUnits(const TDicomDataSet& measuredValue, SRCodeTable& codes) {
    constexpr FirstItemComplaints kComplaints = {
        {TraceLevel::kWarning, "No Measurement Units Code Sequence found for Node Number = "},
        {TraceLevel::kWarning, "No items found in Measurement Units Code Sequence for Node Number = "},
        {TraceLevel::kWarning,
         "Failed to create temporary TDicomDataSet for Measurement Units Code Sequence for Node Number = "}};
    const auto items = FindFirstItem(measuredValue, Tags::kMeasurementUnitsCodeSequence, kComplaints,
                                     [&] { return NodeText(); });
    if (items) fUnits = UnitsOf(codes.Read(*items));
}

}  // namespace VantorWrappers
