#pragma once

#include "sr/SRContentItem.h"

namespace VantorWrappers {

// A heading with items below it. Has no value.
class SRContainerContentItem final : public SRContentItem {
  public:
    static constexpr char kValueType[] = "CONTAINER";

    SRContainerContentItem() = default;

    // As SRContentItem::Construct has it.
    SRContainerContentItem(const Vantor::TDicomDataSet* dataSet, const HostString& nodeNumber);

    const char* GetValueType() const override { return kValueType; }

    // "SEPARATE" or "CONTINUOUS": whether the items below are to be read as one text.
    const HostString& GetContinuityOfContent() const { return fcontinuityOfContent; }

  protected:
    void ParseValue(const Vantor::TDicomDataSet& dataSet, SRCodeTable& codes) override;

  private:
    HostString fcontinuityOfContent;
};

}  // namespace VantorWrappers
