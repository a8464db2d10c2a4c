#include "cli/DamageFinding.h"

#include "cli/CommandError.h"

namespace VantorCli {

std::string FindingOf(const HostString& message) {
    constexpr wchar_t kBeforeAdvice[] = L".  ";
    return ToPrintable(message.substr(0, message.rfind(kBeforeAdvice)));
}

void ThrowFinding(const HostString& message) { throw CommandError(FindingOf(message)); }

}  // namespace VantorCli
