#pragma once

#include <optional>
#include <string>
#include <string_view>

// The character sets that texts of a data set can be written in, by their defined terms in (0008,0005).
namespace Vantor::CharacterSet {

inline constexpr char kAscii[] = "ISO_IR 6";
inline constexpr char kLatin1[] = "ISO_IR 100";
inline constexpr char kUtf8[] = "ISO_IR 192";

// Host text in the character set that a value of (0008,0005) begins its texts with: Latin-1 or UTF-8, and
// ASCII text in any. None when the set has no character for one of them, or is another one.
std::optional<std::string> Encode(std::wstring_view text, std::string_view characterSet);

// The character set of text beyond ASCII whose data set names none: UTF-8 or Latin-1, if it can be that; none
// for what must be something else.
std::optional<std::string> OfUnnamed(std::string_view bytes);

// The character set that 8-bit text of the library is in (Platform::CodePage): none for text of ASCII alone,
// which needs none, and for code pages that DICOM has no term for.
std::optional<std::string> OfNativeText(std::string_view bytes);

}  // namespace Vantor::CharacterSet
