#include "platform/AviWriter.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <string_view>
#include <utility>

#include "platform/FileException.h"
#include "platform/VideoCompression.h"

namespace Vantor::Platform {

namespace {

// Sizes in the file.
constexpr uint32_t kChunkHeaderSize = 8;    // a code of four characters and the size of what follows
constexpr uint32_t kFormTypeSize = 4;       // the code that a list begins with
constexpr uint32_t kMainHeaderSize = 56;    // "avih"
constexpr uint32_t kStreamHeaderSize = 56;  // "strh"
constexpr uint32_t kFormatSize = 40;        // "strf"
constexpr uint32_t kIndexEntrySize = 16;
constexpr uint32_t kStreamListSize =
    kFormTypeSize + kChunkHeaderSize + kStreamHeaderSize + kChunkHeaderSize + kFormatSize;
constexpr uint32_t kHeaderListSize =
    kFormTypeSize + kChunkHeaderSize + kMainHeaderSize + kChunkHeaderSize + kStreamListSize;
constexpr uint32_t kStartOfMovieList = kChunkHeaderSize + kFormTypeSize + kChunkHeaderSize + kHeaderListSize;
constexpr uint32_t kStartOfFrames = kStartOfMovieList + kChunkHeaderSize + kFormTypeSize;

// Figures of the headers.
constexpr uint32_t kHasIndex = 0x10;  // of the main header
constexpr uint32_t kKeyFrame = 0x10;  // of an entry of the index
constexpr uint32_t kOneStream = 1;
constexpr uint32_t kScale = 1;
constexpr uint32_t kMicrosecondsOfSecond = 1'000'000;
constexpr uint16_t kPlanes = 1;
constexpr uint16_t kBitsOfPixel = 24;
constexpr uint32_t kNotCompressed = 0;
constexpr uint32_t kPixelsOfMeter = 2835;  // 72 dots to the inch
constexpr uint32_t kNone = 0;

constexpr std::string_view kUncompressedFrame = "00db";
constexpr std::string_view kCompressedFrame = "00dc";

// Bytes of the file in the making: numbers with their lowest byte first.
class Bytes {
  public:
    Bytes& Code(std::string_view code) {
        fBytes.insert(fBytes.end(), code.begin(), code.end());
        return *this;
    }

    Bytes& Number16(uint16_t number) { return Append(number, sizeof(number)); }
    Bytes& Number32(uint32_t number) { return Append(number, sizeof(number)); }

    Bytes& Chunk(std::string_view code, uint32_t size) { return Code(code).Number32(size); }
    Bytes& List(std::string_view code, uint32_t size, std::string_view type) {
        return Chunk(code, size).Code(type);
    }

    void WriteTo(File& file) const { file.Write(fBytes.data(), fBytes.size()); }
    size_t GetSize() const { return fBytes.size(); }
    void Reserve(size_t size) { fBytes.reserve(size); }
    void Clear() { fBytes.clear(); }

  private:
    Bytes& Append(uint32_t number, size_t count) {
        constexpr int kBitsOfByte = 8;
        for (size_t index = 0; index < count; ++index) {
            fBytes.push_back(static_cast<uint8_t>(number >> (index * kBitsOfByte)));
        }
        return *this;
    }

    std::vector<uint8_t> fBytes;
};

bool IsUncompressed(const VideoStream& stream) {
    return stream.fHandler == kUncompressedHandler || stream.fHandler == kNone;
}

std::string_view FrameCode(const VideoStream& stream) {
    return IsUncompressed(stream) ? kUncompressedFrame : kCompressedFrame;
}

// Chunks begin at even places.
uint32_t Padded(uint32_t size) { return size + size % 2; }

// The rectangle of a stream has 16-bit numbers.
uint16_t Coordinate(int32_t pixels) {
    return static_cast<uint16_t>(std::min<int32_t>(pixels, std::numeric_limits<int16_t>::max()));
}

void AppendMainHeader(Bytes& bytes, const VideoStream& stream, const std::vector<uint32_t>& sizes,
                      bool hasIndex) {
    const uint32_t largest = sizes.empty() ? kNone : *std::max_element(sizes.begin(), sizes.end());
    const uint64_t bytesOfSecond = uint64_t{largest} * stream.fRate;
    bytes.Chunk("avih", kMainHeaderSize)
        .Number32(kMicrosecondsOfSecond / std::max<uint32_t>(stream.fRate, 1))
        .Number32(
            static_cast<uint32_t>(std::min<uint64_t>(bytesOfSecond, std::numeric_limits<uint32_t>::max())))
        .Number32(kNone)  // no padding
        .Number32(hasIndex ? kHasIndex : kNone)
        .Number32(static_cast<uint32_t>(sizes.size()))
        .Number32(kNone)  // initial frames
        .Number32(kOneStream)
        .Number32(largest)
        .Number32(static_cast<uint32_t>(stream.fWidth))
        .Number32(static_cast<uint32_t>(stream.fHeight));
    for (int reserved = 0; reserved < 4; ++reserved) bytes.Number32(kNone);
}

void AppendStreamHeader(Bytes& bytes, const VideoStream& stream, uint32_t length) {
    bytes.Chunk("strh", kStreamHeaderSize)
        .Code("vids")
        .Number32(stream.fHandler)
        .Number32(kNone)  // flags
        .Number32(kNone)  // priority and language
        .Number32(kNone)  // initial frames
        .Number32(kScale)
        .Number32(stream.fRate)
        .Number32(kNone)  // start
        .Number32(length)
        .Number32(kNone)  // suggested size of a buffer
        .Number32(stream.fQuality)
        .Number32(kNone)  // size of a sample: frames differ
        .Number16(0)
        .Number16(0)
        .Number16(Coordinate(stream.fWidth))
        .Number16(Coordinate(stream.fHeight));
}

void AppendFormat(Bytes& bytes, const VideoStream& stream) {
    bytes.Chunk("strf", kFormatSize)
        .Number32(kFormatSize)
        .Number32(static_cast<uint32_t>(stream.fWidth))
        .Number32(static_cast<uint32_t>(stream.fHeight))
        .Number16(kPlanes)
        .Number16(kBitsOfPixel)
        .Number32(IsUncompressed(stream) ? kNotCompressed : stream.fHandler)
        .Number32(stream.fImageSize)
        .Number32(kPixelsOfMeter)
        .Number32(kPixelsOfMeter)
        .Number32(kNone)  // no palette
        .Number32(kNone);
}

}  // namespace

AviWriter::AviWriter(std::unique_ptr<File> file, const VideoStream& stream, int64_t largest)
    : fFile(std::move(file)), fStream(stream), fLargest(largest), fEnd(kStartOfFrames) {
    WriteHeaders(false);
}

AviWriter::~AviWriter() { Finish(); }

bool AviWriter::WriteFrame(const uint8_t* bytes, size_t size) {
    if (!fTakesFrames || !HasRoomFor(size)) {
        fTakesFrames = false;
        return false;
    }
    try {
        const auto length = static_cast<uint32_t>(size);
        Bytes header;
        header.Chunk(FrameCode(fStream), length).WriteTo(*fFile);
        fFile->Write(bytes, size);
        constexpr uint8_t kFill = 0;
        if (Padded(length) != length) fFile->Write(&kFill, sizeof(kFill));
        fSizes.push_back(length);
        fEnd += kChunkHeaderSize + Padded(length);
    } catch (const std::exception&) {
        fTakesFrames = false;  // a part of the frame may be written; it is cut off when the file is finished
    }
    return fTakesFrames;
}

int32_t AviWriter::Finish() {
    if (fFile == nullptr) return fResult;
    try {
        fResult = Complete();
        fFile->Close();
    } catch (const std::exception&) {
        fResult = -1;
    }
    fFile.reset();
    fTakesFrames = false;
    return fResult;
}

int32_t AviWriter::Complete() {
    bool hasIndex = TryToWriteIndex();
    if (!hasIndex) {
        MakeRoomForIndex();
        hasIndex = TryToWriteIndex();
    }
    if (!hasIndex) fFile->SetLength(fEnd);
    WriteHeaders(hasIndex);
    return static_cast<int32_t>(fSizes.size());
}

// With the frame and its entry in the index.
bool AviWriter::HasRoomFor(size_t size) const {
    const auto limit = static_cast<uint64_t>(std::max<int64_t>(fLargest, 0));
    if (size > limit) return false;
    const uint64_t frame = kChunkHeaderSize + uint64_t{Padded(static_cast<uint32_t>(size))};
    return static_cast<uint64_t>(fEnd + SizeOfIndex()) + frame + kIndexEntrySize <= limit;
}

int64_t AviWriter::SizeOfIndex() const {
    return kChunkHeaderSize + static_cast<int64_t>(fSizes.size()) * kIndexEntrySize;
}

void AviWriter::WriteHeaders(bool hasIndex) {
    const auto frames = static_cast<uint32_t>(fEnd - kStartOfFrames);
    const auto whole = static_cast<uint32_t>(fEnd + (hasIndex ? SizeOfIndex() : 0));
    Bytes bytes;
    bytes.Reserve(kStartOfFrames);
    bytes.List("RIFF", whole - kChunkHeaderSize, "AVI ").List("LIST", kHeaderListSize, "hdrl");
    AppendMainHeader(bytes, fStream, fSizes, hasIndex);
    bytes.List("LIST", kStreamListSize, "strl");
    AppendStreamHeader(bytes, fStream, static_cast<uint32_t>(fSizes.size()));
    AppendFormat(bytes, fStream);
    bytes.List("LIST", kFormTypeSize + frames, "movi");
    fFile->Seek(0);
    bytes.WriteTo(*fFile);
}

bool AviWriter::TryToWriteIndex() {
    try {
        fFile->SetLength(fEnd);
        fFile->Seek(fEnd);
        WriteIndex();
        return true;
    } catch (const FileException&) {
        return false;
    }
}

// Entry by entry: the kind of chunk, its flags, its place behind the word "movi", its size.
void AviWriter::WriteIndex() {
    constexpr size_t kBlock = size_t{1} << 16;
    Bytes bytes;
    bytes.Reserve(kBlock + kIndexEntrySize);
    bytes.Chunk("idx1", static_cast<uint32_t>(fSizes.size()) * kIndexEntrySize);
    uint32_t place = kFormTypeSize;
    for (const uint32_t size : fSizes) {
        bytes.Code(FrameCode(fStream)).Number32(kKeyFrame).Number32(place).Number32(size);
        place += kChunkHeaderSize + Padded(size);
        if (bytes.GetSize() >= kBlock) {
            bytes.WriteTo(*fFile);
            bytes.Clear();
        }
    }
    bytes.WriteTo(*fFile);
}

// As many frames at the end as the index is long, but never the only one: a movie can do without an index.
void AviWriter::MakeRoomForIndex() {
    const int64_t needed = fEnd - SizeOfIndex();
    while (fEnd > needed && fSizes.size() > 1) DropLastFrame();
}

void AviWriter::DropLastFrame() {
    fEnd -= kChunkHeaderSize + Padded(fSizes.back());
    fSizes.pop_back();
}

}  // namespace Vantor::Platform
