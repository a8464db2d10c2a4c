#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "dicom/TDicomFile.h"

namespace Vantor {

// The file of an image instance. It is read without its pixel data, however large that is; where the pixels
// and their frames lie is noted, and frames are read one at a time.
class TImageFile : public TDicomFile {
  public:
    // The largest part of a file that is mapped into memory at once, and the most that is read of a stream.
    static constexpr int64_t kLargestView = 0x3FF00000;
    static constexpr int64_t kStreamReadSize = 0x600000;

    using TDicomFile::TDicomFile;
    ~TImageFile() override;

    // As TDicomFile::InitNewFile: this object has no pixels then, whatever file it has read before. To be
    // called on an image file as such, as its base knows nothing of pixels.
    void InitNewFile(uintptr_t owner, const TFileSpec& fileSpec, uintptr_t context,
                     std::unique_ptr<TDicomDataSet> dataSet, const char* sopClassUID,
                     const char* sopInstanceUID, const char* transferSyntaxUID,
                     const char* implementationClassUID, bool isBigEndian);

    // The data set without pixels, read on the first call; null when the file cannot be read as an image.
    TDicomDataSet* GetDataSet() override;

    // Builds a new multi-frame file with this file's meta information and data set: BeginCopy writes its
    // start to the destination and gives this file's number of frames instead of bytes, frames are appended
    // (AppendFrame, AppendFrameOf, or CopyNextChunk for this file's own next one), and EndCopy puts lengths,
    // the basic offset table and Number of Frames right. After a commit this object has read the new file;
    // GetDataSet is null when that could not be read back.
    //
    // The new file has the elements that this one has at BeginCopy; later changes do not reach it. Elements
    // that follow the pixel data, and those of its group that describe the old pixels, are left out. A new
    // file that has no pixels yet gets them this way, compressed ones when its transfer syntax is not one of
    // the three uncompressed ones.
    //
    // BeginCopy throws what ReadAllButPixels throws; the destination is not touched then. A failure of
    // EndCopy to complete the new file passes after the copy was abandoned; the data set is released.
    int32_t BeginCopy(const TFileSpec& destination, int64_t& frameCount) override;

    // Appends this file's next frame to the copy under way and gives the number of frames that remain; 0
    // outside a copy. Throws TException 102 "Invalid Dicom Image File" when the frame cannot be had, so that
    // a caller's loop ends and the copy can be abandoned.
    int64_t CopyNextChunk() override;
    void EndCopy(const TFileSpec* destination) override;

    // Reads one frame, counted from 1, into the frame buffer: 1, or −1 when it cannot be had. The frame that
    // was asked for last is not read again, also when it could not be had: look at GetFrameLength.
    // Native frames are their pixels, the only frame of a file all that follows to its end; an encapsulated
    // frame is its items with their headers, and the only frame of a file without offset table is all that
    // follows the table, to the end of the file. Failures of the operating system pass as FileException. A
    // file that was closed before is closed again.
    virtual int32_t LoadFrame(int32_t frameNumber);

    // Appends one frame to the copy under way: the bytes of a native frame, or of a compressed one, which
    // becomes one item. 1, or −1 outside a copy, without bytes, for a native frame that has not the length
    // of the first one, and when the pixel data's length would not fit into its element.
    virtual int32_t AppendFrame(const void* bytes, uint32_t length);

    // Appends a frame of another image file, whose fragments become one item. −1 outside a copy, when the
    // frame cannot be had, or when its bytes would mean something else in the new file: one is encapsulated
    // and the other is not, the compression differs, or the byte order of native pixels does.
    virtual int32_t AppendFrameOf(TImageFile& source, int32_t frameNumber);

    // Reads the meta information and every element before the pixel data, and notes where the pixels are.
    // Does nothing when a meta or main data set is there already. The file need not be open. Throws
    // TException 102 "Invalid Dicom File" (no meta information), 102 "Invalid Dicom Image File" (no pixel
    // data), 102 "Can't Process Dicom File" (elements that cannot be walked), 102 "File System Error"
    // (reading failed half way), 106 "File Too Large" (no view to be had; so also for an empty file), 0
    // "Can't get memory", and FileException when the file cannot be opened. Nothing stays loaded then.
    void ReadAllButPixels();

    // The value of Number of Frames; 0 when it is absent, empty or no number.
    int32_t GetNumberOfFrames();

    // ---- What ReadAllButPixels found ----

    // The number of frames that can be asked for: at least 1.
    int32_t GetFrameCount() const { return fFrameCount; }

    // Bytes in a native frame; 0 for encapsulated pixel data.
    int64_t GetFrameSize() const { return fFrameSize; }

    // Where the pixel data's value starts in the file, and its length there; −1 until known.
    int64_t GetPixelDataOffset() const { return fPixelDataOffset; }
    int64_t GetPixelDataLength() const { return fPixelDataLength; }
    VrCode GetPixelDataVR() const { return fPixelDataVR; }
    bool IsEncapsulated() const { return fIsEncapsulated; }

    // Where each frame's first fragment lies in the file, 0 where that is not known. Empty for native data.
    const std::vector<int64_t>& GetFrameOffsets() const { return fFrameOffsets; }

    // The frame that LoadFrame read; valid until the next call. Null and 0 when there is none.
    const uint8_t* GetFrame() const { return fFrame.empty() ? nullptr : fFrame.data(); }
    int64_t GetFrameLength() const { return static_cast<int64_t>(fFrame.size()); }

    // Reads bytes of the pixel data's value, items with their headers included, from a place in it. False
    // when the file does not have all of them; there is no memory taken for them then. The frame that
    // LoadFrame read stays. Failures of the operating system pass as FileException. A file that was closed
    // before is closed again.
    bool ReadPixelData(int64_t offset, int64_t count, std::vector<uint8_t>& bytes);

    // How many of a native frame's bytes are pixels: the only frame of a file was read with what follows it.
    int64_t LoadedPixelsLength() const;

    // Puts the content of an encapsulated frame's items together. False when something else is among them.
    bool JoinFragments(std::vector<uint8_t>& joined) const;

  private:
    class Opening;      // has the file open for a while
    class FrameWriter;  // the copy under way

    // Lets the inherited constructors do without the definition of FrameWriter.
    struct FrameWriterDeleter {
        void operator()(FrameWriter* writer) const;
    };

    // A pixel data element's header as it stands in the file; in implicit VR it is shorter.
    static constexpr size_t kLongestPixelHeader = 12;
    using PixelHeader = std::array<uint8_t, kLongestPixelHeader>;

    static constexpr uint32_t kOffsetTableEntrySize = 4;

    // The part of the file, from its start, that is in memory.
    struct View {
        const uint8_t* fBytes;
        int64_t fCount;
    };

    // A run of bytes in the file.
    struct Range {
        int64_t fStart;
        int64_t fEnd;
    };

    struct ItemHeader {
        Tag fTag;
        uint32_t fLength;
    };

    // Reading.
    void ReadFromMapping();
    void ReadFromStream();
    void ReadContent(const View& view);
    void ReadMetaInformation(const View& view);
    bool ReadElements(const View& view);
    bool ReadElementsBehindPalettes(const TDicomDataSet& inView);
    int64_t EstimatePaletteEnd(const TDicomDataSet& inView) const;
    std::optional<int32_t> FindPixelElement(const TDicomDataSet& dataSet, bool isWholeFile,
                                            int32_t headerSize);
    void KeepPixelHeader(const TDicomDataSet& dataSet, int32_t offset);
    uint32_t PixelLengthField() const;
    int32_t PixelHeaderSize() const;
    size_t ReadAt(const View& view, int64_t offset, void* buffer, size_t count);
    void ForgetContent();

    // The frame table.
    static int32_t ReadNumberOfFrames(const TDicomDataSet& dataSet);
    void BuildFrameTable(const View& view);
    void BuildNativeFrames();
    void BuildFramesWithoutTable();
    void BuildFramesFromTable(const View& view, uint32_t tableLength);
    bool IsTableLength(uint32_t length) const;
    ItemHeader DecodeItemHeader(const uint8_t* bytes) const;

    // Frames.
    bool ReadFrame(int32_t frameNumber);
    std::optional<Range> FindFrame(int32_t frameNumber);
    bool FindFragments();

    // Copying.
    bool IsCopying() const;
    bool HasCompressedSyntax() const;
    PixelHeader MakePixelHeader(bool isEncapsulated) const;
    std::unique_ptr<TDicomDataSet> CloneElements() const;
    bool HasSamePixelForm(const TImageFile& source) const;

    PixelHeader fPixelDataHeader{};
    VrCode fPixelDataVR = 0;
    int64_t fPixelDataOffset = -1;
    int64_t fPixelDataLength = -1;
    int32_t fFrameCount = 1;
    int64_t fFrameSize = 0;
    bool fIsEncapsulated = false;
    bool fHasOffsetTable = false;  // the basic offset table was not empty
    std::vector<int64_t> fFrameOffsets;

    int32_t fLoadedFrame = 0;  // the frame asked for last, 0 before the first
    std::vector<uint8_t> fFrame;

    std::unique_ptr<FrameWriter, FrameWriterDeleter> fWriter;  // null outside a copy
    int32_t fCopiedFrames = 0;                                 // how many CopyNextChunk has appended
};

}  // namespace Vantor
