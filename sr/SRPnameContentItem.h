#pragma once

#include "sr/SRContentItem.h"

namespace VantorWrappers {

// A person. The value is the name as the host shows it.
class SRPnameContentItem final : public SRContentItem {
  public:
    static constexpr char kValueType[] = "PNAME";

    SRPnameContentItem() = default;

    // As SRContentItem::Construct has it.
    SRPnameContentItem(const Vantor::TDicomDataSet* dataSet, const HostString& nodeNumber);

    const char* GetValueType() const override { return kValueType; }

  protected:
    void ParseValue(const Vantor::TDicomDataSet& dataSet, SRCodeTable& codes) override;
};

}  // namespace VantorWrappers
