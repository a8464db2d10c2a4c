#pragma once

#include <optional>
#include <string>

#include "dicom/Vr.h"
#include "wrappers/HostString.h"

namespace VantorWrappers {

// The bytes, out of those that are stored, that a host means by this text; none when it means another text,
// or none. It means all of them by the text that it sees of them, blanks around it aside, also if that is
// only the start which records show; and those of a name but for the carets at its end if it leaves them out.
//
// So a text that a host only hands on stays what it is, whatever character set it is in.
std::optional<std::string> FindStoredText(const std::string& stored, Vantor::VrCode vr,
                                          const HostString& text);

}  // namespace VantorWrappers
