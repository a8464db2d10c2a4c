#include "sr/SRPnameContentItem.h"

#include "host/PatientName.h"
#include "sr/SRItemReader.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;
namespace Tags = Vantor::Tags;

SRPnameContentItem::SRPnameContentItem(const TDicomDataSet* dataSet, const HostString& nodeNumber) {
    Construct(dataSet, nodeNumber, kNoDataSet);
}

void SRPnameContentItem::ParseValue(const TDicomDataSet& dataSet, SRCodeTable& /*codes*/) {
    constexpr uint32_t kNameSize = 64;
    const VantorHost::PatientName name(ReadTrimmed(dataSet, Tags::kPersonName, kNameSize));
    SetValue(name.GetDisplayablePatientName());
}

}  // namespace VantorWrappers
