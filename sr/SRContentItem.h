#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "sr/SRCodedEntry.h"
#include "sr/SRRelationshipType.h"
#include "wrappers/HostString.h"

namespace Vantor {
class TDicomDataSet;
}

namespace VantorWrappers {

class SRCodeTable;

// One content item of a structured report, with the items below it: a measurement, a code, a text. Each value
// type has a class of its own; the tree is walked through GetContentItem.
//
// An item owns the items below it. Texts are without blanks around them; what is absent is "". Nothing
// changes after construction, so several threads may read.
class SRContentItem {
  public:
    // How deep items may lie: deeper ones are left out, which is traced. Reports that are made to be read
    // stay below twenty.
    static constexpr size_t kDeepestNesting = 512;

    virtual ~SRContentItem();
    SRContentItem(const SRContentItem&) = delete;
    SRContentItem& operator=(const SRContentItem&) = delete;

    // Addition for hosts: the value type as reports have it, such as "NUM".
    virtual const char* GetValueType() const = 0;

    // What the item is about: the meaning of the code that names it, and that code.
    const HostString& GetConceptName() const { return fConceptNameCodedValue.GetCodeMeaning(); }
    const SRCodedEntry& GetConceptNameCodedEntry() const { return fConceptNameCodedValue; }

    // The value as a text for people; each class says which. "" for one that cannot be read as what it is.
    virtual const HostString& GetValue() const { return fContentItemValue; }

    // Where the item stands: "1" for the root of a report, "1.1", "1.2" for the items below it in their order
    // in the report. Items that are left out have numbers as well, so these may have gaps.
    HostString GetNodeNumber() const;

    SRRelationshipType GetRelationshipType() const { return fRelationshipType; }

    // When it was observed, as the host shows moments.
    const HostString& GetObservationDateTime() const { return fObservationDateTime; }

    // Always "": references to other items of a report are not read.
    const HostString& GetReferencedContentItemID() const { return kNoReference; }

    // The items below this one, in their order in the report, without those that are left out: items of other
    // value types, and the reporting product's own measurement contexts.
    int32_t GetContentItemCount() const { return static_cast<int32_t>(fContentItemList.size()); }

    // The item at an index from 0. False, and null, for any other index.
    bool GetContentItem(int32_t index, const SRContentItem*& item) const;

    // True when two measurements are the same but for how they were derived: both have the same concept name,
    // and each item below the one with more of them (`other` when they have as many) has one with its concept
    // name and value below the other. Of the former, selections as the mean value and derivations such as the
    // mean or the maximum need none. `thisHasMore`: whether this one has more items below it than `other`.
    // False for a null `other`.
    bool EqualExceptDerivation(const SRContentItem* other, bool& thisHasMore) const;

    // The list that EqualExceptDerivation keeps for all items of the process: the value of the item that was
    // last found to differ in an item below it. It has no influence on later comparisons.
    static std::vector<HostString> GetTestContentItemValueList();

  protected:
    SRContentItem();

    // Constructs the item from its data set: reads it and the items below. Throws Vantor::TException* for a
    // damaged one. A null data set is traced, with `complaint` and the node number; the item stays empty.
    void Construct(const Vantor::TDicomDataSet* dataSet, const HostString& nodeNumber, const char* complaint);

    // Reads what the value type has of its own; called after the items below have been read. `codes` are
    // those of the whole report.
    virtual void ParseValue(const Vantor::TDicomDataSet& dataSet, SRCodeTable& codes) = 0;

    void SetValue(HostString value) { fContentItemValue = std::move(value); }

    // GetNodeNumber for the trace.
    std::string NodeText() const;

    static constexpr char kNoDataSet[] = "No Content Sequence provided for SR node number = ";

  private:
    friend class SRContentTree;

    void TraceEntry() const;
    void ParseCommonContentItemAttributes(const Vantor::TDicomDataSet& dataSet, SRCodeTable& codes);
    void SetConceptName(SRCodedEntry code);
    void Adopt(std::unique_ptr<SRContentItem> child);
    bool IsMeasurementContext() const;
    bool IsDerivation() const;

    static inline const HostString kNoReference;

    HostString fContentItemValue;
    SRCodedEntry fConceptNameCodedValue;
    std::vector<std::unique_ptr<SRContentItem>> fContentItemList;
    SRRelationshipType fRelationshipType = SRRelationshipType::UnknownRelationship;
    HostString fObservationDateTime;

    // The node number: of an item that was constructed on its own as it was given, else the parent's and the
    // place below it. Put together when it is asked for: at the bottom of a deep report it is long.
    HostString fNodeNumber;
    const SRContentItem* fParent = nullptr;
    int32_t fPlace = 0;
};

}  // namespace VantorWrappers
