#include "sr/SRContainerContentItem.h"

#include "platform/CodePage.h"
#include "sr/SRItemReader.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;
namespace Tags = Vantor::Tags;

SRContainerContentItem::SRContainerContentItem(const TDicomDataSet* dataSet, const HostString& nodeNumber) {
    Construct(dataSet, nodeNumber, "No Content Sequence provided for SR with node number ");
}

void SRContainerContentItem::ParseValue(const TDicomDataSet& dataSet, SRCodeTable& /*codes*/) {
    fcontinuityOfContent = Vantor::Platform::ToHostText(ReadCodeString(dataSet, Tags::kContinuityOfContent));
}

}  // namespace VantorWrappers
