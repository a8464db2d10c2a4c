#pragma once

#include "sr/SRContentItem.h"

namespace VantorWrappers {

// A text of any length, which is its value; line ends as the report has them.
class SRTextContentItem final : public SRContentItem {
  public:
    static constexpr char kValueType[] = "TEXT";

    SRTextContentItem() = default;

    // As SRContentItem::Construct has it.
    SRTextContentItem(const Vantor::TDicomDataSet* dataSet, const HostString& nodeNumber);

    const char* GetValueType() const override { return kValueType; }

  protected:
    void ParseValue(const Vantor::TDicomDataSet& dataSet, SRCodeTable& codes) override;
};

}  // namespace VantorWrappers
