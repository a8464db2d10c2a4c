#include "cli/Program.h"

int main(int argumentCount, char** arguments) {
    return static_cast<int>(VantorCli::Program().Run(argumentCount, arguments));
}
