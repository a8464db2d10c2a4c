#pragma once

#include <map>
#include <string>
#include <string_view>

#include "dicom/Vr.h"

namespace Vantor {

// The names and numbers of one patient, and whether they are in a text. Texts of less than four bytes are in
// too many others and do not count.
class PatientIdentity {
  public:
    // Values as stored, maybe several. Names in DICOM form; each of their forms counts, with family and given
    // name in either order.
    void AddNames(std::string_view names);
    void AddNumbers(std::string_view numbers);

    // Whether a value holds one of them. Names in ASCII, and numbers that are only digits or only letters,
    // have to be whole words. Only texts are looked at, and where the VR is not known, what may be one.
    bool IsIn(VrCode vr, std::string_view value) const;

  private:
    void AddNamesOf(std::string_view group);
    void Add(std::string_view text, bool isWord);

    std::map<std::string, bool> fTexts;  // as they are compared; true for those that have to be whole words
};

}  // namespace Vantor
