// How the elements of a data set are changed: room, group lengths, adding, replacing and removing.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "dicom/ByteOrder.h"
#include "dicom/TDicomDataSet.h"
#include "dicom/TDicomDataSetLayout.h"
#include "dicom/TException.h"
#include "platform/Ascii.h"

namespace Vantor {

using namespace DataSetLayout;

namespace {

constexpr uint32_t kLongestUpperCasedValue = 256;
constexpr uint32_t kLongestValue = std::numeric_limits<int32_t>::max() - 1;

constexpr uint32_t Even(uint32_t length) { return length + (length & 1u); }

constexpr uint8_t PadFor(VrCode vr) {
    return vr == Vr::kUI || vr == Vr::kOB ? uint8_t{0} : static_cast<uint8_t>(' ');
}

}  // namespace

// ---- Room ----

void TDicomDataSet::Allocate(int64_t capacity) {
    void* memory = nullptr;
    if (capacity <= std::numeric_limits<int32_t>::max()) {
        memory = fBuffer == nullptr ? std::calloc(static_cast<size_t>(capacity), 1)
                                    : std::realloc(fBuffer, static_cast<size_t>(capacity));
    }
    if (memory == nullptr) {
        // Growing reports the same text: hosts know it as the sign of too little memory.
        throw new TException(ErrorNumbers::kDataSetMemory, "Can not allocate initial DataSet memory");
    }
    const bool isNew = fBuffer == nullptr;
    fBuffer = static_cast<uint8_t*>(memory);
    if (!isNew) std::memset(fBuffer + fCapacity, 0, static_cast<size_t>(capacity - fCapacity));
    fCapacity = static_cast<int32_t>(capacity);
}

// Grows by whole increments, as many as are needed.
void TDicomDataSet::EnsureCapacity(int64_t size) {
    if (size <= fCapacity) return;
    if (!fOwnsBuffer) {
        throw new TException(ErrorNumbers::kDataSetMemory, "Can not increase DataSet memory");
    }
    if (fCapacity == 0 && fInitialSize > 0) {
        Allocate(fInitialSize);
        EnsureCapacity(size);
        return;
    }
    const int64_t increment = fGrowBy;
    const int64_t increments = increment == 0 ? 0 : (size - fCapacity + increment - 1) / increment;
    const int64_t capacity = fCapacity + increments * increment;
    if (capacity < size || capacity > fMaximumSize) {
        throw new TException(ErrorNumbers::kDataSetMemory, "Attempt to expand beyond maximum size");
    }
    Allocate(capacity);
}

void TDicomDataSet::SetDataSetSize(int32_t size) {
    CheckConstructed();
    if (!fOwnsBuffer || size < 0) return;
    EnsureCapacity(size);
    fUsedSize = size;
    fLastElement = fLastGroupLength = -1;
}

// Moves everything from `offset` on up. The gap keeps the bytes that were there.
void TDicomDataSet::OpenGap(int32_t offset, int64_t size) {
    const auto gap = static_cast<size_t>(size);
    if (offset < fUsedSize) {
        std::memmove(fBuffer + offset + gap, fBuffer + offset, static_cast<size_t>(fUsedSize - offset));
        fLastElement = fLastGroupLength = -1;
    }
    fUsedSize += static_cast<int32_t>(size);
}

void TDicomDataSet::CloseGap(int32_t offset, int64_t size) {
    const auto end = static_cast<int32_t>(std::min<int64_t>(offset + size, fUsedSize));
    std::memmove(fBuffer + offset, fBuffer + end, static_cast<size_t>(fUsedSize - end));
    fUsedSize -= end - offset;
    fLastElement = fLastGroupLength = -1;
}

// ---- Group lengths ----

bool TDicomDataSet::FindGroupLength(uint16_t group, int32_t& offset, Header& header) const {
    const Tag tag{group, kGroupLengthElement};
    offset = fLastGroupLength;
    if (offset >= 0 && DecodeHeader(offset, header) && header.fTag == tag) return true;
    return FindHeader(tag, offset, header);
}

void TDicomDataSet::AddToGroupLength(uint16_t group, int64_t difference) {
    int32_t offset = 0;
    Header header;
    if (!FindGroupLength(group, offset, header) || header.fRawLength != kGroupLengthValueSize) return;
    const int32_t value = offset + header.fSize;
    if (value > fUsedSize - kGroupLengthValueSize) return;
    WriteNumber32(value, static_cast<uint32_t>(ReadNumber32(value) + difference));
}

void TDicomDataSet::InsertGroupLength(uint16_t group, int32_t offset) {
    const bool isAtEnd = offset == fUsedSize;
    const int32_t value = InsertElement(offset, {group, kGroupLengthElement}, Vr::kUL, kGroupLengthValueSize);
    WriteNumber32(value, 0);
    if (isAtEnd) fLastGroupLength = offset;
}

// ---- Adding and replacing ----

void TDicomDataSet::PutElement(uint16_t group, uint16_t element, VrCode vr, uint32_t length,
                               const void* value, uint32_t valueCapacity, int32_t* offset) {
    CheckConstructed();
    Put({group, element}, vr, length, value, valueCapacity, ValueForm::kMachine, offset);
}

void TDicomDataSet::Put(Tag tag, VrCode vr, uint32_t length, const void* value, uint32_t valueCapacity,
                        ValueForm form, int32_t* offsetOut) {
    const int32_t headerSize = HeaderSizeFor(vr);
    const bool hasShortLength = fIsExplicit && headerSize == kShortHeaderSize;
    if (length > (hasShortLength ? kLongestShortValue : kLongestValue)) {
        throw new TException(ErrorNumbers::kRecordStructure, "Invalid DICOM element length.");
    }
    const int64_t size = static_cast<int64_t>(headerSize) + Even(length);
    const int32_t offset = EndsBefore(tag) ? PrepareEnd(tag, size) : PreparePlace(tag, size);
    const bool isLast = offset == fUsedSize;
    const int32_t valueOffset = InsertElement(offset, tag, vr, Even(length));
    WriteValue(valueOffset, tag, vr, length, value, valueCapacity, form);
    if (isLast) fLastElement = offset;
    if (tag.fElement != kGroupLengthElement) AddToGroupLength(tag.fGroup, size);
    if (offsetOut != nullptr) *offsetOut = offset;
}

// True when the data set is known to end with an element below the tag, so that a new one goes to the end.
bool TDicomDataSet::EndsBefore(Tag tag) const {
    Header last;
    return fLastElement >= 0 && DecodeHeader(fLastElement, last) && last.fTag < tag &&
           static_cast<int64_t>(fLastElement) + last.fSize + last.fRawLength == fUsedSize;
}

// Makes room, and a group if the element starts one, behind the last element. Gives the new one's offset.
int32_t TDicomDataSet::PrepareEnd(Tag tag, int64_t size) {
    Header last;
    DecodeHeader(fLastElement, last);
    EnsureCapacity(fUsedSize + size + kGroupLengthSize);
    if (last.fTag.fGroup != tag.fGroup && tag.fElement != kGroupLengthElement) {
        InsertGroupLength(tag.fGroup, fUsedSize);
    }
    return fUsedSize;
}

// Makes room anywhere, takes an old element with the tag away, and makes the group if it has no element.
int32_t TDicomDataSet::PreparePlace(Tag tag, int64_t size) {
    Header header;
    int32_t offset = 0;
    const bool replaces = FindHeader(tag, offset, header);
    EnsureCapacity(fUsedSize + size + kGroupLengthSize - (replaces ? header.fSize : 0));
    if (replaces) Remove(offset, header);
    const bool hasGroup = FindGroupStart(tag.fGroup, offset, header);
    if (!hasGroup && tag.fElement != kGroupLengthElement) InsertGroupLength(tag.fGroup, offset);
    return FindInsertionOffset(tag);
}

int32_t TDicomDataSet::FindInsertionOffset(Tag tag) const {
    Header header;
    int32_t offset = 0;
    FindGroupStart(tag.fGroup, offset, header);
    while (DecodeHeader(offset, header) && header.fTag.fGroup <= tag.fGroup &&
           header.fTag.fElement <= tag.fElement) {
        offset = StepInSearch(offset, header);
    }
    return offset;
}

// Makes room for an element, writes its header and gives the offset of its value. The room must be there.
int32_t TDicomDataSet::InsertElement(int32_t offset, Tag tag, VrCode vr, uint32_t length) {
    const int32_t headerSize = HeaderSizeFor(vr);
    OpenGap(offset, static_cast<int64_t>(headerSize) + length);
    WriteNumber16(offset, tag.fGroup);
    WriteNumber16(offset + kElementField, tag.fElement);
    if (!fIsExplicit) {
        WriteNumber32(offset + kImplicitLengthField, length);
        return offset + headerSize;
    }
    fBuffer[offset + kVrField] = static_cast<uint8_t>(vr >> 8);
    fBuffer[offset + kVrField + 1] = static_cast<uint8_t>(vr & 0xFF);
    if (headerSize == kShortHeaderSize) {
        WriteNumber16(offset + kShortLengthField, static_cast<uint16_t>(length));
    } else {
        WriteNumber16(offset + kReservedField, 0);
        WriteNumber32(offset + kLongLengthField, length);
    }
    return offset + headerSize;
}

void TDicomDataSet::WriteValue(int32_t valueOffset, Tag tag, VrCode vr, uint32_t length, const void* value,
                               uint32_t valueCapacity, ValueForm form) {
    const uint32_t count = std::min(Even(length), valueCapacity);
    uint8_t* target = fBuffer + valueOffset;
    const auto* source = static_cast<const uint8_t*>(value);
    const bool converts = form == ValueForm::kMachine;
    if (converts &&
        ((!fIsExplicit && tag == Tags::kPixelData) || (fIsExplicit && fSwapsBytes && vr == Vr::kOW))) {
        ByteOrder::CopySwappedPairs(target, source, count);
    } else if (const uint32_t unit = WriteUnit(vr); converts && fSwapsBytes && unit != 0) {
        ByteOrder::CopyReversedUnits(target, source, count, unit);
    } else if (vr == Vr::kCS && count <= kLongestUpperCasedValue) {
        const auto* const text = reinterpret_cast<const char*>(source);
        std::transform(text, text + count, reinterpret_cast<char*>(target), Platform::UpperCase);
    } else if (count > 0) {
        std::memmove(target, source, count);
    }
    if (length != Even(length)) target[length] = PadFor(vr);
}

// ---- Removing ----

bool TDicomDataSet::DeleteElement(uint16_t group, uint16_t element) {
    CheckConstructed();
    Header header;
    int32_t offset = 0;
    if (!FindHeader({group, element}, offset, header)) return false;
    Remove(offset, header);
    return true;
}

void TDicomDataSet::Remove(int32_t offset, const Header& header) {
    const int64_t size = static_cast<int64_t>(header.fSize) + LengthOf(offset, header);
    CloseGap(offset, size);
    if (header.fTag.fElement != kGroupLengthElement) AddToGroupLength(header.fTag.fGroup, -size);
}

void TDicomDataSet::RemoveAllElements() {
    CheckConstructed();
    fUsedSize = 0;
    fLastElement = fLastGroupLength = -1;
}

}  // namespace Vantor
