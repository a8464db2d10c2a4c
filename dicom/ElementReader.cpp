#include "dicom/ElementReader.h"

#include <algorithm>
#include <array>
#include <vector>

#include "dicom/ByteOrder.h"
#include "dicom/TDicomDataSet.h"
#include "dicom/TDicomDataSetLayout.h"
#include "dicom/TException.h"

namespace Vantor {

using namespace DataSetLayout;

namespace {

constexpr size_t kElementFieldPlace = kElementField;
constexpr size_t kVrFieldPlace = kVrField;

[[noreturn]] void ThrowBroken() {
    throw new TException(ErrorNumbers::kRecordStructure, "Invalid DICOM element length.");
}

// A sequence or item of undefined length whose delimiter has not come yet.
struct OpenLevel {
    Tag fDelimiter;
    Encoding fEncoding;  // of what is in it
};

OpenLevel Open(const EncodedElement& element, Encoding encoding) {
    if (element.fTag == Tags::kItem) return {Tags::kItemDelimitation, encoding};
    // Items whose VR a writer did not know are in implicit VR little endian, whatever is around them.
    if (element.fVr == Vr::kUN) return {Tags::kSequenceDelimitation, {false, false}};
    return {Tags::kSequenceDelimitation, encoding};
}

// A sequence has items only, and an item anything but those.
bool Fits(Tag tag, const OpenLevel& level) {
    if (level.fDelimiter == Tags::kSequenceDelimitation) return tag == Tags::kItem;
    return tag.fGroup != Tags::kItem.fGroup;
}

}  // namespace

bool EncodedElement::HasUndefinedLength() const { return fLength == TDicomDataSet::kUndefinedLength; }

bool ElementReader::HasLongHeader(VrCode vr) {
    static constexpr std::array kFurther = {MakeVr('O', 'D'), MakeVr('O', 'F'), MakeVr('O', 'L'),
                                            MakeVr('O', 'V'), MakeVr('S', 'V'), MakeVr('U', 'C'),
                                            MakeVr('U', 'R'), MakeVr('U', 'V')};
    return Vr::HasLongHeader(vr) || std::find(kFurther.begin(), kFurther.end(), vr) != kFurther.end();
}

std::optional<EncodedElement> ElementReader::PeekHeader() const {
    if (fPosition == fBytes.size()) return std::nullopt;
    CheckRoom(fPosition, kShortHeaderSize);
    EncodedElement element;
    element.fTag = {ReadNumber16(fPosition), ReadNumber16(fPosition + kElementFieldPlace)};
    element.fStart = fPosition;
    element.fValueStart = fPosition + kShortHeaderSize;
    if (!fEncoding.fIsExplicit || element.fTag.fGroup == Tags::kItem.fGroup) {
        element.fLength = ReadNumber32(fPosition + kImplicitLengthField);
        return element;
    }
    const uint8_t* vr = &fBytes[fPosition + kVrFieldPlace];
    element.fVr = MakeVr(static_cast<char>(vr[0]), static_cast<char>(vr[1]));
    if (!HasLongHeader(element.fVr)) {
        element.fLength = ReadNumber16(fPosition + kShortLengthField);
        return element;
    }
    CheckRoom(fPosition, kLongHeaderSize);
    element.fLength = ReadNumber32(fPosition + kLongLengthField);
    element.fValueStart = fPosition + kLongHeaderSize;
    return element;
}

size_t ElementReader::Skip(const EncodedElement& element) {
    if (!element.HasUndefinedLength()) {
        fPosition = EndOfValue(element);
        return fPosition;
    }
    const size_t delimiter = FindDelimiter(element);
    fPosition = delimiter + kDelimiterSize;
    return delimiter;
}

size_t ElementReader::FindDelimiter(const EncodedElement& element) const {
    std::vector<OpenLevel> open = {Open(element, fEncoding)};
    size_t position = element.fValueStart;
    while (true) {
        const OpenLevel level = open.back();
        ElementReader inside(fBytes, level.fEncoding);
        inside.fPosition = position;
        const std::optional<EncodedElement> next = inside.PeekHeader();
        if (!next) ThrowBroken();
        if (next->fTag == level.fDelimiter) {
            open.pop_back();
            if (open.empty()) return position;
            position = next->fValueStart;
            continue;
        }
        if (!Fits(next->fTag, level)) ThrowBroken();
        const bool isOpen = next->HasUndefinedLength();
        if (isOpen) open.push_back(Open(*next, level.fEncoding));
        position = isOpen ? next->fValueStart : inside.EndOfValue(*next);
    }
}

size_t ElementReader::EndOfValue(const EncodedElement& element) const {
    CheckRoom(element.fValueStart, element.fLength);
    return element.fValueStart + element.fLength;
}

uint16_t ElementReader::ReadNumber16(size_t position) const {
    uint16_t number = 0;
    ByteOrder::CopyNumber(&number, &fBytes[position], sizeof(number), fEncoding.fIsBigEndian);
    return number;
}

uint32_t ElementReader::ReadNumber32(size_t position) const {
    uint32_t number = 0;
    ByteOrder::CopyNumber(&number, &fBytes[position], sizeof(number), fEncoding.fIsBigEndian);
    return number;
}

void ElementReader::CheckRoom(size_t position, size_t size) const {
    if (position > fBytes.size() || size > fBytes.size() - position) ThrowBroken();
}

}  // namespace Vantor
