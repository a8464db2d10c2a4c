#include "wrappers/ImageFileEditor.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "dicom/CharacterSet.h"
#include "dicom/TDataSetEdit.h"
#include "dicom/TDeIdentification.h"
#include "dicom/TFileRewrite.h"
#include "dicom/Tags.h"
#include "dicom/Uids.h"
#include "dicom/ValueText.h"
#include "platform/CodePage.h"
#include "wrappers/SavedImagesState.h"
#include "wrappers/StoredText.h"

namespace VantorWrappers {

using Vantor::Tag;
using Vantor::TDataSetEdit;
using Vantor::TDeIdentification;
using Vantor::TFileRewrite;
using Vantor::VrCode;
namespace CharacterSet = Vantor::CharacterSet;
namespace Tags = Vantor::Tags;
namespace Vr = Vantor::Vr;

namespace {

using Attribute = ImageFileEditor::Attribute;
using Bytes = TFileRewrite::Bytes;
using Fate = TDataSetEdit::Fate;

constexpr int64_t kBytesAtOnce = 0x400000;

// Where an attribute stands, and how many characters it may have.
struct Place {
    Tag fTag;
    VrCode fVr;
    size_t fLongest;
};

constexpr size_t kLongestName = 3 * 64 + 2;  // three groups

Place PlaceOf(Attribute attribute) {
    switch (attribute) {
        case Attribute::kPatientName:
            return {Tags::kPatientName, Vr::kPN, kLongestName};
        case Attribute::kPatientID:
            return {Tags::kPatientID, Vr::kLO, 64};
        case Attribute::kAccessionNumber:
            return {Tags::kAccessionNumber, Vr::kSH, 16};
        case Attribute::kStudyUID:
            return {Tags::kStudyInstanceUID, Vr::kUI, Vantor::kMaximumUidLength};
        case Attribute::kStudyID:
            return {Tags::kStudyID, Vr::kSH, 16};
        case Attribute::kStudyDescription:
            return {Tags::kStudyDescription, Vr::kLO, 64};
        case Attribute::kSeriesUID:
            return {Tags::kSeriesInstanceUID, Vr::kUI, Vantor::kMaximumUidLength};
        case Attribute::kSeriesNumber:
            return {Tags::kSeriesNumber, Vr::kIS, 12};
        case Attribute::kSeriesDescription:
            return {Tags::kSeriesDescription, Vr::kLO, 64};
        case Attribute::kInstanceUID:
            return {Tags::kSOPInstanceUID, Vr::kUI, Vantor::kMaximumUidLength};
        default:
            return {Tags::kInstanceNumber, Vr::kIS, 12};
    }
}

// Half a character at the end is none.
HostString Cut(HostString text, size_t longest) {
    constexpr wchar_t kFirstHighSurrogate = 0xD800;
    constexpr wchar_t kFirstLowSurrogate = 0xDC00;
    text.resize(std::min(text.find(L'\0'), text.size()));
    if (text.size() <= longest) return text;
    text.resize(longest);
    if (text.back() >= kFirstHighSurrogate && text.back() < kFirstLowSurrogate) text.pop_back();
    return text;
}

// Where there is text in implicit VR, as far as anybody can tell: private elements and those that describe
// pixels and regions are numbers more often, and numbers may look like anything.
bool MayBeText(Tag tag) {
    constexpr uint16_t kLastGroupOfTexts = 0x4FFF;
    constexpr uint16_t kPixelGroup = 0x0028;
    constexpr uint16_t kAcquisitionGroup = 0x0018;
    constexpr uint16_t kFirstOfRegions = 0x6000;  // and what has come later
    const bool isOfRegions = tag.fGroup == kAcquisitionGroup && tag.fElement >= kFirstOfRegions;
    return tag.fGroup % 2 == 0 && tag.fGroup <= kLastGroupOfTexts && tag.fGroup != kPixelGroup &&
           !isOfRegions;
}

// True for a value that is text with other characters than those of ASCII, which ISO 2022 writes with escape
// sequences and without any other byte beyond ASCII. In implicit VR nobody says what is text; what has no
// control characters is.
bool IsNonAsciiText(const TDataSetEdit::Element& element) {
    if (element.fIsSequence || Vantor::IsPlainAscii(element.fValue)) return false;
    if (element.fVr != Vr::kNotKnown) return Vantor::IsInCharacterSet(element.fVr);
    return MayBeText(element.fTag) && !Vantor::HasControlCharacters(element.fValue);
}

// What files have to have besides what is put there anyway. The UIDs whatever their VR is: readers do not ask
// for it, and find no data set without them.
bool IsNeededMeta(const TDataSetEdit::Element& element) {
    constexpr Tag kGroupLength{0x0002, 0x0000};
    constexpr Tag kUids[] = {Tags::kMediaStorageSOPClassUID, Tags::kTransferSyntaxUID};
    if (element.fTag == kGroupLength)
        return element.fVr == Vr::kUL && element.fValue.size() == sizeof(uint32_t);
    return !element.fIsSequence &&
           std::find(std::begin(kUids), std::end(kUids), element.fTag) != std::end(kUids);
}

}  // namespace

class ImageFileEditor::State {
  public:
    State(HostString path, std::shared_ptr<SavedImages> savedImages)
        : fPath(std::move(path)), fSavedImages(std::move(savedImages)) {
        FailureNumberOf([this] {
            const TFileRewrite file(NativePath(fPath));
            fOld = Identity(file);
            const auto frames = file.GetText(Tags::kNumberOfFrames);
            fNumberOfFrames = std::max(1, std::atoi(frames.c_str()));
        });
        Shared().Add(fOld.fInstanceUID);
    }

    void Begin(const HostString& path) {
        fTarget = NativePath(path);
        fUnresolved.clear();
        fRewrite = std::make_unique<TFileRewrite>(NativePath(fPath));
        fOld = Identity(*fRewrite);
        FindOldTexts();
        TakeNewUids();
        PrepareDeIdentification();
        const Bytes elements = ChangeElements();
        const Bytes meta = ChangeMeta();
        const auto rest = fLevel ? TFileRewrite::Rest::kLeftOut : TFileRewrite::Rest::kKept;
        fRewrite->Begin(fTarget, meta, elements, rest);
        fFramesLeft = fNumberOfFrames;
    }

    // A count of frames that no loop has is gone through in larger steps.
    void WriteNext() {
        constexpr int32_t kMostSteps = 0x10000;
        if (fRewrite == nullptr) return;
        const int32_t next = std::max(fFramesLeft - 1 - fNumberOfFrames / kMostSteps, 0);
        const int64_t leftThen = SizeOf(next);
        const int64_t left = fRewrite->CopyNext(std::min(fRewrite->GetSizeLeft() - leftThen, kBytesAtOnce));
        if (left > 0) {
            if (left <= leftThen) fFramesLeft = next;
            return;
        }
        fRewrite->Finish();
        fRewrite.reset();
        const bool isInPlace = fTarget == NativePath(fPath);
        Shared().NoteSaved(fOld.fInstanceUID, fNewInstanceUID, fTarget, std::move(fUnresolved));
        if (isInPlace) Shared().Add(fNewInstanceUID);
        fFramesLeft = 0;
    }

    void GiveUp() {
        fRewrite.reset();
        fFramesLeft = 0;
    }

    HostString fPath;
    std::shared_ptr<SavedImages> fSavedImages;
    int32_t fNumberOfFrames = 1;
    std::map<Attribute, HostString> fValues;
    std::optional<TDeIdentification::Level> fLevel;
    std::atomic<int32_t> fFramesLeft = 0;

    // Who an image is.
    struct Identity {
        Identity() = default;
        explicit Identity(const TFileRewrite& file)
            : fClassUID(file.GetText(Tags::kSOPClassUID)),
              fInstanceUID(file.GetText(Tags::kSOPInstanceUID)),
              fSeriesUID(file.GetText(Tags::kSeriesInstanceUID)),
              fStudyUID(file.GetText(Tags::kStudyInstanceUID)) {
            if (fClassUID.empty()) fClassUID = file.GetMetaText(Tags::kMediaStorageSOPClassUID);
            if (fInstanceUID.empty()) fInstanceUID = file.GetMetaText(Tags::kMediaStorageSOPInstanceUID);
        }

        std::string fClassUID;
        std::string fInstanceUID;
        std::string fSeriesUID;
        std::string fStudyUID;
    };
    Identity fOld;

  private:
    static std::string NativePath(const HostString& path) { return Vantor::Platform::FromHostText(path); }

    SavedImages::State& Shared() const { return *fSavedImages->fState; }

    // The bytes of so many frames. Compressed ones differ; on the whole it comes to the same.
    int64_t SizeOf(int32_t frames) const {
        const int64_t size = fRewrite->GetSizeToCopy();
        return size / fNumberOfFrames * frames + size % fNumberOfFrames * frames / fNumberOfFrames;
    }

    std::optional<std::string> FindValue(Attribute attribute) const {
        const auto found = fValues.find(attribute);
        if (found == fValues.end()) return std::nullopt;
        return Vantor::Platform::ToUtf8(Cut(found->second, PlaceOf(attribute).fLongest));
    }

    // ---- UIDs ----

    void TakeNewUids() {
        fNewUids.clear();
        const auto take = [this](Attribute attribute, const std::string& old) {
            const auto value = FindValue(attribute);
            if (value && !value->empty() && !old.empty()) fNewUids[old] = *value;
        };
        take(Attribute::kStudyUID, fOld.fStudyUID);
        take(Attribute::kSeriesUID, fOld.fSeriesUID);
        take(Attribute::kInstanceUID, fOld.fInstanceUID);
        const std::string& old = fOld.fInstanceUID;
        fNewInstanceUID =
            old.empty() ? FindValue(Attribute::kInstanceUID).value_or("") : FindUid(old).value_or(old);
    }

    // What stands for a UID in the new file: for one of this image, what was set; for another image that is
    // saved too, what that one has or will have. Without de-identification all others stay.
    std::optional<std::string> FindUid(std::string_view uid) {
        if (uid.empty()) return std::nullopt;
        if (const auto found = fNewUids.find(uid); found != fNewUids.end()) return found->second;
        const bool isOther = uid != fOld.fInstanceUID;
        auto saved = isOther ? Shared().FindNewUid(uid) : std::nullopt;
        if (saved) return saved;
        const std::string named = fLevel ? Shared().FindReplacement(uid) : std::string(uid);
        if (isOther && Shared().IsAmong(uid)) fUnresolved[named] = uid;
        if (!fLevel) return std::nullopt;
        return named;
    }

    // ---- Elements ----

    void PrepareDeIdentification() {
        fDeIdentification.reset();
        if (!fLevel) return;
        const auto replaceUid = [this](std::string_view uid) {
            return FindUid(uid).value_or(std::string(uid));
        };
        fDeIdentification.emplace(*fLevel, replaceUid, fRewrite->GetElements(), fRewrite->GetEncoding());
    }

    Fate Decide(const TDataSetEdit::Element& element) {
        if (fDeIdentification) return (*fDeIdentification)(element);
        auto replaced = ReplaceUidsOf(element, [this](std::string_view uid) { return FindUid(uid); });
        return replaced ? Fate::Replace(std::move(*replaced)) : Fate::Keep();
    }

    Bytes ChangeElements() {
        TDataSetEdit edit;
        const std::string characterSet = ChooseCharacterSet();
        if (characterSet != fRewrite->GetText(Tags::kSpecificCharacterSet)) {
            edit.Put(Tags::kSpecificCharacterSet, Vr::kCS, characterSet);
        }
        if (fDeIdentification) {
            edit.Put(Tags::kSOPInstanceUID, Vr::kUI, fNewInstanceUID);
            fDeIdentification->Mark(edit);
        }
        for (const auto& [attribute, text] : fValues) {
            const Place place = PlaceOf(attribute);
            edit.Put(place.fTag, place.fVr, Encode(attribute, text, characterSet).value_or(std::string()));
        }
        edit.SetRule([this](const TDataSetEdit::Element& element) { return Decide(element); });
        return edit.Apply(fRewrite->GetElements(), fRewrite->GetEncoding());
    }

    Bytes ChangeMeta() const {
        constexpr Vantor::Encoding kMetaEncoding{true, false};
        TDataSetEdit edit;
        edit.Put(Tags::kMediaStorageSOPInstanceUID, Vr::kUI, fNewInstanceUID);
        edit.Put(Tags::kImplementationClassUID, Vr::kUI, Vantor::Uids::kImplementationClass);
        if (fLevel) edit.Put(Tags::kFileMetaInformationVersion, Vr::kOB, std::string("\0\1", 2));
        // The name of another writer's version goes; and with who the patient is, whoever has sent the file,
        // and what else is there.
        const bool isDeIdentified = fLevel.has_value();
        edit.SetRule([isDeIdentified](const TDataSetEdit::Element& element) {
            const bool isKept =
                isDeIdentified ? IsNeededMeta(element) : element.fTag != Tags::kImplementationVersionName;
            return isKept ? Fate::Keep() : Fate::Remove();
        });
        return edit.Apply(fRewrite->GetMeta(), kMetaEncoding);
    }

    // ---- Texts ----

    // Of the texts that were set, those that the file has already, with their bytes there.
    void FindOldTexts() {
        fOldTexts.clear();
        for (const auto& [attribute, text] : fValues) {
            const Place place = PlaceOf(attribute);
            auto old = FindStoredText(fRewrite->GetText(place.fTag), place.fVr, text);
            if (old) fOldTexts[attribute] = std::move(*old);
        }
    }

    // None when the character set has no character for one of the text.
    std::optional<std::string> Encode(Attribute attribute, const HostString& text,
                                      const std::string& characterSet) const {
        const auto old = fOldTexts.find(attribute);
        if (old != fOldTexts.end()) return old->second;
        return CharacterSet::Encode(Cut(text, PlaceOf(attribute).fLongest), characterSet);
    }

    // The file's own, unless a text that was set needs another one and nothing that stays needs this one.
    std::string ChooseCharacterSet() {
        std::string own = fRewrite->GetText(Tags::kSpecificCharacterSet);
        if (FitIn(own)) return own;
        const std::string others = CollectOtherTexts();
        std::optional<std::string> chosen;
        if (others.empty()) {
            chosen = FitIn(CharacterSet::kLatin1) ? CharacterSet::kLatin1 : CharacterSet::kUtf8;
        } else if (own.empty() || own == CharacterSet::kAscii) {
            chosen = CharacterSet::OfUnnamed(others);
        }
        if (!chosen || !FitIn(*chosen)) throw CharacterSetFailure();
        return *chosen;
    }

    bool FitIn(const std::string& characterSet) const {
        return std::all_of(fValues.begin(), fValues.end(), [&](const auto& each) {
            return Encode(each.first, each.second, characterSet).has_value();
        });
    }

    // Texts that stay and are not of ASCII alone, one after the other.
    std::string CollectOtherTexts() {
        std::string others;
        const auto add = [&others](std::string_view text) { others.append(text).push_back('\n'); };
        TDataSetEdit edit;
        for (const auto& [attribute, text] : fValues) {
            edit.Put(PlaceOf(attribute).fTag, PlaceOf(attribute).fVr, {});
        }
        for (const auto& [attribute, bytes] : fOldTexts) {
            if (!Vantor::IsPlainAscii(bytes)) add(bytes);
        }
        edit.SetRule([&](const TDataSetEdit::Element& element) {
            Fate fate = Decide(element);
            if (fate.fKind == Fate::Kind::kKeep && IsNonAsciiText(element)) {
                add(Vantor::TrimValue(element.fValue));
            }
            return fate;
        });
        edit.Apply(fRewrite->GetElements(), fRewrite->GetEncoding());
        return others;
    }

    std::string fTarget;
    std::string fNewInstanceUID;
    std::map<Attribute, std::string> fOldTexts;
    UidMap fNewUids;                         // of this image: its instance, its series, its study
    UidMap fUnresolved;                      // what the new file names images by that are still to be saved
    std::unique_ptr<TFileRewrite> fRewrite;  // null while nothing is written
    std::optional<TDeIdentification> fDeIdentification;
};

ImageFileEditor::ImageFileEditor(const HostString& path, std::shared_ptr<SavedImages> savedImages)
    : fState(std::make_unique<State>(path, std::move(savedImages))) {}

ImageFileEditor::~ImageFileEditor() = default;

HostString ImageFileEditor::GetClassUID() const {
    return Vantor::Platform::ToHostText(fState->fOld.fClassUID);
}

HostString ImageFileEditor::GetInstanceUID() const {
    const auto found = fState->fValues.find(Attribute::kInstanceUID);
    if (found != fState->fValues.end()) return found->second;
    return Vantor::Platform::ToHostText(fState->fOld.fInstanceUID);
}

int32_t ImageFileEditor::GetNumberOfFrames() const { return fState->fNumberOfFrames; }

void ImageFileEditor::Set(Attribute attribute, const HostString& text) { fState->fValues[attribute] = text; }

void ImageFileEditor::DeIdentify(int32_t level) {
    using Level = TDeIdentification::Level;
    if (level < static_cast<int32_t>(Level::kPatient)) return;
    fState->fLevel = level == static_cast<int32_t>(Level::kPatient) ? Level::kPatient : Level::kPhysicians;
}

int32_t ImageFileEditor::BeginWriting(const HostString& path) {
    const int32_t failure = FailureNumberOf([&] { fState->Begin(path); });
    if (failure != 0) fState->GiveUp();
    return failure;
}

int32_t ImageFileEditor::WriteNext() {
    const int32_t failure = FailureNumberOf([this] { fState->WriteNext(); });
    if (failure != 0) fState->GiveUp();
    return failure;
}

int32_t ImageFileEditor::GetFramesLeft() const { return fState->fFramesLeft; }

}  // namespace VantorWrappers
