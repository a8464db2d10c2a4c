#pragma once

#include "cli/CommandLine.h"
#include "cli/ExitStatus.h"

namespace VantorCli {

class Console;

// One command of the program: its command line, and what it does.
class Command {
  public:
    Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    // Adds the command with its options, its help and an example to the program, and gives its own part of
    // the command line. Options are kept in this object, which must outlive the program's command line.
    virtual CommandLine AddTo(const CommandLine& program) = 0;

    // Does what the parsed command line asks for. Failures that concern one file are reported and counted in
    // the status; what escapes as an exception ends the program with kFailed.
    virtual ExitStatus Run(Console& console) = 0;
};

}  // namespace VantorCli
