#include "sr/SRCodedContentItem.h"

#include "platform/CodePage.h"
#include "sr/SRItemReader.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;
namespace Tags = Vantor::Tags;

SRCodedContentItem::SRCodedContentItem(const TDicomDataSet* dataSet, const HostString& nodeNumber) {
    Construct(dataSet, nodeNumber, kNoDataSet);
}

void SRCodedContentItem::ParseValue(const TDicomDataSet& dataSet) {
    constexpr FirstItemComplaints kComplaints = {
        {TraceLevel::kError, "No Concept Code Sequence found for CODE Conent Item at Node Number = "},
        {TraceLevel::kError, "No items found in Concept Code Sequence for Node Number = "},
        {TraceLevel::kWarning,
         "Failed to create temporary TDicomDataSet for Concept Code Sequence for Node Number = "}};
    const auto items =
        FindFirstItem(dataSet, Tags::kConceptCodeSequence, kComplaints, [&] { return NodeText(); });
    if (!items) return;
    const TDicomDataSet item = items->Wrap();
    const SRCodedEntry code = ParseCodeSequenceMacro(&item);
    fCodeValue = code.GetCodeValue();
    fCodingSchemeDesignator = code.GetCodingSchemeDesignator();
    fCodingSchemeVersion = code.GetCodingSchemeVersion();
    fCodeMeaning = code.GetCodeMeaning();
    SetValue(fCodeMeaning);
    TraceReport(TraceLevel::kVerbose, [&] {
        using Vantor::Platform::FromHostText;
        return "Contents of Code Sequence Macro: Code Value = " + FromHostText(fCodeValue) +
               ", Code Meaning = " + FromHostText(fCodeMeaning) +
               ", Coding Scheme Designator = " + FromHostText(fCodingSchemeDesignator) +
               ", Coding Scheme Version = " + FromHostText(fCodingSchemeVersion);
    });
}

}  // namespace VantorWrappers
