#include "wrappers/DicomFileInfo.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>
#include <utility>

#include "dicom/TDicomFile.h"
#include "dicom/TException.h"
#include "dicom/TImageFile.h"
#include "dicom/TSRFile.h"
#include "dicom/TVRUtil.h"
#include "dicom/Uids.h"
#include "platform/CodePage.h"
#include "platform/FileException.h"
#include "platform/MappedFile.h"
#include "wrappers/DataSetText.h"
#include "wrappers/ValueText.h"

namespace VantorWrappers {

using Vantor::Tag;
using Vantor::TDicomDataSet;
using Vantor::TDicomFile;
using Vantor::TException;
using Vantor::TFileSpec;
namespace Tags = Vantor::Tags;
namespace Uids = Vantor::Uids;
namespace ErrorNumbers = Vantor::ErrorNumbers;

namespace {

// How many bytes of a value count, as the standard limits its VR; numbers have room to spare.
constexpr uint32_t kUidLength = Vantor::kMaximumUidLength;
constexpr uint32_t kLongTextLength = 64;   // LO, PN
constexpr uint32_t kShortTextLength = 16;  // SH, CS
constexpr uint32_t kNumberLength = 256;
constexpr uint32_t kDateLength = 10;
constexpr uint32_t kTimeLength = 16;

constexpr std::array<std::string_view, 6> kReportClasses = {Uids::kBasicTextSR,     Uids::kEnhancedSR,
                                                            Uids::kComprehensiveSR, Uids::kTrialTextSR,
                                                            Uids::kTrialAudioSR,    Uids::kTrialDetailSR};

// What the text of a dump is first given room for, and the most that it can take.
constexpr int32_t kFirstDumpCapacity = 65536;
constexpr int32_t kLargestDumpCapacity = std::numeric_limits<int32_t>::max();

// A file that is open for reading as long as this object lives.
class OpenedFile {
  public:
    explicit OpenedFile(TDicomFile& file) : fFile(file) {
        fFile.OpenFile(Vantor::Platform::FileAccess::kRead);
    }
    ~OpenedFile() { fFile.CloseFile(); }
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;

  private:
    TDicomFile& fFile;
};

bool IsReportClass(std::string_view sopClassUID) {
    return std::find(kReportClasses.begin(), kReportClasses.end(), sopClassUID) != kReportClasses.end();
}

[[noreturn]] void ThrowInvalidFile() {
    throw new TException(ErrorNumbers::kRecordStructure, "Invalid Dicom File");
}

// Reads a whole file. One that has no data set is no DICOM file to a host, which would find nothing in it.
void ReadWhole(TDicomFile& file) {
    const OpenedFile opened(file);
    if (!file.ReadFile()) ThrowInvalidFile();
}

// A damaged data set is of use as long as it tells whose it is or what. One that tells neither, because it is
// encoded in another way than its meta information says (deflated, for one), would pass for a file without
// attributes.
void CheckIdentity(const TDicomDataSet& dataSet) {
    for (const Tag tag : {Tags::kSOPInstanceUID, Tags::kPatientID, Tags::kStudyInstanceUID}) {
        if (dataSet.FindElement(tag)) return;
    }
    dataSet.CountElements();
}

// ---- Values ----

// The text of an element, "" when it is absent or there is no data set.
std::string ReadText(const TDicomDataSet* dataSet, Tag tag, uint32_t maxLength) {
    return dataSet == nullptr ? std::string()
                              : std::string(ViewText(*dataSet, tag, maxLength).value_or(std::string_view()));
}

// ---- Dumps ----

// A file whose elements are looked at where they are on the medium: the pixel data of a long loop, of which a
// dump shows next to nothing, is then never read. Open as long as this object lives.
class FileView : public TDicomFile {
  public:
    explicit FileView(const TFileSpec& fileSpec)
        : TDicomFile(0, fileSpec, 0), fOpened(*this), fMapping(fileSpec.fPath) {
        fFileSize = fMapping.GetLength();
        MapView();
        if (!ParseMetaHeader(fMapping.GetView(), fMapping.GetViewSize())) ThrowInvalidFile();
    }

    // The part of the main data set that is in view.
    TDicomDataSet WrapDataSet() const {
        const auto size = static_cast<int32_t>(fMapping.GetViewSize() - fDataOffset);
        // Only read, never changed.
        auto* bytes = const_cast<uint8_t*>(fMapping.GetView() + fDataOffset);
        return TDicomDataSet(IsExplicit(), IsBigEndian(), bytes, size, size);
    }

    bool IsWhole() const { return fMapping.GetViewSize() == fMapping.GetLength(); }

  private:
    void MapView() {
        // There is no view of nothing, but that is not what is wrong with such a file.
        if (fFileSize == 0) ThrowInvalidFile();
        if (fMapping.MapView(std::min(fFileSize, kLargestView))) return;
        throw new TException(ErrorNumbers::kFileTooLarge, "File Too Large");
    }

    static constexpr int64_t kLargestView = std::numeric_limits<int32_t>::max();

    VantorWrappers::OpenedFile fOpened;  // waits for a program that writes the file; a mapping would not
    Vantor::Platform::MappedFile fMapping;
};

int32_t Doubled(int32_t capacity) {
    return capacity > kLargestDumpCapacity / 2 ? kLargestDumpCapacity : capacity * 2;
}

// A text of a data set's elements, as far as `capacity` and damage, if there is any, allow.
std::string DumpInto(TDicomDataSet& dataSet, const std::string& dictionary, int32_t capacity,
                     std::string& damage) {
    std::string text(static_cast<size_t>(capacity), '\0');
    try {
        const int32_t size =
            dataSet.Dump(0, text.data(), capacity, 0, dictionary.empty() ? nullptr : dictionary.data(),
                         static_cast<uint32_t>(dictionary.size()));
        text.resize(static_cast<size_t>(size));
    } catch (TException* thrown) {
        const std::unique_ptr<TException> error(thrown);
        damage = error->GetErrorText();
        text.resize(std::min(text.find('\0'), text.size()));  // a dump itself holds no NUL
    }
    return text;
}

// A full buffer may have cut the text, so it is made again with twice the room. Full is also a buffer with
// one byte left: a byte in hexadecimal has two digits and is left out where only one fits.
std::string DumpDataSet(TDicomDataSet& dataSet, const std::string& dictionary, std::string& damage) {
    if (!dictionary.empty()) {
        dataSet.SetDictionary(dictionary.data(), static_cast<uint32_t>(dictionary.size()));
    }
    for (int32_t capacity = kFirstDumpCapacity;; capacity = Doubled(capacity)) {
        damage.clear();
        std::string text = DumpInto(dataSet, dictionary, capacity, damage);
        if (text.size() + 1 < static_cast<size_t>(capacity)) return text;
        if (capacity == kLargestDumpCapacity) {
            damage = "the text of all elements is too long";
            return text;
        }
    }
}

}  // namespace

// ---- Life ----

DicomFileInfo::DicomFileInfo() { Initialize(); }

DicomFileInfo::DicomFileInfo(const HostString& path) : fFilePath(path) {}

DicomFileInfo::~DicomFileInfo() { Dispose(); }

void DicomFileInfo::Initialize() {}

void DicomFileInfo::Dispose() {
    fDicomDataSet = nullptr;
    fIsSR = false;
    fIsImage = false;
    fDicomFile.reset();
    fImageFile.reset();
    fSRFile.reset();
}

// ---- Reading ----

TFileSpec DicomFileInfo::MakeFileSpec() const {
    const std::string path = Vantor::Platform::FromHostText(fFilePath);
    if (!TFileSpec::FitsPath(path)) {
        using Vantor::Platform::FileException;
        throw FileException(FileException::Cause::kBadPath, 0, path);
    }
    return TFileSpec(path);
}

void DicomFileInfo::Read() {
    Dispose();
    const TFileSpec fileSpec = MakeFileSpec();
    if (ProbeForReport(fileSpec)) {
        ReadAsReport(fileSpec);
    } else if (!ReadAsImage(fileSpec)) {
        ReadAsOther(fileSpec);
    }
}

bool DicomFileInfo::ProbeForReport(const TFileSpec& fileSpec) {
    fDicomFile = std::make_unique<TDicomFile>(0, fileSpec, 0);
    const OpenedFile opened(*fDicomFile);
    fDicomFile->ReadMetaHeader();
    char sopClassUID[Vantor::kMaximumUidLength + 1] = {};
    return fDicomFile->GetSOPClassUID(sopClassUID) && IsReportClass(sopClassUID);
}

void DicomFileInfo::ReadAsReport(const TFileSpec& fileSpec) {
    fSRFile = std::make_unique<Vantor::TSRFile>(0, fileSpec);
    ReadWhole(*fSRFile);
    CheckIdentity(*fSRFile->GetDataSet());
    fDicomDataSet = fSRFile->GetDataSet();
    fIsSR = true;
}

// False for whatever reason the file cannot be read as an image: if the reason holds for any reader, the
// next one meets it again and reports it.
bool DicomFileInfo::ReadAsImage(const TFileSpec& fileSpec) {
    try {
        fImageFile = std::make_unique<Vantor::TImageFile>(0, fileSpec, 0);
        const OpenedFile opened(*fImageFile);
        fImageFile->ReadAllButPixels();
        fDicomDataSet = fImageFile->GetDataSet();
    } catch (TException* thrown) {
        delete thrown;
    } catch (...) {
    }
    fIsImage = fDicomDataSet != nullptr;
    if (!fIsImage) fImageFile.reset();
    return fIsImage;
}

void DicomFileInfo::ReadAsOther(const TFileSpec& fileSpec) {
    fDicomFile = std::make_unique<TDicomFile>(0, fileSpec, 0);
    ReadWhole(*fDicomFile);
    CheckIdentity(*fDicomFile->GetDataSet());
    fDicomDataSet = fDicomFile->GetDataSet();
}

// ---- Attributes ----

HostString DicomFileInfo::GetUID() const { return GetString(Tags::kSOPInstanceUID, kUidLength); }

HostString DicomFileInfo::GetSeriesUID() const { return GetString(Tags::kSeriesInstanceUID, kUidLength); }

HostString DicomFileInfo::GetSeriesDescription() const {
    return GetString(Tags::kSeriesDescription, kLongTextLength);
}

int32_t DicomFileInfo::GetSeriesNumber() const { return GetInt(Tags::kSeriesNumber); }

HostString DicomFileInfo::GetStudyID() const { return GetString(Tags::kStudyID, kShortTextLength); }

HostString DicomFileInfo::GetStudyUID() const { return GetString(Tags::kStudyInstanceUID, kUidLength); }

HostString DicomFileInfo::GetStudyDescription() const {
    return GetString(Tags::kStudyDescription, kLongTextLength);
}

HostString DicomFileInfo::GetAccessionNumber() const {
    return GetString(Tags::kAccessionNumber, kShortTextLength);
}

HostString DicomFileInfo::GetReferringPhysician() const {
    return GetString(Tags::kReferringPhysicianName, kLongTextLength);
}

HostString DicomFileInfo::GetModality() const { return GetString(Tags::kModality, kShortTextLength); }

HostString DicomFileInfo::GetPatientName() const { return GetString(Tags::kPatientName, kLongTextLength); }

HostString DicomFileInfo::GetPatientId() const { return GetString(Tags::kPatientID, kLongTextLength); }

int32_t DicomFileInfo::GetImageNumber() const { return GetInt(Tags::kInstanceNumber); }

int32_t DicomFileInfo::GetNumberOfFrames() const { return GetInt(Tags::kNumberOfFrames); }

std::optional<HostDateTime> DicomFileInfo::GetStudyDate() const { return GetDate(Tags::kStudyDate); }

std::optional<HostDateTime> DicomFileInfo::GetPatientBirthDate() const {
    return GetDate(Tags::kPatientBirthDate);
}

std::optional<HostDateTime> DicomFileInfo::GetContentDate() const {
    const std::optional<HostDateTime> date = GetDate(Tags::kContentDate);
    return date ? date : GetStudyDate();
}

std::optional<HostDateTime> DicomFileInfo::GetStudyTime() const {
    return GetTime(Tags::kStudyDate, Tags::kStudyTime);
}

std::optional<HostDateTime> DicomFileInfo::GetContentTime() const {
    const std::optional<HostDateTime> time = GetTime(Tags::kContentDate, Tags::kContentTime);
    return time ? time : GetStudyTime();
}

std::vector<HostString> DicomFileInfo::GetSourceImageClassUIDs() const {
    return GetSourceImageUIDs(Tags::kReferencedSOPClassUID);
}

std::vector<HostString> DicomFileInfo::GetSourceImageInstanceUIDs() const {
    return GetSourceImageUIDs(Tags::kReferencedSOPInstanceUID);
}

HostString DicomFileInfo::GetString(Tag tag, uint32_t maxLength) const {
    return Vantor::Platform::ToHostText(ReadText(fDicomDataSet, tag, maxLength));
}

int32_t DicomFileInfo::GetInt(Tag tag) const {
    return ParseInteger(ReadText(fDicomDataSet, tag, kNumberLength));
}

std::optional<HostDateTime> DicomFileInfo::GetDate(Tag tag) const {
    const std::string stored = ReadText(fDicomDataSet, tag, kDateLength);
    if (stored.empty()) return std::nullopt;
    char digits[Vantor::TVRUtil::kDateOutputSize] = {};
    Vantor::TVRUtil().DicomDateToCString(stored.c_str(), digits, sizeof(digits),
                                         Vantor::TVRUtil::kEightDigits);
    const std::optional<HostDateTime> date = ParseDate(digits);
    if (!date) throw FormatError("not a date: " + stored);
    return date;
}

std::optional<HostDateTime> DicomFileInfo::GetTime(Tag dateTag, Tag timeTag) const {
    const std::optional<HostDateTime> date = GetDate(dateTag);
    const std::string stored = ReadText(fDicomDataSet, timeTag, kTimeLength);
    if (!date || stored.empty()) return std::nullopt;
    const std::optional<std::chrono::seconds> timeOfDay = ParseTimeOfDay(stored);
    if (!timeOfDay) throw FormatError("not a time: " + stored);
    return *date + *timeOfDay;
}

std::vector<HostString> DicomFileInfo::GetSourceImageUIDs(Tag tag) const {
    std::vector<HostString> uids;
    uint32_t length = 0;
    int32_t sequence = 0;
    if (fDicomDataSet == nullptr ||
        !FindWhole(*fDicomDataSet, Tags::kSourceImageSequence, length, sequence) || length == 0) {
        return uids;
    }

    const int32_t count = fDicomDataSet->CountItemsInSequence(sequence);
    int32_t itemOffset = TDicomDataSet::kFromStart;
    uint32_t itemLength = 0;
    for (int32_t i = 0; i < count; ++i) {
        if (!fDicomDataSet->FindNextItem(sequence, itemOffset, itemLength, &itemOffset, &itemLength)) break;
        const TDicomDataSet item(*fDicomDataSet, itemOffset, static_cast<int32_t>(itemLength));
        if (const auto uid = ViewText(item, tag, kUidLength)) {
            uids.push_back(Vantor::Platform::ToHostText(*uid));
        }
    }
    return uids;
}

std::string DicomFileInfo::DumpElements(const std::string& dictionary, std::string& damage) const {
    damage.clear();
    FileView file(MakeFileSpec());
    std::string text = DumpDataSet(*file.GetMetaDataSet(), dictionary, damage);
    if (!damage.empty()) return text;
    TDicomDataSet dataSet = file.WrapDataSet();
    text = std::move(text) + DumpDataSet(dataSet, dictionary, damage);
    if (!file.IsWhole()) damage = "the file is too large to be shown beyond its first 2 GiB";
    return text;
}

}  // namespace VantorWrappers
