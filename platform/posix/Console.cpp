#include "platform/Console.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace Vantor::Platform {

bool IsErrorTerminal() { return isatty(STDERR_FILENO) == 1; }

size_t GetOutputWidth() {
    winsize size = {};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

// Terminals take UTF-8 of themselves.
void PrepareConsole() {}

}  // namespace Vantor::Platform
