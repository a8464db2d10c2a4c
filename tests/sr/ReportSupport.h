#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/CodePage.h"
#include "sr/SRCodedContentItem.h"
#include "sr/SRNumericContentItem.h"
#include "sr/StructuredReportIOD.h"
#include "tests/support/DicomSupport.h"
#include "tests/support/HostFormats.h"
#include "tests/support/ReportBuilder.h"
#include "tests/support/TraceLines.h"

namespace VantorTest {

using Lines = std::vector<std::string>;
using Lengths = ElementBuilder::Lengths;
using VantorHost::TraceArea;
using VantorHost::TraceLevel;
using VantorWrappers::SRContentItem;

inline std::string Shown(const std::wstring& text) { return Vantor::Platform::FromHostText(text); }

inline std::string Shown(const VantorWrappers::SRCodedEntry& code) {
    std::string shown;
    for (const std::wstring* part : {&code.GetCodeValue(), &code.GetCodingSchemeDesignator(),
                                     &code.GetCodingSchemeVersion(), &code.GetCodeMeaning()}) {
        shown += (shown.empty() ? '(' : ',') + Shown(*part);
    }
    return shown + ')';
}

// All that an item and those below it tell, a line each: "1.2 NUM (1,LN,,Depth) = 4.5; cm [1] 2024-3-15 0s"
// with the number of the relationship and the time of observation.
inline void AppendTree(Lines& lines, const SRContentItem& item) {
    using namespace VantorWrappers;
    std::string value = Shown(item.GetValue());
    if (const auto* number = dynamic_cast<const SRNumericContentItem*>(&item)) {
        value += "; " + Shown(number->GetUnits());
    } else if (const auto* coded = dynamic_cast<const SRCodedContentItem*>(&item)) {
        value += "; " + Shown(coded->GetValueCodedEntry());
    } else if (const auto* container = dynamic_cast<const SRContainerContentItem*>(&item)) {
        value += "; " + Shown(container->GetContinuityOfContent());
    }
    lines.push_back(Shown(item.GetNodeNumber()) + " " + item.GetValueType() + " " +
                    Shown(item.GetConceptNameCodedEntry()) + " = " + value + " [" +
                    std::to_string(static_cast<int>(item.GetRelationshipType())) + "] " +
                    Shown(item.GetObservationDateTime()));
    const SRContentItem* below = nullptr;
    for (int32_t index = 0; item.GetContentItem(index, below); ++index) AppendTree(lines, *below);
    EXPECT_EQ(below, nullptr);
    EXPECT_FALSE(item.GetContentItem(-1, below));
}

// A report, and what is in it.
class ReportTest : public testing::Test {
  protected:
    const VantorWrappers::StructuredReportIOD& Read(Bytes bytes, const Encoding& encoding = kEncodings[0]) {
        fReport.reset();
        fBytes = std::move(bytes);
        fBytes.shrink_to_fit();  // so that a read behind the end is seen
        const auto size = static_cast<int32_t>(fBytes.size());
        fDataSet = std::make_unique<Vantor::TDicomDataSet>(encoding.fIsExplicit, encoding.fIsBigEndian,
                                                           fBytes.data(), size, size);
        fReport = std::make_unique<VantorWrappers::StructuredReportIOD>(fDataSet.get());
        return *fReport;
    }

    // The lines of the report, and of the only item of another one.
    Lines Tree() const {
        Lines lines;
        if (fReport->IsValid()) AppendTree(lines, *fReport->GetRootContentItem());
        return lines;
    }
    std::string LineOf(const ReportBuilder& item) {
        Read(ReportBuilder("CONTAINER").Below({item}).Encode());
        const Lines lines = Tree();
        return lines.size() == 2 ? lines[1] : std::to_string(lines.size()) + " lines";
    }

    // What is traced while a report is read.
    Lines TraceOf(const ReportBuilder& report, TraceLevel level = TraceLevel::kWarning) {
        TraceLines trace(TraceArea::kStructuredReport, level);
        Read(report.Encode());
        return trace.Take();
    }

    // An item of the report's first level.
    const SRContentItem& Item(int32_t index) const {
        const SRContentItem* item = nullptr;
        EXPECT_TRUE(fReport->GetContentItem(index, item));
        return *item;
    }

    HostFormats fFormats;
    Bytes fBytes;
    std::unique_ptr<Vantor::TDicomDataSet> fDataSet;
    std::unique_ptr<VantorWrappers::StructuredReportIOD> fReport;
};

}  // namespace VantorTest
