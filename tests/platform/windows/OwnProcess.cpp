#include "tests/support/OwnProcess.h"

#include <windows.h>

namespace VantorTest {

bool RunInCopyOfProcess(const std::function<void()>& /*action*/) { return false; }

void EndProcessAtOnce() {
    TerminateProcess(GetCurrentProcess(), 0);
    __builtin_unreachable();
}

}  // namespace VantorTest
