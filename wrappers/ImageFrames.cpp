#include "wrappers/ImageFrames.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <numeric>
#include <string_view>
#include <utility>

#include "dicom/ByteOrder.h"
#include "dicom/TException.h"
#include "dicom/TImageFile.h"
#include "dicom/Uids.h"
#include "dicom/ValueText.h"
#include "platform/CodePage.h"
#include "platform/FileException.h"

namespace VantorWrappers {

using Vantor::Tag;
using Vantor::TDicomDataSet;
using Vantor::TException;
using Vantor::TFileSpec;
using Vantor::TImageFile;
namespace Tags = Vantor::Tags;
namespace Uids = Vantor::Uids;
namespace Vr = Vantor::Vr;

namespace {

using Palette = ImageDescription::Palette;
using Photometric = ImageDescription::Photometric;
using Coding = ImageDescription::Coding;

constexpr uint32_t kLongestCode = 16;
constexpr uint32_t kLongestDecimals = 0x10000;

// More pixels than this stand for one byte in no compression that is shown: RLE has up to 64, JPEG up to 227
// where a block of each colour takes two bits.
constexpr int64_t kMostPixelsOfByte = 256;

// Loops that do not tell how fast they are to be shown, as scanners make them.
constexpr double kUsualFramesPerSecond = 30;
constexpr double kMillisecondsPerSecond = 1000;

constexpr int64_t kLargestPalette = 0x10000;
constexpr int32_t kBitsOfByte = 8;

[[noreturn]] void ThrowNoImage(const char* text) {
    throw new TException(Vantor::ErrorNumbers::kRecordStructure, text);
}

// ---- Values ----

std::string ReadText(const TDicomDataSet& dataSet, Tag tag, uint32_t longest) {
    uint32_t length = 0;
    if (!dataSet.FindElement(tag, nullptr, &length)) return {};
    std::string text(std::min(length, longest), '\0');
    dataSet.FindElement(tag, nullptr, nullptr, text.data(), static_cast<uint32_t>(text.size()));
    return std::string(Vantor::TrimValue(text));
}

int32_t ReadNumber(const TDicomDataSet& dataSet, Tag tag, int32_t absent) {
    uint16_t number = 0;
    uint32_t length = 0;
    const bool isFound = dataSet.FindElement(tag, nullptr, &length, &number, sizeof(number));
    return isFound && length >= sizeof(number) ? number : absent;
}

std::optional<double> ParseDecimal(std::string_view text) {
    std::string_view digits = Vantor::TrimValue(text);
    if (digits.starts_with('+')) digits.remove_prefix(1);
    double number = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (result.ec != std::errc() || !std::isfinite(number)) return std::nullopt;
    return number;
}

std::vector<double> ReadDecimals(const TDicomDataSet& dataSet, Tag tag) {
    const std::string text = ReadText(dataSet, tag, kLongestDecimals);
    std::vector<double> numbers;
    for (const std::string_view part : Vantor::SplitValue(text, '\\')) {
        if (const auto number = ParseDecimal(part)) numbers.push_back(*number);
    }
    return numbers;
}

std::optional<double> ReadDecimal(const TDicomDataSet& dataSet, Tag tag) {
    const std::vector<double> numbers = ReadDecimals(dataSet, tag);
    if (numbers.empty()) return std::nullopt;
    return numbers.front();
}

// ---- The pixels ----

Photometric ReadPhotometric(const TDicomDataSet& dataSet) {
    constexpr std::pair<std::string_view, Photometric> kNames[] = {
        {"MONOCHROME1", Photometric::kMonochrome1},    {"MONOCHROME2", Photometric::kMonochrome2},
        {"PALETTE COLOR", Photometric::kPaletteColor}, {"RGB", Photometric::kRgb},
        {"YBR_FULL", Photometric::kYbrFull},           {"YBR_FULL_422", Photometric::kYbrFull422},
    };
    const std::string name = ReadText(dataSet, Tags::kPhotometricInterpretation, kLongestCode);
    for (const auto& [known, photometric] : kNames) {
        if (name == known) return photometric;
    }
    return Photometric::kOther;
}

Coding CodingOf(std::string_view transferSyntaxUID, bool isEncapsulated) {
    if (!isEncapsulated) return Coding::kNative;
    if (transferSyntaxUID == Uids::kRleLossless) return Coding::kRle;
    const bool isJpeg = transferSyntaxUID == Uids::kJpegBaseline || transferSyntaxUID == Uids::kJpegExtended;
    return isJpeg ? Coding::kJpeg : Coding::kOther;
}

void ReadPixels(const TDicomDataSet& dataSet, ImageDescription& image) {
    image.fRows = ReadNumber(dataSet, Tags::kRows, 0);
    image.fColumns = ReadNumber(dataSet, Tags::kColumns, 0);
    image.fSamplesPerPixel = ReadNumber(dataSet, Tags::kSamplesPerPixel, 1);
    image.fPhotometric = ReadPhotometric(dataSet);
    image.fIsPlanar = ReadNumber(dataSet, Tags::kPlanarConfiguration, 0) == 1;
    image.fBitsAllocated = ReadNumber(dataSet, Tags::kBitsAllocated, 0);
    image.fBitsStored = ReadNumber(dataSet, Tags::kBitsStored, image.fBitsAllocated);
    image.fHighBit = ReadNumber(dataSet, Tags::kHighBit, image.fBitsStored - 1);
    image.fIsSigned = ReadNumber(dataSet, Tags::kPixelRepresentation, 0) == 1;
}

void ReadGrays(const TDicomDataSet& dataSet, ImageDescription& image) {
    image.fRescaleSlope = ReadDecimal(dataSet, Tags::kRescaleSlope).value_or(1);
    image.fRescaleIntercept = ReadDecimal(dataSet, Tags::kRescaleIntercept).value_or(0);
    const auto center = ReadDecimal(dataSet, Tags::kWindowCenter);
    const auto width = ReadDecimal(dataSet, Tags::kWindowWidth);
    if (center && width && *width >= 1) image.fWindow = ImageDescription::Window{*center, *width};
}

// ---- Palettes ----

// Entries of 8 bits stand two in a word, the first one in its low byte; some writers give each a word.
std::vector<uint16_t> UnpackEntries(const std::vector<uint16_t>& words, size_t count, int32_t bits) {
    std::vector<uint16_t> entries = words;
    if (bits <= kBitsOfByte && words.size() < count) {
        entries.clear();
        for (const uint16_t word : words) {
            entries.push_back(word & UINT8_MAX);
            entries.push_back(static_cast<uint16_t>(word >> kBitsOfByte));
        }
    }
    entries.resize(std::min(entries.size(), count));
    return entries;
}

Palette ReadPalette(const TDicomDataSet& dataSet, Tag descriptorTag, Tag dataTag, bool isSigned) {
    std::array<uint16_t, 3> descriptor{};  // the number of entries, the first value mapped, bits of an entry
    Palette palette;
    uint32_t length = 0;
    if (!dataSet.FindElement(descriptorTag, nullptr, &length, descriptor.data(), sizeof(descriptor)) ||
        length < sizeof(descriptor) || !dataSet.FindElement(dataTag, nullptr, &length)) {
        return palette;
    }
    const auto count = static_cast<size_t>(descriptor[0] == 0 ? kLargestPalette : descriptor[0]);
    palette.fFirstValue = isSigned ? static_cast<int16_t>(descriptor[1]) : descriptor[1];
    palette.fBits = descriptor[2];
    std::vector<uint16_t> words(std::min<size_t>(length / sizeof(uint16_t), kLargestPalette));
    dataSet.FindElement(dataTag, nullptr, nullptr, words.data(),
                        static_cast<uint32_t>(words.size() * sizeof(uint16_t)));
    palette.fEntries = UnpackEntries(words, count, palette.fBits);
    return palette;
}

void ReadPalettes(const TDicomDataSet& dataSet, ImageDescription& image) {
    if (image.fPhotometric != Photometric::kPaletteColor) return;
    constexpr std::pair<Tag, Tag> kTags[] = {{Tags::kRedPaletteDescriptor, Tags::kRedPalette},
                                             {Tags::kGreenPaletteDescriptor, Tags::kGreenPalette},
                                             {Tags::kBluePaletteDescriptor, Tags::kBluePalette}};
    for (size_t i = 0; i < ImageDescription::kPalettes; ++i) {
        image.fPalettes[i] = ReadPalette(dataSet, kTags[i].first, kTags[i].second, image.fIsSigned);
    }
    image.fHasSegmentedPalettes =
        image.fPalettes[0].fEntries.empty() && dataSet.FindElement(Tags::kSegmentedRedPalette);
}

// ---- Time ----

// The times between frames; the first value stands before the first frame and is 0.
double MeanOfVector(const std::vector<double>& vector) {
    if (vector.size() < 2) return 0;
    return std::accumulate(vector.begin() + 1, vector.end(), 0.0) / static_cast<double>(vector.size() - 1);
}

// Milliseconds from a frame to the next one.
double ReadFrameTime(const TDicomDataSet& dataSet) {
    const double time = ReadDecimal(dataSet, Tags::kFrameTime).value_or(0);
    if (time > 0) return time;
    const double mean = MeanOfVector(ReadDecimals(dataSet, Tags::kFrameTimeVector));
    if (mean > 0) return mean;
    for (const Tag tag : {Tags::kCineRate, Tags::kRecommendedDisplayFrameRate}) {
        const double rate = ReadDecimal(dataSet, tag).value_or(0);
        if (rate > 0) return kMillisecondsPerSecond / rate;
    }
    return kMillisecondsPerSecond / kUsualFramesPerSecond;
}

// Rounded down: whole frames a second that a loop was made with are those of its movie then.
int32_t ReadCycleLength(const TDicomDataSet& dataSet, int32_t frames) {
    if (frames <= 1) return 0;
    const double length = std::floor(ReadFrameTime(dataSet) * frames);
    return static_cast<int32_t>(std::clamp<double>(length, 1, std::numeric_limits<int32_t>::max()));
}

}  // namespace

// The native file, and what of a frame it does not have as a host takes it.
class ImageFrames::File {
  public:
    explicit File(const HostString& path) : fImage(0, MakeFileSpec(path), 0) { fImage.ReadAllButPixels(); }

    ImageDescription Describe() {
        const TDicomDataSet& dataSet = *fImage.GetDataSet();
        ImageDescription image;
        char uid[Vantor::kMaximumUidLength + 1] = {};
        if (fImage.GetTransferSyntaxUID(uid)) image.fTransferSyntaxUID = uid;
        image.fCoding = CodingOf(image.fTransferSyntaxUID, fImage.IsEncapsulated());
        image.fFrames = std::max(fImage.GetNumberOfFrames(), 1);
        ReadPixels(dataSet, image);
        CheckSize(image);
        ReadGrays(dataSet, image);
        ReadPalettes(dataSet, image);
        image.fCycleLength = ReadCycleLength(dataSet, image.fFrames);
        return image;
    }

    // Empty when the frame cannot be had.
    std::span<const uint8_t> Load(int32_t frame) {
        fImage.LoadFrame(frame);
        if (fImage.GetFrame() == nullptr) return {};
        if (fImage.IsEncapsulated()) {
            fBytes.clear();
            if (!fImage.JoinFragments(fBytes)) return {};
            return fBytes;
        }
        if (HasForeignWords()) return SwapWords();
        return {fImage.GetFrame(), static_cast<size_t>(fImage.LoadedPixelsLength())};
    }

  private:
    static TFileSpec MakeFileSpec(const HostString& path) {
        const std::string native = Vantor::Platform::FromHostText(path);
        if (!TFileSpec::FitsPath(native)) {
            using Vantor::Platform::FileException;
            throw FileException(FileException::Cause::kBadPath, 0, native);
        }
        return TFileSpec(native);
    }

    void CheckSize(const ImageDescription& image) const {
        if (image.fRows < 1 || image.fColumns < 1) ThrowNoImage("the image has no size");
        const int64_t frame = static_cast<int64_t>(image.fRows) * image.fColumns;
        if (frame > fImage.GetFileSize() * kMostPixelsOfByte / image.fFrames) {
            ThrowNoImage("the file is too small for an image of the size that it tells");
        }
    }

    // Pixels of 8 bits are in words as well, where the element says so.
    bool HasForeignWords() const { return fImage.IsBigEndian() && fImage.GetPixelDataVR() == Vr::kOW; }

    // Where frames end inside words, their pixels are not told apart.
    std::span<const uint8_t> SwapWords() {
        const auto length = static_cast<size_t>(fImage.GetFrameLength());
        if (fImage.GetFrameCount() > 1 && length % sizeof(uint16_t) != 0) return {};
        fBytes.resize(length);
        Vantor::ByteOrder::CopySwappedPairs(fBytes.data(), fImage.GetFrame(), static_cast<uint32_t>(length));
        return fBytes;
    }

    TImageFile fImage;
    std::vector<uint8_t> fBytes;
};

ImageFrames::ImageFrames(const HostString& path)
    : fFile(std::make_unique<File>(path)), fDescription(fFile->Describe()) {}

ImageFrames::~ImageFrames() = default;

// Whatever the reason is: a viewer shows nothing then.
bool ImageFrames::LoadFrame(int32_t frame) {
    fFrame = {};
    try {
        fFrame = fFile->Load(frame);
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
    } catch (const std::exception&) {
    }
    return !fFrame.empty();
}

}  // namespace VantorWrappers
