#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace VantorHost {

// A way to compress the frames of a movie, one frame at a time: each can be shown without the others.
class VideoCompressor {
  public:
    VideoCompressor() = default;
    VideoCompressor(const VideoCompressor&) = delete;
    VideoCompressor& operator=(const VideoCompressor&) = delete;
    virtual ~VideoCompressor() = default;

    // Its four-character code, the first character in the lowest byte: MJPG is 0x47504A4D.
    virtual uint32_t GetHandler() const = 0;

    // For the user who chooses one.
    virtual std::wstring GetDescription() const = 0;

    // Compresses a frame. `pixels` are rows of blue, green, red; the bottom row comes first, and each row
    // is filled up to a multiple of four bytes. `quality` is 0 to 10000. False when that fails.
    virtual bool Compress(const uint8_t* pixels, int32_t width, int32_t height, int32_t quality,
                          std::vector<uint8_t>& compressed) = 0;
};

// The compressors that the host brings for its movies. Where the system has compressors of its own, as
// Windows has, those are used and these are not asked.
class VideoCompressors {
  public:
    // One for the process; of several with the same handler the last one counts. From any thread.
    static void Register(std::shared_ptr<VideoCompressor> compressor);

    // All that are registered, in the order they came.
    static std::vector<std::shared_ptr<VideoCompressor>> GetAll();

    // Null when there is none with this handler.
    static std::shared_ptr<VideoCompressor> Find(uint32_t handler);
};

}  // namespace VantorHost
