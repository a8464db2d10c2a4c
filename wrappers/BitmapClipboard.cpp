#include "wrappers/BitmapClipboard.h"

#include "platform/Clipboard.h"

namespace VantorWrappers {

bool BitmapClipboard::Put(const std::vector<uint8_t>& bitmap) {
    return Vantor::Platform::PutBitmapOnClipboard(bitmap);
}

}  // namespace VantorWrappers
