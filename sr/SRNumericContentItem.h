#pragma once

#include "sr/SRContentItem.h"

namespace VantorWrappers {

// A measurement. Its value is the number as it is written in the report.
class SRNumericContentItem final : public SRContentItem {
  public:
    static constexpr char kValueType[] = "NUM";

    SRNumericContentItem() = default;

    // As SRContentItem::Construct has it.
    SRNumericContentItem(const Vantor::TDicomDataSet* dataSet, const HostString& nodeNumber);

    const char* GetValueType() const override { return kValueType; }

    // The unit as its code has it, such as "cm/s"; but "Y" for years, and "" for numbers without a unit and
    // ratios.
    const HostString& GetUnits() const { return fUnits; }

  protected:
    void ParseValue(const Vantor::TDicomDataSet& dataSet, SRCodeTable& codes) override;

  private:
    void ParseUnits(const Vantor::TDicomDataSet& measuredValue, SRCodeTable& codes);

    HostString fUnits;
};

}  // namespace VantorWrappers
