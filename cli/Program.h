#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/Command.h"
#include "cli/Console.h"

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace VantorCli {

// The program: its command line, and the run of the command that it asks for.
class Program {
  public:
    Program();
    ~Program();

    ExitStatus Run(int argumentCount, char** arguments);

  private:
    void Add(std::unique_ptr<Command> command);
    ExitStatus RunCommand();
    ExitStatus ParseAndRun(int argumentCount, char** arguments);
    ExitStatus ReportParseError(const CLI::ParseError& error);
    std::string ProblemWithoutCommand(const CLI::ParseError& error) const;
    void StartTracing();

    std::unique_ptr<CLI::App> fApp;
    Console fConsole;
    std::vector<std::pair<CommandLine, std::unique_ptr<Command>>> fCommands;
    std::string fTraceLevel;
};

}  // namespace VantorCli
