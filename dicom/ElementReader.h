#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "dicom/Tags.h"
#include "dicom/Vr.h"

namespace Vantor {

// How the elements of a data set are encoded.
struct Encoding {
    bool fIsExplicit = true;
    bool fIsBigEndian = false;

    bool operator==(const Encoding&) const = default;
};

// An element as it stands in encoded bytes; positions are from their start.
struct EncodedElement {
    Tag fTag;
    VrCode fVr = Vr::kNotKnown;  // kNotKnown in implicit VR, and for items and delimiters
    uint32_t fLength = 0;        // as stored: TDicomDataSet::kUndefinedLength for up to the delimiter
    size_t fStart = 0;
    size_t fValueStart = 0;

    bool HasUndefinedLength() const;
};

// Walks through encoded elements from the first to the last, whatever they are: also those with VRs that
// TDicomDataSet does not know. For whoever writes elements anew and must not lose one.
//
// Everything throws TException 102 "Invalid DICOM element length." when the bytes break off within what it
// has to read. Whoever has only the first part of them gets more and begins again. Sequences within sequences
// are stepped over without recursion.
class ElementReader {
  public:
    // The bytes must outlive this object.
    ElementReader(std::span<const uint8_t> bytes, Encoding encoding) : fBytes(bytes), fEncoding(encoding) {}

    // The header at the position; none at the end of the bytes. The value need not be there.
    std::optional<EncodedElement> PeekHeader() const;

    // Steps behind an element that PeekHeader gave, and gives where its value ends: of an undefined length,
    // in front of the delimiter.
    size_t Skip(const EncodedElement& element);

    size_t GetPosition() const { return fPosition; }

    // True for every VR whose explicit header has two reserved bytes and a 32-bit length; Vr::HasLongHeader
    // knows those that data sets are read with.
    static bool HasLongHeader(VrCode vr);

  private:
    size_t FindDelimiter(const EncodedElement& element) const;
    size_t EndOfValue(const EncodedElement& element) const;
    uint16_t ReadNumber16(size_t position) const;
    uint32_t ReadNumber32(size_t position) const;
    void CheckRoom(size_t position, size_t size) const;

    std::span<const uint8_t> fBytes;
    Encoding fEncoding;
    size_t fPosition = 0;
};

}  // namespace Vantor
