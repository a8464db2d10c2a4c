#pragma once

#include <cstdint>
#include <vector>

namespace VantorWrappers {

// Addition for hosts whose image control is not a window of the system: the clipboard, on which a control
// leaves its picture for a movie.
class BitmapClipboard {
  public:
    // Puts a device-independent bitmap in place of what is on the clipboard: a header of 40 bytes, colour
    // masks or a colour table where its depth has them, and the rows. False when the clipboard cannot be had.
    static bool Put(const std::vector<uint8_t>& bitmap);
};

}  // namespace VantorWrappers
