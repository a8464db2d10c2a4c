#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "media/TDeviceBitmap.h"

namespace Vantor {

// The picture of one frame of a movie, painted anew for each: 24 bits a pixel, from the bottom row to the top
// one, each filled up to a multiple of four bytes. At first black.
class TMovieFrame {
  public:
    // In pixels, both above 0.
    TMovieFrame(int32_t width, int32_t height);

    void FillBlack();

    // Copies a bitmap at its own size to a place of its upper left corner. What is outside the frame is left
    // out; so are rows that the bitmap does not have.
    void Draw(const TDeviceBitmap& bitmap, int64_t left, int64_t top);

    // May be exchanged for others of the same number: the picture is painted anew then.
    std::vector<uint8_t>& GetPixels() { return fPixels; }
    const std::vector<uint8_t>& GetPixels() const { return fPixels; }

  private:
    int32_t fWidth;
    int32_t fHeight;
    size_t fRowSize;
    std::vector<uint8_t> fPixels;
};

}  // namespace Vantor
