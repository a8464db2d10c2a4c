#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/DeviceBitmap.h"
#include "cli/FrameSamples.h"
#include "cli/StoredValue.h"
#include "wrappers/ImageDescription.h"

namespace VantorCli {

// Makes pictures of an image's frames, as a viewer shows them at first: with the window that the file brings.
// Without one, samples of more than 8 bits are shown with the range that the file tells, and others, or
// without that, with all values that they can have: the same in every frame, so that a loop does not flicker.
class FramePicture {
  public:
    explicit FramePicture(VantorWrappers::ImageDescription image);
    FramePicture(const FramePicture&) = delete;
    FramePicture& operator=(const FramePicture&) = delete;

    // Why frames of such images cannot be shown, for a person; empty when they can.
    const std::string& GetProblem() const { return fProblem; }

    // Draws a frame, whose bytes are as the file has them. Null when it is damaged, or there is a problem;
    // else valid until the next call.
    const DeviceBitmap* Draw(std::span<const uint8_t> frame);

  private:
    using Image = VantorWrappers::ImageDescription;

    std::string FindProblem() const;
    std::string FindProblemOfColors() const;
    std::string FindProblemOfCoding() const;
    bool IsBitmap() const { return fImage.fBitsAllocated == 1; }
    size_t CountColors() const { return static_cast<size_t>(fImage.fSamplesPerPixel); }

    std::optional<FrameSamples> Decode(std::span<const uint8_t> frame);
    std::optional<FrameSamples> TakeNative(std::span<const uint8_t> frame);
    bool UnpackBits(std::span<const uint8_t> frame);

    template <typename Sample>
    void DrawSamples(const FrameSamples& samples);
    template <typename Sample>
    void DrawValues(const FrameSamples& samples);
    template <typename Sample, typename ToBgr>
    void DrawColors(const FrameSamples& samples, ToBgr toBgr);
    void DrawPairs(const FrameSamples& samples);

    void ChooseColors();
    void FillLevels();
    void FillGrays(double lowest, double highest);
    void FillPalette();
    template <typename ColorOf>
    void FillColors(ColorOf colorOf);

    Image fImage;
    std::string fProblem;
    std::optional<StoredValue> fStored;  // none when there is a problem
    size_t fPixels;
    std::vector<uint8_t> fDecoded;  // a frame that was compressed
    std::vector<uint8_t> fLevels;   // of one colour, by what a sample may be
    std::vector<Bgr> fColors;       // the same of gray and palette images
    std::optional<DeviceBitmap> fBitmap;
};

}  // namespace VantorCli
