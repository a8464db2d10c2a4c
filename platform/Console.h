#pragma once

#include <cstddef>

namespace Vantor::Platform {

// True when standard error is read by a person at a terminal, and not kept in a file or read by a program.
bool IsErrorTerminal();

// How many characters fit on a line of the terminal that standard output goes to; 0 when it goes to none.
size_t GetOutputWidth();

// Makes a terminal show what the program writes as UTF-8. To be called once, before anything is written.
void PrepareConsole();

}  // namespace Vantor::Platform
