#include "platform/PathStyle.h"

namespace Vantor::Platform {

const PathStyle& PathStyle::OfPlatform() {
    static const WindowsPathStyle style;
    return style;
}

}  // namespace Vantor::Platform
