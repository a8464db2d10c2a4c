// Arbitrary bytes as the data set of a structured report, in every encoding: the whole tree, the comparison
// of neighbours, and every getter.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "dicom/TDicomDataSet.h"
#include "fuzz/FuzzInput.h"
#include "host/Trace.h"
#include "sr/StructuredReportIOD.h"

namespace {

using namespace Vantor;
using VantorFuzz::Require;
using namespace VantorWrappers;

// Gives the number of items. Walks without recursion of its own, so that it stands whatever depth the tree
// has.
size_t Visit(const SRContentItem& root) {
    size_t count = 0;
    std::vector<std::pair<const SRContentItem*, size_t>> open = {{&root, 1}};
    while (!open.empty()) {
        const auto [item, depth] = open.back();
        open.pop_back();
        ++count;
        Require(depth <= SRContentItem::kDeepestNesting);
        const HostString number = item->GetNodeNumber();
        Require(static_cast<size_t>(std::count(number.begin(), number.end(), L'.')) == depth - 1);
        const SRContentItem* previous = item;
        const SRContentItem* child = nullptr;
        for (int32_t index = 0; item->GetContentItem(index, child); ++index) {
            bool hasMore = false;
            const bool areEqual = previous->EqualExceptDerivation(child, hasMore);
            Require(!areEqual || previous->GetConceptName() == child->GetConceptName());
            Require(child->EqualExceptDerivation(child, hasMore));
            open.emplace_back(child, depth + 1);
            previous = child;
        }
    }
    return count;
}

void Read(const TDicomDataSet& dataSet) {
    // None of these may throw, so nothing is caught here.
    const StructuredReportIOD report(&dataSet);
    Require(report.IsValid() == (report.GetRootContentItem() != nullptr));
    if (report.IsValid()) {
        const StructuredReportIOD again(&dataSet);
        Require(again.IsValid() && Visit(*again.GetRootContentItem()) == Visit(*report.GetRootContentItem()));
    }
    report.GetSRDateTime();
    report.GetPatientName();
    report.GetPatientNumber();
    report.GetAttribute(0x0008, 0x0023, 7, L"date");
    report.GetAttribute(0x0010, 0x0010, 3, L"PatientName");
    report.GetAttribute(0x0040, 0xA730, 100);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    VantorHost::Trace::SetSink([](auto, auto, std::string_view) {});
    VantorHost::Trace::SetLevelOfAllAreas(VantorHost::TraceLevel::kVerbose);
    auto bytes = VantorFuzz::ExactCopy(data, size);
    const auto used = static_cast<int32_t>(bytes.size());
    Read(TDicomDataSet(true, false, bytes.data(), used, used));
    Read(TDicomDataSet(false, false, bytes.data(), used, used));
    Read(TDicomDataSet(true, true, bytes.data(), used, used));
    return 0;
}
