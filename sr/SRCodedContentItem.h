#pragma once

#include "sr/SRContentItem.h"

namespace VantorWrappers {

// A coded value. Its value as text is the code's meaning.
class SRCodedContentItem final : public SRContentItem {
  public:
    static constexpr char kValueType[] = "CODE";

    SRCodedContentItem() = default;

    // As SRContentItem::Construct has it.
    SRCodedContentItem(const Vantor::TDicomDataSet* dataSet, const HostString& nodeNumber);

    const char* GetValueType() const override { return kValueType; }

    const HostString& GetValue() const override { return fCode.GetCodeMeaning(); }

    // The code.
    SRCodedEntry GetValueCodedEntry() const { return fCode; }

  protected:
    void ParseValue(const Vantor::TDicomDataSet& dataSet, SRCodeTable& codes) override;

  private:
    SRCodedEntry fCode;
};

}  // namespace VantorWrappers
