#pragma once

#include "sr/SRContentItem.h"

namespace VantorWrappers {

// A time of day. Its value is the time as the host shows it.
class SRTimeContentItem final : public SRContentItem {
  public:
    static constexpr char kValueType[] = "TIME";

    SRTimeContentItem() = default;

    // As SRContentItem::Construct has it.
    SRTimeContentItem(const Vantor::TDicomDataSet* dataSet, const HostString& nodeNumber);

    const char* GetValueType() const override { return kValueType; }

  protected:
    void ParseValue(const Vantor::TDicomDataSet& dataSet, SRCodeTable& codes) override;
};

}  // namespace VantorWrappers
