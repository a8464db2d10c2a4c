#include "platform/Console.h"

#include <windows.h>

namespace Vantor::Platform {

// Only consoles have a mode; other devices that count as characters (NUL, for one) have none.
bool IsErrorTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

// Without a console there is nothing to prepare.
void PrepareConsole() { SetConsoleOutputCP(CP_UTF8); }

}  // namespace Vantor::Platform
