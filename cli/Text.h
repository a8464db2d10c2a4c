#pragma once

#include <string>
#include <string_view>

#include "wrappers/HostDateTime.h"
#include "wrappers/HostString.h"

namespace VantorCli {

using VantorWrappers::HostDateTime;
using VantorWrappers::HostString;

// Host text as UTF-8, always valid: half a surrogate pair becomes U+FFFD.
std::string ToUtf8(const HostString& text);

// The same for a person at a terminal: control characters, which could steer the terminal, are shown as \x1B.
std::string ToPrintable(const HostString& text);

// 8-bit text of the library or the command line, for a person: valid UTF-8 without control characters.
std::string ToPrintable(std::string_view bytes);

// Binary data for a person: every byte that is no printable ASCII character is a dot.
std::string ToDotted(std::string_view bytes);

// The text without blanks at both ends.
HostString Trimmed(const HostString& text);

// 2004-01-19, 2004-01-19T07:27:30.
std::string IsoDate(HostDateTime moment);
std::string IsoDateTime(HostDateTime moment);

// 19 Jan 2004, 07:27:30.
std::string ReadableDate(HostDateTime moment);
std::string ReadableTime(HostDateTime moment);

}  // namespace VantorCli
