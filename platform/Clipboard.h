#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace Vantor::Platform {

// Pictures on the clipboard, as device-independent bitmaps: a header of 40 bytes or more, colour masks or a
// colour table where the depth has them, and the rows, without the header of a file in front. On Windows it
// is the one clipboard of the desktop; elsewhere this process has one of its own.

// Puts a bitmap in place of whatever is there. False when the clipboard cannot be had, or has no room; an
// empty bitmap is none.
bool PutBitmapOnClipboard(const std::vector<uint8_t>& bitmap);

// Opens the clipboard for the host's window, hands the bitmap that is on it to `use`, and closes it again.
// The bytes are there as long as the call lasts; there may be more of them than the bitmap has. False, and no
// call, when the clipboard cannot be had or no bitmap is on it. `use` leaves the clipboard alone.
bool UseBitmapOnClipboard(const std::function<void(const uint8_t* bytes, size_t size)>& use);

// Takes everything off. False when the clipboard cannot be had.
bool ClearClipboard();

}  // namespace Vantor::Platform
