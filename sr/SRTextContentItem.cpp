#include "sr/SRTextContentItem.h"

#include <new>

#include "platform/CodePage.h"
#include "sr/SRItemReader.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;
namespace Tags = Vantor::Tags;

SRTextContentItem::SRTextContentItem(const TDicomDataSet* dataSet, const HostString& nodeNumber) {
    Construct(dataSet, nodeNumber, kNoDataSet);
}

void SRTextContentItem::ParseValue(const TDicomDataSet& dataSet, SRCodeTable& /*codes*/) {
    const auto text = ViewTrimmed(dataSet, Tags::kTextValue, kAnySize);
    if (!text) {
        TraceReport(TraceLevel::kWarning, [&] {
            return "No Text Value attribute found for TEXT Content Item at Node Number = " + NodeText();
        });
        return;
    }
    try {
        SetValue(Vantor::Platform::ToHostText(*text));
    } catch (const std::bad_alloc&) {
        TraceReport(TraceLevel::kError, [&] {
            return "Memory allocation failed for retrieval of TEXT value for SR node number = " + NodeText();
        });
    }
}

}  // namespace VantorWrappers
