#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "tests/support/TestFolder.h"

namespace VantorTest {

// Composes a device-independent bitmap as another program would put it on the clipboard.
class BitmapBuilder {
  public:
    static constexpr uint32_t kUncompressed = 0;
    static constexpr uint32_t kRunLength8 = 1;
    static constexpr uint32_t kMasks = 3;

    BitmapBuilder(int32_t width, int32_t height, uint32_t bits)
        : fWidth(width), fHeight(height), fBits(bits) {}

    // The rows go from the top down: the header's height is negative.
    BitmapBuilder& TopDown() {
        fIsTopDown = true;
        return *this;
    }

    // Red, green, blue; the header is longer and holds them when it has more than 40 bytes.
    BitmapBuilder& Masks(const std::vector<uint32_t>& masks) {
        fCompression = kMasks;
        fMasks = masks;
        return *this;
    }

    // Each 0xRRGGBB.
    BitmapBuilder& Colors(const std::vector<uint32_t>& colors) {
        fColors = colors;
        return *this;
    }

    BitmapBuilder& HeaderSize(uint32_t size) {
        fHeaderSize = size;
        return *this;
    }

    BitmapBuilder& Compression(uint32_t compression) {
        fCompression = compression;
        return *this;
    }

    BitmapBuilder& ColorsUsed(uint32_t count) {
        fColorsUsed = count;
        return *this;
    }

    // `pixelAt` gives the value of a pixel, counted from the upper left corner; of 24 bits 0xRRGGBB.
    Bytes Build(const std::function<uint32_t(int x, int y)>& pixelAt) const;

  private:
    int32_t fWidth;
    int32_t fHeight;
    uint32_t fBits;
    bool fIsTopDown = false;
    uint32_t fHeaderSize = 40;
    uint32_t fCompression = kUncompressed;
    uint32_t fColorsUsed = 0;
    std::vector<uint32_t> fMasks;
    std::vector<uint32_t> fColors;
};

}  // namespace VantorTest
