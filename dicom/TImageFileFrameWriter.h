#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "dicom/TImageFile.h"

namespace Vantor {

// Writes a DICOM file whose pixel data comes frame by frame, and whose number of frames is only known at the
// end. Everything goes to the destination at once: no more than a header and the frames' places is held.
//
// Failures of the operating system pass as Platform::FileException. After one, or after Finish, only the
// destructor is left.
class TImageFile::FrameWriter {
  public:
    // `file` must outlive this object; what it holds is overwritten. `elements` are those before the pixel
    // data, which gets the given header; the length in it does not matter. Room is left for the offset table
    // of `expectedFrames` frames: with another number, Finish moves the frames.
    FrameWriter(Platform::File& file, std::unique_ptr<TDicomDataSet> elements, const PixelHeader& pixelHeader,
                bool isEncapsulated, int32_t expectedFrames);

    // Writes everything before the first frame.
    void Start(const TDicomDataSet& metaInformation);

    // Appends a frame: as it is, or encapsulated as one item. False, and nothing happens, for a frame
    // without bytes, a native one that is not as long as the first, and one that would make the pixel data
    // or the item longer than its length field can say.
    bool Append(const void* bytes, uint32_t length);

    // Completes the file and hands it to the medium: Number of Frames, the length of native pixel data or
    // the offset table and the delimiter of encapsulated ones. Where an offset does not fit into the table's
    // 32 bits, the table is left empty.
    void Finish();

    bool IsEncapsulated() const { return fIsEncapsulated; }

  private:
    bool CanAppend(uint32_t length) const;
    bool FitsOffsetTable() const;
    int64_t OffsetTableSize(int64_t entries) const;
    int64_t HeaderEnd() const;
    void UpdateNumberOfFrames();
    void WriteElements(uint32_t pixelLength);
    void WriteOffsetTable(int64_t entries);
    void WriteItemHeader(Tag tag, uint32_t length);
    void PadToEvenLength();
    void MoveFrames(int64_t firstFrame);
    void EncodeTag(uint8_t* bytes, Tag tag) const;
    void EncodeNumber32(uint8_t* bytes, uint32_t number) const;

    Platform::File& fFile;
    std::unique_ptr<TDicomDataSet> fElements;
    PixelHeader fPixelHeader;
    bool fIsEncapsulated;
    int32_t fExpectedFrames;
    int64_t fElementsStart = 0;          // where the main data set starts in the file
    int64_t fFirstFrame = 0;             // where the first frame starts
    int64_t fEnd = 0;                    // behind the last frame
    uint32_t fNativeLength = 0;          // of each native frame, 0 before the first
    std::vector<int64_t> fFrameOffsets;  // from fFirstFrame
};

}  // namespace Vantor
