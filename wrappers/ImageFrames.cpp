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

// More pixels than this stand for one byte in nothing that is shown: RLE has up to 64, JPEG up to 227 where a
// block of each colour takes two bits.
constexpr int64_t kMostPixelsOfByte = 256;

// Other compressions have no such limit. Nobody takes memory for their pixels, but for a black picture of the
// same size: one as large as this comes from no small file that is an image.
constexpr int64_t kLargestUnknownPicture = int64_t{1} << 25;

// Loops that do not tell how fast they are to be shown, as scanners make them.
constexpr double kUsualFramesPerSecond = 30;
constexpr double kMillisecondsPerSecond = 1000;

constexpr int64_t kLargestPalette = 0x10000;
constexpr int32_t kBitsOfByte = 8;
constexpr int32_t kBitsOfWord = 16;
constexpr uint64_t kWordSize = sizeof(uint16_t);

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

// The first value of each that make a pair: a number each, and a width that a window can have.
std::optional<ImageDescription::Window> ReadWindow(const TDicomDataSet& dataSet) {
    const std::string centers = ReadText(dataSet, Tags::kWindowCenter, kLongestDecimals);
    const std::string widths = ReadText(dataSet, Tags::kWindowWidth, kLongestDecimals);
    const auto centerParts = Vantor::SplitValue(centers, '\\');
    const auto widthParts = Vantor::SplitValue(widths, '\\');
    for (size_t i = 0; i < std::min(centerParts.size(), widthParts.size()); ++i) {
        const auto center = ParseDecimal(centerParts[i]);
        const auto width = ParseDecimal(widthParts[i]);
        if (center && width && *width >= 1) return ImageDescription::Window{*center, *width};
    }
    return std::nullopt;
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

// Files that were cut or calculated anew may still have the range of the pixels before.
std::optional<ImageDescription::Range> ReadRange(const TDicomDataSet& dataSet,
                                                 const ImageDescription& image) {
    constexpr int32_t kAbsent = std::numeric_limits<int32_t>::min();
    const auto read = [&](Tag tag) {
        const int32_t number = ReadNumber(dataSet, tag, kAbsent);
        return image.fIsSigned && number != kAbsent ? static_cast<int16_t>(number) : number;
    };
    if (image.fBitsStored < 1 || image.fBitsStored > kBitsOfWord) return std::nullopt;
    const int32_t values = 1 << image.fBitsStored;
    const int32_t lowest = image.fIsSigned ? -values / 2 : 0;
    const ImageDescription::Range range{read(Tags::kSmallestImagePixelValue),
                                        read(Tags::kLargestImagePixelValue)};
    const bool isRange =
        range.fSmallest < range.fLargest && range.fSmallest >= lowest && range.fLargest < lowest + values;
    if (!isRange) return std::nullopt;
    return range;
}

void ReadGrays(const TDicomDataSet& dataSet, ImageDescription& image) {
    image.fRescaleSlope = ReadDecimal(dataSet, Tags::kRescaleSlope).value_or(1);
    image.fRescaleIntercept = ReadDecimal(dataSet, Tags::kRescaleIntercept).value_or(0);
    image.fWindow = ReadWindow(dataSet);
    image.fRange = ReadRange(dataSet, image);
}

// What one frame takes by its description. Colours that two pixels share are written once for both.
uint64_t CountFrameBits(const ImageDescription& image) {
    const auto product = [](uint64_t first, int32_t second) { return first * static_cast<uint64_t>(second); };
    if (image.fPhotometric == Photometric::kYbrFull422 && image.fBitsAllocated == kBitsOfByte) {
        constexpr int32_t kBitsOfPair = 32;
        return product(product(kBitsOfPair, (image.fColumns + 1) / 2), image.fRows);
    }
    const uint64_t samples =
        product(product(product(1, image.fRows), image.fColumns), image.fSamplesPerPixel);
    return product(samples, image.fBitsAllocated);
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
        fFrameBits = CountFrameBits(image);
        ReadGrays(dataSet, image);
        ReadPalettes(dataSet, image);
        image.fCycleLength = ReadCycleLength(dataSet, image.fFrames);
        return image;
    }

    // Empty when the frame cannot be had.
    std::span<const uint8_t> Load(int32_t frame) {
        return fImage.IsEncapsulated() ? LoadCompressed(frame) : LoadNative(frame);
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
        const int64_t pixels = static_cast<int64_t>(image.fRows) * image.fColumns;
        const int64_t most = fImage.GetFileSize() * kMostPixelsOfByte;
        const bool isPossible = image.fCoding == Coding::kOther
                                    ? pixels <= std::max(most, kLargestUnknownPicture)
                                    : pixels <= most / image.fFrames;
        if (!isPossible) ThrowNoImage("the file is too small for an image of the size that it tells");
    }

    // ---- Native frames ----

    // They follow each other without a gap, also where the last byte of one has the first bits of the next.
    // What is behind them is no part of them. Pixel data that is too short for all of them is shared out.
    uint64_t FindFrameBits() const {
        const auto available = static_cast<uint64_t>(fImage.GetPixelDataLength()) * kBitsOfByte;
        const auto frames = static_cast<uint64_t>(fImage.GetFrameCount());
        if (fFrameBits <= available / frames) return fFrameBits;
        return static_cast<uint64_t>(fImage.GetFrameSize()) * kBitsOfByte;
    }

    // Pixels of 8 bits are in words as well, where the element says so.
    bool HasForeignWords() const { return fImage.IsBigEndian() && fImage.GetPixelDataVR() == Vr::kOW; }

    std::span<const uint8_t> LoadNative(int32_t frame) {
        if (frame < 1 || frame > fImage.GetFrameCount()) return {};
        const uint64_t bits = FindFrameBits();
        const uint64_t start = static_cast<uint64_t>(frame - 1) * bits;
        const uint64_t first = start / kBitsOfByte;
        const uint64_t end = (start + bits + kBitsOfByte - 1) / kBitsOfByte;
        if (!ReadBytes(first, end)) return {};
        ShiftDown(static_cast<uint32_t>(start % kBitsOfByte));
        fBytes.resize(static_cast<size_t>((bits + kBitsOfByte - 1) / kBitsOfByte));
        return fBytes;
    }

    // Words are turned round as a whole, also where a frame begins or ends inside one.
    bool ReadBytes(uint64_t first, uint64_t end) {
        if (!HasForeignWords()) return Read(first, end, fBytes);
        const uint64_t before = first % kWordSize;
        std::vector<uint8_t> words;
        if (!Read(first - before, end + end % kWordSize, words)) return false;
        fBytes.resize(words.size());
        Vantor::ByteOrder::CopySwappedPairs(fBytes.data(), words.data(), static_cast<uint32_t>(words.size()));
        fBytes.erase(fBytes.begin(), fBytes.begin() + static_cast<std::ptrdiff_t>(before));
        fBytes.resize(static_cast<size_t>(end - first));
        return true;
    }

    bool Read(uint64_t first, uint64_t end, std::vector<uint8_t>& bytes) {
        return fImage.ReadPixelData(static_cast<int64_t>(first), static_cast<int64_t>(end - first), bytes);
    }

    // The first pixel is the lowest bit of the first byte then.
    void ShiftDown(uint32_t bits) {
        if (bits == 0) return;
        for (size_t i = 0; i < fBytes.size(); ++i) {
            const uint32_t next = i + 1 < fBytes.size() ? fBytes[i + 1] : 0;
            fBytes[i] = static_cast<uint8_t>((next << kBitsOfByte | fBytes[i]) >> bits);
        }
    }

    // ---- Compressed frames ----

    std::span<const uint8_t> LoadCompressed(int32_t frame) {
        fBytes.clear();
        fImage.LoadFrame(frame);
        if (fImage.GetFrame() == nullptr || !fImage.JoinFragments(fBytes)) return {};
        return fBytes;
    }

    TImageFile fImage;
    uint64_t fFrameBits = 0;
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
