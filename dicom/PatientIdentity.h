#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "dicom/ValueText.h"
#include "dicom/Vr.h"

namespace Vantor {

// The names and numbers of one patient, and whether they are in a text. Texts of less than four bytes are in
// too many others and do not count.
//
//     identity.AddNames(...); identity.AddNumbers(...);
//     identity.Prepare();
//     identity.IsIn(vr, value)
//
// However many they are, and however long, a text is gone through once.
class PatientIdentity {
  public:
    // Values as stored, maybe several. Names in DICOM form; each of their forms counts, with family and given
    // name in either order.
    void AddNames(std::string_view names);
    void AddNumbers(std::string_view numbers);

    // To be called when all are added.
    void Prepare();

    // Whether a value holds one of them. Names in ASCII, and numbers that are only digits or only letters,
    // have to be whole words. Only texts are looked at; where the VR is not known, and where it is one that
    // nobody knows, all bytes, in which short texts count only if nothing but text is around them.
    bool IsIn(VrCode vr, std::string_view value) const;

  private:
    // What may not go on, at its start or at its end, in the text that holds it.
    struct Bounds {
        bool fAtStart;
        bool fAtEnd;
    };

    // One text that is looked for.
    struct Wanted {
        std::string fText;
        Bounds fBounds;
        size_t fShorter;  // the place of the longest other one that it begins with; kNone without one
    };
    static constexpr size_t kNone = SIZE_MAX;

    void AddNamesOf(std::string_view group, Characters characters);
    void AddNumbersOf(std::string_view numbers, Characters characters);
    void Add(std::string_view text, bool isWord);
    bool IsInUnknown(std::string_view value, bool mayBeNumber) const;
    bool IsInText(std::string_view value, size_t shortest) const;
    bool IsInComparable(std::string_view text, size_t shortest) const;
    bool BeginsAt(std::string_view text, size_t position, size_t shortest) const;
    static uint16_t StartOf(std::string_view text);

    static constexpr size_t kStarts = 0x10000;

    std::map<std::string, Bounds> fTexts;  // as they are compared; until Prepare
    std::vector<Wanted> fWanted;           // in ascending order
    std::bitset<kStarts> fStarts;          // the first two bytes of each
};

}  // namespace Vantor
