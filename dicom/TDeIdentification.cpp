#include "dicom/TDeIdentification.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "dicom/TDicomDataSetLayout.h"
#include "dicom/ValueText.h"

namespace Vantor {

namespace {

using Fate = TDataSetEdit::Fate;
using Element = TDataSetEdit::Element;
using Action = DeIdentificationAction;

constexpr Tag kOtherPatientIDs{0x0010, 0x1000};
constexpr Tag kOtherPatientNames{0x0010, 0x1001};
constexpr Tag kPatientBirthName{0x0010, 0x1005};
constexpr Tag kPatientMotherBirthName{0x0010, 0x1060};
constexpr Tag kMedicalRecordLocator{0x0010, 0x1090};
constexpr Tag kPatientIdentityRemoved{0x0012, 0x0062};
constexpr Tag kDeIdentificationMethod{0x0012, 0x0063};
constexpr Tag kImageType{0x0008, 0x0008};
constexpr Tag kReferencedPerformedProcedureStepSequence{0x0008, 0x1111};
constexpr Tag kEncapsulatedDocument{0x0042, 0x0011};
constexpr Tag kWaveformSequence{0x5400, 0x0100};
constexpr Tag kSharedFunctionalGroupsSequence{0x5200, 0x9229};
constexpr Tag kFloatPixelData{0x7FE0, 0x0008};
constexpr Tag kDoublePixelData{0x7FE0, 0x0009};
constexpr uint16_t kPatientGroup = 0x0010;
constexpr uint16_t kPixelGroup = 0x0028;
constexpr uint16_t kCurveGroups = 0x5000;
constexpr uint16_t kOverlayGroups = 0x6000;
constexpr uint16_t kPaddingGroup = 0xFFFC;
constexpr uint16_t kRepeatedGroupsMask = 0xFF00;

constexpr std::string_view kStandardRoot = "1.2.840.10008";
constexpr std::string_view kUidCharacters = "0123456789.";

constexpr char kDummyDate[] = "19000101";
constexpr char kDummyTime[] = "000000";
constexpr char kDummyDateTime[] = "19000101000000";
constexpr char kDummyText[] = "ANONYMIZED";

constexpr char kMethodOfLevel1[] = "Basic profile after PS3.15, names of physicians retained";
constexpr char kMethodOfLevel2[] = "Basic profile after PS3.15";

bool IsOfStandard(std::string_view uid) {
    if (uid.find_first_not_of(kUidCharacters) != std::string_view::npos || !uid.starts_with(kStandardRoot))
        return false;
    return uid.size() == kStandardRoot.size() || uid[kStandardRoot.size()] == '.';
}

// What readers cannot show the image without.
bool IsNeededForDisplay(Tag tag) {
    return tag == Tags::kSpecificCharacterSet || tag == kImageType || tag == Tags::kModality ||
           tag.fGroup == kPixelGroup;
}

const DeIdentificationRow* FindRow(Tag tag) {
    const auto table = GetDeIdentificationTable();
    const auto row = std::lower_bound(table.begin(), table.end(), tag,
                                      [](const DeIdentificationRow& a, Tag b) { return a.fTag < b; });
    return row != table.end() && row->fTag == tag ? &*row : nullptr;
}

// Pixel data within a sequence, such as those of an icon.
bool IsPixels(Tag tag) {
    return tag == Tags::kPixelData || tag == kFloatPixelData || tag == kDoublePixelData;
}

bool IsVr(VrCode vr) {
    return Vr::IsRecognised(vr) || ElementReader::HasLongHeader(vr) || vr == Vr::kNotKnown;
}

// Elements that the table has no row for. Nobody can tell what one with a VR that is none holds.
Action ActionByVr(Tag tag, VrCode vr) {
    if (tag.fGroup == kPatientGroup) return Action::kRemove;
    if (!IsVr(vr) && !IsNeededForDisplay(tag) && !IsPixels(tag)) return Action::kRemove;
    switch (vr) {
        case Vr::kUI:
            return Action::kReplaceUids;
        case Vr::kDA:
        case Vr::kDT:
        case Vr::kTM:
            return Action::kRemoveOrDummy;
        case Vr::kPN:
            return Action::kBlank;
        default:
            return Action::kStay;
    }
}

Fate ReplaceByDummy(VrCode vr, std::string_view value) {
    if (TrimValue(value).empty()) return Fate::Keep();
    switch (vr) {
        case Vr::kDA:
            return Fate::Replace(kDummyDate);
        case Vr::kTM:
            return Fate::Replace(kDummyTime);
        case Vr::kDT:
            return Fate::Replace(kDummyDateTime);
        default:
            return Fate::Replace(kDummyText);
    }
}

// Damaged items, or items in an encoding or an element that they should not have: nobody can tell what is in
// them. The fragments of compressed pixels are none.
bool IsUnreadableSequence(const Element& element) {
    constexpr std::string_view kItem("\xFE\xFF\x00\xE0", DataSetLayout::kTagSize);
    constexpr std::string_view kBigEndianItem("\xFF\xFE\xE0\x00", DataSetLayout::kTagSize);
    return !element.fIsSequence && !IsPixels(element.fTag) &&
           (element.fValue.starts_with(kItem) || element.fValue.starts_with(kBigEndianItem));
}

bool IsGroupLength(const Element& element) {
    return element.fValue.size() == DataSetLayout::kGroupLengthValueSize &&
           (element.fVr == Vr::kUL || element.fVr == Vr::kNotKnown);
}

// Reports must name the performed step, and within what they answer to, the request.
bool IsNamedByReports(const Element& element) {
    return element.fDepth > 0 || element.fTag == kReferencedPerformedProcedureStepSequence;
}

bool IsRepeatedGroup(uint16_t group, uint16_t first) { return (group & kRepeatedGroupsMask) == first; }

// Private elements; curves and overlays, whose pixels may be writing; padding; and items that are in no
// sequence.
bool IsRemovedByGroup(uint16_t group) {
    return group % 2 != 0 || IsRepeatedGroup(group, kCurveGroups) || IsRepeatedGroup(group, kOverlayGroups) ||
           group == kPaddingGroup || group == Tags::kItem.fGroup;
}

}  // namespace

TDeIdentification::TDeIdentification(Level level, UidReplacer uidReplacer, std::span<const uint8_t> elements,
                                     Encoding encoding)
    : fLevel(level), fUidReplacer(std::move(uidReplacer)) {
    TDataSetEdit reader;
    reader.SetRule([this](const Element& element) {
        NoteKind(element);
        NoteIdentity(element);
        return Fate::Keep();
    });
    reader.Apply(elements, encoding);
    fIdentity.Prepare();
}

// Kinds of instances in which elements have to be there that others may leave out.
void TDeIdentification::NoteKind(const Element& element) {
    constexpr std::string_view kPositronEmission = "PT";
    const bool isPet = element.fTag == Tags::kModality && TrimValue(element.fValue) == kPositronEmission;
    if (element.fTag == Tags::kContentSequence) fIsReport = true;
    if (fIsReport || isPet || element.fTag == kSharedFunctionalGroupsSequence ||
        element.fTag == kWaveformSequence || element.fTag == kEncapsulatedDocument)
        fMustHaveValues = true;
}

void TDeIdentification::NoteIdentity(const Element& element) {
    if (element.fTag == Tags::kPatientName || element.fTag == kOtherPatientNames ||
        element.fTag == kPatientBirthName || element.fTag == kPatientMotherBirthName)
        fIdentity.AddNames(element.fValue);
    if (element.fTag == Tags::kPatientID || element.fTag == kOtherPatientIDs ||
        element.fTag == kMedicalRecordLocator)
        fIdentity.AddNumbers(element.fValue);
}

Fate TDeIdentification::operator()(const Element& element) const {
    if (IsRemovedByGroup(element.fTag.fGroup) || IsUnreadableSequence(element)) return Fate::Remove();
    if (element.fTag.fElement == DataSetLayout::kGroupLengthElement)
        return IsGroupLength(element) ? Fate::Keep() : Fate::Remove();
    Fate fate = FateByTable(element);
    const bool isSearched = !element.fIsSequence && !IsNeededForDisplay(element.fTag);
    if (fate.fKind == Fate::Kind::kKeep && isSearched && fIdentity.IsIn(element.fVr, element.fValue))
        return Fate::Replace({});
    return fate;
}

Fate TDeIdentification::FateByTable(const Element& element) const {
    const DeIdentificationRow* row = FindRow(element.fTag);
    if (row == nullptr) return Act(ActionByVr(element.fTag, element.fVr), element.fVr, element);
    return Act(fLevel == Level::kPatient ? row->fAtLevel1 : row->fAtLevel2, row->fVr, element);
}

Fate TDeIdentification::Act(Action action, VrCode vr, const Element& element) const {
    switch (action) {
        case Action::kStay:
            return Fate::Keep();
        case Action::kRemove:
            return Fate::Remove();
        case Action::kBlank:
            return Fate::Replace({});
        case Action::kDummy:
            return ReplaceByDummy(vr, element.fValue);
        case Action::kRemoveOrBlank:
            return fIsReport && IsNamedByReports(element) ? Fate::Replace({}) : Fate::Remove();
        case Action::kRemoveOrDummy:
            return fMustHaveValues ? ReplaceByDummy(vr, element.fValue) : Fate::Remove();
        case Action::kBlankOrDummy:
            return fMustHaveValues ? ReplaceByDummy(vr, element.fValue) : Fate::Replace({});
        case Action::kReplaceUids:
            return ActOnUids(element.fValue);
    }
    return Fate::Remove();
}

Fate TDeIdentification::ActOnUids(std::string_view value) const {
    auto replaced = ReplaceUids(value, [this](std::string_view uid) {
        return IsOfStandard(uid) ? std::nullopt : std::optional(fUidReplacer(uid));
    });
    return replaced ? Fate::Replace(std::move(*replaced)) : Fate::Keep();
}

void TDeIdentification::Mark(TDataSetEdit& edit) const {
    edit.Put(kPatientIdentityRemoved, Vr::kCS, "YES");
    edit.Put(kDeIdentificationMethod, Vr::kLO, fLevel == Level::kPatient ? kMethodOfLevel1 : kMethodOfLevel2);
}

}  // namespace Vantor
