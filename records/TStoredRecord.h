#pragma once

#include <cstdint>
#include <memory>

#include "dicom/TDicomDataSet.h"

namespace Vantor {

// The elements of a record as they were read, encoded. A document keeps its record this way until somebody
// asks for it: most of the records of a medium are never looked at, and a data set of their own takes ten
// times the room.
class TStoredRecord {
  public:
    TStoredRecord() = default;

    // Copies the elements. They must be plain: see TDicomDataSet::FindElements.
    explicit TStoredRecord(const TDicomDataSet& record);

    bool IsEmpty() const { return fBytes == nullptr; }
    void Clear() { fBytes.reset(); }

    // A data set over the bytes, valid as long as this object keeps them.
    TDicomDataSet Open() const;

  private:
    std::unique_ptr<uint8_t[]> fBytes;
    int32_t fSize = 0;
    bool fIsExplicit = true;
    bool fIsBigEndian = false;
};

}  // namespace Vantor
