#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "dicom/TDicomDataSet.h"
#include "records/TDicomDirRec.h"
#include "records/TDicomDoc.h"
#include "records/TRecordDirectory.h"

namespace Vantor {

// Turns the flat record sequence of a DICOMDIR into a tree of documents, by the offsets with which the
// records point at each other.
//
// A medium may be damaged or made to harm: records that cannot be read are left out, as are those that are
// not in use; an offset at which no record starts ends its branch; and a record that is pointed at more than
// once has its place where it is met first, from the top down and from left to right. Time and memory grow
// with the number of records, however they point. A record below one that takes none of its type is kept
// there as a foreign child, unless it lies deeper than media go.
class RecordLoader {
  public:
    // `dataSetStart` is where the data set starts in its file, from where the offsets count. The documents
    // made belong to `directory`.
    RecordLoader(TDicomDataSet& dataSet, int64_t dataSetStart, TRecordDirectory& directory);

    // Makes the documents and puts them together. Throws TException 102 when the data set cannot be walked up
    // to its record sequence.
    void Load();

    // The documents on the top level in their order; and those without a place, mostly because no offset
    // reaches them. All others belong to the document above them.
    using Docs = std::vector<std::unique_ptr<TDicomDoc>>;
    Docs TakeRootDocs() { return std::move(fRootDocs); }
    Docs TakeStrayDocs() { return std::move(fDocs); }

    // True when the directory does not say where its records begin, or something points at a record that is
    // not there: a DICOMDIR that was cut short is like that. What Load has made is then not all of the
    // medium.
    bool HasLostRecords() const { return fHasLostRecords; }

  private:
    using RecordIndex = uint32_t;

    // What a record points at, as offsets in the file; 0, and any offset at which no record starts, is
    // nothing.
    struct Links {
        uint32_t fNext;
        uint32_t fLower;
    };
    class RecordKeys;

    void ReadRecords(int32_t sequenceOffset);
    void ReadRecord(int32_t itemOffset, uint32_t itemLength);
    std::unique_ptr<TDicomDoc> MakeDoc(const TDicomDataSet& record, const RecordKeys& keys) const;
    template <typename Record>
    std::unique_ptr<TDicomDoc> MakeDocOf(int32_t docType, Record record) const;
    void LinkRecords(RecordIndex root);
    void PutInPlace(std::unique_ptr<TDicomDoc>& doc, TDicomDoc* parent, int32_t depth);
    std::optional<RecordIndex> FindRecord(uint32_t offset, RecordIndex guess) const;
    std::optional<RecordIndex> Follow(uint32_t offset, RecordIndex guess);
    TDicomDoc* DocOf(RecordIndex index) { return static_cast<TDicomDoc*>(fRecords[index].GetSource()); }

    TDicomDataSet& fDataSet;
    int64_t fDataSetStart;
    TRecordDirectory& fDirectory;
    Docs fRootDocs;
    Docs fDocs;                                // those that have no place yet, null where one has
    std::deque<TDicomDirRec> fRecords;         // in step with fDocs while loading
    std::vector<std::optional<Links>> fLinks;  // likewise
    std::vector<int64_t> fOffsets;             // likewise: where the records start in the file, ascending
    std::vector<int64_t> fPassedBy;            // where those start that have no document, ascending
    bool fHasLostRecords = false;
};

}  // namespace Vantor
