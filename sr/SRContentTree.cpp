#include "sr/SRContentTree.h"

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "sr/SRCodedContentItem.h"
#include "sr/SRContainerContentItem.h"
#include "sr/SRDateContentItem.h"
#include "sr/SRDateTimeContentItem.h"
#include "sr/SRItemReader.h"
#include "sr/SRNumericContentItem.h"
#include "sr/SRPnameContentItem.h"
#include "sr/SRTextContentItem.h"
#include "sr/SRTimeContentItem.h"
#include "wrappers/DataSetText.h"

namespace VantorWrappers {

using Vantor::TDicomDataSet;
namespace Tags = Vantor::Tags;

namespace {

template <typename Item>
std::unique_ptr<SRContentItem> Make() {
    return std::make_unique<Item>();
}

// An empty item of a value type; null for the types that are not shown: references to other instances, places
// in them, and whatever else there may be.
std::unique_ptr<SRContentItem> MakeItem(std::string_view valueType) {
    struct Maker {
        std::string_view fValueType;
        std::unique_ptr<SRContentItem> (*fMake)();
    };
    constexpr std::array<Maker, 8> kMakers = {{
        {SRNumericContentItem::kValueType, Make<SRNumericContentItem>},
        {SRCodedContentItem::kValueType, Make<SRCodedContentItem>},
        {SRTextContentItem::kValueType, Make<SRTextContentItem>},
        {SRContainerContentItem::kValueType, Make<SRContainerContentItem>},
        {SRDateTimeContentItem::kValueType, Make<SRDateTimeContentItem>},
        {SRDateContentItem::kValueType, Make<SRDateContentItem>},
        {SRTimeContentItem::kValueType, Make<SRTimeContentItem>},
        {SRPnameContentItem::kValueType, Make<SRPnameContentItem>},
    }};
    for (const Maker& maker : kMakers) {
        if (maker.fValueType == valueType) return maker.fMake();
    }
    return nullptr;
}

}  // namespace

SRContentTree::Level::Level(SRContentItem& root, const TDicomDataSet& dataSet)
    : fItem(&root), fDataSet(dataSet, 0, dataSet.GetDataSetSize()) {
    fDataSet.RememberLengths();
}

void SRContentTree::Level::Own(std::unique_ptr<SRContentItem> item) {
    fOwnedItem = std::move(item);
    fItem = fOwnedItem.get();
}

void SRContentTree::Parse(SRContentItem& root, const TDicomDataSet& dataSet) {
    SRContentTree tree;
    tree.fLevels.emplace_back(root, dataSet);
    tree.BeginTop();
    while (!tree.fLevels.empty()) {
        if (!tree.EnterNext()) tree.EndTop();
    }
}

// Reads what the item has of its own but for its value, and looks for items below it.
void SRContentTree::BeginTop() {
    Level& level = fLevels.back();
    level.fItem->TraceEntry();
    level.fItem->ParseCommonContentItemAttributes(level.fDataSet, fCodes);
    // Half a report that passes for a whole one is worse than none.
    int32_t offset = 0;
    if (!FindWhole(level.fDataSet, Tags::kContentSequence, offset)) return;
    if (fLevels.size() < SRContentItem::kDeepestNesting) {
        level.fBelow.emplace(level.fDataSet, offset);
    } else {
        TraceReport(TraceLevel::kWarning, [&] {
            return "Content nested too deeply, not parsed below node number " + level.fItem->NodeText();
        });
    }
}

// Goes on to the next item below that can be shown. False when there is none.
bool SRContentTree::EnterNext() {
    Level& level = fLevels.back();
    while (level.fBelow && level.fBelow->Next()) {
        const SequenceItems& place = *level.fBelow;
        const auto nodeText = [&] {
            return level.fItem->NodeText() + "." + std::to_string(place.GetCount());
        };
        if (place.IsEmpty()) {
            TraceReport(TraceLevel::kError, [&] {
                return "Failed to create temporary data set for Content Sequence for node number " +
                       nodeText();
            });
            continue;
        }
        Level& below = fLevels.emplace_back(place);
        const std::string valueType = ReadCodeString(below.fDataSet, Tags::kValueType);
        std::unique_ptr<SRContentItem> item = MakeItem(valueType);
        if (item == nullptr) {
            fLevels.pop_back();
            TraceReport(TraceLevel::kInfo, [&] {
                return "Unsupported Value Type " + valueType + " encountered for node number " + nodeText();
            });
            continue;
        }
        item->fParent = level.fItem;
        item->fPlace = place.GetCount();
        below.Own(std::move(item));
        BeginTop();
        return true;
    }
    return false;
}

void SRContentTree::EndTop() {
    Level& level = fLevels.back();
    level.fItem->ParseValue(level.fDataSet, fCodes);
    std::unique_ptr<SRContentItem> item = std::move(level.fOwnedItem);
    fLevels.pop_back();
    if (item != nullptr) fLevels.back().fItem->Adopt(std::move(item));
}

}  // namespace VantorWrappers
