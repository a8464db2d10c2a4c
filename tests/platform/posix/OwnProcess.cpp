#include "tests/support/OwnProcess.h"

#include <sys/wait.h>
#include <unistd.h>

namespace VantorTest {

bool RunInCopyOfProcess(const std::function<void()>& action) {
    const pid_t copy = fork();
    if (copy == 0) {
        action();
        EndProcessAtOnce();
    }
    int status = 0;
    return copy > 0 && waitpid(copy, &status, 0) == copy && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void EndProcessAtOnce() { _exit(0); }

}  // namespace VantorTest
