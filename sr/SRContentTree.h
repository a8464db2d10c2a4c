#pragma once

#include <deque>
#include <memory>
#include <optional>

#include "dicom/TDicomDataSet.h"
#include "sr/SRCodeTable.h"
#include "sr/SRContentItem.h"
#include "sr/SequenceItems.h"

namespace VantorWrappers {

// Builds the tree of content items: reads an item, then those below it in their order, then its value. The
// items on the way down are kept on a list rather than on the call stack.
class SRContentTree {
  public:
    // Reads `root` and all items below it. Throws Vantor::TException* for a damaged data set.
    static void Parse(SRContentItem& root, const Vantor::TDicomDataSet& dataSet);

  private:
    // An item that is being read, with its data set and how far the items below it have been.
    struct Level {
        Level(SRContentItem& root, const Vantor::TDicomDataSet& dataSet);
        explicit Level(const SequenceItems& place) : fDataSet(place.Wrap()) {}

        void Own(std::unique_ptr<SRContentItem> item);

        std::unique_ptr<SRContentItem> fOwnedItem;  // null for the root
        SRContentItem* fItem = nullptr;
        Vantor::TDicomDataSet fDataSet;
        std::optional<SequenceItems> fBelow;
    };

    void BeginTop();
    bool EnterNext();
    void EndTop();

    SRCodeTable fCodes;
    std::deque<Level> fLevels;  // the root first; never moved, as sequences refer to their data set
};

}  // namespace VantorWrappers
