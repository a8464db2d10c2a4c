#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Vantor::Platform {

// The video stream of a movie, as its headers describe it. The frames before compression are bitmaps of 24
// bits a pixel, blue first, from the bottom row to the top one, each row filled up to a multiple of four
// bytes.
struct VideoStream {
    uint32_t fHandler = 0;    // four-character code of the compressor; kUncompressedHandler; 0 for no frames
    uint32_t fRate = 0;       // frames a second
    uint32_t fLength = 0;     // frames that there are to be; the file says how many there are
    uint32_t fQuality = 0;    // 0 to kBestQuality
    int32_t fWidth = 0;       // of the frames, in pixels
    int32_t fHeight = 0;      //
    uint32_t fImageSize = 0;  // the size of a frame that the header states

    // The bytes that a row and a frame have.
    size_t GetRowSize() const;
    size_t GetFrameSize() const;
};

// A movie file may have so many bytes. Programs take its 32-bit sizes and places for signed numbers.
inline constexpr int64_t kLargestMovieFile = 0x7FFFFFFF;

// Compresses a frame for a port whose system has no compressors. False when that fails.
using FrameCompressor = std::function<bool(const uint8_t* pixels, std::vector<uint8_t>& compressed)>;

// An AVI file with one video stream that is being made.
class VideoFile {
  public:
    // Creates the file, or empties the one that is there, with a stream that has no frames yet. Throws
    // FileException; what was created is removed again.
    static std::unique_ptr<VideoFile> Create(const std::string& path, const VideoStream& stream);

    VideoFile() = default;
    VideoFile(const VideoFile&) = delete;
    VideoFile& operator=(const VideoFile&) = delete;

    // Finishes the file if that has not happened.
    virtual ~VideoFile() = default;

    // Makes ready to write frames with the stream's handler. `own` is the host's compressor with that
    // handler, empty if it has none; not asked where the system has compressors. False when there is no such
    // compressor, or it does not take frames of this kind.
    virtual bool StartFrames(FrameCompressor own) = 0;

    // Appends a frame, of VideoStream::GetFrameSize bytes, as one that can be shown without others. False
    // when it cannot be compressed or written, or the file would become larger than kLargestMovieFile: the
    // file ends then with the frame before, and takes no more. The bytes are taken: what `pixels` has
    // afterwards has the same size and means nothing, so that a port can write a frame while the caller makes
    // the next one. That it could not be written is then told with the next one, and by Finish.
    virtual bool WriteFrame(std::vector<uint8_t>& pixels) = 0;

    // Completes and closes the file, and gives the number of frames that it has. This may be fewer than were
    // written when the medium has no room for the last things that a file needs. A negative number when the
    // file could not be completed. Called again, it gives the same.
    virtual int32_t Finish() = 0;
};

}  // namespace Vantor::Platform
