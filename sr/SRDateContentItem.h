#pragma once

#include "sr/SRContentItem.h"

namespace VantorWrappers {

// A date. Its value is the date as the host shows it.
class SRDateContentItem final : public SRContentItem {
  public:
    static constexpr char kValueType[] = "DATE";

    SRDateContentItem() = default;

    // As SRContentItem::Construct has it.
    SRDateContentItem(const Vantor::TDicomDataSet* dataSet, const HostString& nodeNumber);

    const char* GetValueType() const override { return kValueType; }

  protected:
    void ParseValue(const Vantor::TDicomDataSet& dataSet, SRCodeTable& codes) override;
};

}  // namespace VantorWrappers
