#include "directory/RecordLoader.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

#include "dicom/TException.h"
#include "records/TImageDoc.h"
#include "records/TPatientDoc.h"
#include "records/TPrivateDoc.h"
#include "records/TRawDataDoc.h"
#include "records/TSR_Doc.h"
#include "records/TSeriesDoc.h"
#include "records/TStudyDoc.h"

namespace Vantor {

namespace {

constexpr uint32_t kLongestRecordType = 32;
constexpr int32_t kItemHeaderSize = 8;
constexpr uint16_t kNotInUse = 0;
constexpr uint32_t kNothing = 0;  // as a record's offset

// How far below the top level a record may stand that the one above does not take.
constexpr int32_t kDeepestForeignChild = 32;

struct RecordType {
    std::string_view fText;
    int32_t fDocType;
};

// In the order in which they are held against a record's type.
constexpr RecordType kRecordTypes[] = {
    {"PATIENT ", TDicomDoc::kPatient}, {"STUDY ", TDicomDoc::kStudy},     {"SERIES", TDicomDoc::kSeries},
    {"IMAGE ", TDicomDoc::kImage},     {"RAW DATA", TDicomDoc::kRawData}, {"SR DOCUMENT  ", TDicomDoc::kSR},
    {"PRIVATE ", TDicomDoc::kPrivate},
};

// Compared over the length that the record's type has: one that breaks off early, or is empty, is the first
// that starts like it. Media in the field depend on it.
int32_t DocTypeFor(std::string_view recordType) {
    for (const RecordType& known : kRecordTypes) {
        if (known.fText.substr(0, recordType.size()) == recordType) return known.fDocType;
    }
    return TDicomDoc::kPrivate;
}

}  // namespace

// What the loader has to know of a record.
class RecordLoader::RecordKeys {
  public:
    // Throws TException 102 when the record is damaged.
    explicit RecordKeys(const TDicomDataSet& record) : fIsPlain(record.FindElements(fWanted)) {
        if (fIsPlain) return;
        for (TDicomDataSet::Wanted& wanted : fWanted) {
            wanted.fIsFound =
                record.FindElement(wanted.fTag, nullptr, &wanted.fLength, wanted.fValue, wanted.fCapacity);
        }
    }
    RecordKeys(const RecordKeys&) = delete;
    RecordKeys& operator=(const RecordKeys&) = delete;

    // True when a data set can be made of the record at any time.
    bool IsPlain() const { return fIsPlain; }

    bool IsInUse() const { return fWanted[kInUse].fIsFound && fInUse != kNotInUse; }
    bool HasRecordType() const { return fWanted[kType].fIsFound; }
    std::string_view GetRecordType() const { return Text(kType); }

    // Workstations enter files of their own as images of a private class, which no reader can show. It is
    // compared over the length that is stored.
    bool NamesAnImage() const {
        TUidText privateClass;
        privateClass.Set("1.3.12.2.1107.5.9.1");
        const std::string_view sopClass = Text(kSOPClass);
        return fWanted[kSOPClass].fIsFound &&
               std::memcmp(sopClass.data(), privateClass.fText, sopClass.size()) != 0;
    }

    // None without both of them: such a record leads nowhere.
    std::optional<Links> GetLinks() const {
        if (!fWanted[kNext].fIsFound || !fWanted[kLower].fIsFound) return std::nullopt;
        return Links{fNext, fLower};
    }

  private:
    enum Key { kNext, kInUse, kLower, kType, kSOPClass, kKeyCount };

    std::string_view Text(Key key) const {
        const TDicomDataSet::Wanted& wanted = fWanted[key];
        return {static_cast<const char*>(wanted.fValue), std::min(wanted.fLength, wanted.fCapacity)};
    }

    uint32_t fNext = 0;
    uint16_t fInUse = kNotInUse;
    uint32_t fLower = 0;
    char fType[kLongestRecordType] = {};
    char fSOPClass[kMaximumUidLength] = {};
    TDicomDataSet::Wanted fWanted[kKeyCount] = {
        {Tags::kNextRecordOffset, &fNext, sizeof(fNext)},
        {Tags::kRecordInUseFlag, &fInUse, sizeof(fInUse)},
        {Tags::kLowerLevelOffset, &fLower, sizeof(fLower)},
        {Tags::kDirectoryRecordType, fType, sizeof(fType)},
        {Tags::kReferencedSOPClassUIDInFile, fSOPClass, sizeof(fSOPClass)}};
    bool fIsPlain;
};

RecordLoader::RecordLoader(TDicomDataSet& dataSet, int64_t dataSetStart, TRecordDirectory& directory)
    : fDataSet(dataSet), fDataSetStart(dataSetStart), fDirectory(directory) {}

void RecordLoader::Load() {
    int32_t sequenceOffset = 0;
    const bool hasRecords =
        fDataSet.FindElement(Tags::kDirectoryRecordSequence, nullptr, nullptr, nullptr, 0, &sequenceOffset);
    if (hasRecords) ReadRecords(sequenceOffset);
    uint32_t rootOffset = 0;
    const bool hasRoot =
        fDataSet.FindElement(Tags::kFirstRootRecordOffset, nullptr, nullptr, &rootOffset, sizeof(rootOffset));
    fHasLostRecords = !hasRoot;
    const auto root = hasRoot ? Follow(rootOffset, 0) : std::nullopt;
    if (root) LinkRecords(*root);
    fRecords.clear();
    std::erase(fDocs, nullptr);
}

// ---- Reading ----

void RecordLoader::ReadRecords(int32_t sequenceOffset) {
    int32_t itemOffset = TDicomDataSet::kFromStart;
    uint32_t itemLength = 0;
    try {
        while (fDataSet.FindNextItem(sequenceOffset, itemOffset, itemLength, &itemOffset, &itemLength) &&
               itemLength != TDicomDataSet::kUndefinedLength) {
            ReadRecord(itemOffset, itemLength);
        }
    } catch (TException* thrown) {
        // The sequence breaks off here; what came before counts.
        const std::unique_ptr<TException> error(thrown);
    }
}

// A record that cannot be read is left out, and so is one that there is no memory for.
void RecordLoader::ReadRecord(int32_t itemOffset, uint32_t itemLength) {
    const auto size = static_cast<int32_t>(itemLength);
    const TDicomDataSet record(fDataSet.IsExplicit(), fDataSet.IsBigEndian(),
                               fDataSet.GetDataSet() + itemOffset, size, size);
    try {
        const RecordKeys keys(record);
        std::unique_ptr<TDicomDoc> doc = MakeDoc(record, keys);
        const int64_t offset = fDataSetStart + itemOffset - kItemHeaderSize;
        if (doc == nullptr) return fPassedBy.push_back(offset);
        fDocs.push_back(std::move(doc));
        fLinks.push_back(keys.GetLinks());
        fOffsets.push_back(offset);
        fRecords.emplace_back(fDocs.back().get());
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
    } catch (const std::bad_alloc&) {
        fDocs.resize(fRecords.size());
        fLinks.resize(fRecords.size());
        fOffsets.resize(fRecords.size());
    }
}

std::unique_ptr<TDicomDoc> RecordLoader::MakeDoc(const TDicomDataSet& record, const RecordKeys& keys) const {
    if (!keys.IsInUse() || !keys.HasRecordType()) return nullptr;
    int32_t docType = DocTypeFor(keys.GetRecordType());
    if (docType == TDicomDoc::kImage && !keys.NamesAnImage()) docType = TDicomDoc::kPrivate;
    if (docType == TDicomDoc::kRawData) return std::make_unique<TRawDataDoc>(&record, &fDirectory);
    if (docType == TDicomDoc::kSR) return std::make_unique<TSR_Doc>(&record, &fDirectory);
    if (keys.IsPlain()) return MakeDocOf(docType, TStoredRecord(record));
    return MakeDocOf(docType, &record);
}

// For the types whose documents can wait with looking into their record.
template <typename Record>
std::unique_ptr<TDicomDoc> RecordLoader::MakeDocOf(int32_t docType, Record record) const {
    switch (docType) {
        case TDicomDoc::kPatient:
            return std::make_unique<TPatientDoc>(std::move(record), &fDirectory);
        case TDicomDoc::kStudy:
            return std::make_unique<TStudyDoc>(std::move(record), &fDirectory);
        case TDicomDoc::kSeries:
            return std::make_unique<TSeriesDoc>(std::move(record), &fDirectory);
        case TDicomDoc::kImage:
            return std::make_unique<TImageDoc>(std::move(record), &fDirectory, fDirectory.GetImageSetting());
        default:
            return std::make_unique<TPrivateDoc>(std::move(record), &fDirectory);
    }
}

// ---- Linking ----

// Media are mostly written so that a record points at the one behind it, which is the guess.
std::optional<RecordLoader::RecordIndex> RecordLoader::FindRecord(uint32_t offset, RecordIndex guess) const {
    if (guess < fOffsets.size() && fOffsets[guess] == offset) return guess;
    const auto found = std::lower_bound(fOffsets.begin(), fOffsets.end(), offset);
    if (found == fOffsets.end() || *found != offset) return std::nullopt;
    return static_cast<RecordIndex>(found - fOffsets.begin());
}

// Notes when the record is not there.
std::optional<RecordLoader::RecordIndex> RecordLoader::Follow(uint32_t offset, RecordIndex guess) {
    const auto index = FindRecord(offset, guess);
    const bool isNowhere = !index && offset != kNothing;
    if (isNowhere && !std::binary_search(fPassedBy.begin(), fPassedBy.end(), int64_t{offset}))
        fHasLostRecords = true;
    return index;
}

// From the top down, what is below a record before what is behind it. The places still to go to are on a list
// of their own, so that a chain of a million records costs no more than its bytes.
void RecordLoader::LinkRecords(RecordIndex root) {
    struct Place {
        RecordIndex fIndex;
        TDicomDoc* fParent;
        int32_t fDepth;
    };
    std::vector<Place> places = {{root, nullptr, 0}};
    std::vector<bool> isPlaced(fRecords.size());
    while (!places.empty()) {
        const Place place = places.back();
        places.pop_back();
        if (isPlaced[place.fIndex]) continue;
        isPlaced[place.fIndex] = true;
        TDicomDoc* const doc = DocOf(place.fIndex);
        PutInPlace(fDocs[place.fIndex], place.fParent, place.fDepth);
        const auto& links = fLinks[place.fIndex];
        if (!links) continue;
        if (const auto index = Follow(links->fNext, place.fIndex + 1))
            places.push_back({*index, place.fParent, place.fDepth});
        if (const auto index = Follow(links->fLower, place.fIndex + 1))
            places.push_back({*index, doc, place.fDepth + 1});
    }
}

void RecordLoader::PutInPlace(std::unique_ptr<TDicomDoc>& doc, TDicomDoc* parent, int32_t depth) {
    int32_t error = 0;
    if (parent == nullptr) {
        fRootDocs.push_back(std::move(doc));
    } else if (parent->AddChild(doc.get(), nullptr, true, error)) {
        static_cast<void>(doc.release());  // the parent's now
    } else if (depth <= kDeepestForeignChild) {
        parent->KeepForeignChild(doc);
    }
}

}  // namespace Vantor
