#include "media/TDeviceBitmap.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace Vantor {

namespace {

// Places in the header.
constexpr size_t kHeaderSize = 40;
constexpr size_t kWidthAt = 4;
constexpr size_t kHeightAt = 8;
constexpr size_t kBitsAt = 14;
constexpr size_t kCompressionAt = 16;
constexpr size_t kColorsUsedAt = 32;
constexpr size_t kMasksAt = kHeaderSize;  // red, green, blue; a part of the longer headers

constexpr uint32_t kNotCompressed = 0;
constexpr uint32_t kMasks = 3;
constexpr size_t kMaskSize = 4;
constexpr size_t kMasksSize = 3 * kMaskSize;

constexpr size_t kColorSize = 4;  // of an entry of the table: blue, green, red, not used
constexpr size_t kMostColors = 256;
constexpr size_t kPixelSize = 3;  // as they are handed out
constexpr int kBitsOfByte = 8;
constexpr uint32_t kMostBitsOfIndex = 8;

// The masks of pixels without any.
constexpr uint32_t kRed15 = 0x7C00, kGreen15 = 0x03E0, kBlue15 = 0x001F;
constexpr uint32_t kRed32 = 0x00FF0000, kGreen32 = 0x0000FF00, kBlue32 = 0x000000FF;

uint32_t Number16(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << kBitsOfByte;
}

uint32_t Number32(const uint8_t* bytes) {
    return Number16(bytes) | Number16(bytes + sizeof(uint16_t)) << (2 * kBitsOfByte);
}

int64_t Signed32(const uint8_t* bytes) { return static_cast<int32_t>(Number32(bytes)); }

bool IsKnownDepth(uint32_t bits) {
    constexpr uint32_t kDepths[] = {1, 4, 8, 16, 24, 32};
    return std::find(std::begin(kDepths), std::end(kDepths), bits) != std::end(kDepths);
}

bool HasChannels(uint32_t bits) { return bits == 16 || bits == 32; }

// Rows are filled up to a multiple of four bytes.
uint64_t RowSize(int64_t width, uint32_t bits) {
    constexpr uint64_t kBitsOfUnit = 32;
    constexpr uint64_t kBytesOfUnit = 4;
    return (static_cast<uint64_t>(width) * bits + kBitsOfUnit - 1) / kBitsOfUnit * kBytesOfUnit;
}

// How many colours stand in the table; also a bitmap with direct colours may have one, for other devices.
size_t CountColors(uint32_t used, uint32_t bits) {
    if (used == 0 && bits <= kMostBitsOfIndex) return size_t{1} << bits;
    return std::min<size_t>(used, kMostColors);
}

}  // namespace

TDeviceBitmap::Channel::Channel(uint32_t mask)
    : fMask(mask),
      fShift(mask == 0 ? 0 : std::countr_zero(mask)),
      fBits(mask == 0 ? 0 : static_cast<int>(std::bit_width(mask)) - fShift) {}

// More bits are cut to the highest eight; fewer are repeated until there are eight, so that the brightest
// stays the brightest.
uint8_t TDeviceBitmap::Channel::GetValue(uint32_t pixel) const {
    if (fBits == 0) return 0;
    const uint32_t value = (pixel & fMask) >> fShift;
    if (fBits >= kBitsOfByte) return static_cast<uint8_t>(value >> (fBits - kBitsOfByte));
    uint32_t widened = value << (kBitsOfByte - fBits);
    for (int bits = fBits; bits < kBitsOfByte; bits *= 2) widened |= widened >> bits;
    return static_cast<uint8_t>(widened);
}

std::optional<TDeviceBitmap> TDeviceBitmap::Read(const uint8_t* bytes, size_t size) {
    if (bytes == nullptr || size < kHeaderSize) return std::nullopt;
    const size_t headerSize = Number32(bytes);
    const int64_t height = Signed32(bytes + kHeightAt);
    TDeviceBitmap bitmap;
    bitmap.fWidth = Signed32(bytes + kWidthAt);
    bitmap.fHeight = height < 0 ? -height : height;
    bitmap.fIsTopDown = height < 0;
    bitmap.fBits = Number16(bytes + kBitsAt);
    if (headerSize < kHeaderSize || headerSize > size || bitmap.fWidth <= 0 || height == 0 ||
        !IsKnownDepth(bitmap.fBits) || !bitmap.ReadMasks(bytes, size)) {
        return std::nullopt;
    }

    const bool hasMasks = Number32(bytes + kCompressionAt) == kMasks;
    const size_t table = hasMasks ? std::max(headerSize, kMasksAt + kMasksSize) : headerSize;
    const size_t colors = CountColors(Number32(bytes + kColorsUsedAt), bitmap.fBits);
    const size_t rows = table + colors * kColorSize;
    if (rows > size) return std::nullopt;
    if (bitmap.fBits <= kMostBitsOfIndex) bitmap.ReadColors(bytes + table, colors);
    bitmap.fRows = bytes + rows;
    bitmap.fRowsSize = size - rows;
    bitmap.fRowSize = static_cast<size_t>(RowSize(bitmap.fWidth, bitmap.fBits));
    return bitmap;
}

// False for a compression that is not drawn.
bool TDeviceBitmap::ReadMasks(const uint8_t* bytes, size_t size) {
    const uint32_t compression = Number32(bytes + kCompressionAt);
    if (compression == kMasks) {
        if (!HasChannels(fBits) || size < kMasksAt + kMasksSize) return false;
        const uint8_t* const masks = bytes + kMasksAt;
        fChannels = {Channel(Number32(masks + 2 * kMaskSize)), Channel(Number32(masks + kMaskSize)),
                     Channel(Number32(masks))};
    } else if (compression != kNotCompressed) {
        return false;
    } else if (fBits == 16) {
        fChannels = {Channel(kBlue15), Channel(kGreen15), Channel(kRed15)};
    } else {
        fChannels = {Channel(kBlue32), Channel(kGreen32), Channel(kRed32)};
    }
    fIsInBytes =
        fChannels[0].fMask == kBlue32 && fChannels[1].fMask == kGreen32 && fChannels[2].fMask == kRed32;
    return true;
}

void TDeviceBitmap::ReadColors(const uint8_t* table, size_t count) {
    for (size_t index = 0; index < count; ++index) {
        std::copy_n(table + index * kColorSize, kPixelSize, fColors[index].begin());
    }
}

bool TDeviceBitmap::CopyPixels(int64_t row, int64_t first, int64_t count, uint8_t* pixels) const {
    const auto place = static_cast<uint64_t>(fIsTopDown ? row : fHeight - 1 - row);
    // Divided, not multiplied: a height may be anything.
    if (place >= fRowsSize / fRowSize) return false;
    const uint8_t* const bytes = fRows + place * fRowSize;
    if (fBits <= kMostBitsOfIndex) {
        CopyIndexed(bytes, first, count, pixels);
    } else if (!HasChannels(fBits)) {
        std::memcpy(pixels, bytes + static_cast<size_t>(first) * kPixelSize,
                    static_cast<size_t>(count) * kPixelSize);
    } else if (fBits == 32 && fIsInBytes) {
        CopyBytes32(bytes, first, count, pixels);
    } else {
        CopyMasked(bytes, first, count, pixels);
    }
    return true;
}

// The first pixel of a byte is in its highest bits.
void TDeviceBitmap::CopyIndexed(const uint8_t* row, int64_t first, int64_t count, uint8_t* pixels) const {
    const auto bits = static_cast<int64_t>(fBits);
    const uint32_t mask = (1U << fBits) - 1;
    for (int64_t pixel = first; pixel < first + count; ++pixel) {
        const int64_t bit = pixel * bits;
        const int64_t shift = kBitsOfByte - bits - bit % kBitsOfByte;
        const Color& color = fColors[(static_cast<uint32_t>(row[bit / kBitsOfByte]) >> shift) & mask];
        pixels = std::copy(color.begin(), color.end(), pixels);
    }
}

void TDeviceBitmap::CopyMasked(const uint8_t* row, int64_t first, int64_t count, uint8_t* pixels) const {
    const int64_t size = fBits / kBitsOfByte;
    for (int64_t pixel = first; pixel < first + count; ++pixel) {
        const uint8_t* const bytes = row + pixel * size;
        const uint32_t value = fBits == 16 ? Number16(bytes) : Number32(bytes);
        for (const Channel& channel : fChannels) *pixels++ = channel.GetValue(value);
    }
}

void TDeviceBitmap::CopyBytes32(const uint8_t* row, int64_t first, int64_t count, uint8_t* pixels) {
    constexpr size_t kSize = 4;
    const uint8_t* bytes = row + static_cast<size_t>(first) * kSize;
    for (int64_t pixel = 0; pixel < count; ++pixel, bytes += kSize, pixels += kPixelSize) {
        pixels[0] = bytes[0];
        pixels[1] = bytes[1];
        pixels[2] = bytes[2];
    }
}

}  // namespace Vantor
