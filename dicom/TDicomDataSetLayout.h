#pragma once

#include <cstdint>

#include "dicom/Vr.h"

// How elements, items and their lengths are laid out in a data set's buffer. For the sources of
// TDicomDataSet; sizes and places in bytes.
namespace Vantor::DataSetLayout {

inline constexpr uint32_t kSignature = 0x56414E54;  // "VANT"

inline constexpr int32_t kTagSize = 4;
inline constexpr int32_t kElementField = 2;
inline constexpr int32_t kVrField = 4;
inline constexpr int32_t kImplicitLengthField = 4;
inline constexpr int32_t kShortLengthField = 6;
inline constexpr int32_t kReservedField = 6;
inline constexpr int32_t kLongLengthField = 8;
inline constexpr int32_t kLengthSize = 4;

inline constexpr int32_t kShortHeaderSize = 8;
inline constexpr int32_t kLongHeaderSize = 12;

inline constexpr int32_t kItemHeaderSize = 8;
inline constexpr int32_t kDelimiterSize = 8;

// (gggg,0000) UL 4: the same size in every transfer syntax.
inline constexpr uint16_t kGroupLengthElement = 0x0000;
inline constexpr int32_t kGroupLengthValueSize = 4;
inline constexpr int32_t kGroupLengthSize = kShortHeaderSize + kGroupLengthValueSize;

// The longest value, of an even length as all are, that a 16-bit length field can announce.
inline constexpr uint32_t kLongestShortValue = 0xFFFE;

// How many bytes of a value are reversed together on reading, 0 for VRs that are no numbers.
constexpr uint32_t ReadUnit(VrCode vr) {
    switch (vr) {
        case Vr::kSS:
        case Vr::kUS:
            return 2;
        case Vr::kFL:
        case Vr::kUL:
        case Vr::kSL:
        case Vr::kAT:
            return 4;
        case Vr::kFD:
            return 8;
        default:
            return 0;
    }
}

// The same on writing. Media in the field hold values written this way, pairs of 4-byte numbers exchanged
// and attribute tags as they come; see TDicomDataSet::PutElement.
constexpr uint32_t WriteUnit(VrCode vr) {
    switch (vr) {
        case Vr::kSS:
        case Vr::kUS:
            return 2;
        case Vr::kFL:
        case Vr::kUL:
        case Vr::kSL:
        case Vr::kFD:
            return 8;
        default:
            return 0;
    }
}

}  // namespace Vantor::DataSetLayout
