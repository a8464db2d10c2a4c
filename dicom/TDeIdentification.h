#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "dicom/DeIdentificationTable.h"
#include "dicom/PatientIdentity.h"
#include "dicom/TDataSetEdit.h"

namespace Vantor {

// What becomes of each element of an instance that is to be shown outside the hospital: the rules of the
// standard's basic application level confidentiality profile, in two strengths. The table of the elements and
// of what becomes of each is in docs/deidentification.md.
//
// Pixels are not looked at: a name that is burned into them stays.
class TDeIdentification {
  public:
    enum class Level : int32_t {
        kPatient = 1,     // who the patient is; the names of physicians and operators stay
        kPhysicians = 2,  // and who examined the patient
    };

    // Gives the UID that takes the place of a UID; always the same for the same one.
    using UidReplacer = std::function<std::string(std::string_view uid)>;

    // `elements`: of the instance at hand, whose patient's names and numbers are then searched for in the
    // texts that stay. Throws what TDataSetEdit::Apply throws.
    TDeIdentification(Level level, UidReplacer uidReplacer, std::span<const uint8_t> elements,
                      Encoding encoding);

    // For TDataSetEdit::SetRule.
    TDataSetEdit::Fate operator()(const TDataSetEdit::Element& element) const;

    // Notes in the file that and how the patient's identity was removed, as the standard wants it: Patient
    // Identity Removed and De-identification Method.
    void Mark(TDataSetEdit& edit) const;

  private:
    void NoteKind(const TDataSetEdit::Element& element);
    void NoteIdentity(const TDataSetEdit::Element& element);
    TDataSetEdit::Fate FateByTable(const TDataSetEdit::Element& element) const;
    TDataSetEdit::Fate Act(DeIdentificationAction action, VrCode vr,
                           const TDataSetEdit::Element& element) const;
    TDataSetEdit::Fate ActOnUids(std::string_view value) const;

    Level fLevel;
    UidReplacer fUidReplacer;
    bool fIsReport = false;
    bool fMustHaveValues = false;
    PatientIdentity fIdentity;
};

}  // namespace Vantor
