#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace VantorCli {

// One pixel of a bitmap.
struct Bgr {
    uint8_t fBlue;
    uint8_t fGreen;
    uint8_t fRed;
};

// A picture as a device-independent bitmap of 24 bits a pixel: a header of 40 bytes, and the rows from the
// bottom up, each filled up to a multiple of four bytes.
class DeviceBitmap {
  public:
    // Both at least 1. The picture is black.
    DeviceBitmap(int32_t width, int32_t height);

    size_t GetWidth() const { return fWidth; }
    size_t GetHeight() const { return fHeight; }

    // A row, counted from the top.
    Bgr* GetRow(size_t row);

    const std::vector<uint8_t>& GetBytes() const { return fBytes; }

  private:
    size_t fWidth;
    size_t fHeight;
    size_t fStride;
    std::vector<uint8_t> fBytes;
};

}  // namespace VantorCli
