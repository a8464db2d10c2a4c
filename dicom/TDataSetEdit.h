#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dicom/ElementReader.h"

namespace Vantor {

// Changes of the elements of a data set, made in one pass that writes all of them anew. What is not changed
// keeps its bytes, also elements and VRs that the library does not know; group lengths that are there are
// made right.
class TDataSetEdit {
  public:
    // An element that a rule is asked about.
    struct Element {
        Tag fTag;
        VrCode fVr;               // as stored; Vr::kNotKnown in implicit VR
        std::string_view fValue;  // as stored, with its padding; the items of a sequence
        bool fIsSequence;         // its value is nothing but items
        int32_t fDepth;           // 0 at the top level
    };

    // What a rule says.
    struct Fate {
        enum class Kind { kKeep, kRemove, kReplace };
        Kind fKind = Kind::kKeep;
        std::string fValue = {};  // of kReplace; an element without value when empty

        static Fate Keep() { return {}; }
        static Fate Remove() { return {Kind::kRemove}; }
        static Fate Replace(std::string value) { return {Kind::kReplace, std::move(value)}; }
    };
    using Rule = std::function<Fate(const Element& element)>;

    // Gives the top level an element with this text in place of the one that may be there, whatever the rule
    // says. Texts are padded to an even length, and cut to what an element can hold.
    void Put(Tag tag, VrCode vr, std::string value);

    // Decides about every other element, at every depth; those within a sequence are asked for once it is
    // kept. Items and delimiters that are in no sequence are elements too, which may be kept or removed.
    // Without a rule all are kept.
    void SetRule(Rule rule) { fRule = std::move(rule); }

    // The changed elements, in the same encoding. Throws TException 102 for bytes that are no data set, and
    // 101 for items in items beyond TDicomDataSet::kDeepestNesting.
    std::vector<uint8_t> Apply(std::span<const uint8_t> elements, Encoding encoding) const;

  private:
    class Pass;  // one data set on its way

    struct Value {
        VrCode fVr;
        std::string fText;
    };

    std::map<Tag, Value> fPut;
    Rule fRule;
};

}  // namespace Vantor
