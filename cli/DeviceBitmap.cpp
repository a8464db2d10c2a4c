#include "cli/DeviceBitmap.h"

namespace VantorCli {

namespace {

constexpr size_t kRowUnit = 4;
constexpr uint16_t kPlanes = 1;
constexpr uint16_t kBitsOfPixel = 24;

// The header's fields: where each is, and its size in all.
constexpr size_t kSizeField = 0;
constexpr size_t kWidthField = 4;
constexpr size_t kHeightField = 8;
constexpr size_t kPlanesField = 12;
constexpr size_t kBitsField = 14;
constexpr size_t kHeaderSize = 40;

void PutNumber(uint8_t* field, uint64_t number, size_t size) {
    constexpr int kBitsOfByte = 8;
    for (size_t i = 0; i < size; ++i) {
        field[i] = static_cast<uint8_t>(number);
        number >>= kBitsOfByte;
    }
}

}  // namespace

DeviceBitmap::DeviceBitmap(int32_t width, int32_t height)
    : fWidth(static_cast<size_t>(width)),
      fHeight(static_cast<size_t>(height)),
      fStride((fWidth * sizeof(Bgr) + kRowUnit - 1) / kRowUnit * kRowUnit),
      fBytes(kHeaderSize + fStride * fHeight) {
    PutNumber(&fBytes[kSizeField], kHeaderSize, sizeof(uint32_t));
    PutNumber(&fBytes[kWidthField], fWidth, sizeof(uint32_t));
    PutNumber(&fBytes[kHeightField], fHeight, sizeof(uint32_t));
    PutNumber(&fBytes[kPlanesField], kPlanes, sizeof(uint16_t));
    PutNumber(&fBytes[kBitsField], kBitsOfPixel, sizeof(uint16_t));
}

Bgr* DeviceBitmap::GetRow(size_t row) {
    static_assert(sizeof(Bgr) == 3 && alignof(Bgr) == 1);
    return reinterpret_cast<Bgr*>(fBytes.data() + kHeaderSize + (fHeight - 1 - row) * fStride);
}

}  // namespace VantorCli
