#include "sr/SRDateContentItem.h"

#include <chrono>

#include "host/ShortDate.h"
#include "sr/SRItemReader.h"
#include "wrappers/ValueText.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;
namespace Tags = Vantor::Tags;

SRDateContentItem::SRDateContentItem(const TDicomDataSet* dataSet, const HostString& nodeNumber) {
    Construct(dataSet, nodeNumber, kNoDataSet);
}

void SRDateContentItem::ParseValue(const TDicomDataSet& dataSet, SRCodeTable& /*codes*/) {
    constexpr uint32_t kDateSize = 10;
    const auto text = ViewTrimmed(dataSet, Tags::kDate, kDateSize);
    const auto date = text ? ParseDate(*text) : std::nullopt;
    if (!date) return;
    const std::chrono::year_month_day day(std::chrono::floor<std::chrono::days>(*date));
    SetValue(VantorHost::ShortDate::Format(day));
}

}  // namespace VantorWrappers
