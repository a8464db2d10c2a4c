// Sequences and their items, which stay in the flat buffer: nothing is parsed into a tree.

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

#include "dicom/TDicomDataSet.h"
#include "dicom/TDicomDataSetLayout.h"
#include "dicom/TException.h"

namespace Vantor {

using namespace DataSetLayout;

namespace {

// Where the content of a sequence of a stored length ends at the latest.
int64_t EndOfContent(int64_t content, uint32_t rawLength, int32_t usedSize) {
    if (rawLength == TDicomDataSet::kUndefinedLength) return usedSize;
    return std::min<int64_t>(content + rawLength, usedSize);
}

}  // namespace

int32_t TDicomDataSet::SequenceHeaderSize() const { return fIsExplicit ? kLongHeaderSize : kShortHeaderSize; }

bool TDicomDataSet::HasItemAt(int64_t offset) const {
    Tag tag;
    return ReadTagAt(offset, tag) && tag == Tags::kItem;
}

void TDicomDataSet::CheckSequence(int32_t offset, const Header& header) const {
    // Implicit elements say nothing about themselves: any of them passes.
    if (!fIsExplicit || header.fStoredVr == Vr::kSQ || HasItemAt(offset + header.fSize)) return;
    throw new TException(ErrorNumbers::kSequenceStructure, "Not a sequence element");
}

// The header of a sequence, checked to be one.
TDicomDataSet::Header TDicomDataSet::SequenceHeaderAt(int32_t offset) const {
    CheckConstructed();
    Header header;
    if (!DecodeHeader(offset, header)) {
        throw new TException(ErrorNumbers::kSequenceStructure, "Not a sequence element");
    }
    CheckSequence(offset, header);
    return header;
}

bool TDicomDataSet::IsSequence(int32_t offset) const {
    SequenceHeaderAt(offset);
    return true;
}

// Gives the item whose content starts at an offset, unless it would reach past the end of its sequence. An
// item whose delimiter is missing ends the walk: going on inside its content would find items that are none,
// and an item that reached into what follows would be met again there, by every level twice as often.
bool TDicomDataSet::TakeItem(int64_t itemOffset, int32_t sequenceEnd, int32_t* itemOffsetOut,
                             uint32_t* itemLengthOut) const {
    if (itemOffset > sequenceEnd) return false;
    const auto offset = static_cast<int32_t>(itemOffset);
    const uint32_t length = ItemLengthWithin(sequenceEnd, offset);
    const bool isUndefined = ReadNumber32(offset - kLengthSize) == kUndefinedLength;
    const int64_t end = itemOffset + length + (isUndefined ? kDelimiterSize : 0);
    if (end > sequenceEnd) return false;
    Tag delimiter;
    if (isUndefined && !(ReadTagAt(itemOffset + length, delimiter) && delimiter == Tags::kItemDelimitation)) {
        return false;
    }
    if (itemOffsetOut != nullptr) *itemOffsetOut = offset;
    if (itemLengthOut != nullptr) *itemLengthOut = length;
    return true;
}

bool TDicomDataSet::FindNextItem(int32_t sequenceOffset, int32_t previousItemOffset,
                                 uint32_t previousItemLength, int32_t* itemOffset,
                                 uint32_t* itemLength) const {
    const Header sequence = SequenceHeaderAt(sequenceOffset);
    const int64_t content = static_cast<int64_t>(sequenceOffset) + SequenceHeaderSize();
    const bool isDefined = sequence.fRawLength != kUndefinedLength;
    const auto end = static_cast<int32_t>(EndOfContent(content, sequence.fRawLength, fUsedSize));
    if (previousItemOffset == kFromStart) {
        Tag tag;
        if (!ReadTagAt(content, tag)) return false;
        if (tag == Tags::kItem) return TakeItem(content + kItemHeaderSize, end, itemOffset, itemLength);
        if (tag == Tags::kSequenceDelimitation && itemOffset != nullptr) {
            *itemOffset = static_cast<int32_t>(content + kDelimiterSize);
        }
        return false;
    }
    if (previousItemOffset < kItemHeaderSize || previousItemOffset > fUsedSize) return false;
    const int64_t next = EndOfItem(previousItemOffset, previousItemLength) + kItemHeaderSize;
    // An item counts by where its content starts, so an empty one at the very end is not seen. Hosts have
    // always seen such sequences without it.
    const bool isAtEnd = isDefined && content + sequence.fRawLength <= next;
    if (!isAtEnd && HasItemAt(next - kItemHeaderSize)) return TakeItem(next, end, itemOffset, itemLength);
    if (itemOffset != nullptr && next <= fUsedSize) *itemOffset = static_cast<int32_t>(next);
    return false;
}

int32_t TDicomDataSet::CountItemsInSequence(int32_t sequenceOffset) const {
    int32_t count = 0;
    int32_t itemOffset = kFromStart;
    uint32_t itemLength = 0;
    while (FindNextItem(sequenceOffset, itemOffset, itemLength, &itemOffset, &itemLength)) ++count;
    return count;
}

bool TDicomDataSet::IsLastItem(int32_t sequenceOffset, int32_t itemOffset, uint32_t itemLength) const {
    const Header sequence = SequenceHeaderAt(sequenceOffset);
    const int64_t content = static_cast<int64_t>(sequenceOffset) + SequenceHeaderSize();
    const int64_t position = itemOffset == kFromStart ? content : EndOfItem(itemOffset, itemLength);
    Tag tag;
    if (sequence.fRawLength == kUndefinedLength) {
        return ReadTagAt(position, tag) && tag == Tags::kSequenceDelimitation;
    }
    const int64_t end = content + sequence.fRawLength;
    if (position == end) return true;
    return position + kItemHeaderSize == end && end <= fUsedSize && HasItemAt(position) &&
           ReadNumber32(static_cast<int32_t>(position) + kTagSize) == 0;
}

// Where an item's content ends with its delimiter, if it has one.
int64_t TDicomDataSet::EndOfItem(int32_t itemOffset, uint32_t itemLength) const {
    const bool hasDelimiter = ReadNumber32(itemOffset - kLengthSize) == kUndefinedLength;
    return int64_t{itemOffset} + itemLength + (hasDelimiter ? kDelimiterSize : 0);
}

// The length of an item's content, measured as if the data set ended with the item's sequence.
uint32_t TDicomDataSet::ItemLengthWithin(int32_t sequenceEnd, int32_t itemOffset) const {
    const bool endsHere = sequenceEnd == fUsedSize;
    return endsHere ? GetItemLength(itemOffset)
                    : TDicomDataSet(*this, 0, sequenceEnd).GetItemLength(itemOffset);
}

uint32_t TDicomDataSet::GetItemLength(int32_t itemOffset) const {
    CheckConstructed();
    if (itemOffset < kItemHeaderSize || itemOffset > fUsedSize) return 0;
    const uint32_t length = ReadNumber32(itemOffset - kLengthSize);
    return length == kUndefinedLength ? Measure(true, itemOffset) : length;
}

// The lengths of content of undefined length, in the order in which it starts. Only what starts behind all
// that is known is added: whoever goes through a data set from front to back finds everything here.
class TDicomDataSet::MeasuredLengths {
  public:
    // For content at or behind `base`.
    explicit MeasuredLengths(const uint8_t* base) : fBase(base) {}

    // Notes where content starts, and gives its place in the list; none when it is not added.
    std::optional<size_t> Begin(const uint8_t* content) {
        const uint32_t start = StartOf(content);
        if (!fContents.empty() && start <= fContents.back().fStart) return std::nullopt;
        fContents.push_back({start, 0});
        return fContents.size() - 1;
    }

    void End(size_t place, uint32_t length) { fContents[place].fLength = length; }

    // None for what is not known, or has no end or no content.
    std::optional<uint32_t> Find(const uint8_t* content) {
        const uint32_t start = StartOf(content);
        const size_t place = Seek(start);
        if (place == fContents.size() || fContents[place].fStart != start) return std::nullopt;
        fNext = place + 1;
        const uint32_t length = fContents[place].fLength;
        return length != 0 ? std::optional(length) : std::nullopt;
    }

  private:
    struct Content {
        uint32_t fStart;   // behind fBase
        uint32_t fLength;  // 0 until it is known
    };

    uint32_t StartOf(const uint8_t* content) const { return static_cast<uint32_t>(content - fBase); }

    bool StartsBefore(size_t place, uint32_t start) const { return fContents[place].fStart < start; }

    // The first place whose content does not start before `start`. It is next to where content was found
    // last, or near: steps from there get longer until they have passed it.
    size_t Seek(uint32_t start) const {
        size_t first = fNext;
        size_t last = fNext;
        for (size_t step = 1; first > 0 && !StartsBefore(first - 1, start); step *= 2) {
            last = first - 1;
            first -= std::min(step, first);
        }
        for (size_t step = 1; last < fContents.size() && StartsBefore(last, start); step *= 2) {
            first = last + 1;
            last += std::min(step, fContents.size() - last);
        }
        const auto contents = fContents.begin();
        const auto found = std::lower_bound(
            contents + static_cast<std::ptrdiff_t>(first), contents + static_cast<std::ptrdiff_t>(last),
            start, [](const Content& each, uint32_t place) { return each.fStart < place; });
        return static_cast<size_t>(found - contents);
    }

    const uint8_t* fBase;
    std::vector<Content> fContents;
    size_t fNext = 0;  // behind what was found last
};

// Measures content of undefined length: an item's up to its delimiter, a sequence's up to and with its
// delimiter. Content within content is kept on a list of its own rather than on the call stack, so that a
// medium with a hundred thousand levels costs no more than its bytes.
class TDicomDataSet::ContentMeasurer {
  public:
    explicit ContentMeasurer(const TDicomDataSet& dataSet)
        : fDataSet(dataSet), fLengths(dataSet.fMeasuredLengths.get()) {}

    uint32_t Measure(bool isItem, int64_t start) {
        Begin(isItem, start);
        for (;;) {
            const std::optional<int64_t> length = fContent.fIsItem ? StepInItem() : StepInSequence();
            if (!length) continue;
            if (fContent.fPlace) fLengths->End(*fContent.fPlace, static_cast<uint32_t>(*length));
            if (fEnclosing.empty()) return static_cast<uint32_t>(*length);
            ReturnToEnclosing(fContent.fStart + *length);
        }
    }

  private:
    struct Content {
        bool fIsItem = false;
        int64_t fStart = 0;
        int64_t fPosition = 0;
        std::optional<size_t> fPlace;  // in fLengths
    };

    // Passes the elements of an item up to one of undefined length. The item's length at its end; 0 for one
    // without delimiter, which inside other content leaves nothing to go on with.
    std::optional<int64_t> StepInItem() {
        auto position = static_cast<int32_t>(std::min<int64_t>(fContent.fPosition, fDataSet.fUsedSize));
        Header header;
        bool isThere = fDataSet.DecodeHeader(position, header);
        while (isThere && header.fTag.fGroup < Tags::kItemDelimitation.fGroup &&
               header.fRawLength != kUndefinedLength) {
            position = fDataSet.StepInSearch(position, header);
            isThere = fDataSet.DecodeHeader(position, header);
        }
        if (!isThere || header.fTag.fGroup > Tags::kItemDelimitation.fGroup) {
            if (!fEnclosing.empty()) ThrowInvalidLength();
            return 0;
        }
        if (header.fTag == Tags::kItemDelimitation) return position - fContent.fStart;
        if (header.fTag.fGroup == Tags::kItemDelimitation.fGroup) {
            throw new TException(ErrorNumbers::kSequenceStructure, "Unterminated item");
        }
        fDataSet.CheckSequence(position, header);
        Enter(false, position + header.fSize);
        return std::nullopt;
    }

    // Passes one item of a sequence. The sequence's length at its end.
    std::optional<int64_t> StepInSequence() {
        const int64_t itemContent = fContent.fPosition + kItemHeaderSize;
        if (fDataSet.HasItemAt(fContent.fPosition) && itemContent <= fDataSet.fUsedSize) {
            const uint32_t length = fDataSet.ReadNumber32(static_cast<int32_t>(itemContent) - kLengthSize);
            if (length == kUndefinedLength) {
                Enter(true, itemContent);
            } else {
                fContent.fPosition = itemContent + length;
            }
            return std::nullopt;
        }
        // Whatever stands behind the items is taken for their delimiter, but not where the first should be.
        Tag tag;
        const bool hasTag = fDataSet.ReadTagAt(fContent.fPosition, tag);
        const bool isEmpty = fContent.fPosition == fContent.fStart;
        if (!hasTag || (isEmpty && tag != Tags::kSequenceDelimitation)) ThrowInvalidLength();
        return fContent.fPosition + kDelimiterSize - fContent.fStart;
    }

    // Goes into content; what encloses it goes on behind it.
    void Enter(bool isItem, int64_t start) {
        fEnclosing.push_back(fContent);
        Begin(isItem, start);
    }

    void Begin(bool isItem, int64_t start) {
        fContent = {isItem, start, start, std::nullopt};
        if (fLengths != nullptr) fContent.fPlace = fLengths->Begin(fDataSet.fBuffer + start);
    }

    // Goes on behind content that ended. An item's delimiter is not part of its length, a sequence's is.
    void ReturnToEnclosing(int64_t end) {
        const bool wasItem = fContent.fIsItem;
        fContent = fEnclosing.back();
        fEnclosing.pop_back();
        fContent.fPosition = wasItem ? end + kDelimiterSize : end;
        if (!wasItem && end > fDataSet.fUsedSize) ThrowInvalidLength();
    }

    [[noreturn]] static void ThrowInvalidLength() {
        throw new TException(ErrorNumbers::kRecordStructure, "Invalid DICOM element length.");
    }

    const TDicomDataSet& fDataSet;
    MeasuredLengths* fLengths;  // null unless they are remembered
    Content fContent;
    std::vector<Content> fEnclosing;
};

uint32_t TDicomDataSet::Measure(bool isItem, int32_t contentOffset) const {
    if (fMeasuredLengths != nullptr) {
        const auto known = fMeasuredLengths->Find(fBuffer + contentOffset);
        if (known && *known <= static_cast<uint32_t>(fUsedSize - contentOffset)) return *known;
    }
    return ContentMeasurer(*this).Measure(isItem, contentOffset);
}

void TDicomDataSet::RememberLengths() {
    if (fMeasuredLengths == nullptr) fMeasuredLengths = std::make_shared<MeasuredLengths>(fBuffer);
}

// ---- Changing ----

void TDicomDataSet::AddItem(int32_t sequenceOffset, const void* itemBytes, uint32_t itemLength) {
    const Header sequence = SequenceHeaderAt(sequenceOffset);
    const uint32_t oldLength = LengthOf(sequenceOffset, sequence);
    const int64_t end = static_cast<int64_t>(sequenceOffset) + SequenceHeaderSize() + oldLength;
    if (end > fUsedSize) {
        throw new TException(ErrorNumbers::kRecordStructure, "Invalid DICOM element length.");
    }
    const int64_t size = static_cast<int64_t>(itemLength) + kItemHeaderSize;
    EnsureCapacity(fUsedSize + size);
    const auto item = static_cast<int32_t>(end);
    OpenGap(item, size);
    WriteNumber16(item, Tags::kItem.fGroup);
    WriteNumber16(item + kElementField, Tags::kItem.fElement);
    WriteNumber32(item + kTagSize, itemLength);
    if (itemLength > 0) std::memcpy(fBuffer + item + kItemHeaderSize, itemBytes, itemLength);
    MakeSequence(sequenceOffset);
    WriteSequenceLength(sequenceOffset, static_cast<uint32_t>(oldLength + size));
    AddToGroupLength(sequence.fTag.fGroup, size);
}

bool TDicomDataSet::DeleteItem(int32_t sequenceOffset, int32_t itemOffset, uint32_t itemLength) {
    const Header sequence = SequenceHeaderAt(sequenceOffset);
    const int64_t content = static_cast<int64_t>(sequenceOffset) + SequenceHeaderSize();
    const int64_t end = EndOfContent(content, sequence.fRawLength, fUsedSize);
    const int64_t start = static_cast<int64_t>(itemOffset) - kItemHeaderSize;
    // An item outside, at an offset that has become stale, is not this sequence's: its length says nothing of
    // it.
    if (start < content || itemOffset > end || !HasItemAt(start)) return false;
    const bool hasDelimiter = ReadNumber32(itemOffset - kLengthSize) == kUndefinedLength;
    const int64_t size =
        static_cast<int64_t>(itemLength) + kItemHeaderSize + (hasDelimiter ? kDelimiterSize : 0);
    if (start + size > end) return false;
    CloseGap(static_cast<int32_t>(start), size);
    if (sequence.fRawLength != kUndefinedLength) {
        WriteSequenceLength(sequenceOffset, static_cast<uint32_t>(sequence.fRawLength - size));
    }
    AddToGroupLength(sequence.fTag.fGroup, -size);
    return true;
}

// Writes SQ as the VR of a sequence that may have been stored as UN or OB.
void TDicomDataSet::MakeSequence(int32_t sequenceOffset) {
    if (!fIsExplicit) return;
    fBuffer[sequenceOffset + kVrField] = static_cast<uint8_t>(Vr::kSQ >> 8);
    fBuffer[sequenceOffset + kVrField + 1] = static_cast<uint8_t>(Vr::kSQ & 0xFF);
    WriteNumber16(sequenceOffset + kReservedField, 0);
}

void TDicomDataSet::WriteSequenceLength(int32_t sequenceOffset, uint32_t length) {
    WriteNumber32(sequenceOffset + (fIsExplicit ? kLongLengthField : kImplicitLengthField), length);
}

// True for elements that are known to be sequences by their VR.
bool TDicomDataSet::IsKnownSequence(const Header& header) const { return VrOf(header) == Vr::kSQ; }

// True for implicit elements of unknown VR whose value is a list of items to its last byte.
bool TDicomDataSet::LooksLikeSequence(int32_t offset, const Header& header) const {
    const VrCode vr = VrOf(header);
    const bool isUntold = !fIsExplicit && (vr == Vr::kNotKnown || vr == Vr::kUN);
    const int64_t content = static_cast<int64_t>(offset) + header.fSize;
    if (!isUntold || header.fTag == Tags::kPixelData || !HasItemAt(content)) return false;
    return header.fRawLength == kUndefinedLength || EndOfItems(offset) == content + header.fRawLength;
}

// Where the last item of a sequence ends; −1 for items that cannot be walked.
int64_t TDicomDataSet::EndOfItems(int32_t sequenceOffset) const {
    int64_t end = -1;
    int32_t itemOffset = kFromStart;
    uint32_t itemLength = 0;
    try {
        while (FindNextItem(sequenceOffset, itemOffset, itemLength, &itemOffset, &itemLength)) {
            end = EndOfItem(itemOffset, itemLength);
        }
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        return -1;
    }
    return end;
}

}  // namespace Vantor
