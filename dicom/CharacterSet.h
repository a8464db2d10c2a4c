#pragma once

#include <optional>
#include <string>
#include <string_view>

// The character sets that texts of a data set can be written in, by their defined terms in (0008,0005).
namespace Vantor::CharacterSet {

inline constexpr char kAscii[] = "ISO_IR 6";
inline constexpr char kLatin1[] = "ISO_IR 100";
inline constexpr char kUtf8[] = "ISO_IR 192";

// Host text in a character set; ASCII text in any. None when the set has no character for one of them, or is
// not one of those above.
std::optional<std::string> Encode(std::wstring_view text, std::string_view characterSet);

// The character set that 8-bit text of the library is in (Platform::CodePage): none for text of ASCII alone,
// which needs none, and for code pages that DICOM has no term for.
std::optional<std::string> OfNativeText(std::string_view bytes);

}  // namespace Vantor::CharacterSet
