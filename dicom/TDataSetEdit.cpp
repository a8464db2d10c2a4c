#include "dicom/TDataSetEdit.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>

#include "dicom/ByteOrder.h"
#include "dicom/TDicomDataSet.h"
#include "dicom/TDicomDataSetLayout.h"
#include "dicom/TException.h"

namespace Vantor {

using namespace DataSetLayout;

namespace {

using Bytes = std::span<const uint8_t>;

constexpr Encoding kImplicitLittle = {false, false};
constexpr uint32_t kLongestValue = 0xFFFFFFFE;

Bytes Part(Bytes bytes, size_t start, size_t end) { return bytes.subspan(start, end - start); }

std::string_view TextOf(Bytes bytes) { return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; }

bool IsGroupLength(const EncodedElement& element) {
    return element.fTag.fElement == kGroupLengthElement && element.fLength == kGroupLengthValueSize;
}

// How the items of an element are encoded, should it have any: those whose VR a writer did not know are in
// implicit VR little endian.
Encoding EncodingOfItems(const EncodedElement& element, Encoding encoding) {
    return element.fVr == Vr::kUN ? kImplicitLittle : encoding;
}

// Steps over elements one after the other. Throws what the reader throws.
void WalkElements(Bytes bytes, Encoding encoding) {
    ElementReader reader(bytes, encoding);
    while (const auto element = reader.PeekHeader()) reader.Skip(*element);
}

// Steps over items one after the other. False where something else stands among them.
bool WalkItems(Bytes bytes, Encoding encoding) {
    ElementReader reader(bytes, encoding);
    while (const auto item = reader.PeekHeader()) {
        if (item->fTag != Tags::kItem) return false;
        const size_t end = reader.Skip(*item);
        WalkElements(Part(bytes, item->fValueStart, end), encoding);
    }
    return true;
}

bool IsNothingButItems(Bytes value, Encoding encoding) {
    try {
        return !value.empty() && WalkItems(value, encoding);
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        return false;
    }
}

// The fragments of compressed pixels look like items, and are none.
bool IsSequence(const EncodedElement& element, Bytes value, Encoding encoding) {
    if (element.fTag == Tags::kPixelData || element.fTag.fGroup == Tags::kItem.fGroup) return false;
    if (element.fVr == Vr::kSQ) return true;
    if (element.fVr != Vr::kUN && element.fVr != Vr::kNotKnown) return false;
    return element.HasUndefinedLength() || IsNothingButItems(value, EncodingOfItems(element, encoding));
}

uint32_t LongestValue(VrCode vr, Encoding encoding) {
    return encoding.fIsExplicit && !ElementReader::HasLongHeader(vr) ? kLongestShortValue : kLongestValue;
}

void Fit(std::string& value, VrCode vr, Encoding encoding) {
    if (value.size() > LongestValue(vr, encoding)) value.resize(LongestValue(vr, encoding));
    if (value.size() % 2 != 0) value.push_back(vr == Vr::kUI ? '\0' : ' ');
}

}  // namespace

// The source's elements are written one after the other; lengths are put right once what they count is there.
// Headers and delimiters of sequences and items are taken over, so that what does not change looks as before.
class TDataSetEdit::Pass {
  public:
    explicit Pass(const TDataSetEdit& edit) : fEdit(edit) {}

    std::vector<uint8_t> Run(Bytes elements, Encoding encoding) {
        fOutput.reserve(elements.size());
        FindPlacesOfPut(elements, encoding);
        WriteElements(elements, encoding, 0);
        return std::move(fOutput);
    }

  private:
    // The elements of one group that stand together, and where the value of their group length is.
    struct Group {
        uint16_t fNumber = 0;
        std::optional<size_t> fLengthPlace = {};
    };

    // Values to put that have an element already take its place, wherever that is: data sets out of order
    // would otherwise have it twice.
    void FindPlacesOfPut(Bytes elements, Encoding encoding) {
        if (fEdit.fPut.empty()) return;
        for (const auto& [tag, value] : fEdit.fPut) fMissing.insert(tag);
        ElementReader reader(elements, encoding);
        while (const auto element = reader.PeekHeader()) {
            reader.Skip(*element);
            fMissing.erase(element->fTag);
        }
    }

    void WriteElements(Bytes bytes, Encoding encoding, int32_t depth) {
        if (depth > TDicomDataSet::kDeepestNesting)
            throw new TException(ErrorNumbers::kSequenceStructure, "Sequences are nested too deeply");
        Group group;
        ElementReader reader(bytes, encoding);
        while (const auto element = reader.PeekHeader()) {
            const size_t valueEnd = reader.Skip(*element);
            const Bytes whole = Part(bytes, element->fStart, reader.GetPosition());
            const Bytes value = Part(bytes, element->fValueStart, valueEnd);
            if (depth == 0) PutMissingBelow(element->fTag, encoding, group);
            if (depth == 0 && fEdit.fPut.contains(element->fTag))
                PutOnce(element->fTag, encoding, group);
            else
                WriteElement(*element, whole, value, encoding, depth, group);
        }
        if (depth == 0) PutMissing(fMissing.end(), encoding, group);
        EndGroup(group, encoding);
    }

    void WriteElement(const EncodedElement& element, Bytes whole, Bytes value, Encoding encoding,
                      int32_t depth, Group& group) {
        const bool isSequence = IsSequence(element, value, encoding);
        Fate fate = FateOf(element, value, isSequence, depth);
        if (fate.fKind == Fate::Kind::kRemove) return;
        StartElement(element.fTag, encoding, group);
        if (fate.fKind == Fate::Kind::kReplace) {
            WriteReplaced(element, whole, value, std::move(fate.fValue), encoding);
        } else if (isSequence) {
            WriteSequence(element, whole, value, encoding, depth);
        } else {
            Append(whole);
            if (IsGroupLength(element)) group.fLengthPlace = fOutput.size() - kGroupLengthValueSize;
        }
    }

    Fate FateOf(const EncodedElement& element, Bytes value, bool isSequence, int32_t depth) const {
        if (!fEdit.fRule) return Fate::Keep();
        return fEdit.fRule({element.fTag, element.fVr, TextOf(value), isSequence, depth});
    }

    void WriteReplaced(const EncodedElement& element, Bytes whole, Bytes value, std::string replacement,
                       Encoding encoding) {
        Fit(replacement, element.fVr, encoding);
        if (!element.HasUndefinedLength() && replacement == TextOf(value))
            Append(whole);
        else
            AppendElement(element.fTag, element.fVr, replacement, encoding);
    }

    void WriteSequence(const EncodedElement& element, Bytes whole, Bytes value, Encoding encoding,
                       int32_t depth) {
        const size_t content = AppendHeader(element, whole);
        const Encoding inside = EncodingOfItems(element, encoding);
        ElementReader items(value, inside);
        while (const auto item = items.PeekHeader()) {
            const size_t end = items.Skip(*item);
            WriteItem(*item, Part(value, item->fStart, items.GetPosition()),
                      Part(value, item->fValueStart, end), inside, depth);
        }
        AppendEnd(element, whole, content, encoding);
    }

    void WriteItem(const EncodedElement& item, Bytes whole, Bytes value, Encoding encoding, int32_t depth) {
        // Some writers end sequences with a delimiter although their length is known.
        if (item.fTag == Tags::kSequenceDelimitation && item.fLength == 0) return Append(whole);
        if (item.fTag != Tags::kItem)
            throw new TException(ErrorNumbers::kRecordStructure, "Not a sequence item");
        const size_t content = AppendHeader(item, whole);
        WriteElements(value, encoding, depth + 1);
        AppendEnd(item, whole, content, encoding);
    }

    // Gives where the value starts.
    size_t AppendHeader(const EncodedElement& element, Bytes whole) {
        Append(whole.first(element.fValueStart - element.fStart));
        return fOutput.size();
    }

    void AppendEnd(const EncodedElement& element, Bytes whole, size_t content, Encoding encoding) {
        if (element.HasUndefinedLength())
            Append(whole.last(kDelimiterSize));
        else
            WriteNumber32(content - kLengthSize, LengthFrom(content), encoding);
    }

    // ---- Values to put ----

    void PutOnce(Tag tag, Encoding encoding, Group& group) {
        if (fPutAlready.insert(tag).second) AppendPut(tag, encoding, group);
    }

    void PutMissingBelow(Tag tag, Encoding encoding, Group& group) {
        if (!fMissing.empty()) PutMissing(fMissing.lower_bound(tag), encoding, group);
    }

    void PutMissing(std::set<Tag>::const_iterator end, Encoding encoding, Group& group) {
        for (auto tag = fMissing.begin(); tag != end; tag = fMissing.erase(tag))
            AppendPut(*tag, encoding, group);
    }

    void AppendPut(Tag tag, Encoding encoding, Group& group) {
        const Value& put = fEdit.fPut.at(tag);
        std::string value = put.fText;
        Fit(value, put.fVr, encoding);
        StartElement(tag, encoding, group);
        AppendElement(tag, put.fVr, value, encoding);
    }

    // ---- Group lengths ----

    void StartElement(Tag tag, Encoding encoding, Group& group) {
        if (tag.fGroup == group.fNumber && tag.fElement != kGroupLengthElement) return;
        EndGroup(group, encoding);
        group = {tag.fGroup};
    }

    void EndGroup(const Group& group, Encoding encoding) {
        if (!group.fLengthPlace) return;
        WriteNumber32(*group.fLengthPlace, LengthFrom(*group.fLengthPlace + kGroupLengthValueSize), encoding);
    }

    // ---- Bytes ----

    void Append(Bytes bytes) { fOutput.insert(fOutput.end(), bytes.begin(), bytes.end()); }

    template <typename Number>
    void AppendNumber(Number number, Encoding encoding) {
        fOutput.resize(fOutput.size() + sizeof(number));
        ByteOrder::CopyNumber(&fOutput[fOutput.size() - sizeof(number)], &number, sizeof(number),
                              encoding.fIsBigEndian);
    }

    void WriteNumber32(size_t place, uint32_t number, Encoding encoding) {
        ByteOrder::CopyNumber(&fOutput[place], &number, sizeof(number), encoding.fIsBigEndian);
    }

    uint32_t LengthFrom(size_t place) const {
        const size_t length = fOutput.size() - place;
        if (length > kLongestValue)
            throw new TException(ErrorNumbers::kRecordStructure, "Invalid DICOM element length.");
        return static_cast<uint32_t>(length);
    }

    void AppendElement(Tag tag, VrCode vr, const std::string& value, Encoding encoding) {
        AppendNumber(tag.fGroup, encoding);
        AppendNumber(tag.fElement, encoding);
        if (encoding.fIsExplicit) AppendVr(vr);
        const bool hasShortLength = encoding.fIsExplicit && !ElementReader::HasLongHeader(vr);
        if (hasShortLength)
            AppendNumber(static_cast<uint16_t>(value.size()), encoding);
        else
            AppendNumber(static_cast<uint32_t>(value.size()), encoding);
        fOutput.insert(fOutput.end(), value.begin(), value.end());
    }

    void AppendVr(VrCode vr) {
        fOutput.push_back(static_cast<uint8_t>(vr >> 8));
        fOutput.push_back(static_cast<uint8_t>(vr));
        if (ElementReader::HasLongHeader(vr)) fOutput.resize(fOutput.size() + kReservedSize);
    }

    static constexpr size_t kReservedSize = kLongLengthField - kReservedField;

    const TDataSetEdit& fEdit;
    std::vector<uint8_t> fOutput;
    std::set<Tag> fMissing;     // to put where their place is
    std::set<Tag> fPutAlready;  // of those that took an element's place
};

void TDataSetEdit::Put(Tag tag, VrCode vr, std::string value) {
    fPut.insert_or_assign(tag, Value{vr, std::move(value)});
}

std::vector<uint8_t> TDataSetEdit::Apply(std::span<const uint8_t> elements, Encoding encoding) const {
    return Pass(*this).Run(elements, encoding);
}

}  // namespace Vantor
