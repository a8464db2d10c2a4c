#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "dicom/Tags.h"
#include "dicom/Uids.h"
#include "dicom/Vr.h"
#include "tests/support/TestFolder.h"

namespace VantorTest {

// Encodes elements one after the other, in the order they are given. Nothing is sorted, checked or counted,
// so that damaged data sets can be built as well.
class ElementBuilder {
  public:
    // How the lengths of sequences, items and encapsulated pixel data are written.
    enum class Lengths { kDefined, kUndefined };

    // In the encoding of a transfer syntax; compressed ones are explicit little endian.
    explicit ElementBuilder(std::string_view transferSyntaxUID = Vantor::Uids::kExplicitVRLittleEndian);

    // A text or UID, made even with a space, or a NUL for UI and OB.
    ElementBuilder& Text(Vantor::Tag tag, Vantor::VrCode vr, std::string_view value);

    // Numbers of 2 or 4 bytes.
    ElementBuilder& Numbers16(Vantor::Tag tag, Vantor::VrCode vr, std::initializer_list<uint16_t> values);
    ElementBuilder& Numbers32(Vantor::Tag tag, Vantor::VrCode vr, std::initializer_list<uint32_t> values);

    // Bytes as they are, and an even number of them.
    ElementBuilder& Value(Vantor::Tag tag, Vantor::VrCode vr, const Bytes& value);

    // A sequence of items, each the bytes of another builder of the same transfer syntax.
    ElementBuilder& Sequence(Vantor::Tag tag, const std::vector<Bytes>& items,
                             Lengths lengths = Lengths::kDefined);

    // Encapsulated pixel data: the basic offset table's entries (none: an empty table), then the fragments.
    ElementBuilder& EncapsulatedPixels(const std::vector<uint32_t>& offsetTable,
                                       const std::vector<Bytes>& fragments);

    // For what the others cannot say: a header with any length, an item or delimiter, loose bytes.
    ElementBuilder& Header(Vantor::Tag tag, Vantor::VrCode vr, uint32_t length);
    ElementBuilder& ItemHeader(Vantor::Tag tag, uint32_t length);
    ElementBuilder& Raw(const Bytes& bytes);

    const Bytes& GetBytes() const { return fBytes; }

    // The number of bytes so far: where the next element starts.
    uint32_t GetSize() const { return static_cast<uint32_t>(fBytes.size()); }

  private:
    void Append16(uint16_t number);
    void Append32(uint32_t number);
    void AppendTag(Vantor::Tag tag);

    bool fIsExplicit;
    bool fIsBigEndian;
    Bytes fBytes;
};

// Composes a DICOM Part 10 file: preamble, "DICM", meta information and a data set.
//
//     FileBuilder file(Uids::kImplicitVRLittleEndian);
//     file.Data().Text(Tags::kModality, Vr::kCS, "SR");
//     folder.WriteFile("REPORT.DCM", file.Build());
class FileBuilder {
  public:
    static constexpr size_t kPreambleSize = 128;
    static constexpr size_t kMetaOffset = 132;
    static constexpr char kSecondaryCapture[] = "1.2.840.10008.5.1.4.1.1.7";
    static constexpr char kInstanceUID[] = "1.2.3.4.5.6";

    // A file whose meta information has a group length, the version, the SOP class and instance, and the
    // transfer syntax, in which Data() is encoded too.
    explicit FileBuilder(std::string_view transferSyntaxUID = Vantor::Uids::kExplicitVRLittleEndian,
                         std::string_view sopClassUID = kSecondaryCapture,
                         std::string_view sopInstanceUID = kInstanceUID);

    // More elements of the meta information, in explicit little endian, counted in its group length.
    ElementBuilder& Meta() { return fMeta; }

    // The data set.
    ElementBuilder& Data() { return fData; }

    // Takes the place of all meta information, group length included.
    FileBuilder& ReplaceMeta(const ElementBuilder& meta);

    // The whole file, what stands before the data set, and how much that is.
    Bytes Build() const;
    Bytes BuildMeta() const;
    uint32_t GetDataOffset() const;

  private:
    ElementBuilder fMeta;
    ElementBuilder fData;
    bool fHasGroupLength = true;
};

}  // namespace VantorTest
