#pragma once

#include <optional>
#include <string>
#include <vector>

#include "dicom/Tags.h"
#include "dicom/Vr.h"
#include "wrappers/HostString.h"

namespace Vantor {
class TDicomDoc;
}

namespace VantorWrappers {

// The texts of a record that is made for a copy.
//
// Those that hosts see in the record of the source keep the bytes that they have there, and their character
// set, whatever that is. Where others beyond ASCII are to stand beside them, these are written in the same
// character set, if that is Latin-1 or UTF-8; else all are written as hosts see them, which is in Latin-1 and
// UTF-8 what they are. That is done in the library's own 8-bit text, or in UTF-8 where characters would be
// lost there.
class RecordTexts {
  public:
    // The source's record; null without one.
    explicit RecordTexts(const Vantor::TDicomDoc* source);

    void Add(Vantor::Tag tag, Vantor::VrCode vr, const HostString& text);

    // Puts the texts into a new record, which is in no directory yet, with the character set that they need.
    void PutInto(Vantor::TDicomDoc& record) const;

  private:
    struct Text {
        Vantor::Tag fTag;
        Vantor::VrCode fVr;
        HostString fText;
        std::optional<std::string> fOld;  // the bytes in the source
    };

    // The texts as they are written, one for each, and what in; an empty one is not told.
    struct Encoded {
        std::string fCharacterSet;
        std::vector<std::string> fBytes;
    };

    std::string Read(Vantor::Tag tag) const;
    Encoded Encode() const;
    std::optional<Encoded> EncodeBesideOld() const;
    std::optional<Encoded> EncodeIn(const std::string& characterSet) const;
    Encoded EncodeAsSeen() const;

    const Vantor::TDicomDoc* fSource;
    std::vector<Text> fTexts;
};

}  // namespace VantorWrappers
