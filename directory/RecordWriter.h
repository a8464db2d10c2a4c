#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "dicom/TDicomDataSet.h"
#include "records/TDicomDoc.h"

namespace Vantor {

// Lays a tree of documents out as the data set of a DICOMDIR in explicit little endian: each record in front
// of those below it, and those in front of the ones behind it, in one pass from the start to the end.
//
// What an element holds is carried over as it is, numbers in the new byte order where the VR says that they
// are numbers; only group lengths are dropped, code strings put in upper case, and odd lengths made even.
class RecordWriter {
  public:
    // `dataSetStart` is where the data set will start in its file, from where offsets count.
    explicit RecordWriter(int64_t dataSetStart) : fDataSetStart(dataSetStart) {}

    // The data set with the documents as its records. What else `present` has stays; it may be null. The
    // offsets in the documents' own records are left alone: they are those of the file that they came from.
    // Throws what completing a record throws, and TException 100 for more than a data set can hold.
    std::unique_ptr<TDicomDataSet> Write(TDicomDataSet* present, const std::vector<TDicomDoc*>& rootDocs,
                                         uintptr_t context);

  private:
    // An element that is written in place of one that is there, if there is one.
    struct Generated {
        Tag fTag;
        VrCode fVr;
        uint16_t fNumber = 0;
        size_t fPosition = 0;  // where its value is, once it is written
    };

    // Where an element is in its data set.
    struct Element {
        Tag fTag;
        VrCode fVr;
        uint32_t fLength;
        int32_t fOffset;
    };

    static std::vector<Element> ElementsOf(const TDicomDataSet& dataSet);
    std::optional<size_t> AppendRecords(const std::vector<TDicomDoc*>& docs);
    void AppendElements(TDicomDataSet& dataSet, std::span<const Element> elements,
                        std::span<Generated> generated, int32_t nesting = 0);
    void AppendElement(TDicomDataSet& dataSet, const Element& element, int32_t nesting);
    void AppendItems(TDicomDataSet& dataSet, int32_t sequenceOffset, int32_t nesting);
    void AppendValue(const uint8_t* value, uint32_t length, VrCode vr, bool isBigEndian);
    void AppendGenerated(Generated& generated);
    void AppendHeader(Tag tag, VrCode vr, uint32_t length);
    size_t BeginItem();
    void EndItem(size_t start);
    void AppendNumber(uint32_t number, size_t size);
    void SetNumber(size_t position, size_t number);
    void SetOffset(size_t position, size_t target);

    int64_t fDataSetStart;
    std::vector<uint8_t> fBytes;
};

}  // namespace Vantor
