#include "sr/SRDateTimeContentItem.h"

#include "sr/SRItemReader.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;
namespace Tags = Vantor::Tags;

SRDateTimeContentItem::SRDateTimeContentItem(const TDicomDataSet* dataSet, const HostString& nodeNumber) {
    Construct(dataSet, nodeNumber, kNoDataSet);
}

void SRDateTimeContentItem::ParseValue(const TDicomDataSet& dataSet, SRCodeTable& /*codes*/) {
    SetValue(ReadMoment(dataSet, Tags::kDateTime));
}

}  // namespace VantorWrappers
