#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "cli/Command.h"

namespace VantorCli {

// vantor disc: its own commands stage files for a disc and burn it.
class DiscCommand : public Command {
  public:
    CommandLine AddTo(const CommandLine& program) override;
    ExitStatus Run(Console& console) override;

  private:
    std::vector<std::pair<CommandLine, std::unique_ptr<Command>>> fCommands;
};

}  // namespace VantorCli
