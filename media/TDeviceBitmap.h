#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace Vantor {

// Looks at a device-independent bitmap as it is on the clipboard: a header of 40 bytes or one of its longer
// forms, colour masks or a colour table, and rows of 1, 4, 8, 16, 24 or 32 bits a pixel, from the bottom up
// or, with a negative height, from the top down.
//
// The bytes are those of another program: nothing outside them is read, whatever they say. Rows that are not
// all there cannot be drawn.
class TDeviceBitmap {
  public:
    // None when the bytes are no bitmap, or of a kind that is not drawn: run-length or otherwise compressed.
    // The bytes are not copied and have to stay.
    static std::optional<TDeviceBitmap> Read(const uint8_t* bytes, size_t size);

    // In pixels, both above 0.
    int64_t GetWidth() const { return fWidth; }
    int64_t GetHeight() const { return fHeight; }

    // Writes pixels of a row, the top one being row 0, as blue, green and red. False, and nothing is written,
    // when the row is not in the bytes. The pixels have to be in the row.
    bool CopyPixels(int64_t row, int64_t first, int64_t count, uint8_t* pixels) const;

  private:
    // Where one colour is in a pixel of 16 or 32 bits, and what makes eight bits of it.
    struct Channel {
        Channel() = default;
        explicit Channel(uint32_t mask);

        uint8_t GetValue(uint32_t pixel) const;

        uint32_t fMask = 0;
        int fShift = 0;  // of the lowest bit
        int fBits = 0;   // from the lowest bit to the highest
    };
    using Color = std::array<uint8_t, 3>;  // blue, green, red

    TDeviceBitmap() = default;
    bool ReadMasks(const uint8_t* bytes, size_t size);
    void ReadColors(const uint8_t* table, size_t count);
    void CopyIndexed(const uint8_t* row, int64_t first, int64_t count, uint8_t* pixels) const;
    void CopyMasked(const uint8_t* row, int64_t first, int64_t count, uint8_t* pixels) const;
    static void CopyBytes32(const uint8_t* row, int64_t first, int64_t count, uint8_t* pixels);

    int64_t fWidth = 0;
    int64_t fHeight = 0;
    bool fIsTopDown = false;
    uint32_t fBits = 0;                     // of a pixel
    bool fIsInBytes = false;                // 32 bits: blue, green, red and one that is not used
    std::array<Channel, 3> fChannels = {};  // blue, green, red; of 16 and 32 bits
    std::array<Color, 256> fColors = {};    // of up to 8 bits; black behind the end of the table
    const uint8_t* fRows = nullptr;
    size_t fRowSize = 0;
    size_t fRowsSize = 0;  // the bytes that there are
};

}  // namespace Vantor
