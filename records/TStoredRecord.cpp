#include "records/TStoredRecord.h"

#include <algorithm>

namespace Vantor {

TStoredRecord::TStoredRecord(const TDicomDataSet& record)
    : fBytes(new uint8_t[static_cast<size_t>(record.GetDataSetSize())]),
      fSize(record.GetDataSetSize()),
      fIsExplicit(record.IsExplicit()),
      fIsBigEndian(record.IsBigEndian()) {
    std::copy_n(record.GetDataSet(), fSize, fBytes.get());
}

TDicomDataSet TStoredRecord::Open() const { return {fIsExplicit, fIsBigEndian, fBytes.get(), fSize, fSize}; }

}  // namespace Vantor
