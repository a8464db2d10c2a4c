#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/File.h"
#include "platform/VideoFile.h"

namespace Vantor::Platform {

// Writes an AVI file (RIFF, AVI 1.0) with one video stream and an index, for systems that do not bring an AVI
// library. See docs/movies.md for the bytes. The file is a valid movie without frames until Finish.
class AviWriter {
  public:
    // Takes an empty file and writes the headers. Throws FileException. A file larger than `largest` bytes is
    // not made.
    AviWriter(std::unique_ptr<File> file, const VideoStream& stream, int64_t largest = kLargestMovieFile);
    AviWriter(const AviWriter&) = delete;
    AviWriter& operator=(const AviWriter&) = delete;

    // Finishes the file if that has not happened.
    ~AviWriter();

    // Appends a frame. False when it does not fit or cannot be written; the file takes no more then.
    bool WriteFrame(const uint8_t* bytes, size_t size);

    // Writes the index and the figures that are known only now, and closes the file. Where the medium has no
    // room for the index, frames at the end make way for it. The number of frames, negative when the file
    // could not be completed. Called again, it gives the same.
    int32_t Finish();

  private:
    bool HasRoomFor(size_t size) const;
    int64_t SizeOfIndex() const;
    void WriteHeaders(bool hasIndex);
    void WriteIndex();
    bool TryToWriteIndex();
    void DropLastFrame();
    void MakeRoomForIndex();
    int32_t Complete();

    std::unique_ptr<File> fFile;  // null when finished
    VideoStream fStream;
    int64_t fLargest;
    int64_t fEnd = 0;              // of the last frame that is whole
    std::vector<uint32_t> fSizes;  // of the frames, in their order
    bool fTakesFrames = true;
    int32_t fResult = 0;  // of Finish
};

}  // namespace Vantor::Platform
