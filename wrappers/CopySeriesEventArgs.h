#pragma once

#include <cstdint>

namespace VantorWrappers {

// How far the copying of a series has come. Despite their names, the figures count units of 1,024 bytes.
class CopySeriesEventArgs {
  public:
    int32_t GetTotalBytesInSeries() const { return fTotalBytesInSeries; }
    void SetTotalBytesInSeries(int32_t count) { fTotalBytesInSeries = count; }
    int32_t GetBytesCopiedInSeries() const { return fBytesCopiedInSeries; }
    void SetBytesCopiedInSeries(int32_t count) { fBytesCopiedInSeries = count; }

  private:
    int32_t fTotalBytesInSeries = 0;
    int32_t fBytesCopiedInSeries = 0;
};

}  // namespace VantorWrappers
