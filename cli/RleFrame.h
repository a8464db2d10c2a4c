#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace VantorCli {

// A frame in DICOM's run-length compression: a table of segments, one for each byte of each sample, the
// highest byte first.
class RleFrame {
  public:
    // The frame's bytes must outlive this object.
    explicit RleFrame(std::span<const uint8_t> bytes) : fBytes(bytes) {}

    // Decompresses it to samples in the machine's byte order, colour by colour. False when it is damaged, or
    // too short for so many pixels: no memory is taken for them then.
    bool Decode(size_t pixels, size_t colors, size_t sampleSize, std::vector<uint8_t>& samples) const;

  private:
    uint32_t NumberAt(size_t field) const;
    std::span<const uint8_t> FindSegment(size_t index, size_t count) const;

    std::span<const uint8_t> fBytes;
};

}  // namespace VantorCli
