#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "wrappers/HostString.h"
#include "wrappers/ImageDescription.h"

namespace VantorWrappers {

// Addition for hosts: the pixels of one image file, a frame at a time. What an image control over DICOM files
// needs to show them; what is compressed, it decompresses itself.
//
// The file is closed between the calls. It must not be written meanwhile: where its frames are is noted once.
// One thread at a time.
class ImageFrames {
  public:
    // Reads what stands before the pixels. Throws Vantor::TException* (owned by the catcher) when the file is
    // no image, has no size, or is too small to hold so many pixels, so that nobody takes memory for them:
    // where they are native, RLE or JPEG, as many as those can have; else, where nobody knows what they take,
    // a picture beyond what medical images have. And Vantor::Platform::FileException when it cannot be opened
    // or read.
    explicit ImageFrames(const HostString& path);
    ~ImageFrames();
    ImageFrames(const ImageFrames&) = delete;
    ImageFrames& operator=(const ImageFrames&) = delete;

    const ImageDescription& GetDescription() const { return fDescription; }

    // Reads a frame, counted from 1. False when it cannot be had; there is none then.
    bool LoadFrame(int32_t frame);

    // The bytes of the frame that was read last, valid until the next is read. Samples are in the machine's
    // byte order, in a frame of single bits from the lowest bit of the first byte on, and there may be fewer
    // of them than a frame needs. Compressed frames are their fragments, joined.
    std::span<const uint8_t> GetFrame() const { return fFrame; }

  private:
    class File;

    std::unique_ptr<File> fFile;
    ImageDescription fDescription;
    std::span<const uint8_t> fFrame;
};

}  // namespace VantorWrappers
