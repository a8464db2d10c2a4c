#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "wrappers/HostDateTime.h"
#include "wrappers/HostString.h"

namespace VantorCli {

using VantorWrappers::HostDateTime;
using VantorWrappers::HostString;
using VantorWrappers::Trimmed;

// Host text as UTF-8, always valid: half a surrogate pair becomes U+FFFD.
std::string ToUtf8(const HostString& text);

// The same for a person at a terminal: control characters, which could steer the terminal, are shown as \x1B.
std::string ToPrintable(const HostString& text);

// 8-bit text of the library or the command line, for a person: valid UTF-8 without control characters.
std::string ToPrintable(std::string_view bytes);

// Binary data for a person: every byte that is no printable ASCII character is a dot.
std::string ToDotted(std::string_view bytes);

// How many characters of UTF-8 stand on a line.
size_t WidthOf(std::string_view utf8);

// The text with as many blanks behind it, or in front of it, as it needs to be so wide.
std::string PadRight(std::string utf8, size_t width);
std::string PadLeft(std::string utf8, size_t width);

// 12,345
std::string Grouped(uint64_t number);

// 1 image, 12,345 images.
std::string Counted(uint64_t number, const char* one, const char* many);

// A size in units of 1,024 bytes: 12,345 KB.
std::string ReadableKilobytes(uint64_t count);

// 2004-01-19, 2004-01-19T07:27:30.
std::string IsoDate(HostDateTime moment);
std::string IsoDateTime(HostDateTime moment);

// 19 Jan 2004, 07:27:30.
std::string ReadableDate(HostDateTime moment);
std::string ReadableTime(HostDateTime moment);

}  // namespace VantorCli
