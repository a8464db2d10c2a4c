#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/VideoFile.h"
#include "tests/support/TestFolder.h"

namespace VantorTest {

// A movie file as another program reads it: AVI with one video stream. The frames are the chunks of the movie
// list, in their order; what fills gaps is passed over.
struct AviMovie {
    // The main header.
    uint32_t fMicrosecondsPerFrame = 0;
    uint32_t fFlags = 0;
    uint32_t fTotalFrames = 0;
    uint32_t fStreams = 0;

    // The stream header.
    std::string fType;
    uint32_t fHandler = 0;
    uint32_t fScale = 0;
    uint32_t fRate = 0;
    uint32_t fLength = 0;
    uint32_t fQuality = 0;
    std::vector<int> fRectangle;

    // The format.
    uint32_t fFormatSize = 0;
    int32_t fWidth = 0;
    int32_t fHeight = 0;
    uint32_t fPlanes = 0;
    uint32_t fBits = 0;
    uint32_t fCompression = 0;
    uint32_t fImageSize = 0;
    std::vector<uint32_t> fPixelsPerMeter;
    uint32_t fColorsUsed = 0;

    std::vector<Bytes> fFrames;
    bool fHasIndex = false;
    size_t fKeyFrames = 0;  // as the index says

    size_t fBehind = 0;  // bytes behind the movie, which mean nothing
    std::string fFault;  // what is not as the format has it

    // Blue, green, red of a pixel of a frame without compression, counted from the upper left corner.
    Bytes GetPixel(size_t frame, int x, int y) const;
};

// Reads a whole file. Faults are sizes of lists and of the whole that are wrong, chunks at odd places, counts
// and an index that do not tell the frames.
AviMovie ParseAvi(const Bytes& file);

// The same; a fault fails the test.
AviMovie ReadAvi(const Bytes& file);
AviMovie ReadAviFile(const std::string& path);

// A stream of three small frames, whose rows are filled up.
Vantor::Platform::VideoStream SmallStream(uint32_t handler);

// Expects of the headers what every movie has, and what the stream is.
void ExpectHeaders(const AviMovie& movie, const Vantor::Platform::VideoStream& stream);

}  // namespace VantorTest
