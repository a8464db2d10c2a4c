#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dicom/Vr.h"

namespace Vantor {

// A value, or one of several, without the spaces around it and the byte that made its length even.
std::string_view TrimValue(std::string_view value);

// What is known of the characters of a text: that those after an escape sequence of ISO 2022 may have two
// bytes; or also that each byte beyond ASCII has another one with it, as in GB18030 and GBK.
enum class Characters { kOfIso2022, kOfGb18030 };

// The parts of a value between separators, one or more; a byte that is half of a character is no separator.
std::vector<std::string_view> SplitValue(std::string_view value, char separator,
                                         Characters characters = Characters::kOfIso2022);

// An escape sequence, with which ISO 2022 changes the character set, begins with this byte; gives the length
// of the one at the start of a text.
inline constexpr char kEscape = '\x1B';
size_t EscapeLength(std::string_view text);

// Whether the characters after an escape sequence have two bytes of ASCII each; `before` if it says nothing
// of them.
bool StartsPairs(std::string_view escape, bool before);

// True for text of ASCII alone: what ISO 2022 writes with escape sequences is none.
bool IsPlainAscii(std::string_view text);

// True for the VRs of texts that are written in the character set of their data set.
bool IsInCharacterSet(VrCode vr);

// True for a value with control characters that no text has, its padding aside.
bool HasControlCharacters(std::string_view value);

// What takes the place of a UID; none for one that stays.
using UidFinder = std::function<std::optional<std::string>(std::string_view uid)>;

// A value with other UIDs, each of several found by itself; padded, as in implicit VR nobody else knows that
// it is UIDs. None when all of them stay.
std::optional<std::string> ReplaceUids(std::string_view value, const UidFinder& find);

}  // namespace Vantor
