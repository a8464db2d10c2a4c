#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Vantor::Platform {

// The one place where 8-bit text (DICOM values, paths) and the host's wide text meet.
//
// Windows: the system code page. Elsewhere: bytes that are valid UTF-8 are UTF-8, any others Windows-1252;
// host text becomes UTF-8. What has no counterpart on the other side becomes a question mark or U+FFFD;
// neither direction fails.
std::wstring ToHostText(std::string_view bytes);
std::string FromHostText(std::wstring_view text);

// The number, as the Windows systems count them, of the code page that FromHostText writes in.
inline constexpr uint32_t kUtf8CodePage = 65001;
uint32_t GetNativeCodePage();

// Host text as UTF-8, whatever the code page is.
std::string ToUtf8(std::wstring_view text);

// The text that FromHostText gives of what ToHostText makes of these bytes: 8-bit texts that hosts take for
// the same are the same then.
std::string AsHostsSee(std::string_view bytes);

// Where to cut an 8-bit text so that at most `limit` bytes remain: there, or, where text can be UTF-8, in
// front of a character that would be cut in two and make all of it unreadable as UTF-8. The bytes behind the
// limit tell, as far as they are given.
size_t CutPosition(std::string_view bytes, size_t limit);

}  // namespace Vantor::Platform
