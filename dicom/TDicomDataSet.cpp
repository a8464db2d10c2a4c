#include "dicom/TDicomDataSet.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "dicom/ByteOrder.h"
#include "dicom/TDicomDataSetLayout.h"
#include "dicom/TDicomDictionary.h"
#include "dicom/TException.h"

namespace Vantor {

using namespace DataSetLayout;

namespace {

[[noreturn]] void ThrowPastTheEnd() {
    throw new TException(ErrorNumbers::kRecordStructure,
                         "Invalid DICOM element length, longer than the data set.");
}

}  // namespace

TDicomDataSet::TDicomDataSet(bool isExplicit, bool isBigEndian, uint32_t initialSize, uint32_t growBy,
                             int32_t maxSize, uintptr_t context)
    : fIsExplicit(isExplicit),
      fIsBigEndian(isBigEndian),
      fSwapsBytes(isBigEndian),
      fOwnsBuffer(true),
      fContext(context),
      fInitialSize(initialSize),
      fGrowBy(growBy),
      fMaximumSize(maxSize < 1 ? kDefaultMaximumSize : maxSize),
      fSignature(kSignature) {
    if (initialSize > 0) Allocate(initialSize);
}

TDicomDataSet::TDicomDataSet(bool isExplicit, bool isBigEndian, void* buffer, int32_t capacity,
                             int32_t usedSize)
    : fIsExplicit(isExplicit),
      fIsBigEndian(isBigEndian),
      fSwapsBytes(isBigEndian),
      fOwnsBuffer(false),
      fBuffer(static_cast<uint8_t*>(buffer)),
      fSignature(kSignature),
      fUsedSize(std::max(usedSize, 0)),
      fCapacity(std::max(capacity, 0)) {}

TDicomDataSet::TDicomDataSet(const TDicomDataSet& whole, int32_t offset, int32_t size)
    : TDicomDataSet(whole.IsExplicit(), whole.IsBigEndian(), whole.fBuffer + offset, size, size) {
    fMeasuredLengths = whole.fMeasuredLengths;
}

TDicomDataSet::~TDicomDataSet() {
    if (fOwnsBuffer) std::free(fBuffer);
    fSignature = 0;
}

void TDicomDataSet::CheckConstructed() const {
    if (fSignature != kSignature) {
        throw new TException(ErrorNumbers::kRecordStructure, "DicomDataSet Object not properly constructed");
    }
}

bool TDicomDataSet::IsExplicit() const {
    CheckConstructed();
    return fIsExplicit;
}

bool TDicomDataSet::IsBigEndian() const {
    CheckConstructed();
    return fIsBigEndian;
}

uint8_t* TDicomDataSet::GetDataSet() {
    CheckConstructed();
    return fBuffer;
}

const uint8_t* TDicomDataSet::GetDataSet() const {
    CheckConstructed();
    return fBuffer;
}

int32_t TDicomDataSet::GetDataSetSize() const {
    CheckConstructed();
    return fUsedSize;
}

void TDicomDataSet::SetUserValues(uintptr_t first, uintptr_t second) {
    CheckConstructed();
    fUserValues[0] = first;
    fUserValues[1] = second;
}

void TDicomDataSet::SetDictionary(const char* text, uint32_t length) {
    CheckConstructed();
    fDictionaryText = text;
    fDictionaryLength = text == nullptr ? 0 : length;
    fDictionary = text == nullptr ? nullptr : std::make_shared<const TDicomDictionary>(text, length);
}

uintptr_t TDicomDataSet::GetContext() const {
    CheckConstructed();
    return fContext;
}

// ---- Decoding ----

uint16_t TDicomDataSet::ReadNumber16(int32_t offset) const {
    uint16_t number = 0;
    ByteOrder::CopyNumber(&number, fBuffer + offset, sizeof(number), fSwapsBytes);
    return number;
}

uint32_t TDicomDataSet::ReadNumber32(int32_t offset) const {
    uint32_t number = 0;
    ByteOrder::CopyNumber(&number, fBuffer + offset, sizeof(number), fSwapsBytes);
    return number;
}

void TDicomDataSet::WriteNumber16(int32_t offset, uint16_t number) {
    ByteOrder::CopyNumber(fBuffer + offset, &number, sizeof(number), fSwapsBytes);
}

void TDicomDataSet::WriteNumber32(int32_t offset, uint32_t number) {
    ByteOrder::CopyNumber(fBuffer + offset, &number, sizeof(number), fSwapsBytes);
}

bool TDicomDataSet::ReadTagAt(int64_t offset, Tag& tag) const {
    if (offset < 0 || offset + kTagSize > fUsedSize) return false;
    const auto position = static_cast<int32_t>(offset);
    tag = {ReadNumber16(position), ReadNumber16(position + kElementField)};
    return true;
}

int32_t TDicomDataSet::HeaderSizeFor(VrCode vr) const {
    return fIsExplicit && Vr::HasLongHeader(vr) ? kLongHeaderSize : kShortHeaderSize;
}

// False when there is no room for a header at the offset: the data set ends there.
bool TDicomDataSet::DecodeHeader(int32_t offset, Header& header) const {
    if (offset < 0 || offset > fUsedSize - kShortHeaderSize) return false;
    header.fTag = {ReadNumber16(offset), ReadNumber16(offset + kElementField)};
    if (!fIsExplicit) {
        header.fStoredVr = 0;
        header.fSize = kShortHeaderSize;
        header.fRawLength = ReadNumber32(offset + kImplicitLengthField);
        return true;
    }
    header.fStoredVr = MakeVr(static_cast<char>(fBuffer[offset + kVrField]),
                              static_cast<char>(fBuffer[offset + kVrField + 1]));
    header.fSize = HeaderSizeFor(header.fStoredVr);
    if (header.fSize == kShortHeaderSize) {
        header.fRawLength = ReadNumber16(offset + kShortLengthField);
        return true;
    }
    if (offset > fUsedSize - kLongHeaderSize) {
        // The data set breaks off within the header: what is there names an element without a value.
        header.fSize = fUsedSize - offset;
        header.fRawLength = 0;
        return true;
    }
    header.fRawLength = ReadNumber32(offset + kLongLengthField);
    return true;
}

VrCode TDicomDataSet::VrOf(const Header& header) const {
    if (fIsExplicit) return header.fStoredVr;
    if (fDictionary == nullptr) return Vr::kNotKnown;
    char text[2] = {};
    if (fDictionary->AppendField(header.fTag, "VR=", text, sizeof(text), 0) < 2) return Vr::kUN;
    const VrCode vr = MakeVr(text[0], text[1]);
    return Vr::IsRecognised(vr) ? vr : Vr::kUN;
}

uint32_t TDicomDataSet::LengthOf(int32_t offset, const Header& header) const {
    if (header.fRawLength != kUndefinedLength) return header.fRawLength;
    CheckSequence(offset, header);
    return Measure(false, offset + header.fSize);
}

int32_t TDicomDataSet::NextOffset(int32_t offset, const Header& header, uint32_t length) const {
    const int64_t end = static_cast<int64_t>(offset) + length;
    // A header counts as a short one here, so that a last element may lack up to four bytes of its value.
    if (end + kShortHeaderSize > fUsedSize) return 0;
    return static_cast<int32_t>(end + header.fSize);
}

int32_t TDicomDataSet::StepInSearch(int32_t offset, const Header& header) const {
    const int32_t next = NextOffset(offset, header, LengthOf(offset, header));
    if (next > fUsedSize || next <= offset) {
        throw new TException(ErrorNumbers::kRecordStructure, "Invalid DICOM element length.");
    }
    return next;
}

int32_t TDicomDataSet::StepInIteration(int32_t offset, const Header& header, uint32_t length) const {
    const int32_t next = NextOffset(offset, header, length);
    if (next <= offset) ThrowPastTheEnd();
    return next;
}

VrCode TDicomDataSet::GetElementVR(int32_t offset) const {
    CheckConstructed();
    Header header;
    return DecodeHeader(offset, header) ? VrOf(header) : VrCode{0};
}

uint32_t TDicomDataSet::GetElementLength(int32_t offset) const {
    CheckConstructed();
    Header header;
    return DecodeHeader(offset, header) ? LengthOf(offset, header) : 0;
}

int32_t TDicomDataSet::GetNextElementOffset(int32_t offset) const {
    CheckConstructed();
    Header header;
    return DecodeHeader(offset, header) ? NextOffset(offset, header, LengthOf(offset, header)) : 0;
}

// ---- Searching and reading ----

bool TDicomDataSet::FindGroupStart(uint16_t group, int32_t& offset, Header& header) const {
    offset = 0;
    return SeekGroup(group, offset, header);
}

// Gives the first element from the offset on whose group is not below the wanted one, or the end. True when
// it is of the group.
bool TDicomDataSet::SeekGroup(uint16_t group, int32_t& offset, Header& header) const {
    while (DecodeHeader(offset, header)) {
        if (header.fTag.fGroup >= group) return header.fTag.fGroup == group;
        offset = StepInSearch(offset, header);
    }
    return false;
}

bool TDicomDataSet::FindHeader(Tag tag, int32_t& offset, Header& header) const {
    offset = tag >= fSearchedTag ? fSearchEnd : 0;
    const bool isFound = SeekHeader(tag, offset, header);
    if (fMeasuredLengths != nullptr) RememberSearch(tag, offset, header);
    return isFound;
}

// A search for a higher tag passes all that this one passed. Not so when it ended at a group that is out of
// order: the other would end at its first element out of order as well, which may be an earlier one.
void TDicomDataSet::RememberSearch(Tag tag, int32_t offset, const Header& header) const {
    if (header.fTag.fGroup < tag.fGroup) return;
    fSearchedTag = tag;
    fSearchEnd = offset;
}

bool TDicomDataSet::SeekHeader(Tag tag, int32_t& offset, Header& header) const {
    if (!SeekGroup(tag.fGroup, offset, header)) return false;
    while (header.fTag.fGroup == tag.fGroup && header.fTag.fElement < tag.fElement) {
        offset = StepInSearch(offset, header);
        if (!DecodeHeader(offset, header)) return false;
    }
    return header.fTag == tag;
}

bool TDicomDataSet::FindElement(uint16_t group, uint16_t element, VrCode* vr, uint32_t* length, void* value,
                                uint32_t valueCapacity, int32_t* offset) const {
    CheckConstructed();
    Header header;
    int32_t found = 0;
    if (!FindHeader({group, element}, found, header)) return false;
    FillOutputs(found, header, vr, length, value, valueCapacity, offset);
    return true;
}

bool TDicomDataSet::FindElements(std::span<Wanted> wanted) const {
    CheckConstructed();
    auto next = wanted.begin();
    int32_t offset = 0;
    Header header;
    Tag last;
    while (DecodeHeader(offset, header)) {
        const bool isInOrder = offset == 0 || header.fTag > last;
        const int64_t end = int64_t{offset} + header.fSize + header.fRawLength;
        if (!isInOrder || end > fUsedSize || IsKnownSequence(header)) return false;
        while (next != wanted.end() && next->fTag < header.fTag) ++next;
        if (next != wanted.end() && next->fTag == header.fTag) {
            next->fIsFound = true;
            next->fLength = header.fRawLength;
            next->fVr = VrOf(header);
            ReadValue(offset, header, header.fRawLength, next->fValue, next->fCapacity);
        }
        last = header.fTag;
        offset = static_cast<int32_t>(end);
    }
    return offset == fUsedSize;
}

bool TDicomDataSet::GetText(Tag tag, char* text, uint32_t textSize) const {
    if (textSize == 0) return false;
    std::fill_n(text, textSize, '\0');
    return FindElement(tag, nullptr, nullptr, text, textSize - 1);
}

bool TDicomDataSet::GetNextElement(int32_t offset, uint16_t* group, uint16_t* element, VrCode* vr,
                                   uint32_t* length, void* value, uint32_t valueCapacity,
                                   int32_t* nextOffset) const {
    CheckConstructed();
    Header header;
    int32_t next = 0;
    if (offset != kFromStart) {
        if (offset == fUsedSize) return false;
        if (!DecodeHeader(offset, header)) ThrowPastTheEnd();
        next = StepInIteration(offset, header, LengthOf(offset, header));
    }
    if (!DecodeHeader(next, header)) return false;
    if (group != nullptr) *group = header.fTag.fGroup;
    if (element != nullptr) *element = header.fTag.fElement;
    FillOutputs(next, header, vr, length, value, valueCapacity, nextOffset);
    return true;
}

void TDicomDataSet::FillOutputs(int32_t offset, const Header& header, VrCode* vr, uint32_t* length,
                                void* value, uint32_t valueCapacity, int32_t* offsetOut) const {
    if (vr != nullptr) *vr = VrOf(header);
    if (length != nullptr || value != nullptr) {
        const uint32_t valueLength = LengthOf(offset, header);
        if (length != nullptr) *length = valueLength;
        if (value != nullptr) ReadValue(offset, header, valueLength, value, valueCapacity);
    }
    if (offsetOut != nullptr) *offsetOut = offset;
}

void TDicomDataSet::ReadValue(int32_t offset, const Header& header, uint32_t length, void* value,
                              uint32_t valueCapacity) const {
    const int32_t start = offset + header.fSize;
    const uint32_t count = std::min({length, valueCapacity, static_cast<uint32_t>(fUsedSize - start)});
    const uint8_t* source = fBuffer + start;
    // The other half of this exchange is in WriteValue.
    if (!fIsExplicit && header.fTag == Tags::kPixelData) {
        ByteOrder::CopySwappedPairs(value, source, count);
        return;
    }
    const VrCode vr = fSwapsBytes ? VrOf(header) : VrCode{0};
    if (fIsExplicit && vr == Vr::kOW) {
        ByteOrder::CopySwappedPairs(value, source, count);
    } else if (const uint32_t unit = ReadUnit(vr); unit != 0) {
        ByteOrder::CopyReversedUnits(value, source, count, unit);
    } else if (count > 0) {
        std::memmove(value, source, count);
    }
}

int32_t TDicomDataSet::CountElements() const {
    int32_t count = 0;
    int32_t offset = kFromStart;
    while (GetNextElement(offset, nullptr, nullptr, nullptr, nullptr, nullptr, 0, &offset)) ++count;
    return count;
}

int32_t TDicomDataSet::CountElementsInGroup(uint16_t group) const {
    CheckConstructed();
    Header header;
    int32_t offset = 0;
    int32_t count = 0;
    bool isInGroup = FindGroupStart(group, offset, header);
    while (isInGroup) {
        ++count;
        uint16_t next = 0;
        isInGroup =
            GetNextElement(offset, &next, nullptr, nullptr, nullptr, nullptr, 0, &offset) && next == group;
    }
    return count;
}

}  // namespace Vantor
