#include "cli/FramePicture.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "cli/GrayWindow.h"
#include "cli/JpegCodec.h"
#include "cli/PaletteColors.h"
#include "cli/RleFrame.h"

namespace VantorCli {

namespace {

using Image = VantorWrappers::ImageDescription;
using Photometric = Image::Photometric;
using Coding = Image::Coding;

constexpr int32_t kBitsOfByte = 8;
constexpr int32_t kBitsOfWord = 16;
constexpr size_t kThree = 3;  // red, green and blue, or brightness and two differences of colour

// What samples may be, all of them: those whose bits have no meaning as well.
size_t SampleCount(int32_t bitsAllocated) { return size_t{1} << std::max(bitsAllocated, kBitsOfByte); }

bool IsGray(Photometric photometric) {
    return photometric == Photometric::kMonochrome1 || photometric == Photometric::kMonochrome2;
}

bool IsOfOneColor(Photometric photometric) {
    return IsGray(photometric) || photometric == Photometric::kPaletteColor;
}

Bgr RgbToBgr(uint8_t red, uint8_t green, uint8_t blue) { return {blue, green, red}; }

// What is out of range is rare.
uint8_t ToLevel(int32_t number) {
    if ((number & ~int32_t{UINT8_MAX}) == 0) return static_cast<uint8_t>(number);
    return number < 0 ? 0 : UINT8_MAX;
}

// With 16 bits behind the point: 1.402, 0.344136, 0.714136 and 1.772.
Bgr YbrToBgr(uint8_t brightness, uint8_t blueDifference, uint8_t redDifference) {
    constexpr int32_t kPoint = 16;
    constexpr int32_t kHalf = 1 << (kPoint - 1);
    constexpr int32_t kRedOfRed = 91881;
    constexpr int32_t kGreenOfBlue = 22554;
    constexpr int32_t kGreenOfRed = 46802;
    constexpr int32_t kBlueOfBlue = 116130;
    constexpr int32_t kNoDifference = 128;
    const int32_t y = (int32_t{brightness} << kPoint) + kHalf;
    const int32_t cb = blueDifference - kNoDifference;
    const int32_t cr = redDifference - kNoDifference;
    return {ToLevel((y + kBlueOfBlue * cb) >> kPoint),
            ToLevel((y - kGreenOfBlue * cb - kGreenOfRed * cr) >> kPoint),
            ToLevel((y + kRedOfRed * cr) >> kPoint)};
}

}  // namespace

FramePicture::FramePicture(Image image)
    : fImage(std::move(image)),
      fPixels(static_cast<size_t>(fImage.fRows) * static_cast<size_t>(fImage.fColumns)) {
    if (fImage.fCoding == Coding::kJpeg) {
        fImage.fBitsAllocated = std::min(fImage.fBitsAllocated, kBitsOfByte);
        if (fImage.fBitsStored == kBitsOfByte) fImage.fHighBit = kBitsOfByte - 1;
    }
    fProblem = FindProblem();
    if (!fProblem.empty()) return;
    fStored.emplace(fImage.fBitsStored, fImage.fHighBit, fImage.fIsSigned);
}

// ---- What can be shown ----

std::string FramePicture::FindProblem() const {
    std::string problem = FindProblemOfCoding();
    if (problem.empty()) problem = FindProblemOfColors();
    const bool isKnown = fImage.fBitsAllocated == kBitsOfByte || fImage.fBitsAllocated == kBitsOfWord ||
                         (IsBitmap() && fImage.fCoding == Coding::kNative);
    if (problem.empty() && !isKnown) {
        return "samples in " + std::to_string(fImage.fBitsAllocated) + " bits cannot be shown";
    }
    const bool isWithin = fImage.fBitsStored >= 1 && fImage.fHighBit + 1 >= fImage.fBitsStored &&
                          fImage.fHighBit < fImage.fBitsAllocated;
    if (problem.empty() && !isWithin) return "its bits are not where they can be";
    return problem;
}

std::string FramePicture::FindProblemOfCoding() const {
    if (fImage.fCoding == Coding::kJpeg) {
        if (!JpegCodec::IsThere()) return "this program is built without JPEG";
        if (fImage.fBitsStored > kBitsOfByte) return "JPEG of more than 8 bits cannot be shown";
    }
    if (fImage.fCoding != Coding::kOther) return {};
    return "its compression cannot be shown (transfer syntax " + fImage.fTransferSyntaxUID + ")";
}

// What colours in JPEG are called does not matter: they come out as red, green and blue.
std::string FramePicture::FindProblemOfColors() const {
    const bool isJpeg = fImage.fCoding == Coding::kJpeg;
    const bool isOne = IsOfOneColor(fImage.fPhotometric);
    const bool isKnown = isOne || isJpeg || fImage.fPhotometric != Photometric::kOther;
    if (!isKnown || CountColors() != (isOne ? 1 : kThree)) return "its colours cannot be shown";
    if (fImage.fHasSegmentedPalettes) return "segmented palettes cannot be shown";
    if (fImage.fPhotometric == Photometric::kPaletteColor && !PaletteColors(fImage.fPalettes).AreThere()) {
        return "its palettes are missing or damaged";
    }
    const bool isOfPairs = fImage.fPhotometric == Photometric::kYbrFull422;
    if (isOfPairs && fImage.fCoding == Coding::kNative && fImage.fBitsAllocated != kBitsOfByte) {
        return "its colours cannot be shown";
    }
    return {};
}

// ---- Samples ----

const DeviceBitmap* FramePicture::Draw(std::span<const uint8_t> frame) {
    if (!fProblem.empty()) return nullptr;
    const std::optional<FrameSamples> samples = Decode(frame);
    if (!samples) return nullptr;
    if (!fBitmap) fBitmap.emplace(fImage.fColumns, fImage.fRows);
    if (samples->fPhotometric == Photometric::kYbrFull422) {
        FillLevels();
        DrawPairs(*samples);
    } else if (samples->fSampleSize == sizeof(uint16_t)) {
        DrawSamples<uint16_t>(*samples);
    } else {
        DrawSamples<uint8_t>(*samples);
    }
    return &*fBitmap;
}

std::optional<FrameSamples> FramePicture::Decode(std::span<const uint8_t> frame) {
    FrameSamples samples;
    samples.fPhotometric = fImage.fPhotometric;
    if (fImage.fCoding == Coding::kNative) return TakeNative(frame);
    if (fImage.fCoding == Coding::kJpeg) {
        const bool isRgb = fImage.fPhotometric == Photometric::kRgb;
        if (!JpegCodec::Decode(frame, fImage.fColumns, fImage.fRows, fImage.fSamplesPerPixel, isRgb,
                               fDecoded))
            return std::nullopt;
        if (CountColors() == kThree) samples.fPhotometric = Photometric::kRgb;
    } else {
        samples.fSampleSize = static_cast<size_t>(fImage.fBitsAllocated / kBitsOfByte);
        if (!RleFrame(frame).Decode(fPixels, CountColors(), samples.fSampleSize, fDecoded))
            return std::nullopt;
        samples.fIsPlanar = true;
        // Every pixel has all of its samples there, whatever the name says.
        if (fImage.fPhotometric == Photometric::kYbrFull422) samples.fPhotometric = Photometric::kYbrFull;
    }
    samples.fBytes = fDecoded;
    return samples;
}

std::optional<FrameSamples> FramePicture::TakeNative(std::span<const uint8_t> frame) {
    FrameSamples samples{frame, sizeof(uint8_t), fImage.fPhotometric, fImage.fIsPlanar};
    if (IsBitmap()) {
        if (!UnpackBits(frame)) return std::nullopt;
        samples.fBytes = fDecoded;
        return samples;
    }
    samples.fSampleSize = static_cast<size_t>(fImage.fBitsAllocated / kBitsOfByte);
    uint64_t needed = uint64_t{fPixels} * CountColors() * samples.fSampleSize;
    if (fImage.fPhotometric == Photometric::kYbrFull422) {
        constexpr uint64_t kPairSize = 4;
        needed = static_cast<uint64_t>(fImage.fRows) * ((static_cast<uint64_t>(fImage.fColumns) + 1) / 2);
        needed *= kPairSize;
    }
    if (frame.size() < needed) return std::nullopt;
    return samples;
}

// The first pixel is the lowest bit of the first byte.
bool FramePicture::UnpackBits(std::span<const uint8_t> frame) {
    if (frame.size() < (fPixels * CountColors() + kBitsOfByte - 1) / kBitsOfByte) return false;
    fDecoded.resize(fPixels * CountColors());
    for (size_t i = 0; i < fDecoded.size(); ++i) {
        fDecoded[i] = frame[i / kBitsOfByte] >> (i % kBitsOfByte) & 1;
    }
    return true;
}

// ---- Drawing ----

template <typename Sample>
void FramePicture::DrawSamples(const FrameSamples& samples) {
    if (IsOfOneColor(samples.fPhotometric)) {
        ChooseColors();
        DrawValues<Sample>(samples);
        return;
    }
    FillLevels();
    if (samples.fPhotometric == Photometric::kRgb) {
        DrawColors<Sample>(samples, RgbToBgr);
    } else {
        DrawColors<Sample>(samples, YbrToBgr);
    }
}

template <typename Sample>
void FramePicture::DrawValues(const FrameSamples& samples) {
    const Bgr* colors = fColors.data();
    size_t index = 0;
    for (size_t row = 0; row < fBitmap->GetHeight(); ++row) {
        Bgr* target = fBitmap->GetRow(row);
        for (Bgr* end = target + fBitmap->GetWidth(); target < end; ++target, ++index) {
            *target = colors[samples.At<Sample>(index)];
        }
    }
}

template <typename Sample, typename ToBgr>
void FramePicture::DrawColors(const FrameSamples& samples, ToBgr toBgr) {
    const size_t toNextPixel = samples.fIsPlanar ? 1 : kThree;
    const size_t toNextColor = samples.fIsPlanar ? fPixels : 1;
    const uint8_t* levels = fLevels.data();
    size_t index = 0;
    for (size_t row = 0; row < fBitmap->GetHeight(); ++row) {
        Bgr* target = fBitmap->GetRow(row);
        for (Bgr* end = target + fBitmap->GetWidth(); target < end; ++target, index += toNextPixel) {
            *target =
                toBgr(levels[samples.At<Sample>(index)], levels[samples.At<Sample>(index + toNextColor)],
                      levels[samples.At<Sample>(index + 2 * toNextColor)]);
        }
    }
}

// Two pixels that share their colour: both brightnesses, then the differences of blue and red.
void FramePicture::DrawPairs(const FrameSamples& samples) {
    const uint8_t* pair = samples.fBytes.data();
    constexpr size_t kPairSize = 4;
    for (size_t row = 0; row < fBitmap->GetHeight(); ++row) {
        Bgr* target = fBitmap->GetRow(row);
        for (size_t column = 0; column < fBitmap->GetWidth(); column += 2, pair += kPairSize) {
            const uint8_t blue = fLevels[pair[2]];
            const uint8_t red = fLevels[pair[3]];
            target[column] = YbrToBgr(fLevels[pair[0]], blue, red);
            if (column + 1 < fBitmap->GetWidth()) target[column + 1] = YbrToBgr(fLevels[pair[1]], blue, red);
        }
    }
}

// ---- Levels and colours of samples ----

void FramePicture::FillLevels() {
    if (!fLevels.empty()) return;
    const GrayWindow whole(fStored->GetLowest(), fStored->GetHighest());
    fLevels.resize(SampleCount(fImage.fBitsAllocated));
    for (size_t sample = 0; sample < fLevels.size(); ++sample) {
        fLevels[sample] = whole.LevelOf(fStored->Of(static_cast<uint32_t>(sample)));
    }
}

void FramePicture::ChooseColors() {
    if (!fColors.empty()) return;
    if (fImage.fPhotometric == Photometric::kPaletteColor) {
        FillPalette();
    } else if (fImage.fRange && fImage.fBitsStored > kBitsOfByte) {
        FillGrays(fImage.fRange->fSmallest, fImage.fRange->fLargest);
    } else {
        FillGrays(fStored->GetLowest(), fStored->GetHighest());
    }
}

// The range counts without a window. A slope below 0 turns it round.
void FramePicture::FillGrays(double lowest, double highest) {
    const auto rescaled = [this](double value) {
        return value * fImage.fRescaleSlope + fImage.fRescaleIntercept;
    };
    const double first = rescaled(lowest);
    const double last = rescaled(highest);
    const GrayWindow window = fImage.fWindow ? GrayWindow(*fImage.fWindow)
                                             : GrayWindow(std::min(first, last), std::max(first, last));
    const bool isInverted = fImage.fPhotometric == Photometric::kMonochrome1;
    FillColors([&](int32_t value) {
        const uint8_t level = window.LevelOf(rescaled(value));
        const auto shown = static_cast<uint8_t>(isInverted ? UINT8_MAX - level : level);
        return Bgr{shown, shown, shown};
    });
}

void FramePicture::FillPalette() {
    const PaletteColors palette(fImage.fPalettes);
    FillColors([&](int32_t value) { return palette.ColorOf(value); });
}

template <typename ColorOf>
void FramePicture::FillColors(ColorOf colorOf) {
    fColors.resize(SampleCount(fImage.fBitsAllocated));
    for (size_t sample = 0; sample < fColors.size(); ++sample) {
        fColors[sample] = colorOf(fStored->Of(static_cast<uint32_t>(sample)));
    }
}

}  // namespace VantorCli
