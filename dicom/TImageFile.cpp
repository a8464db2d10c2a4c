#include "dicom/TImageFile.h"

#include <algorithm>
#include <limits>
#include <new>
#include <string_view>
#include <utility>

#include "dicom/ByteOrder.h"
#include "dicom/TDicomDataSetLayout.h"
#include "dicom/TException.h"
#include "dicom/TImageFileFrameWriter.h"
#include "dicom/TTextUtil.h"
#include "platform/FileException.h"
#include "platform/MappedFile.h"

namespace Vantor {

using namespace DataSetLayout;

namespace {

// Answers about one frame, and about the beginning of a copy.
constexpr int32_t kFrameDone = 1;
constexpr int32_t kNoFrame = -1;
constexpr int32_t kCopyBegun = 0;

constexpr uint32_t kLongestNumberOfFrames = 12;
constexpr int64_t kBitsInByte = 8;

// The smallest frame in encapsulated pixel data is an empty fragment.
constexpr int64_t kSmallestFrame = kItemHeaderSize;

// The data set without pixels gets a tenth of its size as room, and may grow to ten times its size.
constexpr int64_t kRoomDivisor = 10;
constexpr int64_t kGrowthLimit = 10;

// A palette descriptor: the number of entries and the first value mapped, which together are 0 for a palette
// of 65,536 entries from 0 on, and last the bits of an entry.
constexpr size_t kShortestDescriptor = 3;
constexpr size_t kLongestDescriptor = 4;
constexpr int64_t kLargestPalette = 65536;
constexpr int64_t kPalettes = 3;
constexpr int64_t kRoomBehindPalettes = 4096;
constexpr int64_t kPaletteGrowthDivisor = 4;

[[noreturn]] void ThrowError(const char* text) { throw new TException(ErrorNumbers::kRecordStructure, text); }

[[noreturn]] void ThrowOutOfMemory() {
    throw new TException(ErrorNumbers::kFileBufferMemory, "Can't get memory");
}

int32_t ClampToDataSetSize(int64_t size) {
    return static_cast<int32_t>(std::min<int64_t>(size, std::numeric_limits<int32_t>::max()));
}

// A data set that has `size` bytes and memory for `room` more, and that grows by `growBy`.
std::unique_ptr<TDicomDataSet> MakeDataSet(const TDicomFile& file, int32_t size, int64_t room,
                                           int64_t growBy) {
    try {
        auto dataSet = std::make_unique<TDicomDataSet>(
            file.IsExplicit(), file.IsBigEndian(), static_cast<uint32_t>(size + room),
            static_cast<uint32_t>(std::max<int64_t>(growBy, 1)), ClampToDataSetSize(size * kGrowthLimit),
            file.GetContext());
        dataSet->SetDataSetSize(size);
        return dataSet;
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        ThrowOutOfMemory();
    }
}

std::unique_ptr<TDicomDataSet> MakeDataSet(const TDicomFile& file, const uint8_t* bytes, int32_t size) {
    const int64_t room = size / kRoomDivisor;
    auto dataSet = MakeDataSet(file, size, room, room);
    if (size > 0) std::copy_n(bytes, size, dataSet->GetDataSet());
    return dataSet;
}

// Wraps bytes that are only read.
TDicomDataSet WrapBytes(const TDicomFile& file, const uint8_t* bytes, int64_t count) {
    const auto size = static_cast<int32_t>(count);
    return TDicomDataSet(file.IsExplicit(), file.IsBigEndian(), const_cast<uint8_t*>(bytes), size, size);
}

uint64_t ReadImageNumber(const TDicomDataSet& dataSet, Tag tag) {
    uint16_t number = 0;
    return dataSet.FindElement(tag, nullptr, nullptr, &number, sizeof(number)) ? number : 0;
}

// What one frame takes by the description of the image; 0 when that is not complete.
int64_t DescribedFrameSize(const TDicomDataSet& dataSet) {
    const uint64_t bits = ReadImageNumber(dataSet, Tags::kRows) * ReadImageNumber(dataSet, Tags::kColumns) *
                          ReadImageNumber(dataSet, Tags::kSamplesPerPixel) *
                          ReadImageNumber(dataSet, Tags::kBitsAllocated);
    return static_cast<int64_t>(bits / kBitsInByte + (bits % kBitsInByte != 0 ? 1 : 0));
}

}  // namespace

// Has a file open for reading as long as it lives. A file that this thread has open already, as during a
// copy, stays open.
class TImageFile::Opening {
  public:
    explicit Opening(TImageFile& file) : fFile(file), fGuard(file.fLock), fWasOpen(file.IsOpen()) {
        if (!fWasOpen) fFile.OpenFile(Platform::FileAccess::kRead);
    }
    ~Opening() {
        if (!fWasOpen) fFile.CloseFile();
    }
    Opening(const Opening&) = delete;
    Opening& operator=(const Opening&) = delete;

  private:
    TImageFile& fFile;
    std::lock_guard<std::recursive_mutex> fGuard;  // another thread that has the file open is waited for
    bool fWasOpen;
};

void TImageFile::FrameWriterDeleter::operator()(FrameWriter* writer) const { delete writer; }

TImageFile::~TImageFile() = default;

void TImageFile::InitNewFile(uintptr_t owner, const TFileSpec& fileSpec, uintptr_t context,
                             std::unique_ptr<TDicomDataSet> dataSet, const char* sopClassUID,
                             const char* sopInstanceUID, const char* transferSyntaxUID,
                             const char* implementationClassUID, bool isBigEndian) {
    ForgetContent();
    TDicomFile::InitNewFile(owner, fileSpec, context, std::move(dataSet), sopClassUID, sopInstanceUID,
                            transferSyntaxUID, implementationClassUID, isBigEndian);
}

TDicomDataSet* TImageFile::GetDataSet() {
    if (fDataSet != nullptr) return fDataSet.get();
    try {
        const Opening opening(*this);
        ReadAllButPixels();
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
    } catch (const std::exception&) {
        // A file that cannot be read has no data set, whatever the reason.
    }
    return fDataSet.get();
}

// ---- Reading ----

void TImageFile::ReadAllButPixels() {
    if (fMetaDataSet != nullptr || fDataSet != nullptr) return;
    ForgetContent();
    try {
        if (fFileSpec.fStorage == nullptr) {
            ReadFromMapping();
        } else {
            ReadFromStream();
        }
    } catch (const std::bad_alloc&) {
        ForgetContent();
        ThrowOutOfMemory();
    } catch (...) {
        ForgetContent();
        throw;
    }
}

void TImageFile::ReadFromMapping() {
    Platform::MappedFile file(fFileSpec.fPath);
    fFileSize = file.GetLength();
    int64_t size = std::min(fFileSize, kLargestView);
    while (size > 0 && !file.MapView(size)) size /= 2;
    if (size == 0) throw new TException(ErrorNumbers::kFileTooLarge, "File Too Large");
    ReadContent({file.GetView(), file.GetViewSize()});
}

void TImageFile::ReadFromStream() {
    const Opening opening(*this);
    std::vector<uint8_t> bytes(static_cast<size_t>(std::min(fFileSize, kStreamReadSize)));
    bytes.resize(ReadAt({}, 0, bytes.data(), bytes.size()));
    ReadContent({bytes.data(), static_cast<int64_t>(bytes.size())});
}

void TImageFile::ReadContent(const View& view) {
    ReadMetaInformation(view);
    if (!ReadElements(view)) ThrowError("Invalid Dicom Image File");
    BuildFrameTable(view);
}

void TImageFile::ReadMetaInformation(const View& view) {
    bool isValid = false;
    try {
        isValid = ParseMetaHeader(view.fBytes, view.fCount);
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        if (error->GetErrorNumber() == ErrorNumbers::kDataSetMemory) ThrowOutOfMemory();
    }
    if (!isValid) ThrowError("Invalid Dicom File");
}

// Finds the pixel data element and keeps everything before it. False when there is none.
bool TImageFile::ReadElements(const View& view) {
    const bool isWholeFile = view.fCount == fFileSize;
    const TDicomDataSet inView = WrapBytes(*this, view.fBytes + fDataOffset, view.fCount - fDataOffset);
    const std::optional<int32_t> found = FindPixelElement(inView, isWholeFile, PixelHeaderSize());
    if (!found.has_value()) return !isWholeFile && ReadElementsBehindPalettes(inView);

    KeepPixelHeader(inView, *found);
    fPixelDataOffset = fDataOffset + *found + PixelHeaderSize();
    fPixelDataLength = isWholeFile ? PixelLengthField() : TDicomDataSet::kUndefinedLength;
    if (fPixelDataLength == TDicomDataSet::kUndefinedLength) fPixelDataLength = fFileSize - fPixelDataOffset;
    fDataSet = MakeDataSet(*this, inView.GetDataSet(), *found);
    return true;
}

// Where the elements run off the end of the view, the pixel data may still be found behind large palettes:
// their size is told by a descriptor that stands in front of them.
bool TImageFile::ReadElementsBehindPalettes(const TDicomDataSet& inView) {
    const int64_t estimate = EstimatePaletteEnd(inView);
    if (estimate <= 0) return false;
    const int32_t size = ClampToDataSetSize(std::min({estimate, fFileSize - fDataOffset, kLargestView}));
    auto dataSet = MakeDataSet(*this, size, 0, size / kPaletteGrowthDivisor);
    const size_t count = ReadAt({}, fDataOffset, dataSet->GetDataSet(), static_cast<size_t>(size));
    dataSet->SetDataSetSize(static_cast<int32_t>(count));
    // The pixel data is taken to follow a long header, also in implicit VR, where it starts four bytes
    // earlier: the images that hosts have of such files depend on it.
    const std::optional<int32_t> found = FindPixelElement(*dataSet, false, kLongHeaderSize);
    if (!found.has_value()) return false;

    KeepPixelHeader(*dataSet, *found);
    fPixelDataOffset = fDataOffset + *found + kLongHeaderSize;
    fPixelDataLength = fFileSize - fPixelDataOffset;
    dataSet->SetDataSetSize(*found);
    fDataSet = std::move(dataSet);
    return true;
}

// How much of the data set to read so that it holds the palettes and what follows them; 0 without a
// descriptor of the largest palettes. The data set's place in the file is taken off although the
// descriptor's place is counted in the data set; the room behind the palettes makes up for that.
int64_t TImageFile::EstimatePaletteEnd(const TDicomDataSet& inView) const {
    for (const Tag tag : {Tags::kLargeRedPaletteDescriptor, Tags::kRedPaletteDescriptor}) {
        std::array<uint16_t, kLongestDescriptor> values{};
        uint32_t length = 0;
        int32_t offset = 0;
        try {
            if (!inView.FindElement(tag, nullptr, &length, values.data(), sizeof(values), &offset)) continue;
        } catch (TException* thrown) {
            const std::unique_ptr<TException> error(thrown);
            continue;
        }
        const size_t count = std::min(length / sizeof(uint16_t), kLongestDescriptor);
        if (count < kShortestDescriptor || values[0] != 0 || values[1] != 0) continue;
        const int64_t bitsPerEntry = values[count - 1];
        return bitsPerEntry * kLargestPalette / kBitsInByte * kPalettes + offset + kRoomBehindPalettes -
               fDataOffset;
    }
    return 0;
}

// Where the pixel data element starts in a data set, if the whole of its header is there. Elements that
// cannot be walked are damage in a whole file, but to be expected where a part of one ends.
std::optional<int32_t> TImageFile::FindPixelElement(const TDicomDataSet& dataSet, bool isWholeFile,
                                                    int32_t headerSize) {
    int32_t offset = 0;
    try {
        if (!dataSet.FindElement(Tags::kPixelData, nullptr, nullptr, nullptr, 0, &offset)) return {};
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        if (isWholeFile) ThrowError("Can't Process Dicom File");
        return {};
    }
    if (offset > dataSet.GetDataSetSize() - headerSize) return {};
    return offset;
}

void TImageFile::KeepPixelHeader(const TDicomDataSet& dataSet, int32_t offset) {
    std::copy_n(dataSet.GetDataSet() + offset, PixelHeaderSize(), fPixelDataHeader.begin());
    fPixelDataVR = dataSet.GetElementVR(offset);
}

uint32_t TImageFile::PixelLengthField() const {
    const bool hasShortField = fIsExplicit && !Vr::HasLongHeader(fPixelDataVR);
    if (hasShortField) {
        uint16_t length = 0;
        ByteOrder::CopyNumber(&length, &fPixelDataHeader[kShortLengthField], sizeof(length), fIsBigEndian);
        return length;
    }
    uint32_t length = 0;
    const int32_t field = fIsExplicit ? kLongLengthField : kImplicitLengthField;
    ByteOrder::CopyNumber(&length, &fPixelDataHeader[static_cast<size_t>(field)], sizeof(length),
                          fIsBigEndian);
    return length;
}

int32_t TImageFile::PixelHeaderSize() const { return fIsExplicit ? kLongHeaderSize : kShortHeaderSize; }

// Reads from the view, or from the file what is not in it. Gives how many bytes there were.
size_t TImageFile::ReadAt(const View& view, int64_t offset, void* buffer, size_t count) {
    if (offset + static_cast<int64_t>(count) <= view.fCount) {
        std::copy_n(view.fBytes + offset, count, static_cast<uint8_t*>(buffer));
        return count;
    }
    try {
        const Opening opening(*this);
        SeekTo(*fFile, offset);
        return ReadBytes(*fFile, buffer, count);
    } catch (const Platform::FileException&) {
        ThrowError("File System Error");
    }
}

void TImageFile::ForgetContent() {
    fMetaDataSet.reset();
    fDataSet.reset();
    fPixelDataHeader.fill(0);
    fPixelDataVR = 0;
    fPixelDataOffset = -1;
    fPixelDataLength = -1;
    fFrameCount = 1;
    fFrameSize = 0;
    fIsEncapsulated = false;
    fHasOffsetTable = false;
    fFrameOffsets.clear();
    fLoadedFrame = 0;
    fFrame.clear();
}

// ---- The frame table ----

int32_t TImageFile::GetNumberOfFrames() {
    const TDicomDataSet* dataSet = GetDataSet();
    return dataSet == nullptr ? 0 : ReadNumberOfFrames(*dataSet);
}

int32_t TImageFile::ReadNumberOfFrames(const TDicomDataSet& dataSet) {
    char text[kLongestNumberOfFrames + 1] = {};
    if (!dataSet.GetText(Tags::kNumberOfFrames, text, sizeof(text))) return 0;
    const int32_t number = TTextUtil().ReadInteger(text).value_or(0);
    return number == std::numeric_limits<int32_t>::max() ? 0 : number;  // more than any file can have
}

void TImageFile::BuildFrameTable(const View& view) {
    std::array<uint8_t, kItemHeaderSize> start{};
    const size_t count = ReadAt(view, fPixelDataOffset, start.data(), start.size());
    const ItemHeader table = DecodeItemHeader(start.data());
    fIsEncapsulated = count == start.size() && table.fTag == Tags::kItem;
    if (!fIsEncapsulated) {
        BuildNativeFrames();
    } else if (IsTableLength(table.fLength)) {
        BuildFramesFromTable(view, table.fLength);
    } else {
        BuildFramesWithoutTable();
    }
}

void TImageFile::BuildNativeFrames() {
    fFrameCount = std::max(ReadNumberOfFrames(*fDataSet), 1);
    fFrameSize = fPixelDataLength / fFrameCount;
}

// The first frame follows the empty table; where the others are is only known once a frame is loaded.
void TImageFile::BuildFramesWithoutTable() {
    const int64_t first = fPixelDataOffset + kItemHeaderSize;
    const int64_t mostFrames = std::max<int64_t>((fFileSize - first) / kSmallestFrame, 1);
    const int64_t frames = std::clamp<int64_t>(ReadNumberOfFrames(*fDataSet), 1, mostFrames);
    fFrameCount = static_cast<int32_t>(frames);
    fFrameOffsets.assign(static_cast<size_t>(frames), 0);
    fFrameOffsets.front() = first;
}

void TImageFile::BuildFramesFromTable(const View& view, uint32_t tableLength) {
    std::vector<uint8_t> table(tableLength);
    const int64_t tableStart = fPixelDataOffset + kItemHeaderSize;
    if (ReadAt(view, tableStart, table.data(), table.size()) < table.size()) {
        BuildFramesWithoutTable();
        return;
    }
    fHasOffsetTable = true;
    fFrameCount = static_cast<int32_t>(tableLength / kOffsetTableEntrySize);
    fFrameOffsets.reserve(static_cast<size_t>(fFrameCount));
    for (size_t i = 0; i < static_cast<size_t>(fFrameCount); ++i) {
        uint32_t entry = 0;
        ByteOrder::CopyNumber(&entry, &table[i * kOffsetTableEntrySize], sizeof(entry), fIsBigEndian);
        fFrameOffsets.push_back(tableStart + tableLength + entry);
    }
}

// True when a table of this length has entries, and the file has room for their frames behind it. The table
// of a damaged file counts as empty.
bool TImageFile::IsTableLength(uint32_t length) const {
    const int64_t entries = length / kOffsetTableEntrySize;
    const int64_t available = fFileSize - fPixelDataOffset - kItemHeaderSize;
    return entries > 0 && length != TDicomDataSet::kUndefinedLength &&
           length + entries * kSmallestFrame <= available;
}

TImageFile::ItemHeader TImageFile::DecodeItemHeader(const uint8_t* bytes) const {
    ItemHeader header{};
    ByteOrder::CopyNumber(&header.fTag.fGroup, bytes, sizeof(uint16_t), fIsBigEndian);
    ByteOrder::CopyNumber(&header.fTag.fElement, bytes + kElementField, sizeof(uint16_t), fIsBigEndian);
    ByteOrder::CopyNumber(&header.fLength, bytes + kTagSize, sizeof(uint32_t), fIsBigEndian);
    return header;
}

// ---- Frames ----

int32_t TImageFile::LoadFrame(int32_t frameNumber) {
    if (frameNumber == fLoadedFrame && frameNumber != 0) return kFrameDone;
    fLoadedFrame = 0;
    fFrame.clear();
    bool isLoaded = false;
    try {
        const Opening opening(*this);
        ReadAllButPixels();
        isLoaded = ReadFrame(frameNumber);
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
    } catch (const std::bad_alloc&) {
        // A frame that memory has no room for cannot be had.
    }
    // Viewers ask again and again for the frame they show: one that cannot be had is not tried again.
    fLoadedFrame = frameNumber;
    return isLoaded ? kFrameDone : kNoFrame;
}

bool TImageFile::ReadFrame(int32_t frameNumber) {
    const std::optional<Range> range = FindFrame(frameNumber);
    if (!range.has_value() || range->fStart >= range->fEnd || range->fEnd > fFileSize) return false;
    const auto length = static_cast<uint64_t>(range->fEnd - range->fStart);
    if (length > fFrame.max_size()) return false;
    // Filled apart: a read that fails half way must not leave zeros for a frame.
    std::vector<uint8_t> frame(static_cast<size_t>(length));
    SeekTo(*fFile, range->fStart);
    if (ReadBytes(*fFile, frame.data(), frame.size()) < frame.size()) return false;
    fFrame = std::move(frame);
    return true;
}

std::optional<TImageFile::Range> TImageFile::FindFrame(int32_t frameNumber) {
    if (frameNumber < 1 || frameNumber > fFrameCount || fPixelDataOffset < 0) return {};
    if (!fIsEncapsulated) {
        if (fFrameCount == 1) return Range{fPixelDataOffset, fFileSize};
        const int64_t start = fPixelDataOffset + (frameNumber - 1) * fFrameSize;
        return Range{start, start + fFrameSize};
    }
    const auto index = static_cast<size_t>(frameNumber - 1);
    if (!fHasOffsetTable) {
        if (fFrameCount == 1) return Range{fFrameOffsets[index], fFileSize};
        if (fFrameOffsets.back() == 0 && !FindFragments()) return {};
    }
    const bool isLast = frameNumber == fFrameCount;
    return Range{fFrameOffsets[index], isLast ? fFileSize - kDelimiterSize : fFrameOffsets[index + 1]};
}

// Tells where the frames are that no table tells of: possible when each of them is one fragment. Only the
// fragments' headers are read.
bool TImageFile::FindFragments() {
    const auto frames = static_cast<size_t>(fFrameCount);
    std::vector<int64_t> fragments;
    int64_t position = fFrameOffsets.front();
    std::array<uint8_t, kItemHeaderSize> bytes{};
    while (fragments.size() <= frames) {
        SeekTo(*fFile, position);
        if (ReadBytes(*fFile, bytes.data(), bytes.size()) < bytes.size()) break;
        const ItemHeader header = DecodeItemHeader(bytes.data());
        if (header.fTag != Tags::kItem) break;
        fragments.push_back(position);
        position += kItemHeaderSize + static_cast<int64_t>(header.fLength);
    }
    if (fragments.size() != frames) return false;
    fFrameOffsets = std::move(fragments);
    return true;
}

bool TImageFile::ReadPixelData(int64_t offset, int64_t count, std::vector<uint8_t>& bytes) {
    const Opening opening(*this);
    const int64_t available = fFileSize - fPixelDataOffset;
    if (fPixelDataOffset < 0 || offset < 0 || count < 0 || offset > available || count > available - offset) {
        return false;
    }
    bytes.resize(static_cast<size_t>(count));
    SeekTo(*fFile, fPixelDataOffset + offset);
    return ReadBytes(*fFile, bytes.data(), bytes.size()) == bytes.size();
}

// The bytes of the native frame in the frame buffer that are pixels. The only frame of a file was read to the
// file's end, so elements behind the pixel data, and the byte that made their length even, are in it as well.
int64_t TImageFile::LoadedPixelsLength() const {
    if (fFrameCount > 1) return GetFrameLength();
    const int64_t length = std::min(GetFrameLength(), fPixelDataLength);
    const int64_t described = fDataSet == nullptr ? 0 : DescribedFrameSize(*fDataSet);
    return described > 0 && described + 1 == length ? described : length;
}

// The content of the items in the frame buffer, up to a delimiter. False when something else is in it.
bool TImageFile::JoinFragments(std::vector<uint8_t>& joined) const {
    joined.reserve(fFrame.size());
    size_t position = 0;
    while (fFrame.size() - position >= kItemHeaderSize) {
        const ItemHeader header = DecodeItemHeader(&fFrame[position]);
        if (header.fTag == Tags::kSequenceDelimitation) return true;
        position += kItemHeaderSize;
        if (header.fTag != Tags::kItem || header.fLength > fFrame.size() - position) return false;
        const auto content = fFrame.begin() + static_cast<std::ptrdiff_t>(position);
        joined.insert(joined.end(), content, content + static_cast<std::ptrdiff_t>(header.fLength));
        position += header.fLength;
    }
    return position == fFrame.size();
}

// ---- Copying ----

int32_t TImageFile::BeginCopy(const TFileSpec& destination, int64_t& frameCount) {
    frameCount = 0;
    {
        const Opening opening(*this);
        ReadAllButPixels();
    }
    if (fMetaDataSet == nullptr || fDataSet == nullptr) ThrowError("Invalid Dicom Image File");
    const bool isEncapsulated = fPixelDataOffset < 0 ? HasCompressedSyntax() : fIsEncapsulated;
    auto elements = CloneElements();
    int64_t size = 0;
    const int32_t result = TDicomFile::BeginCopy(destination, size);
    if (result != kCopyBegun || fCopyFile == nullptr) return result;
    try {
        fWriter.reset(new FrameWriter(*fCopyFile, std::move(elements), MakePixelHeader(isEncapsulated),
                                      isEncapsulated, fFrameCount));
        fWriter->Start(*fMetaDataSet);
    } catch (...) {
        EndCopy(nullptr);
        throw;
    }
    fCopiedFrames = 0;
    frameCount = fFrameCount;
    return result;
}

// The base class abandons the destination by itself when this object is made a new file.
bool TImageFile::IsCopying() const { return fWriter != nullptr && fCopyFile != nullptr; }

bool TImageFile::HasCompressedSyntax() const {
    const TUidText& syntax = fTransferSyntaxUID.Get();
    const std::string_view uid(syntax.fText, syntax.fLength);
    return !uid.empty() && uid != Uids::kImplicitVRLittleEndian && uid != Uids::kExplicitVRLittleEndian &&
           uid != Uids::kExplicitVRBigEndian;
}

// The header as it was read; a new one for a file that had no pixels, or too short a length field.
TImageFile::PixelHeader TImageFile::MakePixelHeader(bool isEncapsulated) const {
    if (!fIsExplicit || Vr::HasLongHeader(fPixelDataVR)) return fPixelDataHeader;
    PixelHeader header{};
    header[kVrField] = 'O';
    header[kVrField + 1] = isEncapsulated ? 'B' : 'W';
    return header;
}

// The elements that a copy starts with: all before the group of the pixel data. What that group holds beside
// the pixels, its length or tables of frames, is about the pixels of this file.
std::unique_ptr<TDicomDataSet> TImageFile::CloneElements() const {
    int32_t size = fDataSet->GetDataSetSize();
    int32_t offset = TDicomDataSet::kFromStart;
    uint16_t group = 0;
    while (fDataSet->GetNextElement(offset, &group, nullptr, nullptr, nullptr, nullptr, 0, &offset)) {
        if (group < Tags::kPixelData.fGroup) continue;
        size = offset;
        break;
    }
    return MakeDataSet(*this, fDataSet->GetDataSet(), size);
}

int64_t TImageFile::CopyNextChunk() {
    if (!IsCopying() || fCopiedFrames >= fFrameCount) return 0;
    if (AppendFrameOf(*this, fCopiedFrames + 1) != kFrameDone) ThrowError("Invalid Dicom Image File");
    ++fCopiedFrames;
    return fFrameCount - fCopiedFrames;
}

int32_t TImageFile::AppendFrame(const void* bytes, uint32_t length) {
    return IsCopying() && fWriter->Append(bytes, length) ? kFrameDone : kNoFrame;
}

int32_t TImageFile::AppendFrameOf(TImageFile& source, int32_t frameNumber) {
    if (!IsCopying()) return kNoFrame;
    source.LoadFrame(frameNumber);
    if (source.GetFrame() == nullptr || !HasSamePixelForm(source)) return kNoFrame;
    constexpr int64_t kLongestFrame = std::numeric_limits<uint32_t>::max();
    if (!source.IsEncapsulated()) {
        const int64_t length = source.LoadedPixelsLength();
        if (length > kLongestFrame) return kNoFrame;
        return AppendFrame(source.GetFrame(), static_cast<uint32_t>(length));
    }
    std::vector<uint8_t> joined;
    if (!source.JoinFragments(joined) || static_cast<int64_t>(joined.size()) > kLongestFrame) return kNoFrame;
    return AppendFrame(joined.data(), static_cast<uint32_t>(joined.size()));
}

// True when a frame of the other file can stand in the copy as it is.
bool TImageFile::HasSamePixelForm(const TImageFile& source) const {
    if (source.fIsEncapsulated != fWriter->IsEncapsulated()) return false;
    if (!source.fIsEncapsulated) return source.fIsBigEndian == fIsBigEndian;
    return TTextUtil().EqualStrings(source.fTransferSyntaxUID.Get().fText, fTransferSyntaxUID.Get().fText);
}

void TImageFile::EndCopy(const TFileSpec* destination) {
    if (!IsCopying() || destination == nullptr) {
        fWriter.reset();
        TDicomFile::EndCopy(destination);
        return;
    }
    try {
        fWriter->Finish();
        fWriter.reset();
        TDicomFile::EndCopy(destination);
    } catch (...) {
        fWriter.reset();
        ForgetContent();
        TDicomFile::EndCopy(nullptr);
        throw;
    }
    ForgetContent();
    GetDataSet();
}

}  // namespace Vantor
