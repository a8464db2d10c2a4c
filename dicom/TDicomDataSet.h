#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "dicom/Tags.h"
#include "dicom/Vr.h"

namespace Vantor {

class TDicomDictionary;

// One DICOM data set, held as its encoded bytes in one contiguous buffer in a transfer syntax fixed at
// construction. Elements stay in ascending (group, element) order and are addressed by the byte offset of
// their header in the buffer; any change of the data set makes offsets behind it stale.
//
// There is an owning form that grows and a wrapping form over a caller's buffer, which can be read and
// shrunk but never grows. Sequence items are read through the wrapping form.
//
// Lengths are in bytes. Every operation throws TException 102 when the object was not properly constructed,
// and the walking ones throw 102 or 101 when the bytes are no data set; see each operation. Damaged lengths
// never lead outside the buffer.
//
// Not locked; one thread at a time.
class TDicomDataSet {
  public:
    // A start offset that means "from the beginning".
    static constexpr int32_t kFromStart = -1;
    // Lengths that stand for "up to the delimiter".
    static constexpr uint32_t kUndefinedLength = 0xFFFFFFFF;
    // What an owning data set may grow to when the caller gives no limit.
    static constexpr int32_t kDefaultMaximumSize = 0x3FFFFFFF;
    // How deep Dump and ConvertTo follow items within items. Deeper content is left out of a dump, and
    // ends a conversion with TException 101.
    static constexpr int32_t kDeepestNesting = 64;

    // An owning data set without elements. `initialSize` bytes are allocated at once and `growBy` bytes
    // whenever room is needed, up to `maxSize` (below 1: kDefaultMaximumSize). `context` is kept for the
    // caller and not looked at. Throws TException 100 when the memory cannot be had.
    TDicomDataSet(bool isExplicit, bool isBigEndian, uint32_t initialSize, uint32_t growBy, int32_t maxSize,
                  uintptr_t context);

    // A data set over the caller's bytes, which must outlive it: `usedSize` bytes of content in a buffer of
    // `capacity` bytes. Anything that needs more room throws TException 100.
    TDicomDataSet(bool isExplicit, bool isBigEndian, void* buffer, int32_t capacity, int32_t usedSize);

    // A data set over a part of another one, in the same encoding; only read. The other one must outlive it.
    TDicomDataSet(const TDicomDataSet& whole, int32_t offset, int32_t size);

    ~TDicomDataSet();
    TDicomDataSet(const TDicomDataSet&) = delete;
    TDicomDataSet& operator=(const TDicomDataSet&) = delete;

    bool IsExplicit() const;
    bool IsBigEndian() const;

    // The buffer, valid until the next change of the data set; null while nothing was allocated.
    uint8_t* GetDataSet();
    const uint8_t* GetDataSet() const;

    // The number of bytes in use.
    int32_t GetDataSetSize() const;

    // Sets the number of bytes in use of an owning data set, growing it as needed, for a caller that fills
    // them in. Does nothing for a wrapping one or a negative size. Throws TException 100.
    void SetDataSetSize(int32_t size);

    // Has this data set, and those made over parts of it from now on, remember the lengths that they measure,
    // so that content of undefined length is measured once however deep it lies, and where their last search
    // ended, so that one for a higher tag goes on from there. None of them may be changed afterwards.
    void RememberLengths();

    // Two values kept for the caller and not looked at.
    void SetUserValues(uintptr_t first, uintptr_t second);
    uintptr_t GetContext() const;

    // ---- Elements ----

    // Finds an element at the top level (not inside items). True when found; then each output that is not
    // null is filled: the VR, the value's length, as much of the value as
    // `valueCapacity` allows and the buffer has (numbers in the machine's order, nothing terminated), and the
    // element's offset. Throws TException 102 "Invalid
    // DICOM element length." when a length on the way leads outside the buffer.
    bool FindElement(uint16_t group, uint16_t element, VrCode* vr = nullptr, uint32_t* length = nullptr,
                     void* value = nullptr, uint32_t valueCapacity = 0, int32_t* offset = nullptr) const;
    bool FindElement(Tag tag, VrCode* vr = nullptr, uint32_t* length = nullptr, void* value = nullptr,
                     uint32_t valueCapacity = 0, int32_t* offset = nullptr) const {
        return FindElement(tag.fGroup, tag.fElement, vr, length, value, valueCapacity, offset);
    }

    // An element that FindElements looks for, and what it found of it; the value as FindElement gives it.
    struct Wanted {
        Wanted(Tag tag, void* value, uint32_t capacity) : fValue(value), fTag(tag), fCapacity(capacity) {}

        void* fValue;
        Tag fTag;
        uint32_t fCapacity;
        uint32_t fLength = 0;
        VrCode fVr = 0;
        bool fIsFound = false;
    };

    // Finds several elements, wanted in ascending order of their tags, in one walk through the whole data
    // set. False, whatever was found, unless the data set is plain: every element lies within it, each behind
    // those with lower tags, and none is a sequence. A plain data set can be converted without failure.
    // Throws nothing but what an object that was not properly constructed throws.
    bool FindElements(std::span<Wanted> wanted) const;

    // Copies at most textSize − 1 bytes of a value to `text`; what follows up to its end becomes NUL. False,
    // and an empty text, when the element is absent or textSize is 0. Throws what FindElement throws.
    bool GetText(Tag tag, char* text, uint32_t textSize) const;

    // Steps to the element after the one at `offset`, or to the first (kFromStart). False at the end.
    // Outputs as FindElement. Throws TException 102 "Invalid DICOM element length, longer than the data
    // set." when the element at `offset` runs past the end.
    bool GetNextElement(int32_t offset, uint16_t* group, uint16_t* element, VrCode* vr = nullptr,
                        uint32_t* length = nullptr, void* value = nullptr, uint32_t valueCapacity = 0,
                        int32_t* nextOffset = nullptr) const;

    // The number of elements at the top level, of all or of one group.
    int32_t CountElements() const;
    int32_t CountElementsInGroup(uint16_t group) const;

    // Adds an element, or replaces the one with the same tag. `length` bytes are stored, made even with a
    // pad byte (zero for UI and OB, else a space); at most `valueCapacity` bytes are taken from `value`,
    // numbers in the machine's order. The first element of a group brings a group length (gggg,0000) with
    // it, which is kept equal to the size of the group's other elements. CS values of up to 256 bytes are
    // stored in upper case. `offset`, when not null, is given the element's offset. Throws TException 100
    // when there is no room, and 102 "Invalid DICOM element length." for a length that the element's header
    // cannot hold (beyond 65,534 for VRs with 16 bits of length) or when the data set is damaged.
    //
    // In a big-endian data set hosts rely on the bytes as they have always been written: FL, UL and SL are
    // reversed in units of 8 bytes, so that a pair of values is exchanged as well and a single 4-byte value
    // is not stored at all (its bytes keep what the buffer held), and AT is stored as given.
    void PutElement(uint16_t group, uint16_t element, VrCode vr, uint32_t length, const void* value,
                    uint32_t valueCapacity, int32_t* offset = nullptr);
    void PutElement(Tag tag, VrCode vr, uint32_t length, const void* value, uint32_t valueCapacity,
                    int32_t* offset = nullptr) {
        PutElement(tag.fGroup, tag.fElement, vr, length, value, valueCapacity, offset);
    }

    // Removes an element. True when there was one.
    bool DeleteElement(uint16_t group, uint16_t element);

    // Removes every element.
    void RemoveAllElements();

    // The VR of the element at an offset: as stored (explicit), from the dictionary (UN when it does not
    // name the tag), or Vr::kNotKnown for implicit elements without a dictionary.
    VrCode GetElementVR(int32_t offset) const;

    // The length of the value of the element at an offset. An undefined length is worked out up to and
    // with the sequence delimiter; that throws what the item operations throw.
    uint32_t GetElementLength(int32_t offset) const;

    // The offset behind the element at an offset; 0 when the element would end past the used size.
    int32_t GetNextElementOffset(int32_t offset) const;

    // ---- Private blocks ----

    // Finds the block that a private creator has reserved in an odd group: `blockBase` is the number of the
    // block's first element (0x1000 for the creator at (gggg,0010)). The stored creator is compared over its
    // own length only, less one trailing space, so a longer creator text that begins with it is found too.
    bool FindPrivateCreator(uint16_t group, const char* creator, uint16_t* blockBase) const;

    // Elements are named by their place in the creator's block, 0 to 255. All are false, or 0, without the
    // creator. Get finds one; Find finds the first that is there and gives its place; GetNext steps from the
    // element at `bufferOffset` to the next one of the block.
    bool GetPrivateElement(uint16_t group, const char* creator, uint8_t offsetInBlock, VrCode* vr = nullptr,
                           uint32_t* length = nullptr, void* value = nullptr, uint32_t valueCapacity = 0,
                           int32_t* offset = nullptr) const;
    bool FindPrivateElement(uint16_t group, const char* creator, uint8_t* offsetInBlock, VrCode* vr = nullptr,
                            uint32_t* length = nullptr, void* value = nullptr, uint32_t valueCapacity = 0,
                            int32_t* offset = nullptr) const;
    bool GetNextPrivateElement(uint16_t group, const char* creator, int32_t bufferOffset,
                               uint8_t* offsetInBlock, VrCode* vr = nullptr, uint32_t* length = nullptr,
                               void* value = nullptr, uint32_t valueCapacity = 0,
                               int32_t* offset = nullptr) const;
    int32_t CountPrivateElements(uint16_t group, const char* creator) const;
    bool PutPrivateElement(uint16_t group, const char* creator, uint8_t offsetInBlock, VrCode vr,
                           uint32_t length, const void* value, uint32_t valueCapacity,
                           int32_t* offset = nullptr);
    bool DeletePrivateElement(uint16_t group, const char* creator, uint8_t offsetInBlock);

    // Reserves a block for a private creator (`length` bytes of text) unless it has one. True when it has
    // one afterwards. Throws TException 104 for an even group. A group whose blocks are all taken gives the
    // creator element number 0x0100.
    bool AddPrivateGroup(uint16_t group, const char* creator, uint32_t length);

    // ---- Sequences and items ----
    // A sequence is named by its element's offset, an item by the offset of its content (behind its 8-byte
    // header) and its content's length.

    // True for a sequence: VR SQ, or a value that starts with an item. An implicit data set cannot tell and
    // answers true for any element; an explicit one throws TException 101 "Not a sequence element", as both
    // do for an offset where no element is.
    bool IsSequence(int32_t offset) const;

    // Steps to the item after the given one, or to the first (previousItemOffset kFromStart). False at the
    // end, and for an item that lacks its delimiter or would reach past its sequence or the used size. An
    // empty last item of a sequence of defined length is not reported unless it is the only one.
    bool FindNextItem(int32_t sequenceOffset, int32_t previousItemOffset, uint32_t previousItemLength,
                      int32_t* itemOffset, uint32_t* itemLength) const;
    int32_t CountItemsInSequence(int32_t sequenceOffset) const;

    // Whether a walk with FindNextItem that has come to its end behind the given item (kFromStart: without
    // any) has seen all items: nothing follows in the sequence but its delimiter, or an empty last item.
    // False for a walk that was ended by damage.
    bool IsLastItem(int32_t sequenceOffset, int32_t itemOffset, uint32_t itemLength) const;

    // The length of an item's content. An undefined one is worked out up to the item delimiter; throws
    // TException 101 "Unterminated item" when another delimiter comes first; 0 when none comes at all.
    uint32_t GetItemLength(int32_t itemOffset) const;

    // Appends an item with a defined length. Meant for sequences of defined length: after an undefined one
    // the item lands behind the delimiter and the length becomes defined. Throws TException 100 when there is
    // no room, 101 for what is no sequence, and 102 for one that runs past the end.
    void AddItem(int32_t sequenceOffset, const void* itemBytes, uint32_t itemLength);

    // Removes an item. False, and no change, when there is no item at that offset.
    bool DeleteItem(int32_t sequenceOffset, int32_t itemOffset, uint32_t itemLength);

    // ---- Whole data sets ----

    // Attaches a dictionary text (see TDicomDictionary), not copied: the caller keeps it as long as it is
    // attached. A null text detaches it.
    void SetDictionary(const char* text, uint32_t length);

    // A new owning data set with the same elements in another transfer syntax, owned by the caller. Group
    // lengths are made anew and the lengths of sequences become defined. An element of more than 65,534 bytes
    // whose VR has a 16-bit length is dropped when the target is explicit; an element of unknown VR becomes
    // UN there, or SQ when its value is nothing but items. Values are converted as FindElement reads and
    // PutElement writes them (so the pixel data of an implicit data set has its byte pairs exchanged on the
    // way out); between equal transfer syntaxes their bytes are copied, with CS values in upper case and odd
    // lengths padded. Throws what walking, growing and items throw.
    std::unique_ptr<TDicomDataSet> ConvertTo(bool isExplicit, bool isBigEndian, uint32_t initialSize,
                                             uint32_t growBy, int32_t maxSize, uintptr_t context) const;

    // Appends a text of every element, one a line, to `output` at `position`, cut at `capacity`, without a
    // terminator, and gives the new position. `depth` indents by six spaces each. Items follow the
    // line of their sequence, also of an implicit element of unknown VR whose value is nothing but items.
    // With a dictionary text, names are shown. Throws TException 101 or 102 where the elements cannot be
    // walked on; what was written up to there stays.
    int32_t Dump(int32_t depth, char* output, int32_t capacity, int32_t position,
                 const char* dictionary = nullptr, uint32_t dictionaryLength = 0) const;

  private:
    // An element's header, decoded. Offsets and sizes in bytes.
    struct Header {
        Tag fTag;
        VrCode fStoredVr = 0;     // as stored; 0 in an implicit data set
        uint32_t fRawLength = 0;  // as stored, maybe undefined
        int32_t fSize = 0;        // of the header itself
    };
    struct DumpSink;
    class ContentMeasurer;
    class MeasuredLengths;
    enum class ValueForm {
        kMachine,
        kEncoded
    };  // numbers in the machine's order, or bytes to store as they are

    // Decoding: TDicomDataSet.cpp.
    void CheckConstructed() const;
    bool DecodeHeader(int32_t offset, Header& header) const;
    bool ReadTagAt(int64_t offset, Tag& tag) const;
    uint16_t ReadNumber16(int32_t offset) const;
    uint32_t ReadNumber32(int32_t offset) const;
    void WriteNumber16(int32_t offset, uint16_t number);
    void WriteNumber32(int32_t offset, uint32_t number);
    VrCode VrOf(const Header& header) const;
    uint32_t LengthOf(int32_t offset, const Header& header) const;
    int32_t NextOffset(int32_t offset, const Header& header, uint32_t length) const;
    int32_t StepInSearch(int32_t offset, const Header& header) const;
    int32_t StepInIteration(int32_t offset, const Header& header, uint32_t length) const;
    int32_t HeaderSizeFor(VrCode vr) const;

    // Searching and reading: TDicomDataSet.cpp.
    bool FindGroupStart(uint16_t group, int32_t& offset, Header& header) const;
    bool SeekGroup(uint16_t group, int32_t& offset, Header& header) const;
    bool SeekHeader(Tag tag, int32_t& offset, Header& header) const;
    bool FindHeader(Tag tag, int32_t& offset, Header& header) const;
    void RememberSearch(Tag tag, int32_t offset, const Header& header) const;
    void FillOutputs(int32_t offset, const Header& header, VrCode* vr, uint32_t* length, void* value,
                     uint32_t valueCapacity, int32_t* offsetOut) const;
    void ReadValue(int32_t offset, const Header& header, uint32_t length, void* value,
                   uint32_t valueCapacity) const;

    // Changing: TDicomDataSetChange.cpp.
    void Put(Tag tag, VrCode vr, uint32_t length, const void* value, uint32_t valueCapacity, ValueForm form,
             int32_t* offsetOut);
    bool EndsBefore(Tag tag) const;
    int32_t PrepareEnd(Tag tag, int64_t size);
    int32_t PreparePlace(Tag tag, int64_t size);
    int32_t FindInsertionOffset(Tag tag) const;
    void InsertGroupLength(uint16_t group, int32_t offset);
    int32_t InsertElement(int32_t offset, Tag tag, VrCode vr, uint32_t length);
    void WriteValue(int32_t valueOffset, Tag tag, VrCode vr, uint32_t length, const void* value,
                    uint32_t valueCapacity, ValueForm form);
    void Remove(int32_t offset, const Header& header);
    bool FindGroupLength(uint16_t group, int32_t& offset, Header& header) const;
    void AddToGroupLength(uint16_t group, int64_t difference);
    void EnsureCapacity(int64_t size);
    void Allocate(int64_t capacity);
    void OpenGap(int32_t offset, int64_t size);
    void CloseGap(int32_t offset, int64_t size);

    // Private blocks: TDicomDataSetPrivate.cpp.
    bool IsPrivateCreator(int32_t offset, const Header& header, const char* creator) const;

    // Items: TDicomDataSetItems.cpp.
    int32_t SequenceHeaderSize() const;
    bool HasItemAt(int64_t offset) const;
    void CheckSequence(int32_t offset, const Header& header) const;
    Header SequenceHeaderAt(int32_t offset) const;
    bool TakeItem(int64_t itemOffset, int32_t sequenceEnd, int32_t* itemOffsetOut,
                  uint32_t* itemLengthOut) const;
    uint32_t ItemLengthWithin(int32_t sequenceEnd, int32_t itemOffset) const;
    uint32_t Measure(bool isItem, int32_t contentOffset) const;
    void MakeSequence(int32_t sequenceOffset);
    void WriteSequenceLength(int32_t sequenceOffset, uint32_t length);
    bool IsKnownSequence(const Header& header) const;
    bool LooksLikeSequence(int32_t offset, const Header& header) const;
    int64_t EndOfItems(int32_t sequenceOffset) const;
    int64_t EndOfItem(int32_t itemOffset, uint32_t itemLength) const;

    // Converting: TDicomDataSetConvert.cpp.
    std::unique_ptr<TDicomDataSet> ConvertNested(bool isExplicit, bool isBigEndian, uint32_t initialSize,
                                                 uint32_t growBy, int32_t maxSize, uintptr_t context,
                                                 int32_t nesting) const;
    void ConvertElement(int32_t offset, const Header& header, TDicomDataSet& target, int32_t nesting) const;
    void ConvertItems(int32_t sequenceOffset, TDicomDataSet& target, int32_t targetOffset,
                      int32_t nesting) const;

    // Dumping: TDicomDataSetDump.cpp.
    void DumpNested(int32_t depth, DumpSink& sink, int32_t nesting) const;
    void DumpLine(int32_t depth, DumpSink& sink, int32_t offset, const Header& header, uint32_t length,
                  bool showsGroup) const;
    void DumpValue(DumpSink& sink, int32_t offset, const Header& header, uint32_t length) const;
    void DumpItems(int32_t depth, DumpSink& sink, int32_t sequenceOffset, int32_t nesting) const;

    bool fIsExplicit;
    bool fIsBigEndian;
    bool fSwapsBytes;  // equal to fIsBigEndian
    bool fOwnsBuffer;
    uintptr_t fReserved = 0;
    uintptr_t fContext = 0;
    uint32_t fInitialSize = 0;
    uint32_t fGrowBy = 0;
    int32_t fMaximumSize = 0;
    uint8_t* fBuffer = nullptr;
    uint32_t fSignature;
    int32_t fUsedSize = 0;
    int32_t fCapacity = 0;
    const char* fDictionaryText = nullptr;
    uint32_t fDictionaryLength = 0;
    uintptr_t fUserValues[2] = {0, 0};
    std::shared_ptr<const TDicomDictionary> fDictionary;  // shared with the data sets over this one's items
    std::shared_ptr<MeasuredLengths> fMeasuredLengths;    // likewise; null unless they are remembered

    // The last search of a data set that remembers: for which tag, and where it ended.
    mutable Tag fSearchedTag;
    mutable int32_t fSearchEnd = 0;

    // Where the last element and its group's length are while elements are put in order, −1 when not known:
    // they save the walk to the end for each new element. Forgotten when anything but the end changes, and
    // believed only when the element there ends at fUsedSize.
    int32_t fLastElement = -1;
    int32_t fLastGroupLength = -1;
};

}  // namespace Vantor
