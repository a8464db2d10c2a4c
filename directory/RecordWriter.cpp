#include "directory/RecordWriter.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "dicom/ByteOrder.h"
#include "dicom/TException.h"
#include "platform/Ascii.h"

namespace Vantor {

namespace {

constexpr uint32_t kShortHeaderSize = 8;
constexpr uint32_t kLongHeaderSize = 12;
constexpr size_t kItemHeaderSize = 8;
constexpr size_t kNumberSize = 4;
constexpr uint16_t kGroupLength = 0x0000;
constexpr uint32_t kLongestShortValue = 0xFFFE;
constexpr uint32_t kLongestCodeString = 256;
constexpr uint16_t kInUse = 0xFFFF;

constexpr size_t kUsualElements = 16;  // of a record

constexpr uint32_t kGrowDivisor = 4;
constexpr uint32_t kSmallestGrowth = 16384;

struct KnownElement {
    Tag fTag;
    VrCode fVr;
};

// What the elements of records are, and those of the icon images in them: a record that was stored without
// its VRs is given them by this table.
constexpr KnownElement kKnownElements[] = {
    {Tags::kFileSetID, Vr::kCS},
    {{0x0004, 0x1141}, Vr::kCS},  // File-set Descriptor File ID
    {{0x0004, 0x1142}, Vr::kCS},  // Specific Character Set of File-set Descriptor File
    {Tags::kFirstRootRecordOffset, Vr::kUL},
    {Tags::kLastRootRecordOffset, Vr::kUL},
    {Tags::kFileSetConsistencyFlag, Vr::kUS},
    {Tags::kDirectoryRecordSequence, Vr::kSQ},
    {Tags::kNextRecordOffset, Vr::kUL},
    {Tags::kRecordInUseFlag, Vr::kUS},
    {Tags::kLowerLevelOffset, Vr::kUL},
    {Tags::kDirectoryRecordType, Vr::kCS},
    {Tags::kPrivateRecordUID, Vr::kUI},
    {Tags::kReferencedFileID, Vr::kCS},
    {{0x0004, 0x1504}, Vr::kUL},  // MRDR Directory Record Offset
    {Tags::kReferencedSOPClassUIDInFile, Vr::kUI},
    {Tags::kReferencedSOPInstanceUIDInFile, Vr::kUI},
    {Tags::kReferencedTransferSyntaxUIDInFile, Vr::kUI},
    {{0x0004, 0x151A}, Vr::kUI},  // Referenced Related General SOP Class UID in File
    {{0x0004, 0x1600}, Vr::kUL},  // Number of References
    {Tags::kSpecificCharacterSet, Vr::kCS},
    {{0x0008, 0x0008}, Vr::kCS},  // Image Type
    {Tags::kSOPClassUID, Vr::kUI},
    {Tags::kSOPInstanceUID, Vr::kUI},
    {Tags::kStudyDate, Vr::kDA},
    {{0x0008, 0x0021}, Vr::kDA},  // Series Date
    {{0x0008, 0x0022}, Vr::kDA},  // Acquisition Date
    {Tags::kContentDate, Vr::kDA},
    {{0x0008, 0x002A}, Vr::kDT},  // Acquisition DateTime
    {Tags::kStudyTime, Vr::kTM},
    {{0x0008, 0x0031}, Vr::kTM},  // Series Time
    {{0x0008, 0x0032}, Vr::kTM},  // Acquisition Time
    {Tags::kContentTime, Vr::kTM},
    {Tags::kAccessionNumber, Vr::kSH},
    {Tags::kModality, Vr::kCS},
    {{0x0008, 0x0080}, Vr::kLO},  // Institution Name
    {{0x0008, 0x0081}, Vr::kST},  // Institution Address
    {Tags::kReferringPhysicianName, Vr::kPN},
    {{0x0008, 0x0100}, Vr::kSH},  // Code Value
    {{0x0008, 0x0102}, Vr::kSH},  // Coding Scheme Designator
    {{0x0008, 0x0103}, Vr::kSH},  // Coding Scheme Version
    {{0x0008, 0x0104}, Vr::kLO},  // Code Meaning
    {Tags::kStudyDescription, Vr::kLO},
    {{0x0008, 0x1032}, Vr::kSQ},  // Procedure Code Sequence
    {Tags::kSeriesDescription, Vr::kLO},
    {{0x0008, 0x1050}, Vr::kPN},  // Performing Physician's Name
    {{0x0008, 0x1110}, Vr::kSQ},  // Referenced Study Sequence
    {{0x0008, 0x1111}, Vr::kSQ},  // Referenced Performed Procedure Step Sequence
    {{0x0008, 0x1115}, Vr::kSQ},  // Referenced Series Sequence
    {{0x0008, 0x1120}, Vr::kSQ},  // Referenced Patient Sequence
    {{0x0008, 0x1140}, Vr::kSQ},  // Referenced Image Sequence
    {Tags::kReferencedSOPClassUID, Vr::kUI},
    {Tags::kReferencedSOPInstanceUID, Vr::kUI},
    {{0x0008, 0x1199}, Vr::kSQ},  // Referenced SOP Sequence
    {Tags::kSourceImageSequence, Vr::kSQ},
    {Tags::kPatientName, Vr::kPN},
    {Tags::kPatientID, Vr::kLO},
    {{0x0010, 0x0021}, Vr::kLO},  // Issuer of Patient ID
    {Tags::kPatientBirthDate, Vr::kDA},
    {{0x0010, 0x0040}, Vr::kCS},  // Patient's Sex
    {{0x0018, 0x0015}, Vr::kCS},  // Body Part Examined
    {{0x0018, 0x1030}, Vr::kLO},  // Protocol Name
    {{0x0018, 0x1088}, Vr::kIS},  // Heart Rate
    {Tags::kStudyInstanceUID, Vr::kUI},
    {Tags::kSeriesInstanceUID, Vr::kUI},
    {Tags::kStudyID, Vr::kSH},
    {Tags::kSeriesNumber, Vr::kIS},
    {{0x0020, 0x0012}, Vr::kIS},  // Acquisition Number
    {Tags::kInstanceNumber, Vr::kIS},
    {{0x0020, 0x0032}, Vr::kDS},  // Image Position (Patient)
    {{0x0020, 0x0037}, Vr::kDS},  // Image Orientation (Patient)
    {{0x0020, 0x0052}, Vr::kUI},  // Frame of Reference UID
    {{0x0020, 0x4000}, Vr::kLT},  // Image Comments
    {Tags::kSamplesPerPixel, Vr::kUS},
    {{0x0028, 0x0004}, Vr::kCS},  // Photometric Interpretation
    {{0x0028, 0x0006}, Vr::kUS},  // Planar Configuration
    {Tags::kNumberOfFrames, Vr::kIS},
    {Tags::kRows, Vr::kUS},
    {Tags::kColumns, Vr::kUS},
    {{0x0028, 0x0030}, Vr::kDS},  // Pixel Spacing
    {{0x0028, 0x0034}, Vr::kIS},  // Pixel Aspect Ratio
    {Tags::kBitsAllocated, Vr::kUS},
    {{0x0028, 0x0101}, Vr::kUS},  // Bits Stored
    {{0x0028, 0x0102}, Vr::kUS},  // High Bit
    {{0x0028, 0x0103}, Vr::kUS},  // Pixel Representation
    {Tags::kRedPaletteDescriptor, Vr::kUS},
    {{0x0028, 0x1102}, Vr::kUS},  // Green Palette Color Lookup Table Descriptor
    {{0x0028, 0x1103}, Vr::kUS},  // Blue Palette Color Lookup Table Descriptor
    {{0x0028, 0x1201}, Vr::kOW},  // Red Palette Color Lookup Table Data
    {{0x0028, 0x1202}, Vr::kOW},  // Green Palette Color Lookup Table Data
    {{0x0028, 0x1203}, Vr::kOW},  // Blue Palette Color Lookup Table Data
    {{0x0028, 0x1300}, Vr::kCS},  // Breast Implant Present
    {{0x0040, 0xA010}, Vr::kCS},  // Relationship Type
    {{0x0040, 0xA032}, Vr::kDT},  // Observation DateTime
    {{0x0040, 0xA040}, Vr::kCS},  // Value Type
    {{0x0040, 0xA043}, Vr::kSQ},  // Concept Name Code Sequence
    {{0x0040, 0xA160}, Vr::kUT},  // Text Value
    {{0x0040, 0xA168}, Vr::kSQ},  // Concept Code Sequence
    {Tags::kCompletionFlag, Vr::kCS},
    {Tags::kVerificationFlag, Vr::kCS},
    {{0x0040, 0xA730}, Vr::kSQ},  // Content Sequence
    {{0x0042, 0x0010}, Vr::kST},  // Document Title
    {{0x0042, 0x0012}, Vr::kLO},  // MIME Type of Encapsulated Document
    {{0x0070, 0x0080}, Vr::kCS},  // Content Label
    {{0x0070, 0x0081}, Vr::kLO},  // Content Description
    {{0x0070, 0x0082}, Vr::kDA},  // Presentation Creation Date
    {{0x0070, 0x0083}, Vr::kTM},  // Presentation Creation Time
    {{0x0070, 0x0084}, Vr::kPN},  // Content Creator's Name
    {{0x0088, 0x0140}, Vr::kUI},  // Storage Media File-set UID
    {{0x0088, 0x0200}, Vr::kSQ},  // Icon Image Sequence
    {Tags::kExamCreator, Vr::kLO},
    {Tags::kExamFolder, Vr::kST},
    {Tags::kPixelData, Vr::kOW},
};

constexpr bool IsBefore(const KnownElement& known, Tag tag) { return known.fTag < tag; }

static_assert(std::is_sorted(std::begin(kKnownElements), std::end(kKnownElements),
                             [](const auto& a, const auto& b) { return a.fTag < b.fTag; }));

VrCode KnownVr(Tag tag) {
    const auto* known = std::lower_bound(std::begin(kKnownElements), std::end(kKnownElements), tag, IsBefore);
    return known != std::end(kKnownElements) && known->fTag == tag ? known->fVr : Vr::kUN;
}

// The size of the numbers that a value is made of.
uint32_t UnitOf(VrCode vr) {
    switch (vr) {
        case Vr::kSS:
        case Vr::kUS:
        case Vr::kOW:
        case Vr::kAT:
            return 2;
        case Vr::kFL:
        case Vr::kUL:
        case Vr::kSL:
            return 4;
        case Vr::kFD:
            return 8;
        default:
            return 1;
    }
}

TDicomDataSet Part(TDicomDataSet& dataSet, int32_t offset, int32_t end) {
    const int32_t size = std::max(end - offset, 0);
    return {dataSet.IsExplicit(), dataSet.IsBigEndian(), dataSet.GetDataSet() + offset, size, size};
}

size_t SizeOf(const std::vector<TDicomDoc*>& docs) {
    size_t size = 0;
    for (TDicomDoc* doc : docs) {
        TListOf<TDicomDoc> below;
        doc->GetChildDocs(below, false);
        below.InsertItemAt(below.kAtEnd, doc);
        for (const TDicomDoc* record : below) {
            size += kItemHeaderSize + static_cast<size_t>(record->ViewRecord().GetDataSetSize());
        }
    }
    return size;
}

std::vector<TDicomDoc*> DocsBelow(TDicomDoc& doc) {
    TListOf<TDicomDoc> children;
    doc.GetChildDocs(children, true);
    std::vector<TDicomDoc*> below(children.begin(), children.end());
    below.insert(below.end(), doc.GetForeignChildren().begin(), doc.GetForeignChildren().end());
    return below;
}

}  // namespace

std::unique_ptr<TDicomDataSet> RecordWriter::Write(TDicomDataSet* present,
                                                   const std::vector<TDicomDoc*>& rootDocs,
                                                   uintptr_t context) {
    TDicomDataSet none(true, false, nullptr, 0, 0);
    TDicomDataSet& others = present == nullptr ? none : *present;
    const std::vector<Element> elements = ElementsOf(others);
    const auto records = std::lower_bound(elements.begin(), elements.end(), Tags::kDirectoryRecordSequence,
                                          [](const Element& element, Tag tag) { return element.fTag < tag; });
    const bool hasRecords = records != elements.end() && records->fTag == Tags::kDirectoryRecordSequence;
    fBytes.clear();
    fBytes.reserve(SizeOf(rootDocs) + kSmallestGrowth);

    Generated roots[] = {{Tags::kFirstRootRecordOffset, Vr::kUL},
                         {Tags::kLastRootRecordOffset, Vr::kUL},
                         {Tags::kFileSetConsistencyFlag, Vr::kUS}};
    AppendElements(others, {elements.begin(), records}, roots);
    AppendHeader(Tags::kDirectoryRecordSequence, Vr::kSQ, 0);
    const size_t start = fBytes.size();
    if (const auto last = AppendRecords(rootDocs)) {
        SetOffset(roots[0].fPosition, start);
        SetOffset(roots[1].fPosition, *last);
    }
    SetNumber(start - kNumberSize, fBytes.size() - start);
    AppendElements(others, {records + (hasRecords ? 1 : 0), elements.end()}, {});

    const auto size = static_cast<uint32_t>(fBytes.size());
    auto dataSet = std::make_unique<TDicomDataSet>(
        true, false, size, std::max(size / kGrowDivisor, kSmallestGrowth), 0, context);
    dataSet->SetDataSetSize(static_cast<int32_t>(size));
    std::copy(fBytes.begin(), fBytes.end(), dataSet->GetDataSet());
    return dataSet;
}

// ---- Records ----

// Gives where the last of them starts; none when there is no record among them.
std::optional<size_t> RecordWriter::AppendRecords(const std::vector<TDicomDoc*>& docs) {
    std::optional<size_t> last;
    size_t nextOfLast = 0;
    for (TDicomDoc* doc : docs) {
        doc->PrepareForWriting();
        TDicomDataSet record = doc->ViewRecord();
        if (record.GetDataSetSize() == 0) continue;
        uint16_t inUse = kInUse;
        record.FindElement(Tags::kRecordInUseFlag, nullptr, nullptr, &inUse, sizeof(inUse));
        Generated links[] = {{Tags::kNextRecordOffset, Vr::kUL},
                             {Tags::kRecordInUseFlag, Vr::kUS, inUse},
                             {Tags::kLowerLevelOffset, Vr::kUL}};
        const size_t start = BeginItem();
        AppendElements(record, ElementsOf(record), links);
        EndItem(start);
        if (last) SetOffset(nextOfLast, start);
        last = start;
        nextOfLast = links[0].fPosition;
        const size_t below = fBytes.size();
        if (AppendRecords(DocsBelow(*doc))) SetOffset(links[2].fPosition, below);
    }
    return last;
}

// ---- Elements ----

// In the order of their tags, without group lengths, and of several with the same tag the last. Behind damage
// there is nothing, and an item that stands where an element belongs is none.
std::vector<RecordWriter::Element> RecordWriter::ElementsOf(const TDicomDataSet& dataSet) {
    std::vector<Element> elements;
    elements.reserve(kUsualElements);
    Element next = {};
    next.fOffset = TDicomDataSet::kFromStart;
    try {
        while (dataSet.GetNextElement(next.fOffset, &next.fTag.fGroup, &next.fTag.fElement, &next.fVr,
                                      &next.fLength, nullptr, 0, &next.fOffset)) {
            const bool isElement =
                next.fTag.fElement != kGroupLength && next.fTag.fGroup != Tags::kItem.fGroup;
            if (isElement) elements.push_back(next);
        }
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
    }
    const auto isBefore = [](const Element& a, const Element& b) { return a.fTag < b.fTag; };
    const auto isNotBefore = [](const Element& a, const Element& b) { return !(a.fTag < b.fTag); };
    if (std::adjacent_find(elements.begin(), elements.end(), isNotBefore) == elements.end()) return elements;
    std::stable_sort(elements.begin(), elements.end(), isBefore);
    const auto first = std::unique(elements.rbegin(), elements.rend(),
                                   [](const Element& a, const Element& b) { return a.fTag == b.fTag; });
    elements.erase(elements.begin(), first.base());
    return elements;
}

void RecordWriter::AppendElements(TDicomDataSet& dataSet, std::span<const Element> elements,
                                  std::span<Generated> generated, int32_t nesting) {
    auto next = generated.begin();
    for (const Element& element : elements) {
        for (; next != generated.end() && next->fTag < element.fTag; ++next) AppendGenerated(*next);
        const bool isReplaced = next != generated.end() && next->fTag == element.fTag;
        if (!isReplaced) AppendElement(dataSet, element, nesting);
    }
    for (; next != generated.end(); ++next) AppendGenerated(*next);
    constexpr auto kMost = static_cast<size_t>(TDicomDataSet::kDefaultMaximumSize);
    if (fBytes.size() > kMost) {
        throw new TException(ErrorNumbers::kDataSetMemory, "Attempt to expand beyond maximum size");
    }
}

void RecordWriter::AppendElement(TDicomDataSet& dataSet, const Element& element, int32_t nesting) {
    const bool isLong = dataSet.IsExplicit() && Vr::HasLongHeader(element.fVr);
    VrCode vr = dataSet.IsExplicit() ? element.fVr : KnownVr(element.fTag);
    if (vr == Vr::kSQ && nesting < TDicomDataSet::kDeepestNesting) {
        AppendHeader(element.fTag, vr, 0);
        const size_t start = fBytes.size();
        AppendItems(dataSet, element.fOffset, nesting + 1);
        SetNumber(start - kNumberSize, fBytes.size() - start);
        return;
    }
    const auto offset =
        static_cast<uint32_t>(element.fOffset) + (isLong ? kLongHeaderSize : kShortHeaderSize);
    const auto end = static_cast<uint32_t>(dataSet.GetDataSetSize());
    const uint32_t length = std::min(element.fLength, end - std::min(offset, end));
    // Too long for the header that it should have.
    if (!Vr::HasLongHeader(vr) && length > kLongestShortValue) vr = Vr::kUN;
    AppendHeader(element.fTag, vr, length + length % 2);
    AppendValue(dataSet.GetDataSet() + offset, length, vr, dataSet.IsBigEndian());
}

void RecordWriter::AppendItems(TDicomDataSet& dataSet, int32_t sequenceOffset, int32_t nesting) {
    int32_t itemOffset = TDicomDataSet::kFromStart;
    uint32_t itemLength = 0;
    while (dataSet.FindNextItem(sequenceOffset, itemOffset, itemLength, &itemOffset, &itemLength)) {
        TDicomDataSet item = Part(dataSet, itemOffset, itemOffset + static_cast<int32_t>(itemLength));
        const size_t start = BeginItem();
        AppendElements(item, ElementsOf(item), {}, nesting);
        EndItem(start);
    }
}

void RecordWriter::AppendValue(const uint8_t* value, uint32_t length, VrCode vr, bool isBigEndian) {
    const size_t start = fBytes.size();
    fBytes.insert(fBytes.end(), value, value + length);
    uint8_t* const written = fBytes.data() + start;
    if (const uint32_t unit = UnitOf(vr); isBigEndian && unit > 1) {
        ByteOrder::CopyReversedUnits(written, value, length, unit);
    }
    if (vr == Vr::kCS && length <= kLongestCodeString) {
        auto* const text = reinterpret_cast<char*>(written);
        std::transform(text, text + length, text, Platform::UpperCase);
    }
    if (length % 2 != 0) fBytes.push_back(vr == Vr::kUI || vr == Vr::kOB ? uint8_t{0} : uint8_t{' '});
}

// ---- Bytes ----

void RecordWriter::AppendGenerated(Generated& generated) {
    const size_t size = UnitOf(generated.fVr);
    AppendHeader(generated.fTag, generated.fVr, static_cast<uint32_t>(size));
    generated.fPosition = fBytes.size();
    AppendNumber(generated.fNumber, size);
}

void RecordWriter::AppendHeader(Tag tag, VrCode vr, uint32_t length) {
    AppendNumber(tag.fGroup, sizeof(tag.fGroup));
    AppendNumber(tag.fElement, sizeof(tag.fElement));
    fBytes.push_back(static_cast<uint8_t>(vr >> 8));
    fBytes.push_back(static_cast<uint8_t>(vr & 0xFF));
    if (Vr::HasLongHeader(vr)) {
        AppendNumber(0, sizeof(uint16_t));
        AppendNumber(length, kNumberSize);
    } else {
        AppendNumber(length, sizeof(uint16_t));
    }
}

// Gives where the item starts.
size_t RecordWriter::BeginItem() {
    const size_t start = fBytes.size();
    AppendNumber(Tags::kItem.fGroup, sizeof(Tags::kItem.fGroup));
    AppendNumber(Tags::kItem.fElement, sizeof(Tags::kItem.fElement));
    AppendNumber(0, kNumberSize);
    return start;
}

void RecordWriter::EndItem(size_t start) {
    SetNumber(start + kItemHeaderSize - kNumberSize, fBytes.size() - start - kItemHeaderSize);
}

void RecordWriter::AppendNumber(uint32_t number, size_t size) {
    for (size_t index = 0; index < size; ++index) {
        fBytes.push_back(static_cast<uint8_t>(number & 0xFF));
        number >>= 8;
    }
}

void RecordWriter::SetNumber(size_t position, size_t number) {
    for (size_t index = 0; index < kNumberSize; ++index) {
        fBytes[position + index] = static_cast<uint8_t>(number & 0xFF);
        number >>= 8;
    }
}

void RecordWriter::SetOffset(size_t position, size_t target) {
    SetNumber(position, static_cast<size_t>(fDataSetStart) + target);
}

}  // namespace Vantor
