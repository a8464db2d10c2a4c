#include "sr/SRTimeContentItem.h"

#include "host/LongTime.h"
#include "sr/SRItemReader.h"
#include "wrappers/ValueText.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;
namespace Tags = Vantor::Tags;

SRTimeContentItem::SRTimeContentItem(const TDicomDataSet* dataSet, const HostString& nodeNumber) {
    Construct(dataSet, nodeNumber, kNoDataSet);
}

void SRTimeContentItem::ParseValue(const TDicomDataSet& dataSet, SRCodeTable& /*codes*/) {
    constexpr uint32_t kTimeSize = 16;
    const auto text = ViewTrimmed(dataSet, Tags::kTime, kTimeSize);
    const auto time = text ? ParseTimeOfDay(*text) : std::nullopt;
    if (time) SetValue(VantorHost::LongTime::Format(*time));
}

}  // namespace VantorWrappers
