#include "sr/SRContentItem.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <set>

#include "platform/CodePage.h"
#include "sr/SRCodeTable.h"
#include "sr/SRContentTree.h"
#include "sr/SRItemReader.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;
using Vantor::Platform::FromHostText;
namespace Tags = Vantor::Tags;

namespace {

// The reporting product's own items, which hosts do not show.
constexpr wchar_t kProductScheme[] = L"99QUANTIX";
constexpr wchar_t kMeasurementContext[] = L"measurement context";

// Items that tell how a value was derived.
constexpr wchar_t kSelectionStatus[] = L"SELECTION STATUS";
constexpr wchar_t kMeanValueChosen[] = L"MEAN VALUE CHOSEN";
constexpr wchar_t kDerivation[] = L"121401";
constexpr wchar_t kStandardScheme[] = L"DCM";
constexpr std::array kDerivations = {L"MEAN", L"MEDIAN", L"MODE", L"MINIMUM", L"MAXIMUM"};

// The list that all items share, and its lock: reports may be compared on several threads.
struct TestContentItemValues {
    std::mutex fLock;
    std::vector<HostString> fList;
};

TestContentItemValues& TestValues() {
    static TestContentItemValues& values = *new TestContentItemValues;
    return values;
}

SRCodedEntry ReadConceptName(const TDicomDataSet& dataSet, SRCodeTable& codes) {
    constexpr FirstItemComplaints kComplaints = {
        {TraceLevel::kWarning, "No Concept Name Code Sequence found."},
        {TraceLevel::kWarning, "No items found in Concept Name Code Sequence."},
        {TraceLevel::kWarning, "Failed to create temporary TDicomDataSet for Concept Name Code Sequence."}};
    const auto items = FindFirstItem(dataSet, Tags::kConceptNameCodeSequence, kComplaints, [] { return ""; });
    return items ? codes.Read(*items) : SRCodedEntry();
}

}  // namespace

SRContentItem::SRContentItem() = default;

// Children are destroyed within their parents, at most kDeepestNesting deep.
SRContentItem::~SRContentItem() = default;

// ---- Construction ----

void SRContentItem::Construct(const TDicomDataSet* dataSet, const HostString& nodeNumber,
                              const char* complaint) {
    fNodeNumber = nodeNumber;
    if (dataSet != nullptr) {
        SRContentTree::Parse(*this, *dataSet);
        return;
    }
    TraceEntry();
    TraceReport(TraceLevel::kError, [&] { return complaint + NodeText(); });
    TraceReport(TraceLevel::kWarning, [] { return "No DICOM Data Set provided."; });
    SetConceptName({});
}

void SRContentItem::TraceEntry() const {
    TraceReport(TraceLevel::kVerbose, [&] {
        return std::string("Entering constructor for ") + GetValueType() + " Content Item for node number " +
               NodeText();
    });
}

// All that every item has but the items below it.
void SRContentItem::ParseCommonContentItemAttributes(const TDicomDataSet& dataSet, SRCodeTable& codes) {
    SetConceptName(ReadConceptName(dataSet, codes));
    fRelationshipType = RelationshipTypeOf(ReadCodeString(dataSet, Tags::kRelationshipType));
    fObservationDateTime = ReadMoment(dataSet, Tags::kObservationDateTime);
    TraceReport(TraceLevel::kVerbose,
                [] { return "Parsing of Referenced Content Item Identifier no implemented."; });
}

void SRContentItem::SetConceptName(SRCodedEntry code) {
    fConceptNameCodedValue = std::move(code);
    TraceReport(TraceLevel::kVerbose, [&] {
        return "Concept Name for node number " + NodeText() + " is " + FromHostText(GetConceptName());
    });
}

void SRContentItem::Adopt(std::unique_ptr<SRContentItem> child) {
    if (!child->IsMeasurementContext()) fContentItemList.push_back(std::move(child));
}

bool SRContentItem::IsMeasurementContext() const {
    return fConceptNameCodedValue.GetCodingSchemeDesignator() == kProductScheme &&
           fConceptNameCodedValue.GetCodeMeaning().starts_with(kMeasurementContext);
}

// ---- The tree ----

HostString SRContentItem::GetNodeNumber() const {
    std::vector<const SRContentItem*> path;
    for (const SRContentItem* item = this; item != nullptr; item = item->fParent) path.push_back(item);
    HostString number = path.back()->fNodeNumber;
    for (auto item = std::next(path.rbegin()); item != path.rend(); ++item) {
        number += L"." + std::to_wstring((*item)->fPlace);
    }
    return number;
}

std::string SRContentItem::NodeText() const { return FromHostText(GetNodeNumber()); }

bool SRContentItem::GetContentItem(int32_t index, const SRContentItem*& item) const {
    const bool isThere = index >= 0 && index < GetContentItemCount();
    item = isThere ? fContentItemList[static_cast<size_t>(index)].get() : nullptr;
    return isThere;
}

// ---- Comparison ----

bool SRContentItem::EqualExceptDerivation(const SRContentItem* other, bool& thisHasMore) const {
    thisHasMore = other != nullptr && GetContentItemCount() > other->GetContentItemCount();
    if (other == nullptr || GetConceptName() != other->GetConceptName()) return false;
    const SRContentItem& longer = thisHasMore ? *this : *other;
    const SRContentItem& shorter = thisHasMore ? *other : *this;
    std::set<std::pair<HostString, HostString>> counterparts;
    for (const auto& item : shorter.fContentItemList) {
        counterparts.emplace(item->GetConceptName(), item->GetValue());
    }
    const auto& items = longer.fContentItemList;
    const bool areEqual = std::all_of(items.begin(), items.end(), [&](const auto& item) {
        return item->IsDerivation() || counterparts.contains({item->GetConceptName(), item->GetValue()});
    });
    if (!areEqual) {
        const std::lock_guard lock(TestValues().fLock);
        TestValues().fList.assign(1, GetValue());
    }
    return areEqual;
}

std::vector<HostString> SRContentItem::GetTestContentItemValueList() {
    const std::lock_guard lock(TestValues().fLock);
    return TestValues().fList;
}

// True when the item only says which of several values was taken.
bool SRContentItem::IsDerivation() const {
    const HostString value = UpperCased(GetValue());
    if (UpperCased(GetConceptName()) == kSelectionStatus && value == kMeanValueChosen) return true;
    return fConceptNameCodedValue.GetCodeValue() == kDerivation &&
           fConceptNameCodedValue.GetCodingSchemeDesignator() == kStandardScheme &&
           std::find(kDerivations.begin(), kDerivations.end(), value) != kDerivations.end();
}

}  // namespace VantorWrappers
