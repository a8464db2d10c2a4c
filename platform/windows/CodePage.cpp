#include "platform/CodePage.h"

#include <windows.h>

#include <algorithm>
#include <limits>

namespace Vantor::Platform {

namespace {

// The system counts in int; no text of the library comes near.
int LengthOf(size_t size) {
    return static_cast<int>(std::min<size_t>(size, std::numeric_limits<int>::max()));
}

// A letter that merely looks like the one without counterpart would make another name of a patient's. The
// flag is not for UTF-8, which has a counterpart for everything.
DWORD NarrowingFlags() { return GetACP() == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS; }

}  // namespace

std::wstring ToHostText(std::string_view bytes) {
    constexpr DWORD kNoFlags = 0;
    const int size = LengthOf(bytes.size());
    const int length = MultiByteToWideChar(CP_ACP, kNoFlags, bytes.data(), size, nullptr, 0);
    std::wstring text(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, kNoFlags, bytes.data(), size, text.data(), length);
    return text;
}

size_t CutPosition(std::string_view bytes, size_t limit) { return std::min(bytes.size(), limit); }

uint32_t GetNativeCodePage() { return GetACP(); }

std::string FromHostText(std::wstring_view text) {
    const DWORD flags = NarrowingFlags();
    const int length = LengthOf(text.size());
    const int size = WideCharToMultiByte(CP_ACP, flags, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, flags, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

}  // namespace Vantor::Platform
