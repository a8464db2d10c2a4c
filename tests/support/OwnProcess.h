#pragma once

#include <functional>

namespace VantorTest {

// Runs something in a copy of this process, which has to be the only thread in it, and waits for the end of
// that. False where the system cannot copy a process; nothing is run then.
bool RunInCopyOfProcess(const std::function<void()>& action);

// Ends the process as if it had been killed: nothing is closed, removed or destroyed.
[[noreturn]] void EndProcessAtOnce();

}  // namespace VantorTest
