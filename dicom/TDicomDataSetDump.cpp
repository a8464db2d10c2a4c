// A data set as text, for people.

#include <algorithm>
#include <cstring>
#include <string_view>

#include "dicom/TDicomDataSet.h"
#include "dicom/TDicomDataSetLayout.h"
#include "dicom/TDicomDictionary.h"
#include "dicom/TTextUtil.h"

namespace Vantor {

using namespace DataSetLayout;

namespace {

constexpr uint32_t kValueBufferSize = 255;
constexpr uint32_t kLongestHexValue = 10;
constexpr std::string_view kIndentPerDepth = "      ";
constexpr std::string_view kColumnGap = "  ";
constexpr std::string_view kNoGroup = "    ";
constexpr std::string_view kLineEnd = "\r\n";

bool IsShownInHex(VrCode vr) {
    switch (vr) {
        case Vr::kFL:
        case Vr::kFD:
        case Vr::kSL:
        case Vr::kSS:
        case Vr::kUL:
        case Vr::kUS:
        case Vr::kOB:
        case Vr::kOW:
        case Vr::kSQ:
        case Vr::kUT:
            return true;
        default:
            return false;
    }
}

}  // namespace

// The caller's buffer. What does not fit is dropped.
struct TDicomDataSet::DumpSink {
    void Text(std::string_view text) {
        fPosition = TTextUtil().AppendText(text.data(), static_cast<uint32_t>(text.size()), fOutput,
                                           fCapacity, fPosition);
    }

    void Indent(int32_t depth) {
        for (int32_t level = 0; level < depth && !IsFull(); ++level) Text(kIndentPerDepth);
    }

    // The number's bytes in hexadecimal, the most significant first.
    template <typename Number>
    void Hex(Number number) {
        uint8_t bytes[sizeof(Number)];
        for (size_t index = 0; index < sizeof(Number); ++index) {
            bytes[sizeof(Number) - 1 - index] = static_cast<uint8_t>(number >> (8 * index));
        }
        HexBytes(bytes, sizeof(bytes));
    }

    void HexBytes(const uint8_t* bytes, uint32_t count) {
        fPosition = TTextUtil().AppendHex(bytes, count, fOutput, fCapacity, fPosition);
    }

    void Name(Tag tag) {
        if (fNames == nullptr) return;
        fPosition = fNames->AppendField(tag, "Name=", fOutput, fCapacity, fPosition);
        Text(kColumnGap);
    }

    bool IsFull() const { return fPosition >= fCapacity; }

    char* fOutput;
    int32_t fCapacity;
    int32_t fPosition;
    const TDicomDictionary* fNames;
};

int32_t TDicomDataSet::Dump(int32_t depth, char* output, int32_t capacity, int32_t position,
                            const char* dictionary, uint32_t dictionaryLength) const {
    CheckConstructed();
    std::unique_ptr<const TDicomDictionary> names;
    if (dictionary != nullptr) names = std::make_unique<const TDicomDictionary>(dictionary, dictionaryLength);
    DumpSink sink{output, capacity, position, names.get()};
    DumpNested(depth, sink, 0);
    return sink.fPosition;
}

void TDicomDataSet::DumpNested(int32_t depth, DumpSink& sink, int32_t nesting) const {
    Header header;
    int32_t offset = 0;
    int32_t previousGroup = -1;
    // Callers come back with more room when it was too little, so what nobody would see costs no time.
    while (!sink.IsFull() && DecodeHeader(offset, header)) {
        const uint32_t length = LengthOf(offset, header);
        DumpLine(depth, sink, offset, header, length, header.fTag.fGroup != previousGroup);
        previousGroup = header.fTag.fGroup;
        if (IsKnownSequence(header) || LooksLikeSequence(offset, header)) {
            DumpItems(depth, sink, offset, nesting);
        }
        offset = StepInIteration(offset, header, length);
    }
}

void TDicomDataSet::DumpLine(int32_t depth, DumpSink& sink, int32_t offset, const Header& header,
                             uint32_t length, bool showsGroup) const {
    const VrCode vr = VrOf(header);
    const char vrText[] = {static_cast<char>(vr >> 8), static_cast<char>(vr & 0xFF)};
    sink.Text(kColumnGap);
    sink.Indent(depth);
    if (showsGroup) {
        sink.Hex(header.fTag.fGroup);
    } else {
        sink.Text(kNoGroup);
    }
    sink.Text(kColumnGap);
    sink.Hex(header.fTag.fElement);
    sink.Text(kColumnGap);
    sink.Text({vrText, sizeof(vrText)});
    sink.Text(kColumnGap);
    sink.Hex(length);
    sink.Text(kColumnGap);
    sink.Name(header.fTag);
    DumpValue(sink, offset, header, length);
    sink.Text(kLineEnd);
}

void TDicomDataSet::DumpValue(DumpSink& sink, int32_t offset, const Header& header, uint32_t length) const {
    uint8_t value[kValueBufferSize] = {};
    const auto stored = static_cast<uint32_t>(fUsedSize - offset - header.fSize);
    const uint32_t available = std::min({length, kValueBufferSize, stored});
    ReadValue(offset, header, length, value, sizeof(value));
    if (!IsShownInHex(VrOf(header))) {
        sink.Text({reinterpret_cast<const char*>(value), available});
        return;
    }
    const uint32_t count = std::min(available, kLongestHexValue);
    std::reverse(value, value + count);
    sink.HexBytes(value, count);
    if (length > count) sink.Text("...");
}

void TDicomDataSet::DumpItems(int32_t depth, DumpSink& sink, int32_t sequenceOffset, int32_t nesting) const {
    if (nesting >= kDeepestNesting) return;
    const auto count = static_cast<uint16_t>(CountItemsInSequence(sequenceOffset));
    uint16_t number = 0;
    int32_t itemOffset = kFromStart;
    uint32_t itemLength = 0;
    while (!sink.IsFull() && FindNextItem(sequenceOffset, itemOffset, itemLength, &itemOffset, &itemLength)) {
        sink.Indent(depth);
        sink.Text("        ======= Item ");
        sink.Hex(++number);
        sink.Text(" of ");
        sink.Hex(count);
        sink.Text(" ======");
        sink.Text(kLineEnd);
        const auto size = static_cast<int32_t>(itemLength);
        TDicomDataSet item(fIsExplicit, fIsBigEndian, fBuffer + itemOffset, size, size);
        item.fDictionary = fDictionary;
        item.DumpNested(depth + 1, sink, nesting + 1);
    }
}

}  // namespace Vantor
