#include "dicom/TImageFileFrameWriter.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "dicom/ByteOrder.h"
#include "dicom/TDicomDataSetLayout.h"
#include "platform/FileException.h"

namespace Vantor {

using namespace DataSetLayout;

namespace {

constexpr int64_t kMoveSize = 0x100000;  // how much is held while frames are moved

// The longest pixel data or item whose even length a 32-bit field can hold beside the undefined length.
constexpr int64_t kLongestPixelData = TDicomDataSet::kUndefinedLength - 1;

}  // namespace

TImageFile::FrameWriter::FrameWriter(Platform::File& file, std::unique_ptr<TDicomDataSet> elements,
                                     const PixelHeader& pixelHeader, bool isEncapsulated,
                                     int32_t expectedFrames)
    : fFile(file),
      fElements(std::move(elements)),
      fPixelHeader(pixelHeader),
      fIsEncapsulated(isEncapsulated),
      fExpectedFrames(expectedFrames) {}

void TImageFile::FrameWriter::Start(const TDicomDataSet& metaInformation) {
    SeekTo(fFile, 0);
    WritePreamble(fFile);
    WriteBytes(fFile, metaInformation.GetDataSet(), static_cast<size_t>(metaInformation.GetDataSetSize()));
    fElementsStart = fFile.GetPosition();
    WriteElements(0);
    fFirstFrame = HeaderEnd() + OffsetTableSize(fExpectedFrames);
    fEnd = fFirstFrame;
}

bool TImageFile::FrameWriter::Append(const void* bytes, uint32_t length) {
    if (bytes == nullptr || !CanAppend(length)) return false;
    SeekTo(fFile, fEnd);
    if (fIsEncapsulated) WriteItemHeader(Tags::kItem, length + length % 2);
    WriteBytes(fFile, bytes, length);
    if (fIsEncapsulated) PadToEvenLength();
    fFrameOffsets.push_back(fEnd - fFirstFrame);
    fEnd = fFile.GetPosition();
    fNativeLength = length;
    return true;
}

bool TImageFile::FrameWriter::CanAppend(uint32_t length) const {
    if (length == 0 || fFrameOffsets.size() >= std::numeric_limits<int32_t>::max()) return false;
    if (fIsEncapsulated) return length <= kLongestPixelData;
    // Frames of native pixel data are told apart by nothing but their common length.
    if (!fFrameOffsets.empty() && length != fNativeLength) return false;
    return fEnd - fFirstFrame + length <= kLongestPixelData;
}

void TImageFile::FrameWriter::Finish() {
    UpdateNumberOfFrames();
    const int64_t entries = FitsOffsetTable() ? static_cast<int64_t>(fFrameOffsets.size()) : 0;
    MoveFrames(HeaderEnd() + OffsetTableSize(entries));
    SeekTo(fFile, fEnd);
    if (fIsEncapsulated) {
        WriteItemHeader(Tags::kSequenceDelimitation, 0);
    } else {
        PadToEvenLength();
    }
    const int64_t fileSize = fFile.GetPosition();
    WriteElements(static_cast<uint32_t>(fileSize - fFirstFrame));
    if (fIsEncapsulated) WriteOffsetTable(entries);
    SetFileLength(fFile, fileSize);
    fFile.Flush();
}

// A single frame needs no number; where there is one it must be right.
void TImageFile::FrameWriter::UpdateNumberOfFrames() {
    const auto count = static_cast<int32_t>(fFrameOffsets.size());
    const bool isStored = fElements->FindElement(Tags::kNumberOfFrames);
    if (isStored ? ReadNumberOfFrames(*fElements) == count : count == 1) return;
    char text[std::numeric_limits<int32_t>::digits10 + 1];
    const char* end = std::to_chars(std::begin(text), std::end(text), count).ptr;
    const auto length = static_cast<uint32_t>(end - text);
    fElements->PutElement(Tags::kNumberOfFrames, Vr::kIS, length, text, length);
}

bool TImageFile::FrameWriter::FitsOffsetTable() const {
    constexpr int64_t kLargestOffset = std::numeric_limits<uint32_t>::max();
    return fFrameOffsets.empty() || fFrameOffsets.back() <= kLargestOffset;
}

int64_t TImageFile::FrameWriter::OffsetTableSize(int64_t entries) const {
    return fIsEncapsulated ? kItemHeaderSize + entries * kOffsetTableEntrySize : 0;
}

// Where the pixel data's value starts in the file.
int64_t TImageFile::FrameWriter::HeaderEnd() const {
    const int32_t pixelHeaderSize = fElements->IsExplicit() ? kLongHeaderSize : kShortHeaderSize;
    return fElementsStart + fElements->GetDataSetSize() + pixelHeaderSize;
}

void TImageFile::FrameWriter::WriteElements(uint32_t pixelLength) {
    const bool isExplicit = fElements->IsExplicit();
    const uint32_t length = fIsEncapsulated ? TDicomDataSet::kUndefinedLength : pixelLength;
    EncodeTag(fPixelHeader.data(), Tags::kPixelData);
    EncodeNumber32(fPixelHeader.data() + (isExplicit ? kLongLengthField : kImplicitLengthField), length);

    SeekTo(fFile, fElementsStart);
    WriteBytes(fFile, fElements->GetDataSet(), static_cast<size_t>(fElements->GetDataSetSize()));
    WriteBytes(fFile, fPixelHeader.data(), isExplicit ? kLongHeaderSize : kShortHeaderSize);
}

// At the file's position, behind the elements.
void TImageFile::FrameWriter::WriteOffsetTable(int64_t entries) {
    std::vector<uint8_t> table(static_cast<size_t>(entries) * kOffsetTableEntrySize);
    for (size_t i = 0; i < static_cast<size_t>(entries); ++i) {
        EncodeNumber32(&table[i * kOffsetTableEntrySize], static_cast<uint32_t>(fFrameOffsets[i]));
    }
    WriteItemHeader(Tags::kItem, static_cast<uint32_t>(table.size()));
    WriteBytes(fFile, table.data(), table.size());
}

void TImageFile::FrameWriter::WriteItemHeader(Tag tag, uint32_t length) {
    uint8_t header[kItemHeaderSize];
    EncodeTag(header, tag);
    EncodeNumber32(header + kTagSize, length);
    WriteBytes(fFile, header, sizeof(header));
}

void TImageFile::FrameWriter::PadToEvenLength() {
    constexpr uint8_t kPad = 0;
    const int64_t length = fFile.GetPosition() - fFirstFrame;
    if (length % 2 != 0) WriteBytes(fFile, &kPad, sizeof(kPad));
}

// Moves all frames within the file, in an order that overwrites nothing before it was moved.
void TImageFile::FrameWriter::MoveFrames(int64_t firstFrame) {
    const int64_t distance = firstFrame - fFirstFrame;
    const int64_t size = fEnd - fFirstFrame;
    std::vector<uint8_t> bytes(distance == 0 ? 0 : static_cast<size_t>(std::min(size, kMoveSize)));
    for (int64_t moved = 0; moved < size && distance != 0;) {
        const int64_t count = std::min(size - moved, kMoveSize);
        const int64_t from = distance > 0 ? fEnd - moved - count : fFirstFrame + moved;
        SeekTo(fFile, from);
        if (ReadBytes(fFile, bytes.data(), static_cast<size_t>(count)) < static_cast<size_t>(count)) {
            throw Platform::FileException(Platform::FileException::Cause::kEndOfFile, 0, "image data");
        }
        SeekTo(fFile, from + distance);
        WriteBytes(fFile, bytes.data(), static_cast<size_t>(count));
        moved += count;
    }
    fFirstFrame += distance;
    fEnd += distance;
}

void TImageFile::FrameWriter::EncodeTag(uint8_t* bytes, Tag tag) const {
    const bool isBigEndian = fElements->IsBigEndian();
    ByteOrder::CopyNumber(bytes, &tag.fGroup, sizeof(tag.fGroup), isBigEndian);
    ByteOrder::CopyNumber(bytes + kElementField, &tag.fElement, sizeof(tag.fElement), isBigEndian);
}

void TImageFile::FrameWriter::EncodeNumber32(uint8_t* bytes, uint32_t number) const {
    ByteOrder::CopyNumber(bytes, &number, sizeof(number), fElements->IsBigEndian());
}

}  // namespace Vantor
