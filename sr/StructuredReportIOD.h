#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/PatientName.h"
#include "sr/SRContainerContentItem.h"
#include "sr/SRType.h"
#include "wrappers/HostDateTime.h"
#include "wrappers/HostString.h"

namespace Vantor {
class TDicomDataSet;
}

namespace VantorWrappers {

// One structured report as its data set has it: title, template, content tree.
//
// Nothing is thrown. A report that cannot be read is not valid, and says why in the trace of structured
// reports. One thread at a time.
class StructuredReportIOD {
  public:
    // What GetSRDateTime gives when there is none: 0001-01-01 00:00:00.
    static const HostDateTime kMinimumDate;

    // Reads the report. The data set must outlive this object; null gives a report that is not valid.
    explicit StructuredReportIOD(const Vantor::TDicomDataSet* dataSet);
    ~StructuredReportIOD();
    StructuredReportIOD(const StructuredReportIOD&) = delete;
    StructuredReportIOD& operator=(const StructuredReportIOD&) = delete;

    // False for a data set that is no report or a damaged one.
    bool IsValid() const { return fIsValidSR; }

    // True when there is nothing below the root.
    bool IsEmpty() const { return GetContentItemCount() < 1; }

    // The template, found out from the SOP class and the code of the title.
    SRType GetSRType() const { return fSRTemplateType; }

    // The meaning of the code that names the root; "" without one.
    const HostString& GetSRDocumentTitle() const { return fSRDocumentTitle; }

    // Content Date and Time. kMinimumDate when one of them is absent, shorter than to the day or second, or
    // no date or time.
    HostDateTime GetSRDateTime() const;

    // Addition for hosts: the root of the content, owned by this object; null when it could not be read.
    const SRContentItem* GetRootContentItem() const { return fRootContentItem.get(); }

    // The items below the root, as SRContentItem has them; none without a root.
    int32_t GetContentItemCount() const;
    bool GetContentItem(int32_t index, const SRContentItem*& item) const;

    // The patient's name as the host shows it, and the patient ID; "" when absent.
    HostString GetPatientName() const;
    HostString GetPatientNumber() const;

    // The text of an attribute at the top level, at most `maxLength` bytes of it, trimmed; "" when it is
    // absent or damaged. `format`, in any case, says what it is made of it: "DATE" the moment that it tells
    // as the host shows moments ("" when it tells none), "PATIENTNAME" the name as the host shows it,
    // anything else nothing.
    HostString GetAttribute(uint16_t group, uint16_t element, uint32_t maxLength,
                            const HostString& format = {}) const;

  private:
    bool ParseSR();
    void ParseConceptNameCodeSequence();
    void SetSRTemplateType(std::string_view code, std::string_view scheme, std::string_view sopClass);
    bool ParseContentTree();
    HostString Format(std::string_view text, const HostString& format) const;

    std::unique_ptr<SRContainerContentItem> fRootContentItem;
    bool fIsValidSR = false;
    HostString fSRDocumentTitle;
    const Vantor::TDicomDataSet* umDicomDataSet;
    mutable std::optional<VantorHost::PatientName> fPatientName;  // made on first use
    SRType fSRTemplateType = SRType::NoTemplateSR;
};

}  // namespace VantorWrappers
