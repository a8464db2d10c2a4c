#include "platform/Console.h"

#include <unistd.h>

namespace Vantor::Platform {

bool IsErrorTerminal() { return isatty(STDERR_FILENO) == 1; }

// Terminals take UTF-8 of themselves.
void PrepareConsole() {}

}  // namespace Vantor::Platform
