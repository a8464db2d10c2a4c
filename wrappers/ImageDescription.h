#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace VantorWrappers {

// Addition for hosts: what the pixels of an image file are, as far as showing them needs it. See ImageFrames.
struct ImageDescription {
    // What the samples of a pixel mean. kOther has all that has gone out of use or is of compressed pixels
    // only.
    enum class Photometric {
        kMonochrome1,  // the lowest value is white
        kMonochrome2,  // the lowest value is black
        kPaletteColor,
        kRgb,
        kYbrFull,
        kYbrFull422,  // two pixels share their colour
        kOther,
    };

    // How the bytes of a frame have them.
    enum class Coding {
        kNative,  // plain samples
        kRle,
        kJpeg,   // baseline, or extended, whose samples may have 12 bits
        kOther,  // see fTransferSyntaxUID
    };

    // The part of the values that is shown with all shades, in units behind the rescaling.
    struct Window {
        double fCenter;
        double fWidth;
    };

    // The intensities of one colour, from the first value that is mapped on.
    struct Palette {
        int32_t fFirstValue = 0;
        int32_t fBits = 0;  // of an entry as the file tells them: 8 or 16, but not every writer keeps to it
        std::vector<uint16_t> fEntries;
    };
    static constexpr size_t kPalettes = 3;  // red, green, blue

    std::string fTransferSyntaxUID;
    Coding fCoding = Coding::kOther;

    // At least 1 each.
    int32_t fRows = 0;
    int32_t fColumns = 0;
    int32_t fFrames = 1;

    int32_t fSamplesPerPixel = 1;
    Photometric fPhotometric = Photometric::kOther;
    bool fIsPlanar = false;  // all reds come first, then all greens, then all blues
    int32_t fBitsAllocated = 0;
    int32_t fBitsStored = 0;
    int32_t fHighBit = 0;
    bool fIsSigned = false;

    // A stored value × slope + intercept is the value that the window is about.
    double fRescaleSlope = 1;
    double fRescaleIntercept = 0;
    std::optional<Window> fWindow;  // the first one that is complete

    // The stored values that there are in all frames, where the file tells them.
    struct Range {
        int32_t fSmallest;
        int32_t fLargest;  // larger than that
    };
    std::optional<Range> fRange;

    std::array<Palette, kPalettes> fPalettes;
    bool fHasSegmentedPalettes = false;  // in a form that is not read; there are no entries then

    // How long all frames take, in milliseconds; 0 for a still.
    int32_t fCycleLength = 0;
};

}  // namespace VantorWrappers
