#include "cli/Program.h"
#include "platform/Console.h"

int main(int argumentCount, char** arguments) {
    Vantor::Platform::PrepareConsole();
    return static_cast<int>(VantorCli::Program().Run(argumentCount, arguments));
}
