#pragma once

#include "sr/SRContentItem.h"

namespace VantorWrappers {

// A moment. Its value is the moment as the host shows it.
class SRDateTimeContentItem final : public SRContentItem {
  public:
    static constexpr char kValueType[] = "DATETIME";

    SRDateTimeContentItem() = default;

    // As SRContentItem::Construct has it.
    SRDateTimeContentItem(const Vantor::TDicomDataSet* dataSet, const HostString& nodeNumber);

    const char* GetValueType() const override { return kValueType; }

  protected:
    void ParseValue(const Vantor::TDicomDataSet& dataSet, SRCodeTable& codes) override;
};

}  // namespace VantorWrappers
