#pragma once

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

}  // namespace Vantor::Platform
