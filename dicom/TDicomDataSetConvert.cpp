// Copying a data set into another transfer syntax.

#include <algorithm>
#include <vector>

#include "dicom/TDicomDataSet.h"
#include "dicom/TDicomDataSetLayout.h"
#include "dicom/TException.h"

namespace Vantor {

using namespace DataSetLayout;

namespace {

// An item's copy starts at the item's size and may grow by quarters to four times as much.
constexpr uint32_t kItemGrowthDivisor = 4;
constexpr uint32_t kItemMaximumFactor = 4;

struct Place {
    Tag fTag;
    int32_t fOffset;
};

// Where the elements are, by ascending tags, group lengths left out. Sets of a hundred thousand elements that
// are not in order would take minutes to be put in order one by one.
std::vector<Place> PlacesInOrder(const TDicomDataSet& dataSet) {
    std::vector<Place> places;
    Tag tag;
    int32_t offset = TDicomDataSet::kFromStart;
    while (
        dataSet.GetNextElement(offset, &tag.fGroup, &tag.fElement, nullptr, nullptr, nullptr, 0, &offset)) {
        if (tag.fElement != kGroupLengthElement) places.push_back({tag, offset});
    }
    const auto isBefore = [](const Place& a, const Place& b) { return a.fTag < b.fTag; };
    if (!std::is_sorted(places.begin(), places.end(), isBefore)) {
        std::stable_sort(places.begin(), places.end(), isBefore);
    }
    return places;
}

}  // namespace

std::unique_ptr<TDicomDataSet> TDicomDataSet::ConvertTo(bool isExplicit, bool isBigEndian,
                                                        uint32_t initialSize, uint32_t growBy,
                                                        int32_t maxSize, uintptr_t context) const {
    CheckConstructed();
    return ConvertNested(isExplicit, isBigEndian, initialSize, growBy, maxSize, context, 0);
}

std::unique_ptr<TDicomDataSet> TDicomDataSet::ConvertNested(bool isExplicit, bool isBigEndian,
                                                            uint32_t initialSize, uint32_t growBy,
                                                            int32_t maxSize, uintptr_t context,
                                                            int32_t nesting) const {
    if (nesting > kDeepestNesting) {
        throw new TException(ErrorNumbers::kSequenceStructure, "Unterminated item");
    }
    auto target =
        std::make_unique<TDicomDataSet>(isExplicit, isBigEndian, initialSize, growBy, maxSize, context);
    const std::vector<Place> places = PlacesInOrder(*this);
    for (auto next = places.begin(); next != places.end();) {
        const auto end =
            std::find_if(next, places.end(), [&](const Place& place) { return next->fTag < place.fTag; });
        // Of elements with the same tag the last one that is not dropped stays.
        const int32_t sizeBefore = target->fUsedSize;
        for (auto place = end; place != next && target->fUsedSize == sizeBefore;) {
            --place;
            Header header;
            DecodeHeader(place->fOffset, header);
            ConvertElement(place->fOffset, header, *target, nesting);
        }
        next = end;
    }
    return target;
}

void TDicomDataSet::ConvertElement(int32_t offset, const Header& header, TDicomDataSet& target,
                                   int32_t nesting) const {
    const bool isSameSyntax = target.fIsExplicit == fIsExplicit && target.fIsBigEndian == fIsBigEndian;
    const bool holdsItems = IsKnownSequence(header) || (!isSameSyntax && LooksLikeSequence(offset, header));
    VrCode vr = holdsItems ? Vr::kSQ : VrOf(header);
    // An implicit element of unknown VR must not be stored under a VR that no reader knows.
    if (target.fIsExplicit && vr == Vr::kNotKnown) vr = Vr::kUN;
    if (holdsItems) {
        int32_t targetOffset = 0;
        target.PutElement(header.fTag, vr, 0, nullptr, 0, &targetOffset);
        ConvertItems(offset, target, targetOffset, nesting);
        return;
    }
    const uint32_t length = LengthOf(offset, header);
    if (target.fIsExplicit && !Vr::HasLongHeader(vr) && length > kLongestShortValue) return;
    const int32_t start = offset + header.fSize;
    const uint32_t available = std::min(length, static_cast<uint32_t>(fUsedSize - start));
    if (isSameSyntax) {
        target.Put(header.fTag, vr, available, fBuffer + start, available, ValueForm::kEncoded, nullptr);
        return;
    }
    std::vector<uint8_t> value(available);
    ReadValue(offset, header, length, value.data(), available);
    target.Put(header.fTag, vr, available, value.data(), available, ValueForm::kMachine, nullptr);
}

void TDicomDataSet::ConvertItems(int32_t sequenceOffset, TDicomDataSet& target, int32_t targetOffset,
                                 int32_t nesting) const {
    int32_t itemOffset = kFromStart;
    uint32_t itemLength = 0;
    while (FindNextItem(sequenceOffset, itemOffset, itemLength, &itemOffset, &itemLength)) {
        const auto size = static_cast<int32_t>(itemLength);
        TDicomDataSet item(fIsExplicit, fIsBigEndian, fBuffer + itemOffset, size, size);
        item.fDictionary = fDictionary;
        const int64_t maximum =
            std::min<int64_t>(int64_t{size} * kItemMaximumFactor, TDicomDataSet::kDefaultMaximumSize);
        const auto converted = item.ConvertNested(target.fIsExplicit, target.fIsBigEndian, itemLength,
                                                  itemLength / kItemGrowthDivisor,
                                                  static_cast<int32_t>(maximum), 0, nesting + 1);
        target.AddItem(targetOffset, converted->GetDataSet(),
                       static_cast<uint32_t>(converted->GetDataSetSize()));
    }
}

}  // namespace Vantor
