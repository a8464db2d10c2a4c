#include "platform/PathStyle.h"

namespace Vantor::Platform {

const PathStyle& PathStyle::OfPlatform() {
    static const PosixPathStyle style;
    return style;
}

}  // namespace Vantor::Platform
