#include "platform/VideoFile.h"

namespace Vantor::Platform {

size_t VideoStream::GetRowSize() const {
    constexpr size_t kBytesOfPixel = 3;
    constexpr size_t kAlignment = 4;
    const size_t used = static_cast<size_t>(fWidth) * kBytesOfPixel;
    return (used + kAlignment - 1) / kAlignment * kAlignment;
}

size_t VideoStream::GetFrameSize() const { return GetRowSize() * static_cast<size_t>(fHeight); }

}  // namespace Vantor::Platform
