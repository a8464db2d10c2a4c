#include "tests/support/FileBuilder.h"

namespace VantorTest {

namespace Tags = Vantor::Tags;
namespace Uids = Vantor::Uids;
namespace Vr = Vantor::Vr;
using Vantor::Tag;
using Vantor::VrCode;

namespace {

constexpr uint32_t kUndefinedLength = 0xFFFFFFFF;
constexpr uint32_t kItemHeaderSize = 8;
constexpr Tag kMetaGroupLength{0x0002, 0x0000};

bool IsImplicit(std::string_view uid) { return uid == Uids::kImplicitVRLittleEndian; }

bool IsBigEndian(std::string_view uid) { return uid == Uids::kExplicitVRBigEndian; }

void Append(Bytes& bytes, const Bytes& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

}  // namespace

ElementBuilder::ElementBuilder(std::string_view transferSyntaxUID)
    : fIsExplicit(!IsImplicit(transferSyntaxUID)), fIsBigEndian(IsBigEndian(transferSyntaxUID)) {}

ElementBuilder& ElementBuilder::Text(Tag tag, VrCode vr, std::string_view value) {
    Bytes bytes = BytesOf(value);
    if (bytes.size() % 2 != 0) bytes.push_back(vr == Vr::kUI || vr == Vr::kOB ? '\0' : ' ');
    return Value(tag, vr, bytes);
}

ElementBuilder& ElementBuilder::Numbers16(Tag tag, VrCode vr, std::initializer_list<uint16_t> values) {
    Header(tag, vr, static_cast<uint32_t>(values.size() * sizeof(uint16_t)));
    for (const uint16_t value : values) Append16(value);
    return *this;
}

ElementBuilder& ElementBuilder::Numbers32(Tag tag, VrCode vr, std::initializer_list<uint32_t> values) {
    Header(tag, vr, static_cast<uint32_t>(values.size() * sizeof(uint32_t)));
    for (const uint32_t value : values) Append32(value);
    return *this;
}

ElementBuilder& ElementBuilder::Value(Tag tag, VrCode vr, const Bytes& value) {
    return Header(tag, vr, static_cast<uint32_t>(value.size())).Raw(value);
}

ElementBuilder& ElementBuilder::Sequence(Tag tag, const std::vector<Bytes>& items, Lengths lengths) {
    const bool isUndefined = lengths == Lengths::kUndefined;
    uint32_t length = 0;
    for (const Bytes& item : items) length += kItemHeaderSize + static_cast<uint32_t>(item.size());
    Header(tag, Vr::kSQ, isUndefined ? kUndefinedLength : length);
    for (const Bytes& item : items) {
        ItemHeader(Tags::kItem, isUndefined ? kUndefinedLength : static_cast<uint32_t>(item.size()));
        Raw(item);
        if (isUndefined) ItemHeader(Tags::kItemDelimitation, 0);
    }
    return isUndefined ? ItemHeader(Tags::kSequenceDelimitation, 0) : *this;
}

ElementBuilder& ElementBuilder::EncapsulatedPixels(const std::vector<uint32_t>& offsetTable,
                                                   const std::vector<Bytes>& fragments) {
    Header(Tags::kPixelData, Vr::kOB, kUndefinedLength);
    ItemHeader(Tags::kItem, static_cast<uint32_t>(offsetTable.size() * sizeof(uint32_t)));
    for (const uint32_t offset : offsetTable) Append32(offset);
    for (const Bytes& fragment : fragments) {
        ItemHeader(Tags::kItem, static_cast<uint32_t>(fragment.size())).Raw(fragment);
    }
    return ItemHeader(Tags::kSequenceDelimitation, 0);
}

ElementBuilder& ElementBuilder::Header(Tag tag, VrCode vr, uint32_t length) {
    AppendTag(tag);
    if (!fIsExplicit) {
        Append32(length);
        return *this;
    }
    fBytes.push_back(static_cast<uint8_t>(vr >> 8));
    fBytes.push_back(static_cast<uint8_t>(vr & 0xFF));
    if (Vr::HasLongHeader(vr)) {
        Append16(0);
        Append32(length);
    } else {
        Append16(static_cast<uint16_t>(length));
    }
    return *this;
}

ElementBuilder& ElementBuilder::ItemHeader(Tag tag, uint32_t length) {
    AppendTag(tag);
    Append32(length);
    return *this;
}

ElementBuilder& ElementBuilder::Raw(const Bytes& bytes) {
    Append(fBytes, bytes);
    return *this;
}

void ElementBuilder::Append16(uint16_t number) {
    const auto low = static_cast<uint8_t>(number & 0xFF);
    const auto high = static_cast<uint8_t>(number >> 8);
    fBytes.push_back(fIsBigEndian ? high : low);
    fBytes.push_back(fIsBigEndian ? low : high);
}

void ElementBuilder::Append32(uint32_t number) {
    const auto low = static_cast<uint16_t>(number & 0xFFFF);
    const auto high = static_cast<uint16_t>(number >> 16);
    Append16(fIsBigEndian ? high : low);
    Append16(fIsBigEndian ? low : high);
}

void ElementBuilder::AppendTag(Tag tag) {
    Append16(tag.fGroup);
    Append16(tag.fElement);
}

FileBuilder::FileBuilder(std::string_view transferSyntaxUID, std::string_view sopClassUID,
                         std::string_view sopInstanceUID)
    : fData(transferSyntaxUID) {
    fMeta.Value(Tags::kFileMetaInformationVersion, Vr::kOB, {0x00, 0x01})
        .Text(Tags::kMediaStorageSOPClassUID, Vr::kUI, sopClassUID)
        .Text(Tags::kMediaStorageSOPInstanceUID, Vr::kUI, sopInstanceUID)
        .Text(Tags::kTransferSyntaxUID, Vr::kUI, transferSyntaxUID);
}

FileBuilder& FileBuilder::ReplaceMeta(const ElementBuilder& meta) {
    fMeta = meta;
    fHasGroupLength = false;
    return *this;
}

Bytes FileBuilder::BuildMeta() const {
    Bytes file(kPreambleSize, 0);
    Append(file, BytesOf("DICM"));
    if (fHasGroupLength) {
        ElementBuilder groupLength;
        groupLength.Numbers32(kMetaGroupLength, Vr::kUL, {fMeta.GetSize()});
        Append(file, groupLength.GetBytes());
    }
    Append(file, fMeta.GetBytes());
    return file;
}

Bytes FileBuilder::Build() const {
    Bytes file = BuildMeta();
    Append(file, fData.GetBytes());
    return file;
}

uint32_t FileBuilder::GetDataOffset() const { return static_cast<uint32_t>(BuildMeta().size()); }

}  // namespace VantorTest
