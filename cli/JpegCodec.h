#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace VantorCli {

// JPEG as images have it and movies are compressed with: sequential, with samples of 8 bits. The program may
// be built without; then nothing can be decoded or encoded.
class JpegCodec {
  public:
    static bool IsThere();

    // Decompresses a frame, of so many colours, to rows of samples: gray, or red, green and blue.
    // `isRgb`: what the colours are where the frame itself does not say. False when it is damaged, of another
    // size or kind, or too short for so many pixels: no memory is taken for them then.
    static bool Decode(std::span<const uint8_t> frame, int32_t width, int32_t height, int32_t colors,
                       bool isRgb, std::vector<uint8_t>& samples);

    // Compresses a picture whose pixels are as a VideoCompressor gets them. `quality` is 1 to 100.
    static bool Encode(const uint8_t* pixels, int32_t width, int32_t height, int32_t quality,
                       std::vector<uint8_t>& compressed);
};

}  // namespace VantorCli
