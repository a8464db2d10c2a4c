#include "sr/SRCodedContentItem.h"

#include "platform/CodePage.h"
#include "sr/SRCodeTable.h"
#include "sr/SRItemReader.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;
namespace Tags = Vantor::Tags;

SRCodedContentItem::SRCodedContentItem(const TDicomDataSet* dataSet, const HostString& nodeNumber) {
    Construct(dataSet, nodeNumber, kNoDataSet);
}

void SRCodedContentItem::ParseValue(const TDicomDataSet& dataSet, SRCodeTable& codes) {
    constexpr FirstItemComplaints kComplaints = {
        {TraceLevel::kError, "No Concept Code Sequence found for CODE Conent Item at Node Number = "},
        {TraceLevel::kError, "No items found in Concept Code Sequence for Node Number = "},
        {TraceLevel::kWarning,
         "Failed to create temporary TDicomDataSet for Concept Code Sequence for Node Number = "}};
    const auto items =
        FindFirstItem(dataSet, Tags::kConceptCodeSequence, kComplaints, [&] { return NodeText(); });
    if (!items) return;
    fCode = codes.Read(*items);
    TraceReport(TraceLevel::kVerbose, [&] {
        using Vantor::Platform::FromHostText;
        return "Contents of Code Sequence Macro: Code Value = " + FromHostText(fCode.GetCodeValue()) +
               ", Code Meaning = " + FromHostText(fCode.GetCodeMeaning()) +
               ", Coding Scheme Designator = " + FromHostText(fCode.GetCodingSchemeDesignator()) +
               ", Coding Scheme Version = " + FromHostText(fCode.GetCodingSchemeVersion());
    });
}

}  // namespace VantorWrappers
