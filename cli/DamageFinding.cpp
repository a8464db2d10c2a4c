#include "cli/DamageFinding.h"

namespace VantorCli {

std::string FindingOf(const HostString& message) {
    constexpr wchar_t kBeforeAdvice[] = L".  ";
    return ToPrintable(message.substr(0, message.rfind(kBeforeAdvice)));
}

}  // namespace VantorCli
