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

    // The code. Its parts are kept one by one, so each call makes a new entry.
    SRCodedEntry GetValueCodedEntry() const {
        return {fCodeValue, fCodingSchemeDesignator, fCodingSchemeVersion, fCodeMeaning};
    }

  protected:
    void ParseValue(const Vantor::TDicomDataSet& dataSet) override;

  private:
    HostString fCodeValue;
    HostString fCodingSchemeDesignator;
    HostString fCodingSchemeVersion;
    HostString fCodeMeaning;
};

}  // namespace VantorWrappers
