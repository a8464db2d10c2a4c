#include "platform/Console.h"

#include <windows.h>

namespace Vantor::Platform {

// Only consoles have a mode; other devices that count as characters (NUL, for one) have none.
bool IsErrorTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

// A line that fills the window would be followed by an empty one, so one character less counts.
size_t GetOutputWidth() {
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) == 0) return 0;
    const int width = info.srWindow.Right - info.srWindow.Left;
    return width > 0 ? static_cast<size_t>(width) : 0;
}

// Without a console there is nothing to prepare.
void PrepareConsole() { SetConsoleOutputCP(CP_UTF8); }

}  // namespace Vantor::Platform
