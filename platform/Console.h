#pragma once

namespace Vantor::Platform {

// True when standard error is read by a person at a terminal, and not kept in a file or read by a program.
bool IsErrorTerminal();

// Makes a terminal show what the program writes as UTF-8. To be called once, before anything is written.
void PrepareConsole();

}  // namespace Vantor::Platform
