// Private blocks: the elements that a creator has reserved in an odd group.

#include <algorithm>

#include "dicom/TDicomDataSet.h"
#include "dicom/TException.h"
#include "dicom/TTextUtil.h"

namespace Vantor {

namespace {

constexpr uint16_t kFirstCreator = 0x0010;
constexpr uint16_t kLastCreator = 0x00FF;
constexpr uint16_t kFirstBlock = 0x1000;
constexpr uint16_t kBlockSize = 0x0100;
constexpr uint32_t kCreatorBufferSize = 64;

}  // namespace

// The stored text is compared from its last byte backwards, over its own length only; behind the end of the
// wanted text there are NULs.
bool TDicomDataSet::IsPrivateCreator(int32_t offset, const Header& header, const char* creator) const {
    char stored[kCreatorBufferSize] = {};  // of numbers, the last bytes may be no whole one and are not read
    const uint32_t valueLength = LengthOf(offset, header);
    ReadValue(offset, header, valueLength, stored, sizeof(stored));
    const auto room = static_cast<uint32_t>(fUsedSize - offset - header.fSize);
    uint32_t length = std::min({valueLength, kCreatorBufferSize, room});
    if (length > 0 && stored[length - 1] == ' ') --length;
    const uint32_t creatorLength = TTextUtil().StringLength(creator);
    while (length > 0) {
        --length;
        const char wanted = length < creatorLength ? creator[length] : '\0';
        if (stored[length] != wanted) return false;
    }
    return true;
}

bool TDicomDataSet::FindPrivateCreator(uint16_t group, const char* creator, uint16_t* blockBase) const {
    CheckConstructed();
    Header header;
    int32_t offset = 0;
    if (!FindGroupStart(group, offset, header)) return false;
    while (header.fTag.fGroup == group && header.fTag.fElement <= kLastCreator) {
        if (header.fTag.fElement >= kFirstCreator && IsPrivateCreator(offset, header, creator)) {
            const int32_t base = (header.fTag.fElement - kFirstCreator) * kBlockSize + kFirstBlock;
            if (blockBase != nullptr) *blockBase = static_cast<uint16_t>(base);
            return true;
        }
        offset = StepInSearch(offset, header);
        if (!DecodeHeader(offset, header)) return false;
    }
    return false;
}

bool TDicomDataSet::GetPrivateElement(uint16_t group, const char* creator, uint8_t offsetInBlock, VrCode* vr,
                                      uint32_t* length, void* value, uint32_t valueCapacity,
                                      int32_t* offset) const {
    uint16_t base = 0;
    return FindPrivateCreator(group, creator, &base) &&
           FindElement(group, static_cast<uint16_t>(base + offsetInBlock), vr, length, value, valueCapacity,
                       offset);
}

bool TDicomDataSet::FindPrivateElement(uint16_t group, const char* creator, uint8_t* offsetInBlock,
                                       VrCode* vr, uint32_t* length, void* value, uint32_t valueCapacity,
                                       int32_t* offset) const {
    uint16_t base = 0;
    if (!FindPrivateCreator(group, creator, &base)) return false;
    Header header;
    int32_t found = 0;
    FindGroupStart(group, found, header);
    while (header.fTag.fGroup == group && header.fTag.fElement < base) {
        found = StepInSearch(found, header);
        if (!DecodeHeader(found, header)) return false;
    }
    if (header.fTag.fGroup != group || header.fTag.fElement - base >= kBlockSize) return false;
    if (offsetInBlock != nullptr) *offsetInBlock = static_cast<uint8_t>(header.fTag.fElement - base);
    FillOutputs(found, header, vr, length, value, valueCapacity, offset);
    return true;
}

bool TDicomDataSet::GetNextPrivateElement(uint16_t group, const char* creator, int32_t bufferOffset,
                                          uint8_t* offsetInBlock, VrCode* vr, uint32_t* length, void* value,
                                          uint32_t valueCapacity, int32_t* offset) const {
    uint16_t base = 0;
    if (!FindPrivateCreator(group, creator, &base)) return false;
    Tag tag;
    int32_t next = 0;
    if (!GetNextElement(bufferOffset, &tag.fGroup, &tag.fElement, nullptr, nullptr, nullptr, 0, &next)) {
        return false;
    }
    if (tag.fGroup != group || tag.fElement < base || tag.fElement - base >= kBlockSize) return false;
    if (offsetInBlock != nullptr) *offsetInBlock = static_cast<uint8_t>(tag.fElement - base);
    Header header;
    DecodeHeader(next, header);
    FillOutputs(next, header, vr, length, value, valueCapacity, offset);
    return true;
}

int32_t TDicomDataSet::CountPrivateElements(uint16_t group, const char* creator) const {
    int32_t count = 0;
    int32_t offset = 0;
    if (!FindPrivateElement(group, creator, nullptr, nullptr, nullptr, nullptr, 0, &offset)) return 0;
    do {
        ++count;
    } while (GetNextPrivateElement(group, creator, offset, nullptr, nullptr, nullptr, nullptr, 0, &offset));
    return count;
}

bool TDicomDataSet::PutPrivateElement(uint16_t group, const char* creator, uint8_t offsetInBlock, VrCode vr,
                                      uint32_t length, const void* value, uint32_t valueCapacity,
                                      int32_t* offset) {
    uint16_t base = 0;
    if (!FindPrivateCreator(group, creator, &base)) return false;
    PutElement(group, static_cast<uint16_t>(base + offsetInBlock), vr, length, value, valueCapacity, offset);
    return true;
}

bool TDicomDataSet::DeletePrivateElement(uint16_t group, const char* creator, uint8_t offsetInBlock) {
    uint16_t base = 0;
    return FindPrivateCreator(group, creator, &base) &&
           DeleteElement(group, static_cast<uint16_t>(base + offsetInBlock));
}

bool TDicomDataSet::AddPrivateGroup(uint16_t group, const char* creator, uint32_t length) {
    CheckConstructed();
    if (group % 2 == 0) {
        throw new TException(ErrorNumbers::kPrivateGroup, "Attempt to create an even private element group.");
    }
    if (FindPrivateCreator(group, creator, nullptr)) return true;
    uint16_t element = kFirstCreator;
    while (element <= kLastCreator && FindElement(group, element)) ++element;
    PutElement(group, element, Vr::kLO, length, creator, length);
    return true;
}

}  // namespace Vantor
