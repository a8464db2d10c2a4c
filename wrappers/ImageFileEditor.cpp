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
#include "platform/Ascii.h"
#include "platform/CodePage.h"
#include "wrappers/SavedImagesState.h"

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

// With a question mark for each character that the set does not have.
std::string EncodeWhatCanBe(const HostString& text, std::string_view characterSet) {
    constexpr char kNoCounterpart = '?';
    if (auto encoded = CharacterSet::Encode(text, characterSet)) return *encoded;
    std::string bytes;
    for (const wchar_t each : text) {
        const auto encoded = CharacterSet::Encode({&each, 1}, characterSet);
        bytes += encoded ? *encoded : std::string(1, kNoCounterpart);
    }
    return bytes;
}

// True for a value that is text with other characters than those of ASCII, which ISO 2022 writes with escape
// sequences and without any other byte beyond ASCII. In implicit VR nobody says what is text; what has no
// control characters is.
bool IsNonAsciiText(const TDataSetEdit::Element& element) {
    constexpr VrCode kTexts[] = {
        Vr::kLO, Vr::kLT, Vr::kPN, Vr::kSH, Vr::kST, Vr::kUT, Vantor::MakeVr('U', 'C')};
    const bool isAscii = Vantor::Platform::IsAscii(element.fValue) &&
                         element.fValue.find(Vantor::kEscape) == std::string_view::npos;
    if (element.fIsSequence || isAscii) return false;
    if (std::find(std::begin(kTexts), std::end(kTexts), element.fVr) != std::end(kTexts)) return true;
    constexpr char kFirstNoControl = ' ';
    constexpr std::string_view kControlsOfText("\t\n\f\r\x1B\0", 6);
    return element.fVr == Vr::kNotKnown &&
           std::all_of(element.fValue.begin(), element.fValue.end(), [&](char each) {
               return static_cast<uint8_t>(each) >= kFirstNoControl ||
                      kControlsOfText.find(each) != std::string_view::npos;
           });
}

}  // namespace

class ImageFileEditor::State {
  public:
    State(HostString path, std::shared_ptr<SavedImages> savedImages)
        : fPath(std::move(path)), fSavedImages(std::move(savedImages)) {
        fError = FailureNumberOf([this] {
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
        TakeNewUids();
        PrepareDeIdentification();
        const Bytes elements = ChangeElements();
        const Bytes meta = ChangeMeta();
        const auto rest = fLevel ? TFileRewrite::Rest::kLeftOut : TFileRewrite::Rest::kKept;
        fRewrite->Begin(fTarget, meta, elements, rest);
        fFramesLeft = fNumberOfFrames;
    }

    void WriteNext() {
        if (fRewrite == nullptr) return;
        const int64_t left = fRewrite->CopyNext(kBytesAtOnce);
        if (left > 0) {
            fFramesLeft = FramesIn(left);
            return;
        }
        fRewrite->Finish();
        fRewrite.reset();
        Shared().NoteSaved(fOld.fInstanceUID, fNewInstanceUID, fTarget, std::move(fUnresolved));
        fFramesLeft = 0;
    }

    void GiveUp() {
        fRewrite.reset();
        fFramesLeft = 0;
    }

    HostString fPath;
    std::shared_ptr<SavedImages> fSavedImages;
    int32_t fError = 0;
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

    int32_t FramesIn(int64_t bytes) const {
        const int64_t size = fRewrite->GetSizeToCopy();
        return static_cast<int32_t>((bytes * fNumberOfFrames + size - 1) / size);
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
        fNewInstanceUID = FindUid(fOld.fInstanceUID).value_or(fOld.fInstanceUID);
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
        auto replaced = ReplaceUids(element, [this](std::string_view uid) { return FindUid(uid); });
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
            edit.Put(place.fTag, place.fVr, EncodeWhatCanBe(Cut(text, place.fLongest), characterSet));
        }
        edit.SetRule([this](const TDataSetEdit::Element& element) { return Decide(element); });
        return edit.Apply(fRewrite->GetElements(), fRewrite->GetEncoding());
    }

    Bytes ChangeMeta() const {
        constexpr Vantor::Encoding kMetaEncoding{true, false};
        TDataSetEdit edit;
        edit.Put(Tags::kMediaStorageSOPInstanceUID, Vr::kUI, fNewInstanceUID);
        edit.Put(Tags::kImplementationClassUID, Vr::kUI, Vantor::Uids::kImplementationClass);
        // The name of another writer's version; and who has sent the file.
        const bool isDeIdentified = fLevel.has_value();
        edit.SetRule([isDeIdentified](const TDataSetEdit::Element& element) {
            const bool isLastNeeded = element.fTag <= Tags::kImplementationClassUID;
            const bool isRemoved =
                element.fTag == Tags::kImplementationVersionName || (isDeIdentified && !isLastNeeded);
            return isRemoved ? Fate::Remove() : Fate::Keep();
        });
        return edit.Apply(fRewrite->GetMeta(), kMetaEncoding);
    }

    // ---- Texts ----

    // The file's own, unless a text that was set needs another one and nothing that stays needs this one.
    std::string ChooseCharacterSet() {
        std::string own = fRewrite->GetText(Tags::kSpecificCharacterSet);
        if (FitIn(own) || HasOtherTexts()) return own;
        return FitIn(CharacterSet::kLatin1) ? CharacterSet::kLatin1 : CharacterSet::kUtf8;
    }

    bool FitIn(const std::string& characterSet) const {
        return std::all_of(fValues.begin(), fValues.end(), [&](const auto& each) {
            return CharacterSet::Encode(each.second, characterSet).has_value();
        });
    }

    // True when texts stay that are not of ASCII alone.
    bool HasOtherTexts() {
        bool hasOthers = false;
        TDataSetEdit edit;
        for (const auto& [attribute, text] : fValues) {
            edit.Put(PlaceOf(attribute).fTag, PlaceOf(attribute).fVr, {});
        }
        edit.SetRule([&](const TDataSetEdit::Element& element) {
            Fate fate = Decide(element);
            if (fate.fKind == Fate::Kind::kKeep && IsNonAsciiText(element)) hasOthers = true;
            return fate;
        });
        edit.Apply(fRewrite->GetElements(), fRewrite->GetEncoding());
        return hasOthers;
    }

    std::string fTarget;
    std::string fNewInstanceUID;
    UidMap fNewUids;                         // of this image: its instance, its series, its study
    UidMap fUnresolved;                      // what the new file names images by that are still to be saved
    std::unique_ptr<TFileRewrite> fRewrite;  // null while nothing is written
    std::optional<TDeIdentification> fDeIdentification;
};

ImageFileEditor::ImageFileEditor(const HostString& path, std::shared_ptr<SavedImages> savedImages)
    : fState(std::make_unique<State>(path, std::move(savedImages))) {}

ImageFileEditor::~ImageFileEditor() = default;

int32_t ImageFileEditor::GetError() const { return fState->fError; }

const HostString& ImageFileEditor::GetPath() const { return fState->fPath; }

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
