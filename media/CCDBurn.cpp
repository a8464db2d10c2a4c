#include "media/CCDBurn.h"

namespace Vantor {

CCDBurn::CCDBurn() : fBurner(Platform::DiscService::Current().Connect()) {
    if (fBurner != nullptr) fBurnArea = Platform::DiscService::Current().GetStagingFolder();
}

}  // namespace Vantor
